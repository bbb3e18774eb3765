// Exports the configuration to a file and imports it. An import sends only the selected settings.
import {clockText} from '../model/clock';
import {check} from '../model/checks';
import {changedSince, chosenOf, compareFile, foreignNumber, kDeviceNo, kSignInPassword,
  linesOf, type ImportRow} from '../model/import';
import {save, type SaveEnd} from '../model/save';
import {kNewPassword} from '../model/sections';
import {configOf, fetchConfig, openFile, printFile, printMessage, type Settings}
  from '../recorder/config';
import {Fault, kindOf} from '../recorder/fault';
import {sendConfig} from '../recorder/wire';
import {askUser} from './dialog';
import {throughRestart} from './health';
import {followTo, kLocalIp, newOrigin, sendMove} from './move';
import {endOf} from './saving';
import {expire, renew} from './session';
import {get, set, type Purpose, type Step, type Transfer} from './store';

const kTurn = {group: 'send', urgent: true};

const patch = (part: Partial<Transfer>) => set({transfer: {...get().transfer, ...part}});
const step = (name: Step | null, where?: string) =>
  patch({step: name && {name, since: Date.now(), where}});

async function config() {
  const {result, root, settings} = await fetchConfig(kTurn);
  if (!root || !settings) throw new Fault(result ? 'unreadable' : 'deviceSilent');
  return {root, settings};
}

// The file's name and text, to pass to the browser.
export async function exportFile(offer: (name: string, text: string) => void) {
  if (get().transfer.exporting) return;
  patch({exporting: true, exported: null});
  try {
    const {root, settings} = await config();
    const number = (settings.get(kDeviceNo) || '').replace(/[^\w-]/g, '');
    const name = `recorder-${number}-${clockText(new Date()).slice(0, 10)}.xml`;
    offer(name, printFile(root));
    patch({exported: {name}});
  } catch (caught) {
    patch({exported: {why: kindOf(caught)}});
  } finally {
    patch({exporting: false});
  }
}

export async function chooseFile(name: string, bytes: Uint8Array, purpose: Purpose = 'file') {
  if (get().transfer.step) return;
  patch({name, purpose, error: null, rows: [], changed: [], foreign: null, end: null, moving: null,
    file: null, lines: []});
  const file = openFile(bytes);
  if ('error' in file) return patch({error: file});
  step('compare');
  try {
    const {settings} = await config();
    const rows = compareFile(settings, file.settings);
    patch({rows, file: file.settings, foreign: foreignNumber(settings, file.settings),
      ...(rows.length ? {} : {end: {end: 'unchanged', rows: [], known: 'read'},
        lines: linesOf(file.settings, [], settings)})});
  } catch (caught) {
    patch({error: {error: 'read', why: kindOf(caught)}});
  } finally {
    step(null);
  }
}

export function chooseRows(paths: string[], chosen: boolean) {
  const {rows, step: busy} = get().transfer;
  if (busy) return;
  patch({error: null, rows: rows.map((row) => paths.includes(row.path) ? {...row, chosen} : row)});
}

function settle(wanted: ImportRow[], end: SaveEnd, after: Settings | null) {
  const left = after ? wanted.filter(({path, to}) => after.get(path) !== to)
      .map((row) => ({...row, from: row.to, to: after.get(row.path) || ''})) : [];
  const former: [string, string][] = [];
  for (const {path, from} of wanted) if (from !== null) former.push([path, from]);
  const taken = end === 'applied' || end === 'partly';
  const {file, rows} = get().transfer;
  patch({
    lines: file ? linesOf(file, rows, after) : [],
    end: {end, rows: end === 'partly' ? left : [], known: after ? 'read' : 'unknown'},
    ...(taken ? {rows: [], foreign: null, former: new Map(former)} : {}),
  });
}

async function sendAndRead(rows: ImportRow[], before: Settings) {
  const wanted = rows.filter(({chosen}) => chosen);
  const message = printMessage(configOf(chosenOf(rows)));
  const send = () => throughRestart(() => sendConfig(message));
  const load = async () => (await config()).settings;
  const goal: Settings = new Map([...before, ...chosenOf(rows)]);
  const origin = newOrigin(before.get(kLocalIp), goal.get(kLocalIp));
  if (!origin) {
    const same = (a: Settings, b: Settings) =>
      wanted.every(({path}) => a.get(path) === b.get(path));
    const {end, after} =
        await save<Settings>({load, send, same, before, sent: goal, progress: step});
    return settle(wanted, end, after);
  }
  step('sending');
  const still = async () => ({[kLocalIp]: (await load()).get(kLocalIp) || ''});
  const moved = await sendMove(send, still, before.get(kLocalIp) || '');
  if (moved !== 'waiting') return settle(wanted, moved, moved === 'deviceSilent' ? null : before);
  step('moving', origin);
  patch({moving: {where: origin, silent: false}});
  if (!await followTo(origin)) patch({moving: {where: origin, silent: true}});
}

// The rows against what the recorder holds by now. False when the user must look again.
function stillSeen(now: Settings): boolean {
  const {rows, file} = get().transfer;
  const changed = changedSince(rows, now);
  if (!changed.length || !file) return true;
  const again = compareFile(now, file, rows);
  patch({rows: again, ...(again.length ? {changed}
    : {end: {end: 'unchanged', rows: [], known: 'read'}, lines: linesOf(file, [], now)})});
  return false;
}

// Whether nobody could sign in any more.
function locksOut(chosen: [string, string][]): boolean {
  const value = new Map(chosen).get(kSignInPassword);
  const problem = value === undefined ? null : check(kNewPassword, {fresh: value}, {});
  patch({moving: null, changed: [], error: problem && {error: 'password', problem}});
  return Boolean(problem);
}

// Asks, then sends the selection. False when the answer is no.
async function askAndSend(): Promise<boolean> {
  const {rows, step: busy} = get().transfer;
  const chosen = chosenOf(rows);
  if (busy || !chosen.length || locksOut(chosen)) return true;
  const from = rows.find(({path}) => path === kLocalIp);
  const move = newOrigin((from && from.from) || undefined, new Map(chosen).get(kLocalIp));
  if (!await askUser({kind: 'import', count: chosen.length, move})) return false;
  patch({end: null, lines: []});
  try {
    step('session');
    await renew();
    step('compare');
    const {settings} = await config();
    if (stillSeen(settings)) await sendAndRead(rows, settings);
  } catch (caught) {
    const kind = kindOf(caught);
    if (kind === 'refused') expire();
    else patch({end: {end: endOf(kind), rows: [], known: 'unsent'}});
  } finally {
    step(null);
  }
  return true;
}

export const importRows = async () => { await askAndSend(); };

// The values that an accepted import replaced, to compare and send like a file.
export async function restoreImported() {
  const {former, file, end, step: busy} = get().transfer;
  if (!former || busy) return;
  patch({moving: null, step: {name: 'compare', since: Date.now()}});
  try {
    const rows = compareFile((await config()).settings, former);
    patch({rows: rows.map((row) => ({...row, chosen: true})), file: former, end: null, former: null});
  } catch (caught) {
    patch({error: {error: 'read', why: kindOf(caught)}});
  } finally {
    step(null);
  }
  if (!await askAndSend()) patch({rows: [], file, end, former});
}
