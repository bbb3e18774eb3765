// Which page is shown: the address decides, so that back, reload and bookmarks work.
import {sectionsOf, type PageId} from '../model/sections';
import {queue} from '../recorder/wire';
import {loadLock} from './passwordLock';
import {loadPage} from './reading';
import {renewBehind} from './session';
import {get, patchSection, sectionState, set} from './store';
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
  for (const group of ['page', 'poll']) queue.drop(group);
  if (page === 'status' || page === 'maintenance') void pollStatus();
  if (page !== 'status') void loadPage(page);
  if (page === 'security') void loadLock();
}

// What was said at an earlier visit is said.
function forgetNotes(page: PageId) {
  for (const {id} of sectionsOf(page)) {
    const {note, step} = sectionState(id);
    if (note && note.kind === 'end' && !step) patchSection(id, {note: null});
  }
}

export function follow() {
  const page = pageOf(location.hash);
  if (page === get().page) return;
  set({page});
  forgetNotes(page);
  renewBehind();
  read();
}

export function startRoute() {
  set({page: pageOf(location.hash)});
  window.addEventListener('hashchange', follow);
}
