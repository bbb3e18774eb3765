import assert from 'node:assert/strict';
import test from 'node:test';
import type {Read, Values} from '../../src/model/fields';
import {kGbEnable, kGbStream} from '../../src/model/gb28181';
import {messageFor} from '../../src/model/message';
import {kSections, valuesOf, type SectionId} from '../../src/model/sections';
import {printMessage} from '../../src/recorder/config';

// What is sent when `typed` is changed in a section that was read with these values.
function sent(id: SectionId, read: Partial<Read>, typed: Values) {
  const section = kSections.find((each) => each.id === id)!;
  const whole: Read = {reply: {}, settings: null, ...read};
  const fields = section.fields(whole);
  const values = {...valuesOf(section, whole, fields), ...typed};
  const message = messageFor(section, fields, Object.keys(typed), values, () => '2026-01-31 18:30:00');
  return 'config' in message ? printMessage(message.config).replace(/^<VariCfgSec>|<\/VariCfgSec>$/g, '')
    : [message.endpoint, message.form];
}

test('the access point’s values go to its own section, without the mode', () => {
  const settings = new Map([['stWifi/ucFD_WorkMode', '2'], ['stWifiAp/strFD_SSID', 'a']]);
  assert.equal(sent('wifi', {settings}, {'stWifiAp/strFD_Passwd': 'new "one"'}),
      '<stWifiAp strFD_Passwd="new &quot;one&quot;"/>');
  assert.equal(sent('wifi', {settings}, {'stWifi/ucFD_WorkMode': '1'}), '<stWifi ucFD_WorkMode="1"/>');
});

test('what does not apply is not sent', () => {
  const settings = new Map([['stWifi/ucFD_WorkMode', '1']]);
  assert.equal(sent('wifi', {settings},
      {'stWifi/strFD_SSID': 'x', 'stWifiAp/strFD_SSID': 'typed before the mode went back'}),
  '<stWifi strFD_SSID="x"/>');
});

test('GB28181 is switched off without a word about its IDs', () => {
  const settings = new Map([['stGB28181/ucFD_Enable', '129'], ['stVersion/VideoCnt', '8']]);
  const rows: [Values, string][] = [
    [{[kGbEnable]: '0'}, '<stGB28181 ucFD_Enable="0"/>'],
    [{[kGbStream]: '0'}, '<stGB28181 ucFD_Enable="1"/>'],
    [{'stGB28181/stGB28181SubID/SUBDEVID_2/strFD_AlarmInId': 'a&b'},
      '<stGB28181><stGB28181SubID><SUBDEVID_2 strFD_AlarmInId="a&amp;b"/></stGB28181SubID></stGB28181>'],
  ];
  for (const [typed, text] of rows) assert.equal(sent('gb28181', {settings}, typed), text);
  const off = new Map([['stGB28181/ucFD_Enable', '0']]);
  assert.equal(sent('gb28181', {settings: off}, {[kGbEnable]: '1', [kGbStream]: '1'}),
      '<stGB28181 ucFD_Enable="129"/>');
});

test('a camera beyond the first is named, the others are not', () => {
  const settings = new Map(Array.from({length: 4}, (_, k) =>
    [`stMainStream/stVideoPara/VChn_${k}/ucFD_FrameRate`, '25'] as [string, string]));
  assert.equal(sent('cameras', {settings}, {'stMainStream/stVideoPara/VChn_2/ucFD_FrameRate': '20'}),
      '<stMainStream StartChn="2"><stVideoPara><VChn_2 ucFD_FrameRate="20"/></stVideoPara></stMainStream>');
});

test('saving without touching the clock leaves the clock alone', () => {
  const reply = {strFD_DeviceNo: '80012345', ucFD_TimeZone: '8', ucFD_GpsSTFlag: '3',
    strFD_CurTime: '2026-01-01 00:00:00'};
  assert.equal(sent('base', {reply}, {'stBaseInfo/ucFD_TimeZone': ' 9 '}),
      '<stBaseInfo ucFD_TimeZone="9"/>');
  assert.equal(sent('base', {reply}, {'stBaseInfo/strFD_CurTime': 'now'}),
      '<stBaseInfo strFD_CurTime="2026-01-31 18:30:00"/>');
});

test('a form carries its whole section in entities, an address under one name', () => {
  const reply = {ucFD_NetType: '4', strFD_Apn: 'a', strFD_PhoneNo: '*99#', strFD_UserName: 'u',
    strFD_UserPasswd: 'p'};
  assert.deepEqual(sent('mobile', {reply}, {'stMobileGNet/strFD_Apn': 'x&"'}), ['set_GNetInfo',
    {...reply, strFD_Apn: 'x&amp;&quot;'}]);
  const server = {ucFD_AddressType: '0', strFD_Address: '10.255.255.101', usFD_Port: '6608'};
  assert.deepEqual(sent('server', {reply: server},
      {'stCMS/ucFD_AddressType': '1', 'stCMS/strFD_Domain': ' a.example '}), ['set_VCmsInfo',
    {ucFD_AddressType: '1', strFD_Address: 'a.example', usFD_Port: '6608'}]);
});

test('a value that a form would cut goes another way, though it was not touched', () => {
  const reply = {ucFD_NetType: '4', strFD_Apn: '&'.repeat(8), strFD_PhoneNo: '', strFD_UserName: '',
    strFD_UserPasswd: ''};
  assert.equal(sent('mobile', {reply}, {'stMobileGNet/strFD_UserName': 'u'}),
      '<stMobileGNet strFD_UserName="u"/>');
});
