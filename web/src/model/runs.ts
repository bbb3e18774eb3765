// What was applied where: a run for each recorder, and the list as a table for spreadsheets.
import type {SaveEnd} from './save';
import type {Line, Took} from './import';

export interface Run {
  at: string;  // "2026-01-31 18:30:00"
  number: string;  // of the recorder
  plate: string;
  where: string;  // its address
  template: string;
  action: 'apply' | 'restore';
  end: SaveEnd;
  taken: number;
  same: number;  // held before
  left: number;  // left out by the user
  kept: string;  // paths of what it did not take
}

type Column = keyof Run;
export const kColumns: readonly Column[] = ['at', 'number', 'plate', 'where', 'template', 'action',
  'end', 'taken', 'same', 'left', 'kept'];
const kCounts: readonly Column[] = ['taken', 'same', 'left'];
const kEnds: Record<SaveEnd, true> = {applied: true, partly: true, unchanged: true, refused: true,
  deviceSilent: true, serviceSilent: true, lost: true, moved: true};
export const kMostRuns = 500;  // that a browser keeps

export const kNotTaken: readonly Took[] = ['kept', 'other', 'absent', 'unknown'];

const count = (lines: Line[], wanted: Took) => lines.filter(({took}) => took === wanted).length;

export const countsOf = (lines: Line[]): Pick<Run, 'taken' | 'same' | 'left' | 'kept'> => ({
  taken: count(lines, 'taken'), same: count(lines, 'same'), left: count(lines, 'left'),
  kept: lines.filter(({took}) => kNotTaken.includes(took)).map(({path}) => path).join(' '),
});

export function isRun(value: unknown): value is Run {
  if (typeof value !== 'object' || !value) return false;
  const run = value as Record<string, unknown>;
  return kColumns.every((name) =>
    kCounts.includes(name) ? Number.isInteger(run[name]) : typeof run[name] === 'string') &&
    String(run.end) in kEnds && (run.action === 'apply' || run.action === 'restore');
}

const keyOf = ({at, number, template, action, end}: Run) =>
  [at, number, template, action, end].join(' ');

// Together, each once, the latest first.
export function joinRuns(known: readonly Run[], more: readonly Run[]): Run[] {
  const all = new Map([...known, ...more].map((run) => [keyOf(run), run]));
  return [...all.values()].sort((a, b) => a.at < b.at ? 1 : a.at > b.at ? -1 : 0);
}

// Spreadsheets calculate what begins like a formula, wide signs included; a quote makes it a text.
const kFormula = /^\s*[-=+@＝＋－＠]|^[\t\r\n]/;
const cell = (text: string) =>
  `"${(kFormula.test(text) ? `'${text}` : text).replace(/"/g, '""')}"`;

// With the mark that spreadsheets know UTF-8 by.
export function printCsv(head: string[], runs: readonly Run[]): string {
  const rows = runs.map((run) => kColumns.map((name) => String(run[name])));
  return `\ufeff${[head, ...rows].map((row) => `${row.map(cell).join(',')}\r\n`).join('')}`;
}

const kCell = /(?:"((?:[^"]|"")*)"|([^",;\r\n]*))([,;]|\r?\n|$)/y;

function readCells(text: string): string[][] {
  const rows: string[][] = [[]];
  kCell.lastIndex = 0;
  while (kCell.lastIndex < text.length) {
    const match = kCell.exec(text);
    if (!match) return [];
    const value = match[1] === undefined ? match[2] || '' : match[1].replace(/""/g, '"');
    rows[rows.length - 1]!.push(value.replace(/^'(?=\s*[-=+@＝＋－＠]|[\t\r\n])/, ''));
    if (match[3] !== ',' && match[3] !== ';') rows.push([]);
  }
  return rows.filter((row) => row.length > 1);
}

// The runs of such a table, whatever language its head is in; null when it is none.
export function readCsv(text: string): Run[] | null {
  const [, ...rows] = readCells(text.replace(/^\ufeff/, ''));
  const runs = rows.map((row) => {
    const run: Record<string, unknown> = {};
    kColumns.forEach((name, i) => {
      run[name] = kCounts.includes(name) ? Number(row[i]) : row[i];
    });
    return run;
  });
  return runs.length && runs.every(isRun) ? runs as unknown as Run[] : null;
}
