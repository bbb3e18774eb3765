// What is sent for a section: what was changed, and nothing that could destroy what was not.
import assert from 'node:assert/strict';
import test from 'node:test';
import {sectionById, valuesOf, type Read, type SectionId} from '../../src/model/sections';
import {messageFor} from '../../src/model/message';
import type {Values} from '../../src/model/fields';
import {printMessage} from '../../src/recorder/config';

const kId = 'stGB28181/stGB28181SubID/SUBDEVID_';
const settings = new Map<string, string>([
  ['stBaseInfo/strFD_DeviceNo', '80012345'], ['stGB28181/ucFD_Enable', '129'],
  ['stGB28181/strFD_ServerIp', '203.0.113.28'], ['stWifi/ucFD_WorkMode', '1'],
  ['stWifi/strFD_SSID', 'depot'], ['stWifiAp/strFD_SSID', 'bus'], ['stWifiAp/strFD_Passwd', 'x'],
]);
for (let k = 0; k < 8; k++) {
  settings.set(`${kId}${k}/strFD_LensId`, `lens ${k}`);
  settings.set(`${kId}${k}/strFD_AlarmInId`, `alarm ${k}`);
  settings.set(`stMainStream/stVideoPara/VChn_${k}/ucFD_FrameRate`, '25');
  settings.set(`stVideoMirror/stVideoMirrorPara/VChn_${k}/ucFD_UpDown`, '0');
}

const kReplies: Partial<Record<SectionId, Values>> = {
  base: {strFD_DeviceNo: '80012345', ucFD_TimeZone: '8', ucFD_GpsSTFlag: '3',
    strFD_CurTime: '2026-01-31 18:30:00'},
  mobile: {ucFD_NetType: '4', strFD_Apn: 'CMNET', strFD_PhoneNo: '*99#', strFD_UserName: 'card',
    strFD_UserPasswd: 'card'},
  server: {ucFD_AddressType: '0', strFD_Address: '10.0.0.1', usFD_Port: '6608'},
};

// The message for typed values, as it is printed or as its form.
function messageOf(id: SectionId, typed: Values) {
  const section = sectionById(id);
  const read: Read = {reply: kReplies[id] || {}, settings: section.whole ? settings : null};
  const fields = section.fields(read);
  const values = {...valuesOf(section, read, fields), ...typed};
  const message = messageFor(section, fields, Object.keys(typed), values, () => 'the time');
  return 'config' in message ? printMessage(message.config) : message;
}

test('a section that a set endpoint would overwrite is sent as just what was changed', () => {
  const rows: [SectionId, Values, string][] = [
    ['base', {'stBaseInfo/ucFD_TimeZone': ' 9 '}, '<stBaseInfo ucFD_TimeZone="9"/>'],
    ['base', {'stBaseInfo/strFD_CurTime': 'now'}, '<stBaseInfo strFD_CurTime="the time"/>'],
    ['base', {'stBaseInfo/ucFD_TimeZone': '9', 'stBaseInfo/strFD_CurTime': ''},
      '<stBaseInfo ucFD_TimeZone="9"/>'],
    ['base', {'stBaseInfo/strFD_DeviceNo': 'a&<"b'},
      '<stBaseInfo strFD_DeviceNo="a&amp;&lt;&quot;b"/>'],
    ['wifi', {'stWifi/ucFD_WorkMode': '2', 'stWifiAp/strFD_SSID': 'new'},
      '<stWifi ucFD_WorkMode="2"/><stWifiAp strFD_SSID="new"/>'],
    ['gb28181', {'stGB28181/enable': '0'}, '<stGB28181 ucFD_Enable="0"/>'],
    ['gb28181', {'stGB28181/streamType': '0'}, '<stGB28181 ucFD_Enable="1"/>'],
    ['gb28181', {[`${kId}6/strFD_AlarmInId`]: 'a & <b>'},
      '<stGB28181><stGB28181SubID><SUBDEVID_6 strFD_AlarmInId="a &amp; &lt;b>"/>' +
          '</stGB28181SubID></stGB28181>'],
    ['cameras', {'stVideoMirror/stVideoMirrorPara/VChn_7/ucFD_UpDown': '1'},
      '<stVideoMirror><stVideoMirrorPara><VChn_7 ucFD_UpDown="1"/></stVideoMirrorPara>' +
          '</stVideoMirror>'],
    ['cameras', {'stMainStream/stVideoPara/VChn_5/ucFD_FrameRate': '20'},
      '<stMainStream StartChn="5"><stVideoPara><VChn_5 ucFD_FrameRate="20"/></stVideoPara>' +
          '</stMainStream>'],
  ];
  for (const [id, typed, inside] of rows)
    assert.equal(messageOf(id, typed), `<VariCfgSec>${inside}</VariCfgSec>`, JSON.stringify(typed));
});

test('a form carries its section whole, with entities, and the address under one name', () => {
  const {strFD_Apn: _, ...rest} = kReplies.mobile!;
  assert.deepEqual(messageOf('mobile', {'stMobileGNet/strFD_Apn': 'a&<"b'}),
      {endpoint: 'set_GNetInfo', form: {...rest, strFD_Apn: 'a&amp;&lt;&quot;b'}});
  const server = (typed: Values) => messageOf('server', typed);
  assert.deepEqual(server({'stCMS/uiFD_IP': ' 10.0.0.2 '}), {endpoint: 'set_VCmsInfo',
    form: {ucFD_AddressType: '0', strFD_Address: '10.0.0.2', usFD_Port: '6608'}});
  assert.deepEqual(server({'stCMS/ucFD_AddressType': '1', 'stCMS/strFD_Domain': 'a.example'}),
      {endpoint: 'set_VCmsInfo',
        form: {ucFD_AddressType: '1', strFD_Address: 'a.example', usFD_Port: '6608'}});
});

test('switches travel as 0 and 1', () => {
  const flag = 'stBaseInfo/ucFD_GpsSTFlag';
  for (const [value, sent] of [['0', '0'], ['1', '1'], ['3', '1']] as const)
    assert.equal(messageOf('base', {[flag]: value}),
        `<VariCfgSec><stBaseInfo ucFD_GpsSTFlag="${sent}"/></VariCfgSec>`);
});

test('as many IDs as the recorder has channels or names', () => {
  const section = sectionById('gb28181');
  const count = (map: Map<string, string>) =>
    section.fields({reply: {}, settings: map}).filter(({path}) => path.endsWith('LensId')).length;
  assert.equal(count(settings), 8);
  assert.equal(count(new Map([['stVersion/VideoCnt', '4']])), 4);
  assert.equal(count(new Map([['stVersion/VideoCnt', '0']])), 1);
  assert.equal(count(new Map([['stVersion/VideoCnt', '99']])), 8);
  assert.equal(count(new Map([[`${kId}5/strFD_LensId`, 'x'], ['stVersion/VideoCnt', '2']])), 6);
});

test('the flags byte is on and off, and its stream type', () => {
  const section = sectionById('gb28181');
  const rows: [string, string, string][] =
      [['0', '0', '0'], ['1', '1', '0'], ['129', '1', '1'], ['128', '1', '1'], ['3', '1', '0']];
  for (const [flags, enable, stream] of rows) {
    const read: Read = {reply: {}, settings: new Map([['stGB28181/ucFD_Enable', flags]])};
    const values = valuesOf(section, read, section.fields(read));
    assert.deepEqual([values['stGB28181/enable'], values['stGB28181/streamType']], [enable, stream],
        flags);
  }
});
