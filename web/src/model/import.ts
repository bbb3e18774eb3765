// Compares a file with the recorder: what an import would change, and what to leave out by default.
import type {Settings} from '../recorder/config';

// `from` is null where the recorder lacks a setting of the file.
export interface ImportRow { path: string; from: string | null; to: string; chosen: boolean }

export const kDeviceNo = 'stBaseInfo/strFD_DeviceNo';

// What a recorder reports about itself is not a setting.
const kNoSetting = /^(?:stSystemInfo|stVersion)\//;
// Changes by itself: an old value would set it back.
const kLive = /^(?:stBaseInfo\/(?:strFD_CurTime|ucFD_NowIsDst)|stLockOfPassword\/.*)$/;
// Identifies this recorder, its vehicle or its place in the network.
const kIdentity = new RegExp('/(?:strFD_(?:DeviceNo|DeviceNum|LicensePlate|Phonenumber|' +
    'Authentication|TerminalID|CarVIN|DeviceId|DeviceUser|LensId|AudioInId|AlarmInId|Mac)|' +
    'uiFD_(?:LocalIp|IP|NetMask|GateWay|DNS))$');

export const identifies = (path: string) => kIdentity.test(path);
export const isStatus = (path: string) => kNoSetting.test(path);
export const isLive = (path: string) => kLive.test(path);

// The file's device number when it is not this recorder's.
export function foreignNumber(now: Settings, file: Settings): string | null {
  const number = file.get(kDeviceNo);
  return number && number !== now.get(kDeviceNo) ? number : null;
}

// What the recorder has and the file lacks does not change.
export function compareFile(now: Settings, file: Settings): ImportRow[] {
  const foreign = foreignNumber(now, file) !== null;
  const rows: ImportRow[] = [];
  for (const [path, to] of file) {
    const held = now.get(path);
    const from = held === undefined ? null : held;
    if (isStatus(path) || from === to) continue;
    rows.push({path, from, to, chosen: !isLive(path) && !(foreign && identifies(path))});
  }
  return rows;
}

// What became of a setting of a file: the recorder held it already, took it, kept its own value
// instead, was not asked, or did not tell.
export type Took = 'same' | 'taken' | 'kept' | 'left' | 'unknown';
export interface Line { path: string; from: string | null; to: string; took: Took }

// Every setting of a file after its import; `after` is null when it could not be read back.
export function linesOf(file: Settings, rows: ImportRow[], after: Settings | null): Line[] {
  const compared = new Map(rows.map((row) => [row.path, row]));
  const took = (row: ImportRow | undefined, path: string, to: string): Took =>
    !row ? 'same' : !row.chosen ? 'left' : !after ? 'unknown'
      : after.get(path) === to ? 'taken' : 'kept';
  const lines: Line[] = [];
  for (const [path, to] of file) {
    if (isStatus(path)) continue;
    const row = compared.get(path);
    lines.push({path, to, from: row ? row.from : to, took: took(row, path, to)});
  }
  return lines;
}

export const sectionOf = (path: string) => path.split('/')[0] || '';

export const chosenOf = (rows: ImportRow[]): [string, string][] =>
  rows.filter(({chosen}) => chosen).map(({path, to}) => [path, to]);
