import assert from 'node:assert/strict';
import test from 'node:test';
import {axisOf, heightOf, kPlots, kSpanMs, middleOf, piecesOf, rangeOf, readingOf, shownAt, stopAt,
  stopsOf, withEntry, type Entry} from '../../src/model/history';
import {kReplies} from '../../src/recorder/replies';

const kMinute = 60000;
const kFitted = {ucFD_GNetExist: '1', ucFD_WifiExist: '1'};
const reading = (at: number, values: Record<string, string> = {}) =>
  readingOf(at, {...kFitted, uiFD_GNetSignal: '31', ucFD_NetStatus: '1', ...values});
const silence = (at: number, silent = true): Entry => ({at, silent});
const collect = (entries: Entry[]) => entries.reduce<Entry[]>(withEntry, []);
const told = (entries: Entry[], now: number) =>
  stopsOf(entries, now).map(({kind, from, to}) => `${kind} ${from}-${to}`);
const lineOf = (plot: number, line: number) => kPlots[plot]!.rows[line]!;
const mobile = lineOf(0, 0);
const network = lineOf(2, 0);

test('every line asks for keys that the reply has', () => {
  let lines = 0;
  for (const {rows} of kPlots) {
    for (const {keys} of rows) {
      lines++;
      for (const key of keys) assert.match(kReplies.get_SystemInfo, new RegExp(`\\b${key}\\b`));
    }
  }
  assert.equal(lines, 10);
});

test('thirty minutes are kept, and the one before them', () => {
  const polls = Array.from({length: 1000}, (_, i) => reading(i * 5000));
  const kept = collect(polls);
  const end = 999 * 5000;
  assert.equal(kept[kept.length - 1]!.at, end);
  assert.deepEqual(kept.filter(({at}) => at <= end - kSpanMs).length, 1);
  assert.equal(kept.length, 361);
});

test('the memory is bounded, however often is asked', () => {
  const often = collect(Array.from({length: 20000}, (_, i) => reading(i * 100)));
  assert.ok(often.length < 470, String(often.length));
  assert.equal(often[often.length - 1]!.at, 1999900);
  const flapping = collect(Array.from({length: 20000}, (_, i) =>
    i % 2 ? silence(i * 10) : reading(i * 10)));
  assert.ok(flapping.length <= 600, String(flapping.length));
});

test('only what the plots need is kept', () => {
  const {values} = readingOf(0, {...kFitted, ucFD_SimIMSI: '46000', uiFD_WifiSignal: '78'}) as
      {values: Record<string, string>};
  assert.equal(values.uiFD_WifiSignal, '78');
  assert.ok(!('ucFD_SimIMSI' in values));
});

test('readings close together are joined; a silence begins with the last answer', () => {
  const rows: [Entry[], number, string[]][] = [
    [[reading(0), reading(5000)], 6000, ['reading 0-0', 'reading 5000-5000']],
    [[reading(0), reading(20000)], 21000, ['reading 0-0', 'reading 20000-20000']],
    [[reading(0), reading(20001)], 21000,
      ['reading 0-0', 'unread 0-20001', 'reading 20001-20001']],
    [[reading(0), reading(60000)], 61000,
      ['reading 0-0', 'unread 0-60000', 'reading 60000-60000']],
    [[reading(0)], 20001, ['reading 0-0', 'unread 0-20001']],
    [[reading(0), silence(17000)], 30000, ['reading 0-0', 'silent 0-30000']],
    [[reading(0), silence(60000)], 70000, ['reading 0-0', 'unread 0-60000', 'silent 60000-70000']],
    [[reading(0), silence(10000), reading(30000)], 31000,
      ['reading 0-0', 'silent 0-30000', 'reading 30000-30000']],
    [[silence(0), silence(10000, false)], 90000, ['silent 0-10000', 'unread 10000-90000']],
    [[], 5000, []],
  ];
  for (const [entries, now, stops] of rows) assert.deepEqual(told(entries, now), stops);
});

