import assert from 'node:assert/strict';
import test from 'node:test';
import {check, isNetmask} from '../../src/model/checks';
import {address, code, frameRate, netmask, port, secret, text, type Field, type Values}
  from '../../src/model/fields';

const path = 'a/b';
const keyOf = (field: Field, value: string, held = 'something else') => {
  const found = check(field, {[path]: value}, {[path]: held});
  return found && found.key;
};
const of = (kind: Field['kind'], more: Partial<Field> = {}): Field =>
  ({path, kind, label: 'password', ...more});

function checkRows(field: Field, rows: [string, string | null][]) {
  for (const [value, key] of rows) assert.equal(keyOf(field, value), key, JSON.stringify(value));
}

test('texts are measured in encoded bytes', () => {
  checkRows(text(path, 'password', 31), [
    ['', null], ['a'.repeat(31), null], ['a'.repeat(32), 'error.long'], ['车'.repeat(15), null],
    ['车'.repeat(16), 'error.long'], ['&'.repeat(31), null], ['😀', 'error.char'],
    ['a\tb', 'error.char'],
  ]);
});

test('where entities travel they must fit', () => {
  checkRows(secret(path, 'password', 31, {entities: true}),
      [['&'.repeat(6), null], ['&'.repeat(7), 'error.entities'], ['"'.repeat(5) + 'a', null]]);
});

test('a device number has 5 to 12 bytes', () => {
  checkRows(text(path, 'password', 15, {least: 5, most: 12}), [
    ['', 'error.empty'], ['1234', 'error.short'], ['12345', null], ['123456789012', null],
    ['1234567890123', 'error.long'], ['车车车', null],
  ]);
});

test('a code is any number of a byte', () => {
  checkRows(code(path, 'password'), [['0', null], ['255', null], ['256', 'error.range']]);
});

test('pictures come 1 to 60 times a second', () => {
  checkRows(frameRate(path, 'password'),
      [['0', 'error.range'], ['1', null], ['60', null], ['61', 'error.range']]);
});

test('numbers keep to their range, blanks around them do not matter', () => {
  checkRows(port(path, 'password'), [
    ['0', 'error.range'], ['1', null], ['65535', null], ['65536', 'error.range'],
    ['', 'error.range'], ['-1', 'error.range'], ['1.5', 'error.range'], ['1e2', 'error.range'],
    ['0x10', 'error.range'], [' 80 ', null],
  ]);
});

test('addresses are dotted quads without leading zeros, blanks around them do not matter', () => {
  checkRows(address(path, 'password'), [
    ['0.0.0.0', null], ['255.255.255.255', null], ['192.168.1.88', null], [' 10.0.0.1 ', null],
    ['1.2.3', 'error.address'], ['1.2.3.4.5', 'error.address'], ['1.2.3.256', 'error.address'],
    ['1.2.3.04', 'error.address'], ['', 'error.address'], ['a.b.c.d', 'error.address'],
  ]);
});

test('a network mask is ones, then zeros', () => {
  const masks = Array.from({length: 32}, (_, i) => {
    const bits = (0xffffffff << (31 - i)) >>> 0;
    return [24, 16, 8, 0].map((shift) => (bits >>> shift) & 255).join('.');
  });
  for (const mask of masks) assert.ok(isNetmask(mask), mask);
  for (const mask of ['255.0.255.0', '0.0.0.0', '255.255.255.1', '0.255.255.255', '254.255.0.0'])
    assert.ok(!isNetmask(mask), mask);
  checkRows(netmask(path, 'password'), [['255.0.255.0', 'error.mask'], ['255.255.252.0', null]]);
});

test('a gateway lies inside the network, is not the recorder, or is none', () => {
  const gate = address('g', 'password', {inside: ['ip', 'mask']});
  const held: Values = {ip: '192.168.1.88', mask: '255.255.255.0', g: '192.168.1.1'};
  const rows: [Values, string | null][] = [
    [{}, null], [{g: '192.168.1.254'}, null], [{g: '192.168.2.1'}, 'error.gateway'],
    [{g: '192.168.1.88'}, 'error.gatewaySame'], [{g: '0.0.0.0'}, null],
    [{ip: '10.0.0.5'}, 'error.gateway'], [{mask: '255.255.0.0', g: '192.168.2.1'}, null],
    [{mask: '255.0.255.0', g: '192.168.2.1'}, null],  // told at the mask
    [{ip: ' 192.168.2.5 ', g: '192.168.2.1'}, null],
  ];
  for (const [typed, key] of rows) {
    const found = check(gate, {...held, ...typed}, held);
    assert.equal(found && found.key, key, JSON.stringify(typed));
  }
});

test('a host is a name', () => {
  checkRows(of('host', {bytes: 63, least: 1}), [
    ['a.example', null], ['10.0.0.1', null], ['cms-0123456789.example', null],
    ['', 'error.empty'], ['-a', 'error.host'],
    ['a b', 'error.host'], ['a'.repeat(64), 'error.long'], ['a..b', 'error.host'],
  ]);
});

test('a hardware address is six pairs or nothing', () => {
  checkRows(of('mac'), [
    ['', null], ['00:00:5E:00:53:21', null], ['00-00-5e-00-53-21', null], ['00005E005321', null],
    ['00:00:5E:00:53', 'error.mac'], ['00:00-5E:00:53:21', 'error.mac'],
    ['gg:00:5E:00:53:21', 'error.mac'],
  ]);
});

test('a clock is date and time with seconds', () => {
  checkRows(of('clock'), [['now', null], ['2026-01-31 18:30:00', null], [' ', 'error.clock'],
    ['2026-01-31', 'error.clock'], ['31.1.2026 18:30', 'error.clock'],
    ['2028-02-29 00:00:00', null], ['2026-02-30 18:30:00', 'error.clock'],
    ['2026-13-01 18:30:00', 'error.clock'], ['2026-01-31 24:00:00', 'error.clock'],
    ['2026-01-31 18:60:00', 'error.clock']]);
});

test('what the recorder itself holds is right', () => {
  assert.equal(keyOf(port(path, 'password'), '0', '0'), null);
  assert.equal(keyOf(of('mac'), 'none', 'none'), null);
});

test('a field that does not apply is not checked, one that begins to apply must be known', () => {
  const when = (values: Values) => values.on === '1';
  const host = of('host', {bytes: 63, least: 1, when, needed: true});
  assert.equal(check(host, {on: '0', [path]: '😀'}, {on: '0'}), null);
  assert.equal(check(host, {on: '1'}, {on: '0'})?.key, 'error.empty');
});
