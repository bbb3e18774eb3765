import assert from 'node:assert/strict';
import {readFileSync, readdirSync} from 'node:fs';
import test from 'node:test';
import {kSections, valuesOf, type Read, type Section} from '../../src/model/sections';
import {kGbEnable, kGbStream} from '../../src/model/gb28181';
import type {Field} from '../../src/model/fields';
import {readReply} from '../../src/recorder/replies';

declare const PROJECT: string;

const sectionOf = (id: Section['id']) => kSections.find((section) => section.id === id)!;
const reading = (settings: [string, string][] | null, reply = {}): Read =>
  ({reply, settings: settings && new Map(settings)});

// The daemon's own records: type and width of every member of every struct.
interface Member { type: string; width: number }
function records(): Map<string, Map<string, Member>> {
  const found = new Map<string, Map<string, Member>>();
  for (const file of readdirSync(`${PROJECT}/config`).filter((name) => /^Records\w+\.h$/.test(name))) {
    const text = readFileSync(`${PROJECT}/config/${file}`, 'utf8');
    for (const [, name = '', body = ''] of text.matchAll(/struct (\w+) \{([^]*?)\n\};/g)) {
      const members = body.matchAll(/^ {2}(\w+) (\w+)(?:\[\d+\])?(?:\[(\d+)\])?;/gm);
      const single = body.matchAll(/^ {2}(\w+) (\w+)(?:\[(\d+)\])?;/gm);
      const map = new Map<string, Member>();
      for (const [, type = '', member = '', width] of [...members, ...single])
        map.set(member, {type, width: Number(width || 0)});
      found.set(name, map);
    }
  }
  return found;
}

const kAll = records();
// What stands in the record under another name than in the configuration.
const kElsewhere: Record<string, string> = {strFD_LensId: 'strSubId', strFD_AlarmInId: 'strSubId'};

function memberOf(path: string): Member | undefined {
  const parts = path.split('/');
  const attribute = parts.pop() || '';
  let record = kAll.get(parts[0] || '');
  const container = parts[1] && record ? record.get(parts[1]) : undefined;
  if (container) record = kAll.get(container.type);
  return record && record.get(kElsewhere[attribute] || attribute);
}

const kLargest: Record<string, number> = {uint8_t: 255, uint16_t: 65535, uint32_t: 4294967295};
const kAtMost = new Set(['ucFD_FrameRate', 'uiFD_BitRate']);  // narrower than their records
const kOwn = new Set([kGbEnable, kGbStream, 'current', 'fresh', 'repeat']);

function everyField(): Field[] {
  const settings: [string, string][] = [['stVersion/VideoCnt', '8']];
  for (let k = 0; k < 8; k++) {
    settings.push([`stMainStream/stVideoPara/VChn_${k}/ucFD_FrameRate`, '25'],
        [`stMainStream/stVideoPara/VChn_${k}/uiFD_BitRate`, '2048'],
        [`stVideoMirror/stVideoMirrorPara/VChn_${k}/ucFD_LeftRight`, '0'],
        [`stVideoMirror/stVideoMirrorPara/VChn_${k}/ucFD_UpDown`, '0']);
  }
  return kSections.flatMap((section) => section.fields(reading(settings)));
}

test('every width and range of the pages is that of the daemon’s records', () => {
  let texts = 0;
  let numbers = 0;
  for (const field of everyField().filter(({path}) => !kOwn.has(path))) {
    const member = memberOf(field.path);
    assert.ok(member, `${field.path} is in no record`);
    if (field.bytes !== undefined) {
      assert.equal(member.type, 'char', field.path);
      assert.equal(field.bytes, member.width - 1, field.path);
      texts++;
    }
    if (field.max !== undefined) {
      const largest = kLargest[member.type] || 0;
      const name = field.path.split('/').pop() || '';
      if (kAtMost.has(name)) assert.ok(field.max <= largest, field.path);
      else assert.equal(field.max, largest, field.path);
      numbers++;
    }
    if (field.kind === 'address' || field.kind === 'mask')
      assert.equal(member.type, 'uint32_t', field.path);
  }
  assert.ok(texts > 30 && numbers > 25, `${texts} texts, ${numbers} numbers`);
  assert.equal(kAll.get('stUserItem')?.get('strFD_UserPWD')?.width, 128);
});

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
