// The last half hour of the status as entries in time, and what plots and readers need of them.
// Times come from a clock that only goes on; times of day are another's business.
//
//   reading  reading  reading      silence              reading
//   |--------|--------|            |////////////////////|--------> now
//                      unread: nobody asked, or the answer said nothing
import {disk, link, only, row, shownOf, signal, signalPart, type Row, type Shown} from './status';
import type {Values} from './fields';

export type Entry =
    | {at: number; values: Values}  // a reading
    | {at: number; silent: boolean};  // a silence begins, or has ended without a reading

export const kSpanMs = 30 * 60000;
const kLinkMs = 20000;  // what is further apart is not joined; an answer takes 12 s at most
const kCloseMs = 4000;  // readings of somebody who goes to and fro between pages
const kMostEntries = 600;  // whatever happens

export interface Plot { id: 'signals' | 'disks' | 'links'; rows: readonly Row[] }

const mobile = (inner: Row) => only('ucFD_GNetExist', inner);
const wifi = (inner: Row) => only('ucFD_WifiExist', inner);

// Each row is a line and its name.
export const kPlots: readonly Plot[] = [
  {id: 'signals', rows: [
    mobile(row('section.mobile', signal, 'uiFD_GNetSignal')),
    wifi(row('section.wifi', signal, 'uiFD_WifiSignal')),
  ]},
  {id: 'disks', rows: [
    row('disk.1', disk, 'disk1Exist', 'disk1Size'),
    row('disk.2', disk, 'disk2Exist', 'disk2Size'),
  ]},
  {id: 'links', rows: [
    row('page.network', link, 'ucFD_NetStatus'),
    mobile(row('section.mobile', link, 'ucFD_GNetDail')),
    wifi(row('section.wifi', link, 'ucFD_WifiDail')),
    row('platform.cms', link, 'ucFD_CmsStatus'),
    row('platform.jtt808', link, 'ucFD_JTT808Status'),
    row('platform.gb28181', link, 'ucFD_GB28181Status'),
  ]},
];

const kKept = new Set(['ucFD_GNetExist', 'ucFD_WifiExist']);
for (const {rows} of kPlots) for (const {keys} of rows) for (const key of keys) kKept.add(key);

// What of a status the history keeps.
export function readingOf(at: number, status: Values): Entry {
  const values: Values = {};
  kKept.forEach((key) => { values[key] = status[key] || ''; });
  return {at, values};
}

type Reading = Extract<Entry, {values: Values}>;
const isReading = (entry: Entry | undefined): entry is Reading =>
  Boolean(entry && 'values' in entry);
const isSilence = (entry: Entry | undefined) =>
  Boolean(entry && 'silent' in entry && entry.silent);

// Whether the last entry says nothing that the next one does not say as well.
function isSpare(before: Entry | undefined, last: Entry | undefined, next: Entry): boolean {
  if (!last || !isReading(next) || isSilence(last)) return false;
  if (!isReading(last)) return next.at - last.at < kCloseMs;
  return isReading(before) && last.at - before.at < kCloseMs;
}

// Adds an entry and drops those that are over. The last one before the span stays, because it may
// reach into it.
export function withEntry(entries: readonly Entry[], entry: Entry): Entry[] {
  const begin = entry.at - kSpanMs;
  const kept = entries.filter((_, i) => (entries[i + 1] || entry).at > begin)
      .slice(1 - kMostEntries);
  if (isSpare(kept[kept.length - 2], kept[kept.length - 1], entry)) kept.pop();
  return [...kept, entry];
}

// What is known of a stretch of time. A reading is a moment and has no length.
export type Stop =
    | {kind: 'reading'; from: number; to: number; values: Values}
    | {kind: 'silent' | 'unread'; from: number; to: number};

const isNear = (a: Entry, to: number) => to - a.at <= kLinkMs;

