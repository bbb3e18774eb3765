// The lock after wrong passwords, as the security page shows and resets it.
import {save} from '../model/save';
import {Fault, kindOf} from '../recorder/fault';
import {readLock, writeLock, type Lock} from '../recorder/lock';
import {throughRestart} from './health';
import {endOf} from './saving';
import {expire, renew} from './session';
import {get, set, type LockState} from './store';

const patch = (part: Partial<LockState>) => set({lock: {...get().lock, ...part}});

async function reading(): Promise<Lock> {
  const lock = await readLock();
  if (!lock.known) throw new Fault('deviceSilent');
  return lock;
}

export async function loadLock() {
  try {
    patch({lock: await reading(), at: Date.now(), loading: {state: 'loaded'}});
  } catch (caught) {
    const why = kindOf(caught);
    if (why !== 'dropped') patch({loading: {state: 'failed', why}});
  }
}

export async function resetLock() {
  const before = get().lock;
  if (before.busy || !before.lock) return;
  patch({busy: true, end: null});
  try {
    await renew();
    const {end, after} = await save<Lock>({
      load: reading, send: () => throughRestart(() => writeLock(0)),
      same: (a, b) => a.count === b.count,
      before: before.lock, sent: {known: true, count: 0, left: 0}, progress: () => {},
    });
    patch(after ? {end: {end, known: 'read'}, lock: after, at: Date.now()}
      : {end: {end, known: 'unknown'}});
  } catch (caught) {
    const kind = kindOf(caught);
    if (kind === 'refused') return expire();
    patch({end: {end: endOf(kind), known: 'unsent'}});
  } finally {
    patch({busy: false});
  }
}
