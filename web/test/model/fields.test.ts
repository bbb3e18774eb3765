import assert from 'node:assert/strict';
import test from 'node:test';
import {changesOf, equal, meant, onOff, port, text, type Field} from '../../src/model/fields';

const a = text('a', 'password', 31);
const n = port('n', 'password');
const s = onOff('s', 'password');

test('a value that equals the recorder’s is no change', () => {
  const rows: [Field, string, string, boolean][] = [
    [a, 'x', 'x', true], [a, 'x', 'x ', false], [n, '80', '080', true], [n, '80', '81', false],
    [s, '1', '3', true], [s, '0', '', true], [s, '0', '2', false],  // a switch above 1 is on
  ];
  for (const [field, one, other, same] of rows)
    assert.equal(equal(field, one, other), same, `${field.kind} ${one} ${other}`);
});

test('changes are what differs, applies and does not move by itself', () => {
  const fields: Field[] = [a, {...n, when: (values) => values.a !== 'off'},
    {path: 'c', kind: 'clock', label: 'password', live: true}];
  const from = {a: 'x', n: '1', c: '10:00'};
  const paths = (to: Record<string, string>) =>
    changesOf(fields, from, to).map(({field}) => field.path);
  assert.deepEqual(paths({a: 'y', n: '2', c: '10:01'}), ['a', 'n']);
  assert.deepEqual(paths({a: 'off', n: '2'}), ['a']);
  assert.deepEqual(paths(from), []);
});

test('blanks around numbers and addresses are not meant', () => {
  assert.equal(meant(n, ' 80 '), '80');
  assert.equal(meant(a, ' x '), ' x ');
});