// The stretch after an entry, where it is not joined to what follows.
function gapAfter(entries: readonly Entry[], i: number, entry: Entry, to: number): Stop | null {
  const [before, next] = [entries[i - 1], entries[i + 1]];
  if (isReading(entry)) {
    const joined = isNear(entry, to) && (!next || isReading(next) || isSilence(next));
    return joined ? null : {kind: 'unread', from: entry.at, to};
  }
  if (!entry.silent) return {kind: 'unread', from: entry.at, to};
  // Told when an answer had not come: the silence began with the last one that came.
  const from = isReading(before) && isNear(before, entry.at) ? before.at : entry.at;
  return {kind: 'silent', from, to};
}

export function stopsOf(entries: readonly Entry[], now: number): Stop[] {
  const begin = now - kSpanMs;
  const stops: Stop[] = [];
  entries.forEach((entry, i) => {
    const next = entries[i + 1];
    if (isReading(entry) && entry.at >= begin)
      stops.push({kind: 'reading', from: entry.at, to: entry.at, values: entry.values});
    const gap = gapAfter(entries, i, entry, next ? next.at : now);
    const from = gap ? Math.max(gap.from, begin) : now;
    if (gap && gap.to > from) stops.push({...gap, from});
  });
  return stops;
}

export const middleOf = ({from, to}: Stop) => (from + to) / 2;

// The gap at a moment, otherwise the nearest reading.
export function stopAt(stops: readonly Stop[], at: number): Stop | undefined {
  const gap = stops.find(({kind, from, to}) => kind !== 'reading' && from < at && at < to);
  if (gap) return gap;
  let best: Stop | undefined;
  for (const stop of stops) {
    if (stop.kind !== 'reading') continue;
    if (!best || Math.abs(stop.from - at) < Math.abs(best.from - at)) best = stop;
  }
  return best || stops[stops.length - 1];
}

// What a line shows at a stop; null where it was not read, or there is nothing to read.
export const shownAt = (line: Row, stop: Stop | undefined): Shown | null =>
  stop && stop.kind === 'reading' && !(line.unless && line.unless(stop.values))
    ? shownOf(line, stop.values) : null;

// How high a line stands, 0 to 1; null where nothing is known.
export function heightOf(shown: Shown | null): number | null {
  if (!shown) return null;
  if (shown.kind === 'signal') return signalPart(shown.value);
  if (shown.kind === 'disk') return shown.used;
  if (shown.kind !== 'words') return null;
  return shown.words === 'status.online' ? 1 : shown.words === 'status.offline' ? 0 : null;
}

export interface Point { at: number; height: number; shown: Shown }

// The readings of a line, in pieces that are joined.
export function piecesOf(line: Row, stops: readonly Stop[]): Point[][] {
  const pieces: Point[][] = [];
  let joined = false;
  for (const stop of stops) {
    const shown = shownAt(line, stop);
    const height = heightOf(shown);
    if (shown && height !== null) {
      if (!joined) pieces.push([]);
      pieces[pieces.length - 1]!.push({at: stop.from, height, shown});
    }
    joined = height !== null;
  }
  return pieces;
}

// Where a line's readings lay, and how often it fell from the top to the ground.
export interface Range { least: Shown; most: Shown; falls: number }

export function rangeOf(line: Row, stops: readonly Stop[]): Range | null {
  const points = piecesOf(line, stops).reduce((all, piece) => [...all, ...piece], []);
  const sorted = [...points].sort((a, b) => a.height - b.height);
  const [lowest, highest] = [sorted[0], sorted[sorted.length - 1]];
  if (!lowest || !highest) return null;
  const falls = points.filter(({height}, i) =>
    height === 0 && i > 0 && points[i - 1]!.height === 1);
  return {least: lowest.shown, most: highest.shown, falls: falls.length};
}

// The smallest axis that holds everything: a few minutes fill the plot, too.
const kAxesMs = [5, 10, 15, 30].map((minutes) => minutes * 60000);
export function axisOf(stops: readonly Stop[], now: number): number {
  const age = stops[0] ? now - stops[0].from : 0;
  return kAxesMs.find((span) => age <= span) || kSpanMs;
}
