import assert from 'node:assert/strict';
import test from 'node:test';
import type {Read} from '../../src/model/fields';
import {kSections, valuesOf, type Section} from '../../src/model/sections';
import {readReply} from '../../src/recorder/replies';

const sectionOf = (id: Section['id']) => kSections.find((section) => section.id === id)!;
const reading = (settings: [string, string][] | null, reply = {}): Read =>
  ({reply, settings: settings && new Map(settings)});

test('what an endpoint tells stands in its fields', () => {
  const rows: [Section['id'], string, Record<string, string>][] = [
    ['server', '{ "ucFD_AddressType": "0", "strFD_Address": "10.255.255.101", "usFD_Port": "6608", "result": 1 }',
      {'stCMS/ucFD_AddressType': '0', 'stCMS/uiFD_IP': '10.255.255.101', 'stCMS/usFD_Port': '6608'}],
    ['server', '{ "ucFD_AddressType": "1", "strFD_Address": "a.example", "usFD_Port": "1", "result": 1 }',
      {'stCMS/ucFD_AddressType': '1', 'stCMS/strFD_Domain': 'a.example', 'stCMS/usFD_Port': '1'}],
    ['netMode', '{ "ucFD_NetWType": "3", "result": 1 }', {'stNetWorkMode/ucFD_NetType': '3'}],
  ];
  for (const [id, text, values] of rows) {
    const section = sectionOf(id);
    const read: Read = {reply: readReply(section.get!, text)!.values, settings: null};
    assert.deepEqual(valuesOf(section, read, section.fields(read)), values, id);
  }
});

test('both Wi-Fi networks come from the configuration, one from the endpoint', () => {
  const wifi = sectionOf('wifi');
  const both = reading([['stWifi/ucFD_WorkMode', '1'], ['stWifi/strFD_SSID', 'a'],
    ['stWifiAp/strFD_SSID', 'b']]);
  const values = valuesOf(wifi, both, wifi.fields(both));
  assert.deepEqual([values['stWifi/strFD_SSID'], values['stWifiAp/strFD_SSID']], ['a', 'b']);
  for (const [mode, at] of [['1', 'stWifi'], ['2', 'stWifiAp']]) {
    const one = reading(null, {ucFD_WorkMode: mode, strFD_SSID: 'x'});
    const known = valuesOf(wifi, one, wifi.fields(one));
    assert.equal(known[`${at}/strFD_SSID`], 'x');
    assert.equal(Object.keys(known).filter((path) => path.endsWith('SSID')).length, 1);
  }
});

test('as many cameras are shown as the configuration names, the first without one', () => {
  const cameras = sectionOf('cameras');
  const of = (count: number) => reading(Array.from({length: count}, (_, k) =>
    [`stMainStream/stVideoPara/VChn_${k}/ucFD_FrameRate`, '25'] as [string, string]));
  for (const count of [1, 4, 8, 12]) assert.equal(cameras.fields(of(count)).length, count);
  assert.deepEqual(cameras.fields(reading(null)).map(({wire}) => wire),
      ['ucFD_FrameRate', 'uiFD_BitRate']);
});
