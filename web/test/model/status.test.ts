// What the recorder's status means: what is wrong stands out, what is right stays quiet.
import assert from 'node:assert/strict';
import test from 'node:test';
import {disk, kCards, kSummary, shownOf, signal, type Shown} from '../../src/model/status';
import {kReplies} from '../../src/recorder/replies';

const tone = (shown: Shown) => 'tone' in shown ? shown.tone : '';

test('a signal has bars of five; weak and unknown ones stand out', () => {
  const rows: [string, number | null, string][] = [
    ['0', 0, 'warn'], ['1', 1, 'warn'], ['6', 1, 'warn'], ['7', 2, ''], ['31', 5, ''],
    ['32', 2, ''], ['78', 4, ''], ['100', 5, ''], ['250', 5, ''], ['99', null, 'warn'],
    ['-1', null, 'warn'],
  ];
  for (const [value, bars, wanted] of rows) {
    const shown = signal(value);
    assert.equal(shown.kind === 'signal' ? shown.bars : null, bars, value);
    assert.equal(tone(shown), wanted, value);
  }
});

test('a disk tells how full it is, where its text is understood', () => {
  const used = (size: string) => {
    const shown = disk('1', size);
    return shown.kind === 'disk' && shown.used !== null ? Math.round(shown.used * 100) : shown.kind;
  };
  const rows: [string, number | string][] = [
    ['931.5GB/412.7GB', 56], ['1TB/500GB', 50], ['100GB/100GB', 0], ['100GB/0GB', 100],
    ['100GB/200GB', 'text'], ['0GB/0GB', 'text'], ['full', 'text'], ['', 'text'], ['1GB', 'text'],
  ];
  for (const [size, percent] of rows) assert.equal(used(size), percent, size);
  assert.equal(disk('0', '931.5GB/412.7GB').kind, 'words');
  assert.equal(tone(disk('1', '100GB/4GB')), 'warn');
  assert.equal(tone(disk('1', '100GB/6GB')), '');
});

test('every row takes what the service tells, and an empty status breaks none', () => {
  const told = new Set(kReplies.get_SystemInfo.split(' ').map((row) =>
    row.replace(/^.*\//, '').replace(/[=:].*$/, '')));
  const rows = [...kSummary, ...kCards.flatMap(([, list]) => list)];
  assert.ok(rows.length > 20);
  for (const row of rows) {
    for (const key of row.keys) assert.ok(told.has(key), key);
    assert.ok(shownOf(row, {}).kind);
  }
});

test('inputs are one each; what is no row of digits is shown as it is', () => {
  const row = kCards.find(([id]) => id === 'io')![1][0]!;
  assert.deepEqual(shownOf(row, {strFD_IOStatus: '101'}),
      {kind: 'inputs', states: [true, false, true]});
  assert.equal(shownOf(row, {strFD_IOStatus: 'n/a'}).kind, 'text');
});
