// Which page is shown: the address decides, so that back, reload and bookmarks work.
import type {PageId} from '../model/sections';
import {loadLock} from './passwordLock';
import {loadPage} from './reading';
import {renewBehind} from './session';
import {get, set} from './store';
import {pollStatus} from './status';

export const kPages: readonly PageId[] =
    ['status', 'device', 'video', 'network', 'platforms', 'security', 'maintenance'];

export function pageOf(hash: string): PageId {
  const name = hash.replace(/^#\/?/, '');
  return kPages.find((page) => page === name) || 'status';
}

export const addressOf = (page: PageId) => `#/${page}`;

// Reads what the page shows; again after a silence.
export function read() {
  const {page} = get();
  if (page === 'status' || page === 'maintenance') void pollStatus();
  if (page !== 'status') void loadPage(page);
  if (page === 'security') void loadLock();
}

export function follow() {
  const page = pageOf(location.hash);
  if (page === get().page) return;
  set({page});
  renewBehind();
  read();
}

export function startRoute() {
  set({page: pageOf(location.hash)});
  window.addEventListener('hashchange', follow);
}
