// Which rows of a section of settings are drawn.
import assert from 'node:assert/strict';
import test from 'node:test';
import {groupsOf} from '../../src/model/everyField';
import type {Field} from '../../src/model/fields';
import {set} from '../../src/state/store';
import {drawnOf, useMarked} from '../../src/views/settings/Groups';
import {drawn as drawView, drawnAnew} from './drawn';

const fields = Array.from({length: 60}, (_, i): Field =>
  ({path: `stA/a${i}`, kind: 'text', label: () => `a${i}`}));
const [group] = groupsOf(fields);
const drawn = (most: number, ...marked: string[]) =>
  drawnOf(group!, most, new Set(marked)).map(({path}) => path);

test('a field that is marked is drawn, folded or beyond the first rows', () => {
  assert.deepEqual(drawn(0), []);
  assert.deepEqual(drawn(0, 'stA/a50', 'stB/a1'), ['stA/a50']);
  assert.deepEqual(drawn(2, 'stA/a50', 'stA/a1'), ['stA/a0', 'stA/a1', 'stA/a50']);
  assert.equal(drawn(40).length, 40);
});

test('what was marked stays so when it is mended, until the next search', async () => {
  let [query, paths, marked] = ['', ['stA/a1'], ['']];
  drawView(() => {
    marked = [...useMarked(query, paths)];
    return null;
  }, {});
  for (const [asked, wrong, left] of [['', [], ['stA/a1']], ['', ['stA/a2'], ['stA/a1', 'stA/a2']],
    ['apn', ['stA/a2'], ['stA/a2']], ['', [], []]] as [string, string[], string[]][]) {
    [query, paths] = [asked, wrong];
    set({});
    await drawnAnew();
    assert.deepEqual(marked, left, `${asked} ${wrong}`);
  }
});
