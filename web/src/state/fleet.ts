// A template for many recorders: chosen settings to a file, a file to this recorder, and the list
// of what was applied where. The list stays in this browser and holds no values.
import {clockText} from '../model/clock';
import type {Field} from '../model/fields';
import {kDeviceNo} from '../model/import';
import {countsOf, isRun, joinRuns, kMostRuns, readCsv, type Run} from '../model/runs';
import type {SaveEnd} from '../model/save';
import {byteLength, configOf, kImportBytes, printFile, printMessage} from '../recorder/config';
import {recall, remember} from './memory';
import {loadPage} from './reading';
import {get, sectionState, set, subscribe, type Fleet} from './store';
import {importRows, restoreImported} from './transfer';

const kRuns = 'fleet.runs';
const kPlate = 'stVehicle/strFD_LicensePlate';

export type Offer = (name: string, text: string, type?: string) => void;

const patch = (part: Partial<Fleet>) => set({fleet: {...get().fleet, ...part}});
const today = () => clockText(new Date()).slice(0, 10);

// What a template can hold.
export const transferable = (field: Field) => !field.fixed && !field.live;

export function choosePaths(paths: string[], chosen: boolean) {
  const next = new Set(get().fleet.chosen);
  for (const path of paths) {
    if (chosen) next.add(path);
    else next.delete(path);
  }
  patch({chosen: next, saved: null});
}

export const nameTemplate = (name: string) => patch({name, saved: null});

// The chosen settings of what the recorder holds, in its order.
export function chosenSettings(): [string, string][] {
  const {fields, held} = sectionState('all');
  const {chosen} = get().fleet;
  return fields.filter(({path}) => chosen.has(path)).map(({path}) => [path, held[path] || '']);
}

export function saveTemplate(offer: Offer) {
  const root = configOf(chosenSettings());
  const used = byteLength(printMessage(root));
  if (used > kImportBytes) return patch({saved: {used}});
  const label = get().fleet.name.trim().replace(/[\s\\/:*?"<>|]+/g, '-');
  const name = ['template', label, today()].filter(Boolean).join('-');
  offer(`${name}.xml`, printFile(root));
  return patch({saved: {name: `${name}.xml`}});
}

function stored(): Run[] {
  try {
    const runs: unknown = JSON.parse(recall(kRuns) || '[]');
    return Array.isArray(runs) ? joinRuns(runs.filter(isRun), []) : [];
  } catch {
    return [];
  }
}

// Another window may have written meanwhile. What this browser does not keep stays as long as the
// page is open, to be saved as a file.
function keep(more: readonly Run[]) {
  const {runs: shown, unkept} = get().fleet;
  const runs = joinRuns(joinRuns(stored(), more), unkept ? shown : []);
  const newest = runs.slice(0, kMostRuns);
  const kept = remember(kRuns, JSON.stringify(newest)) ? newest : stored();
  patch({runs, unkept: runs.length - kept.length});
}

export const loadRuns = () => patch({runs: stored(), unkept: 0});

function note(action: Run['action'], end: SaveEnd) {
  const {transfer} = get();
  const {held} = sectionState('all');
  const run: Run = {at: clockText(new Date()), number: held[kDeviceNo] || '',
    plate: held[kPlate] || '', where: location.hostname, template: transfer.name || '', action, end,
    ...countsOf(transfer.lines)};
  keep([run]);
}

// Notes how an import ended, also when it takes the recorder to another address, and reads what the
// next template is made of.
async function noted(action: Run['action'], work: () => Promise<void>) {
  const before = get().transfer.end;
  const stop = subscribe(() => {
    const {moving} = get().transfer;
    if (moving) {
      stop();
      note(action, 'moved');
    }
  });
  await work();
  stop();
  const {end} = get().transfer;
  if (!end || end === before || end.known === 'unsent') return;
  note(action, end.end);
  await loadPage('fleet');
}

export const applyTemplate = () => noted('apply', importRows);
export const restoreTemplate = () => noted('restore', restoreImported);

// A recorder that holds all of a template already belongs on the list, too.
export function noteUnchanged() {
  const {end, file} = get().transfer;
  if (file && end && end.end === 'unchanged') note('apply', 'unchanged');
}

// Adds the list of another browser, or of another address in this one. False when it is none.
export function addRuns(text: string): boolean {
  const more = readCsv(text);
  if (more) keep(more);
  return Boolean(more);
}

export function clearRuns() {
  remember(kRuns, '[]');
  loadRuns();
}
