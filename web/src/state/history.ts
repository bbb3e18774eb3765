// Remembers what the store hears anyway: readings of the status, silences, and the ends of saves.
// Nothing is asked for it, and nothing is kept longer than the page is open.
import {readingOf, withEntry, type Entry} from '../model/history';
import {sectionById, type SectionId} from '../model/sections';
import {get, isSilent, set, subscribe, type Ended, type State} from './store';

const kMostEnds = 20;

const kSleepMs = 20000;

const leadOf = (steady: number) => Date.now() - steady;
let lead = leadOf(performance.now());
let slept = 0;

// A clock that only goes on, as a device may set its own while the page is open. The browser's
// stands still while the computer sleeps: then the clock of the day has run ahead.
export function steadyNow(): number {
  const steady = performance.now();
  const now = leadOf(steady);
  if (now - lead > kSleepMs) slept += now - lead;
  lead = now;
  return steady + slept;
}

function newEntry(before: State, now: State): Entry | null {
  if (now.status && now.status !== before.status) return readingOf(steadyNow(), now.status.values);
  if (isSilent(now) !== isSilent(before)) return {at: steadyNow(), silent: isSilent(now)};
  return null;
}

type End = Omit<Ended, 'at'>;

function sectionEnds(before: State, now: State): End[] {
  const ends: End[] = [];
  for (const id of Object.keys(now.sections) as SectionId[]) {
    const [was, is] = [before.sections[id], now.sections[id]];
    const note = is && is.note;
    if (!note || note.kind !== 'end' || (was && was.note === note)) continue;
    ends.push({title: sectionById(id).title, end: note.end, known: note.known});
  }
  return ends;
}

function newEnds(before: State, now: State): End[] {
  const ends = sectionEnds(before, now);
  const {end} = now.transfer;
  if (end && end !== before.transfer.end) ends.push({title: 'section.import', ...end});
  if (now.lock.end && now.lock.end !== before.lock.end)
    ends.push({title: 'section.lock', ...now.lock.end});
  return ends;
}

export function watchHistory() {
  let before = get();
  subscribe(() => {
    const now = get();
    const entry = newEntry(before, now);
    const ends = newEnds(before, now);
    before = now;
    if (entry) set({history: withEntry(get().history, entry)});
    if (!ends.length) return;
    const at = Date.now();
    const added = ends.map(({title, end, known}) => ({at, title, end, known}));
    set({ends: [...get().ends, ...added].slice(-kMostEnds)});
  });
}
