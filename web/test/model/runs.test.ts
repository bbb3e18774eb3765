// The list of what was applied where: what a line of a file became, and the list as a table.
import assert from 'node:assert/strict';
import test from 'node:test';
import {compareFile, linesOf} from '../../src/model/import';
import {countsOf, isRun, joinRuns, kColumns, printCsv, readCsv, type Run} from '../../src/model/runs';

const run = (more: Partial<Run> = {}): Run => ({at: '2026-01-31 18:30:00', number: '80012345',
  plate: '粤B12345', where: '192.168.1.88', template: 'depot.xml', action: 'apply',
  end: 'applied', taken: 2, same: 1, left: 0, kept: '', ...more});

test('each line of a file says what the recorder made of it', () => {
  const now = new Map([['a/b', '1'], ['a/c', '1'], ['a/d', '1'], ['a/e', '1'],
    ['stVersion/strAppVer', '1']]);
  const file = new Map([['a/b', '1'], ['a/c', '2'], ['a/d', '2'], ['a/e', '2'],
    ['stVersion/strAppVer', '2']]);
  const rows = compareFile(now, file)
      .map((row) => row.path === 'a/e' ? {...row, chosen: false} : row);
  const after = new Map([...now, ['a/c', '2']]);
  const lines = linesOf(file, rows, after);
  assert.deepEqual(lines.map(({path, from, took}) => [path, from, took]), [
    ['a/b', '1', 'same'], ['a/c', '1', 'taken'], ['a/d', '1', 'kept'], ['a/e', '1', 'left']]);
  assert.deepEqual(countsOf(lines), {taken: 1, same: 1, left: 1, kept: 'a/d'});
  const others = linesOf(file, rows, new Map([['a/b', '1'], ['a/c', '3']]));
  assert.equal(countsOf(others).kept, 'a/c a/d');
  assert.deepEqual(linesOf(file, rows, null).map(({took}) => took),
      ['same', 'unknown', 'unknown', 'left']);
});

test('no cell of the table begins like a formula', () => {
  const evil = ['=1+1', '+1', '-1', '@a', '＝1', ' =1', '\t=1', '\r=1', '"=1'];
  for (const plate of evil) {
    const [, row = ''] = printCsv([...kColumns], [run({plate})]).split('\r\n"');
    const cell = row.split('","')[2] || '';
    assert.ok(!/^\s*[-=+@＝＋－＠]/.test(cell), JSON.stringify([plate, cell]));
  }
});

test('the table is read as it was written, whatever stands in it', () => {
  const runs = [run(), run({number: '2', plate: '=cmd"|"', template: 'a,b;\r\nc.xml', kept: 'a/b c/d'}),
    run({number: '3', plate: '-', end: 'partly', action: 'restore', left: 12})];
  assert.deepEqual(readCsv(printCsv(['时间', '=a'], runs)), runs);
  assert.ok(printCsv([], runs).startsWith('\ufeff'));
});

test('a file that is no such table is refused', () => {
  const good = printCsv([...kColumns], [run()]);
  assert.ok(readCsv(good));
  for (const text of ['', 'a,b', '<VariCfgSec/>', printCsv([...kColumns], []), '"at"\r\n"1","2"\r\n',
    good.replace('"applied"', '"done"'), good.replace('"2"', '"two"'), good.slice(0, -12)])
    assert.equal(readCsv(text), null, text);
});

test('lists join without repetition or loss, the latest first', () => {
  const early = run();
  const late = run({at: '2026-02-01 08:00:00', number: '80012346'});
  assert.deepEqual(joinRuns([early], [late, {...early}]), [late, early]);
  const many = Array.from({length: 600}, (_, i) => run({number: String(i)}));
  assert.equal(joinRuns(many, [late]).length, 601);
  assert.deepEqual(joinRuns(many, [late])[0], late);
});

test('what a browser kept is taken only when it is a run', () => {
  assert.ok(isRun(run()));
  for (const wrong of [null, 1, [], {}, {...run(), taken: '2'}, {...run(), end: 'done'},
    {...run(), action: 'x'}, {...run(), kept: null}]) assert.ok(!isRun(wrong), JSON.stringify(wrong));
});
