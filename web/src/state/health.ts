// One health state for everything shown. The first time-out marks everything as old; waiting
// requests are dropped, and one query is repeated until the recorder answers again.
import {Fault, type FaultKind} from '../recorder/fault';
import {query, queue, readClock, setWitness, type Timed} from '../recorder/wire';
import {get, set} from './store';

// A silent recorder costs the service 5 s, whereas a missing section is reported at once.
export const kSilenceMs = 4500;
const kPausesMs = [5000, 5000, 10000, 15000, 30000];
const kSlowMs = 900;  // an accepted set takes longer than that

let tries = 0;
let retry: ReturnType<typeof setTimeout> | undefined;
let onRecovery: () => void = () => {};

export const whenRecovered = (work: () => void) => { onRecovery = work; };

function silent(state: 'deviceSilent' | 'serviceSilent') {
  const {health} = get();
  const since = health.state === state ? health.since : Date.now();
  const pause = kPausesMs[Math.min(tries, kPausesMs.length - 1)] || 0;
  tries++;
  clearTimeout(retry);
  retry = setTimeout(() => void retryNow(), pause);
  set({health: {state, since, retryAt: Date.now() + pause}});
  for (const group of ['page', 'poll']) queue.drop(group);
}

function alive() {
  const was = get().health.state;
  if (was === 'answers') return;
  tries = 0;
  clearTimeout(retry);
  set({health: {state: 'answers'}});
  if (was !== 'restarting') onRecovery();
}

export function heard(reply: Timed) {
  if (reply.result) return alive();
  if (reply.ms >= kSilenceMs) return silent('deviceSilent');
  if (get().health.state === 'serviceSilent') alive();
  return undefined;
}

const isSilence = (kind: FaultKind) => kind === 'serviceSilent' || kind === 'lost';

export function failed(kind: FaultKind) {
  if (get().health.state === 'restarting') return;
  if (isSilence(kind)) silent('serviceSilent');
}

// Queries once: first the service alone, then the recorder behind it.
export async function retryNow() {
  clearTimeout(retry);
  try {
    await queue.add(readClock, 'retry');
    await query('get_LangInfo', {group: 'retry'});
  } catch (caught) {
    if (caught instanceof Fault) failed(caught.kind);
    else throw caught;
  }
}

// While a set is in progress: a long duration means the restart of an accepted set.
export async function throughRestart<T>(work: () => Promise<T>): Promise<T> {
  const timer = setTimeout(() => {
    if (get().health.state === 'answers')
      set({health: {state: 'restarting', since: Date.now()}});
  }, kSlowMs);
  try {
    return await work();
  } finally {
    clearTimeout(timer);
    if (get().health.state === 'restarting') set({health: {state: 'answers'}});
  }
}

export const watchHealth = () => setWitness({heard, failed});
