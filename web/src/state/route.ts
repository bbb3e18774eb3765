// The address decides which page is shown, so that back, reload and bookmarks work.
import {sectionsOf, type PageId} from '../model/sections';
import {readClock} from '../recorder/wire';
import {answerDialog} from './dialog';
import {loadLock} from './passwordLock';
import {dropReads, loadPage, tryWhole} from './reading';
import {bring} from './scripts';
import {renewBehind} from './session';
import {get, isPast, patchSection, sectionState, set, type ScriptName} from './store';
import {pollStatus} from './status';

export const kPages: readonly PageId[] =
    ['status', 'device', 'video', 'network', 'platforms', 'security', 'maintenance', 'settings',
      'fleet'];

// Pages whose views come with a script of their own.
const kScripts: Partial<Record<PageId, ScriptName>> =
    {maintenance: 'settings', settings: 'settings', fleet: 'settings'};

export function pageOf(hash: string): PageId {
  const name = hash.replace(/^#\/?/, '');
  return kPages.find((page) => page === name) || 'status';
}

export const addressOf = (page: PageId) => `#/${page}`;

// A page without its script says so.
async function readWith(script: ScriptName, page: PageId) {
  const arrived = await bring(script).then(() => true, () => false);
  if (arrived && get().page === page) await loadPage(page);
}

// A script that is yet to come tells as well whether the service answers, and spares a request.
function witnessOf(page: PageId) {
  const script = kScripts[page];
  return script && !get().scripts[script] ? () => bring(script).catch(readClock) : undefined;
}

// Reads what the page shows, and again after a time-out.
export function read() {
  const {page} = get();
  dropReads();
  if (page === 'status' || page === 'maintenance') void pollStatus();
  const script = kScripts[page];
  if (script) void readWith(script, page);
  else if (page !== 'status') void loadPage(page);
  if (page === 'security') void loadLock();
}

// After a recovery, or because the user wants it.
export function readAgain() {
  tryWhole();
  read();
}

// Messages of an earlier visit are dropped.
function forgetNotes(page: PageId) {
  for (const {id} of sectionsOf(page)) {
    const {note, step} = sectionState(id);
    if (isPast(note) && !step) patchSection(id, {note: null});
  }
  if (page === 'security') set({lock: {...get().lock, end: null}});
}

export function follow() {
  const page = pageOf(location.hash);
  if (page === get().page) return;
  if (get().dialog) answerDialog(false);
  set({page});
  scrollTo(0, 0);
  forgetNotes(page);
  renewBehind(witnessOf(page));
  read();
}

export function startRoute() {
  set({page: pageOf(location.hash)});
  window.addEventListener('hashchange', follow);
}
