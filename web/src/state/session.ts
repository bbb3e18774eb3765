// The session: asked about at each change of page and before each save. What was typed survives its
// end as drafts, without secrets.
import {endSession, renewSession} from '../recorder/gate';
import {kindOf} from '../recorder/fault';
import {request} from '../recorder/wire';
import {askUser} from './dialog';
import {waiting} from './editing';
import {dropAllDrafts, recall, remember} from './memory';
import {get, set} from './store';

const kBuild = /--build:\s*(\w+)/;
const kReloaded = 'reloadedFor';
const kWaitMs = 12000;

let build = '';
export const setBuild = (mark: string) => { build = mark; };

// The service has newer pages than this one: takes them, once.
async function checkBuild(sheet: string) {
  const match = kBuild.exec(sheet);
  const served = match ? match[1] || '' : build;
  if (served === build || !build || recall(kReloaded) === served) return;
  remember(kReloaded, served);
  await request('app.html', {cache: 'reload'}, kWaitMs);
  location.reload();
}

export function expire() {
  if (get().expired) return;
  set({expired: true});
  location.replace(`login.html#${get().page}`);
}

// Throws 'refused' when the session has ended.
export async function renew() {
  await checkBuild(await renewSession());
}

// At a change of page; holds nothing up.
export function renewBehind() {
  renew().catch((caught) => {
    if (kindOf(caught) === 'refused') expire();
  });
}

export async function signOut() {
  const pages = Object.keys(waiting()) as (keyof ReturnType<typeof waiting>)[];
  if (pages.length && !await askUser({kind: 'leave', pages})) return;
  set({expired: true});  // nothing more is asked about
  dropAllDrafts();
  endSession();
  location.replace('login.html');
}
