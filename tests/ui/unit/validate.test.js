import assert from 'node:assert/strict';
import test from 'node:test';
import {load} from './pages.js';

const {check} = await load('validate.js');

const kText = {name: 'x', kind: 'text', bytes: 31};
const kNumber = {name: 'x', kind: 'number', min: 1, max: 9};
const kDeviceNo = {name: 'x', kind: 'text', bytes: 15, least: 5, most: 12};
const kHost = {name: 'x', kind: 'host', bytes: 63, least: 1, numeric: (values) => values.ip};

function checkRows(field, rows, values = {}) {
  for (const [value, key] of rows)
    assert.equal(check(field, value, values, null)?.key ?? null, key, JSON.stringify(value));
}

test('texts are measured in encoded bytes', () => {
  checkRows(kText, [
    ['', null], ['a'.repeat(31), null], ['a'.repeat(32), 'error.long'],
    ['车'.repeat(15), null], ['车'.repeat(15) + 'a', null], ['车'.repeat(16), 'error.long'],
    ['&'.repeat(6), null], ['&'.repeat(7), 'error.entities'], ['"'.repeat(5) + 'a', null],
    ['"'.repeat(5) + 'ab', 'error.entities'], ['😀', 'error.char'], ['a\tb', 'error.char'],
  ]);
});

test('a device number has 5 to 12 stored bytes and 15 on the way', () => {
  checkRows(kDeviceNo, [
    ['', 'error.empty'], ['1234', 'error.short'], ['12345', null], ['123456789012', null],
    ['1234567890123', 'error.long'], ['车车车', null], ['1234567890<&', 'error.entities'],
  ]);
});

test('numbers keep to their range', () => {
  checkRows({...kNumber, min: 1, max: 255}, [
    ['0', 'error.range'], ['1', null], ['255', null], ['256', 'error.range'], ['', 'error.range'],
    ['-1', 'error.range'], ['1.5', 'error.range'], ['1e2', 'error.range'], ['0x10', 'error.range'],
    [' 1', 'error.range'],
  ]);
});

test('addresses are dotted quads without leading zeros', () => {
  checkRows({name: 'x', kind: 'ipv4'}, [
    ['0.0.0.0', null], ['255.255.255.255', null], ['192.168.1.88', null], ['1.2.3', 'error.ipv4'],
    ['1.2.3.4.5', 'error.ipv4'], ['1.2.3.256', 'error.ipv4'], ['1.2.3.04', 'error.ipv4'],
    ['1.2.3.4.', 'error.ipv4'], ['', 'error.ipv4'], ['a.b.c.d', 'error.ipv4'],
  ]);
});

test('a host is an address or a name, as chosen', () => {
  checkRows(kHost, [['10.0.0.1', null], ['a.example', 'error.ipv4']], {ip: true});
  checkRows(kHost, [
    ['a.example', null], ['10.0.0.1', null], ['', 'error.empty'], ['-a', 'error.host'],
    ['a b', 'error.host'], ['a'.repeat(64), 'error.long'], ['a..b', 'error.host'],
  ], {ip: false});
});

test('a hardware address is six pairs or nothing', () => {
  checkRows({name: 'x', kind: 'mac', bytes: 23}, [
    ['', null], ['00:00:5E:00:53:21', null], ['00-00-5e-00-53-21', null], ['00005E005321', null],
    ['00:00:5E:00:53', 'error.mac'], ['00:00-5E:00:53:21', 'error.mac'], ['gg:00:5E:00:53:21',
      'error.mac'],
  ]);
});

test('what the recorder itself holds is right in form, but still has to fit on the way', () => {
  assert.equal(check({...kNumber, min: 1, max: 65535}, '0', {}, '0'), null);
  assert.equal(check({name: 'x', kind: 'mac', bytes: 23}, 'none', {}, 'none'), null);
  assert.equal(check(kText, '&'.repeat(8), {}, '&'.repeat(8)).key, 'error.entities');
});

test('a field that does not apply is not checked', () => {
  assert.equal(check({...kText, when: () => false}, '😀', {}, ''), null);
});
