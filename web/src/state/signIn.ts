// The sign-in: checks the password, counts wrong entries, respects the lock. A silent recorder does
// not count as a wrong password.
import {kindOf, type FaultKind} from '../recorder/fault';
import {sessionId, startSession} from '../recorder/gate';
import {unstorable, wireLength} from '../recorder/gbk';
import {kWrongEntries, readLock, writeLock, type Lock} from '../recorder/lock';
import {login, query} from '../recorder/wire';
import {followRecorder} from './preferences';

const kSilenceMs = 4500;  // the service has waited for a recorder that does not answer
const kPasswordBytes = 127;
const kPauseMs = 10000;

export type SignInNote =
    | {kind: 'checking' | 'counting' | 'empty' | 'impossible' | 'cookies' | 'moved' | 'open' | 'kept'}
    | {kind: 'wrong'; left: number}
    | {kind: 'fault'; why: FaultKind}
    | {kind: 'locked'; until: number};

export interface SignIn {
  busy: boolean;
  note: SignInNote | null;
  deviceNo: string;
  reached: 'asking' | 'answers' | 'silent';
}

let state: SignIn = {busy: false, note: null, deviceNo: '', reached: 'asking'};
let changed: () => void = () => {};

export const signIn = () => state;
export const whenChanged = (work: () => void) => { changed = work; };

export function patch(part: Partial<SignIn>) {
  state = {...state, ...part};
  changed();
}

const say = (note: SignInNote) => patch({note});

const lockedFor = (left: number): SignInNote => ({kind: 'locked', until: Date.now() + left * 1000});

async function countWrong(lock: Lock) {
  const count = lock.count + 1;
  say({kind: 'counting'});
  await writeLock(count);
  const left = count < kWrongEntries ? 0 : (await readLock()).left;
  say(left > 0 ? lockedFor(left) : {kind: 'wrong', left: Math.max(0, kWrongEntries - count)});
}

async function enter(lock: Lock, id: string, go: () => void) {
  startSession(id);
  if (!sessionId()) return say({kind: 'cookies'});
  if (lock.count > 0) await writeLock(0).catch(kindOf);
  go();
}

// The service compares with an empty password when the recorder is silent: the lock comes first.
async function tryPassword(password: string, go: () => void) {
  const lock = await readLock();
  if (!lock.known) return say({kind: 'fault', why: 'deviceSilent'});
  if (lock.left > 0) return say(lockedFor(lock.left));
  const {result, values, ms} = await login(password);
  if (ms >= kSilenceMs) return say({kind: 'fault', why: 'deviceSilent'});
  if (result && values.jsession) return enter(lock, values.jsession, go);
  return password ? countWrong(lock) : say({kind: 'empty'});
}

export async function submitPassword(password: string, go: () => void) {
  const {busy, note} = state;
  if (busy || (note && note.kind === 'locked' && note.until > Date.now())) return;
  if (unstorable(password) || wireLength(password) > kPasswordBytes)
    return say({kind: 'impossible'});
  patch({busy: true, note: {kind: 'checking'}});
  try {
    await tryPassword(password, go);
  } catch (caught) {
    say({kind: 'fault', why: kindOf(caught)});
  } finally {
    patch({busy: false});
  }
}

// Looks again by itself, as a recorder takes a while to start.
function silent() {
  patch({reached: 'silent'});
  setTimeout(() => void look(), kPauseMs);
}

// The recorder's identity and state. Read errors are reported when somebody signs in.
export async function look() {
  try {
    const language = await query('get_LangInfo');
    if (!language.result) return silent();
    followRecorder(language.values.strLanguage || '');
    const {note} = state;
    patch({reached: 'answers', note: note && note.kind === 'fault' ? null : note});
    const base = await query('get_BaseInfo');
    patch({deviceNo: base.values.strFD_DeviceNo || ''});
    const lock = await readLock();
    if (lock.left > 0 && !state.busy) say(lockedFor(lock.left));
  } catch (caught) {
    kindOf(caught);
    silent();
  }
}
