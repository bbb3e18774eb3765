// What is wrong with a value, in the bytes that are stored and that travel.
import assert from 'node:assert/strict';
import test from 'node:test';
import {check, checkAll, isNetmask} from '../../src/model/checks';
import {kSections} from '../../src/model/sections';
import {bitRate, frameRate, text, type Field, type Values} from '../../src/model/fields';

const kEth0 = kSections.find(({id}) => id === 'localEth0')!.fields({reply: {}, settings: null});
const kIp = 'stLocalEth0/uiFD_LocalIp';
const kMask = 'stLocalEth0/uiFD_NetMask';
const kGate = 'stLocalEth0/uiFD_GateWay';

const of = (kind: Field['kind'], more: Partial<Field> = {}): Field =>
  ({path: 'x', kind, label: 'apn', ...more});

function checkRows(field: Field, rows: [string, string | null][]) {
  for (const [value, key] of rows) {
    const found = check(field, {[field.path]: value}, {[field.path]: 'held'});
    assert.equal(found ? found.key : null, key, JSON.stringify(value));
  }
}

test('texts are measured in encoded bytes', () => {
  checkRows(text('x', 'apn', 31, {entities: true}), [
    ['', null], ['a'.repeat(31), null], ['a'.repeat(32), 'error.long'],
    ['车'.repeat(15), null], ['车'.repeat(15) + 'a', null], ['车'.repeat(16), 'error.long'],
    ['&'.repeat(6), null], ['&'.repeat(7), 'error.entities'], ['"'.repeat(5) + 'a', null],
    ['"'.repeat(5) + 'ab', 'error.entities'], ['😀', 'error.char'], ['a\tb', 'error.char'],
  ]);
});

test('what is imported has room for its entities', () => {
  checkRows(text('x', 'apn', 31), [['&'.repeat(31), null], ['&'.repeat(32), 'error.long']]);
});

test('a device number has 5 to 12 bytes', () => {
  const [field] = kSections.find(({id}) => id === 'base')!.fields({reply: {}, settings: null});
  checkRows(field!, [
    ['', 'error.empty'], ['1234', 'error.short'], ['12345', null], ['123456789012', null],
    ['1234567890123', 'error.long'], ['车车车', null],
  ]);
});

test('numbers keep to their range; blanks around them count for nothing', () => {
  checkRows(of('number', {min: 1, max: 255}), [
    ['0', 'error.range'], ['1', null], ['255', null], ['256', 'error.range'], ['', 'error.range'],
    ['-1', 'error.range'], ['1.5', 'error.range'], ['1e2', 'error.range'], ['0x10', 'error.range'],
    [' 7 ', null],
  ]);
});

test('no recorder films faster than 60 pictures a second, nor with any bit rate', () => {
  checkRows(frameRate('x', 'frameRate'), [['0', 'error.range'], ['60', null], ['61', 'error.range']]);
  checkRows(bitRate('x', 'bitRate'), [['0', 'error.range'], ['2048', null],
    ['99999999', 'error.range']]);
});

test('addresses are dotted quads without leading zeros', () => {
  checkRows(of('address'), [
    ['0.0.0.0', null], ['255.255.255.255', null], ['192.168.1.88', null], [' 192.168.1.88 ', null],
    ['1.2.3', 'error.address'], ['1.2.3.4.5', 'error.address'], ['1.2.3.256', 'error.address'],
    ['1.2.3.04', 'error.address'], ['1.2.3.4.', 'error.address'], ['', 'error.address'],
    ['a.b.c.d', 'error.address'],
  ]);
});

test('a netmask is ones, then zeros', () => {
  for (let ones = 1; ones <= 32; ones++) {
    const bits = (2 ** ones - 1) * 2 ** (32 - ones);
    const mask = [24, 16, 8, 0].map((shift) => Math.floor(bits / 2 ** shift) % 256).join('.');
    assert.ok(isNetmask(mask), mask);
  }
  for (const mask of ['255.0.255.0', '0.0.0.0', '0.255.255.255', '255.255.255.1', '255.255.255', ''])
    assert.ok(!isNetmask(mask), mask);
});

test('a gateway stands in the network of address and mask, whichever of the three was changed', () => {
  const held: Values = {[kIp]: '192.168.1.88', [kMask]: '255.255.255.0', [kGate]: '192.168.1.1'};
  const rows: [Values, string | null][] = [
    [{}, null], [{[kGate]: '192.168.1.254'}, null], [{[kGate]: '192.168.2.1'}, 'error.gateway'],
    [{[kGate]: '0.0.0.0'}, null], [{[kGate]: '192.168.1.88'}, 'error.gatewaySame'],
    [{[kMask]: '255.255.0.0', [kGate]: '192.168.2.1'}, null],
    [{[kMask]: '255.255.255.248'}, 'error.gateway'], [{[kIp]: '10.0.0.8'}, 'error.gateway'],
    [{[kIp]: ' 192.168.1.90 ', [kGate]: ' 192.168.1.2 '}, null],
  ];
  for (const [typed, key] of rows) {
    const problem = checkAll(kEth0, {...held, ...typed}, held)[kGate];
    assert.equal(problem ? problem.key : null, key, JSON.stringify(typed));
  }
});

test('a host is a name', () => {
  checkRows(of('host', {bytes: 63, least: 1}), [
    ['a.example', null], ['10.0.0.1', null], [' a.example ', null], ['', 'error.empty'],
    ['-a', 'error.host'], ['a b', 'error.host'], ['a'.repeat(64), 'error.long'],
    ['a..b', 'error.host'],
  ]);
});

test('a hardware address is six pairs or nothing', () => {
  checkRows(of('mac', {bytes: 23}), [
    ['', null], ['00:00:5E:00:53:21', null], ['00-00-5e-00-53-21', null], ['00005E005321', null],
    ['00:00:5E:00:53', 'error.mac'], ['00:00-5E:00:53:21', 'error.mac'],
    ['gg:00:5E:00:53:21', 'error.mac'],
  ]);
});

test('what the recorder itself holds is right', () => {
  const rows: [Field, string][] = [
    [of('number', {min: 1, max: 65535}), '0'], [of('mac', {bytes: 23}), 'none'],
    [text('x', 'apn', 31, {entities: true}), '&'.repeat(8)], [of('mask'), '255.0.255.0'],
  ];
  for (const [field, value] of rows) assert.equal(check(field, {x: value}, {x: value}), null, value);
});

test('a field that does not apply is not checked', () => {
  assert.equal(check(text('x', 'apn', 31, {when: () => false}), {x: '😀'}, {x: ''}), null);
});
