// The session: checked at each change of page and before each save. When it ends, what was typed is
// kept as drafts, without secrets.
import {endSession, renewSession, type Witness} from '../recorder/gate';
import {kindOf} from '../recorder/fault';
import {request} from '../recorder/wire';
import {askUser} from './dialog';
import {secretsWait, waiting} from './editing';
import {dropAllDrafts, recall, remember} from './memory';
import {get, set} from './store';

const kBuild = /--build:\s*(\w+)/;
const kReloaded = 'reloadedFor';
const kWaitMs = 12000;

let build = '';
export const setBuild = (mark: string) => { build = mark; };
export const ownBuild = () => build;

// The service has newer pages than this one: loads them, once, unless that would lose a typed
// secret. True when they are being loaded. The cached app.html is fetched again, because its new
// date may not be later.
export async function takeNewPages(served: string): Promise<boolean> {
  if (!served || !build || served === build || recall(kReloaded) === served) return false;
  if (secretsWait()) return false;
  await request('app.html', {cache: 'reload'}, kWaitMs);
  remember(kReloaded, served);
  set({expired: true});  // what was typed is in the drafts, so nothing is asked
  location.reload();
  return true;
}

export function expire() {
  if (get().expired) return;
  set({expired: true});
  location.replace(`login.html#${get().page}`);
}

// Throws 'refused' when the session has ended.
export async function renew(witness?: Witness) {
  const match = kBuild.exec(await renewSession(witness));
  await takeNewPages(match && match[1] || '');
}

// Called at a change of page, without delaying it.
export function renewBehind(witness?: Witness) {
  renew(witness).catch((caught) => {
    if (kindOf(caught) === 'refused') expire();
  });
}

export async function signOut() {
  const pages = Object.keys(waiting()) as (keyof ReturnType<typeof waiting>)[];
  if (pages.length && !await askUser({kind: 'leave', pages})) return;
  set({expired: true});  // no further checks
  dropAllDrafts();
  endSession();
  location.replace('login.html');
}
