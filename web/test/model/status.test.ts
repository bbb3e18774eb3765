import assert from 'node:assert/strict';
import test from 'node:test';
import {disk, kCards, kSummary, shownOf, signal} from '../../src/model/status';
import {kReplies} from '../../src/recorder/replies';

test('a signal is bars of what modules count, or of a percentage', () => {
  const rows: [string, number, string][] = [['31', 5, ''], ['24', 4, ''], ['1', 1, 'warn'],
    ['0', 0, 'warn'], ['78', 4, ''], ['100', 5, ''], ['250', 5, '']];
  for (const [value, bars, tone] of rows)
    assert.deepEqual(signal(value), {kind: 'signal', bars, value, tone}, value);
  for (const value of ['99', '-1']) assert.equal(signal(value).kind, 'words', value);
});

test('a disk is a bar where its size says so, words otherwise', () => {
  const used = (size: string) => {
    const shown = disk('1', size);
    return shown.kind === 'disk' ? Math.round((shown.used || 0) * 100) : null;
  };
  const rows: [string, number | null][] = [['931.5GB/412.7GB', 56], ['1TB/500GB', 50],
    ['100 GB / 0 GB', 100], ['119.2GB', null], ['', null], ['50GB/100GB', null], ['0GB/0GB', null],
    ['a/b', null]];
  for (const [size, percent] of rows) assert.equal(used(size), percent, size);
  assert.equal(disk('0', '').kind, 'words');
  assert.deepEqual([disk('0', '', '1'), disk('0', '', '0')].map((shown) => 'tone' in shown && shown.tone),
      ['', 'bad']);
  const full = disk('1', '100GB/1GB');
  assert.equal('tone' in full && full.tone, 'warn');
});

test('every row asks for keys that the reply has', () => {
  const known = new Set([...kReplies.get_SystemInfo.matchAll(/(?:^|[ /])(?:(\w+)=)?(\w+)(?=:|\s|$)/g)]
      .map(([, alias, key]) => alias || key));
  const rows = [...kSummary, ...kCards.flatMap(([, list]) => list)];
  assert.ok(rows.length > 25);
  for (const row of rows) for (const key of row.keys) assert.ok(known.has(key), key);
});

test('what is wrong stands out, what is right does not', () => {
  const tone = (label: string, values: Record<string, string>) => {
    const row = [...kSummary, ...kCards.flatMap(([, list]) => list)].find((r) => r.label === label)!;
    const shown = shownOf(row, values);
    return 'tone' in shown ? shown.tone : null;
  };
  assert.equal(tone('platform.cms', {ucFD_CmsStatus: '0'}), 'warn');
  assert.equal(tone('platform.cms', {ucFD_CmsStatus: '1'}), '');
  assert.equal(tone('ignition', {ucFD_AccStatus: '0'}), '');
});
