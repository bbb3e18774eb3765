// A clock that a test moves. Node 18 has none that moves timers and the date together.
interface Timer { at: number; run: () => void }

let now = 0;
let last = 0;
const timers = new Map<number, Timer>();

export function holdClock() {
  now = Date.now();
  Date.now = () => now;
  const setTimer = (run: () => void, ms = 0) => {
    timers.set(++last, {at: now + ms, run});
    return last;
  };
  const clearTimer = (id?: number) => { if (id !== undefined) timers.delete(id); };
  Object.assign(globalThis, {setTimeout: setTimer, clearTimeout: clearTimer});
}

// Runs due timers in order of time.
export function tick(ms: number) {
  const end = now + ms;
  for (;;) {
    const due = [...timers].filter(([, {at}]) => at <= end).sort(([, a], [, b]) => a.at - b.at)[0];
    if (!due) break;
    const [id, {at, run}] = due;
    timers.delete(id);
    now = at;
    run();
  }
  now = end;
}
