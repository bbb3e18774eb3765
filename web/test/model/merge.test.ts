import assert from 'node:assert/strict';
import test from 'node:test';
import {onOff, text} from '../../src/model/fields';
import {merge} from '../../src/model/merge';

const fields = [text('a', 'password', 31), text('b', 'password', 31), onOff('s', 'password')];
const base = {a: '1', b: '2', s: '3'};

test('nothing changed elsewhere: what was typed stays', () => {
  assert.deepEqual(merge(fields, base, base, {a: 'x'}),
      {typed: {a: 'x'}, conflicts: {}, elsewhere: []});
});

test('what the recorder holds already is no longer typed', () => {
  const {typed, conflicts} = merge(fields, base, {...base, a: 'x'}, {a: 'x'});
  assert.deepEqual([typed, conflicts], [{}, {}]);
});

test('the very field that was typed changed elsewhere: neither is lost', () => {
  const {typed, conflicts} = merge(fields, base, {...base, a: 'theirs'}, {a: 'mine'});
  assert.deepEqual([typed, conflicts], [{a: 'mine'}, {a: 'theirs'}]);
});

test('another field changed elsewhere is told', () => {
  const {typed, conflicts, elsewhere} = merge(fields, base, {...base, b: 'new'}, {a: 'x'});
  assert.deepEqual([typed, conflicts], [{a: 'x'}, {}]);
  assert.deepEqual(elsewhere.map(({field, from, to}) => [field.path, from, to]), [['b', '2', 'new']]);
});

test('a field whose base is not known, as of a secret in a draft, is no conflict', () => {
  const {typed, conflicts} = merge(fields, {b: '2'}, {...base, a: 'theirs'}, {a: 'mine'});
  assert.deepEqual([typed, conflicts], [{a: 'mine'}, {}]);
});

test('a switch that went from one value above 0 to another has not changed', () => {
  assert.deepEqual(merge(fields, base, {...base, s: '1'}, {}).elsewhere, []);
});
