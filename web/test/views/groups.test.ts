// Which rows of a section of settings are drawn.
import '../state/page';
import assert from 'node:assert/strict';
import test from 'node:test';
import {groupsOf} from '../../src/model/everyField';
import type {Field} from '../../src/model/fields';
import {drawnOf} from '../../src/views/settings/Groups';

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