test('a reading soon after the end of a silence is its end', () => {
  const entries = collect([reading(0), silence(10000), silence(20000, false), reading(20300)]);
  assert.deepEqual(told(entries, 21000),
      ['reading 0-0', 'silent 0-20300', 'reading 20300-20300']);
});

test('a silence of an hour fills the span', () => {
  const entries = collect([reading(0), silence(5000)]);
  const now = 60 * kMinute;
  assert.deepEqual(told(entries, now), [`silent ${now - kSpanMs}-${now}`]);
});

test('what a line shows has a height, what is not known has none', () => {
  const height = (line: typeof mobile, values: Record<string, string>) =>
    heightOf(shownAt(line, stopsOf([reading(0, values)], 1)[0]));
  const rows: [typeof mobile, Record<string, string>, number | null][] = [
    [mobile, {uiFD_GNetSignal: '31'}, 1], [mobile, {uiFD_GNetSignal: '0'}, 0],
    [mobile, {uiFD_GNetSignal: '50'}, 0.5], [mobile, {uiFD_GNetSignal: '99'}, null],
    [mobile, {ucFD_GNetExist: '0'}, null],
    [lineOf(1, 0), {disk1Exist: '1', disk1Size: '100GB/25GB'}, 0.75],
    [lineOf(1, 0), {disk1Exist: '0', disk1Size: ''}, null],
    [network, {ucFD_NetStatus: '1'}, 1], [network, {ucFD_NetStatus: '0'}, 0],
  ];
  for (const [line, values, expected] of rows)
    assert.equal(height(line, values), expected, JSON.stringify(values));
});

test('a line is in pieces where nothing is known', () => {
  const entries = [reading(0), reading(5000), reading(10000, {uiFD_GNetSignal: '99'}),
    reading(15000), silence(20000), reading(30000), reading(90000)];
  const pieces = piecesOf(mobile, stopsOf(entries, 91000));
  assert.deepEqual(pieces.map((piece) => piece.map(({at}) => at)),
      [[0, 5000], [15000], [30000], [90000]]);
});

test('the range of a line, and how often it fell', () => {
  const entries = ['1', '0', '0', '1', '0'].map((state, i) =>
    reading(i * 5000, {ucFD_NetStatus: state, uiFD_GNetSignal: String(20 - i)}));
  const stops = stopsOf(entries, 21000);
  assert.equal(rangeOf(network, stops)!.falls, 2);
  const {least, most} = rangeOf(mobile, stops)!;
  assert.deepEqual([least, most].map((shown) => 'value' in shown && shown.value), ['16', '20']);
  assert.equal(rangeOf(lineOf(1, 1), stops), null);
});

test('a moment is told by the gap that it lies in, otherwise by the nearest reading', () => {
  const stops = stopsOf([reading(0), reading(5000), reading(60000), silence(65000)], 80000);
  const rows: [number, string][] = [[-9, 'reading 0'], [2400, 'reading 0'], [2600, 'reading 5000'],
    [5000, 'reading 5000'], [5001, 'unread 5000'], [60000, 'reading 60000'], [70000, 'silent 60000'],
    [99999, 'reading 60000']];
  for (const [at, expected] of rows) {
    const stop = stopAt(stops, at)!;
    assert.equal(`${stop.kind} ${stop.from}`, expected, String(at));
  }
  for (const stop of stops) assert.equal(stopAt(stops, middleOf(stop)), stop);
  assert.equal(stopAt([], 0), undefined);
});

test('the axis is as long as it has to be', () => {
  const rows: [number, number][] = [[0, 5], [5, 5], [6, 10], [12, 15], [16, 30], [30, 30]];
  for (const [age, minutes] of rows) {
    const now = 100 * kMinute;
    assert.equal(axisOf(stopsOf([reading(now - age * kMinute)], now), now), minutes * kMinute);
  }
});
