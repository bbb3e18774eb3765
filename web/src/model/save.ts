// One save up to its final result. It knows no page and no field, so every result can be tested.
import {kindOf, type FaultKind} from '../recorder/fault';

// applied: read back as sent; partly: accepted, and the recorder holds other values; unchanged:
// nothing had to be sent; refused: the recorder said no; moved: gone to another address.
export type SaveEnd = 'applied' | 'partly' | 'unchanged' | 'refused' | 'deviceSilent'
    | 'serviceSilent' | 'lost' | 'moved';

// An accepted set restarts the service for 2 s: a shorter one was not accepted.
export const kRestartMs = 1900;
const kTries = 8;
const kPauseMs = 1500;

export interface Answer { result: boolean; ms: number }
export interface Judged<T> {
  answer: Answer | null;
  fault: FaultKind | null;
  before: T;
  sent: T;
  after: T;
  same: (a: T, b: T) => boolean;
}

const ofFault = (kind: FaultKind): SaveEnd =>
  kind === 'deviceSilent' || kind === 'serviceSilent' ? kind : 'lost';

export function judge<T>({answer, fault, before, sent, after, same}: Judged<T>): SaveEnd {
  const asked = !same(sent, before);
  if (asked && same(sent, after)) return 'applied';
  if (!answer) return ofFault(fault || 'lost');
  if (!answer.result) return 'deviceSilent';
  if (answer.ms < kRestartMs) return same(after, before) ? 'refused' : 'partly';
  return asked ? 'partly' : 'applied';
}

async function readBack<T>(load: () => Promise<T>, tries: number, pauseMs: number): Promise<T> {
  for (let left = tries;;) {
    try {
      return await load();
    } catch (caught) {
      const kind = kindOf(caught);
      left -= kind === 'serviceSilent' ? kTries / 2 : 1;  // its time has already passed
      if (left <= 0 || kind === 'deviceSilent') throw caught;
    }
    await new Promise((resume) => { setTimeout(resume, pauseMs); });
  }
}

export interface Saving<T> {
  load: () => Promise<T>;
  send: () => Promise<Answer>;
  same: (a: T, b: T) => boolean;
  before: T;
  sent: T;
  progress: (step: 'sending' | 'reading') => void;
  pauseMs?: number;
}

// Sends and reads back. `after` is null when it is unknown what the recorder holds.
export async function save<T>({load, send, same, before, sent, progress, pauseMs = kPauseMs}:
    Saving<T>): Promise<{end: SaveEnd; after: T | null}> {
  let answer: Answer | null = null;
  let fault: FaultKind | null = null;
  progress('sending');
  try {
    answer = await send();
  } catch (caught) {
    fault = kindOf(caught);
  }
  progress('reading');
  try {
    const after = await readBack(load, answer ? 2 : kTries, pauseMs);
    return {end: judge({answer, fault, before, sent, after, same}), after};
  } catch (caught) {
    return {end: ofFault(kindOf(caught)), after: null};
  }
}
