// Compares a file with the recorder: what an import would change, and what to leave out by default.
import type {Settings} from '../recorder/config';
import {identifies, isLive, isStatus} from './schema';

// `from` is null where the recorder lacks a setting of the file.
export interface ImportRow { path: string; from: string | null; to: string; chosen: boolean }

export const kDeviceNo = 'stBaseInfo/strFD_DeviceNo';

// What the sign-in compares with. Whoever sets it without knowing locks himself out.
export const kSignInPassword = 'stUserSec/stCustomUser/USER_0/strFD_UserPWD';

const heldOf = (settings: Settings, path: string): string | null => {
  const held = settings.get(path);
  return held === undefined ? null : held;
};

// The file's device number when it is not this recorder's.
export function foreignNumber(now: Settings, file: Settings): string | null {
  const number = file.get(kDeviceNo);
  return number && number !== now.get(kDeviceNo) ? number : null;
}

// What the recorder has and the file lacks does not change. What the user chose before stays chosen.
export function compareFile(now: Settings, file: Settings, seen: ImportRow[] = []): ImportRow[] {
  const foreign = foreignNumber(now, file) !== null;
  const choices = new Map(seen.map(({path, chosen}) => [path, chosen]));
  const rows: ImportRow[] = [];
  for (const [path, to] of file) {
    const from = heldOf(now, path);
    if (isStatus(path) || from === to) continue;
    const byHand = isLive(path) || path === kSignInPassword || foreign && identifies(path);
    const choice = choices.get(path);
    rows.push({path, from, to, chosen: choice === undefined ? !byHand : choice});
  }
  return rows;
}

// The chosen rows whose value on the recorder is not the one that the user has seen.
export const changedSince = (rows: ImportRow[], now: Settings): string[] =>
  rows.filter(({path, from, chosen}) => chosen && !isLive(path) && heldOf(now, path) !== from)
      .map(({path}) => path);

// What became of a setting of a file: the recorder held it already, took it, kept its own value
// instead, holds a third one, has no such setting, was not asked, or did not tell.
export type Took = 'same' | 'taken' | 'kept' | 'other' | 'absent' | 'left' | 'unknown';

// `now` is what the recorder holds: null when it lacks the setting, undefined when it was not read.
export interface Line {
  path: string;
  from: string | null;
  to: string;
  now: string | null | undefined;
  took: Took;
}

function tookOf({from, to, chosen}: ImportRow, now: Line['now']): Took {
  if (!chosen) return 'left';
  if (now === undefined) return 'unknown';
  if (now === null) return 'absent';
  return now === to ? 'taken' : now === from ? 'kept' : 'other';
}

// Every setting of a file after its import; `after` is null when it could not be read back.
export function linesOf(file: Settings, rows: ImportRow[], after: Settings | null): Line[] {
  const compared = new Map(rows.map((row) => [row.path, row]));
  const lines: Line[] = [];
  for (const [path, to] of file) {
    if (isStatus(path)) continue;
    const row = compared.get(path);
    const now = after ? heldOf(after, path) : undefined;
    lines.push({path, to, now, from: row ? row.from : to, took: row ? tookOf(row, now) : 'same'});
  }
  return lines;
}

export const sectionOf = (path: string) => path.split('/')[0] || '';

export const chosenOf = (rows: ImportRow[]): [string, string][] =>
  rows.filter(({chosen}) => chosen).map(({path, to}) => [path, to]);
