// What a colleague changed while somebody typed: nothing of either is lost.
import assert from 'node:assert/strict';
import test from 'node:test';
import {changesOf, equal, isOn, meant, onOff, text, type Field, type Values}
  from '../../src/model/fields';
import {merge} from '../../src/model/merge';

const a = text('a', 'apn', 31);
const b = text('b', 'phoneNo', 23);
const flag = onOff('flag', 'dhcp');
const clock: Field = {path: 'clock', kind: 'clock', label: 'clock', live: true};
const fields = [a, b, flag, clock];
const base: Values = {a: '1', b: '2', flag: '1', clock: 'then'};

function merged(fresh: Values, typed: Values) {
  const {typed: left, conflicts, elsewhere} = merge(fields, base, {...base, ...fresh}, typed);
  return {typed: left, conflicts, elsewhere: elsewhere.map(({field, to}) => `${field.path} ${to}`)};
}

test('typed, changed elsewhere, both, or the same by both', () => {
  const rows: [Values, Values, ReturnType<typeof merged>][] = [
    [{}, {}, {typed: {}, conflicts: {}, elsewhere: []}],
    [{}, {a: 'x'}, {typed: {a: 'x'}, conflicts: {}, elsewhere: []}],
    [{b: 'y'}, {a: 'x'}, {typed: {a: 'x'}, conflicts: {}, elsewhere: ['b y']}],
    [{a: 'y'}, {a: 'x'}, {typed: {a: 'x'}, conflicts: {a: 'y'}, elsewhere: []}],
    [{a: 'x'}, {a: 'x'}, {typed: {}, conflicts: {}, elsewhere: []}],
    [{clock: 'now'}, {clock: 'mine'}, {typed: {clock: 'mine'}, conflicts: {}, elsewhere: []}],
    [{flag: '7'}, {}, {typed: {}, conflicts: {}, elsewhere: []}],
    [{flag: '0'}, {}, {typed: {}, conflicts: {}, elsewhere: ['flag 0']}],
    [{flag: '0'}, {flag: '0'}, {typed: {}, conflicts: {}, elsewhere: []}],
  ];
  for (const [fresh, typed, wanted] of rows)
    assert.deepEqual(merged(fresh, typed), wanted, JSON.stringify([fresh, typed]));
});

test('a switch is on above 0, whatever the number', () => {
  for (const value of ['1', '2', '255']) {
    assert.ok(isOn(value));
    assert.ok(equal(flag, value, '1'), value);
    assert.deepEqual(changesOf([flag], {flag: value}, {flag: '1'}), [], value);
    assert.equal(changesOf([flag], {flag: value}, {flag: '0'}).length, 1, value);
  }
  assert.ok(!isOn('0') && !isOn('') && !isOn(undefined));
});

test('numbers are compared as numbers, texts as they stand', () => {
  const number: Field = {path: 'n', kind: 'number', label: 'port'};
  assert.ok(equal(number, '07', '7'));
  assert.ok(!equal(a, '07', '7'));
  assert.ok(!equal(a, ' x', 'x'));
  assert.equal(meant(number, ' 7 '), '7');
  assert.equal(meant(a, ' x '), ' x ');
});

test('what does not apply and what lives by itself is no change', () => {
  const hidden = text('h', 'apn', 31, {when: () => false});
  assert.deepEqual(changesOf([hidden, clock], {h: '1', clock: '1'}, {h: '2', clock: '2'}), []);
});
