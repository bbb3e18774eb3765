import assert from 'node:assert/strict';
import test from 'node:test';
import {decodeReply, kReplies, readReply} from '../../src/recorder/replies';

// The bodies as the service prints them; % stands for a number, $ for a text.
const kBodies: Record<keyof typeof kReplies, string> = {
  get_LangInfo: '{ "strLanguage": "$", "result": 1 }',
  get_BaseInfo: '{ "strFD_DeviceNo": "$", "ucFD_TimeZone": "%" , "ucFD_GpsSTFlag": "%"' +
      ', "strFD_CurTime": "$", "result": 1 }',
  get_UserSecurity: '{ "strAdminPasswd": "$", "strNormalPasswd": "$" , "result": 1 }',
  cmp_UserSecurity: '{ "jsession": "$", "result": 1 }',
  get_LockOfPassword: '{ "ucFD_ErrorCount": "%", "time": "%" , "result": 1 }',
  get_MirrorInfo: '{ "strFD_LeftRight": "%", "strFD_UpDown": "%", "result": 1 }',
  get_MainStreamInfo: '{ "ucFD_FrameRate": "%", "uiFD_BitRate": "%", "result": 1 }',
  get_SubStreamInfo: '{ "ucFD_SFrameRate": "%", "uiFD_SBitRate": "%", "result": 1 }',
  get_NetWModeInfo: '{ "ucFD_NetWType": "%", "result": 1 }',
  get_VCmsInfo: '{ "ucFD_AddressType": "%", "strFD_Address": "$", "usFD_Port": "%", "result": 1 }',
  get_WifiInfo: '{ "ucFD_WorkMode": "%", "strFD_SSID": "$", "strFD_Passwd": "$"' +
      ', "ucFD_AuthMode": "%", "ucFD_CryptType": "%", "ucFD_DhcpEnableFlag": "%", "result": 1 }',
  get_GNetInfo: '{ "ucFD_NetType": "%", "strFD_Apn": "$", "strFD_PhoneNo": "$"' +
      ', "strFD_UserName": "$", "strFD_UserPasswd": "$", "result": 1 }',
  get_LocalNetInfo: '{ "strFD_LocalIp": "$", "strFD_NetMask": "$", "strFD_GateWay": "$"' +
      ', "strFD_Mac": "$", "result": 1 }',
  get_VersionInfo: '{ "strFD_AppVersion": "$" "strFD_KnlVersion": "$", "result": 1 }',
  get_GB28181Info: '{ "ucFD_GB28181Enable": "%", "strFD_Manufacturer": "$"' +
      ', "strFD_ModelName": "$", "strFD_ServerIp": "$", "usFD_ServerPort": "%"' +
      ', "strFD_ServerID": "$", "strFD_DeviceId": "$", "usFD_DevicePort": "%"' +
      ', "strFD_DeviceUser": "$", "strFD_DevicePass": "$", "strFD_LensId": "$"' +
      ', "iVideoChnCount": "%", "ucFD_StreamType": "%", "strFD_AlarmInId": "$", "result": 1 }',
  get_SystemInfo: '{ "gps":{ "ucFD_GpsExist": "%", "strFD_GpsPos": "$"},' +
      '"gnet":{ "ucFD_GNetExist": "%", "strFD_GNetIMEI": "$", "strFD_GNetRevision": "$"' +
      ', "ucFD_SimExist": "%", "ucFD_SimIMSI": "$", "ucFD_SimICCID": "$", "uiFD_GNetSignal": "%"' +
      ', "ucFD_GNetDail": "%"},"wifi":{ "ucFD_WifiExist": "%", "ucFD_WifiMode": "$"' +
      ', "uiFD_WifiSignal": "%", "ucFD_WifiDail": "%"},"cms":{ "ucFD_CmsStatus": "%"' +
      ', "ucFD_JTT808Status": "%", "ucFD_GB28181Status": "%"},"disk":{"list":[' +
      '{"ucFD_DiskExist": "%", "strFD_DiskSize": "$"},{"ucFD_DiskExist": "%"' +
      ', "strFD_DiskSize": "$"}]},"io":{ "strFD_IOStatus": "$"},"version":{ "strFD_McuVersion": "$"' +
      ', "strFD_LdrVersion": "$", "strFD_KnlVersion": "$", "strFD_RfsVersion": "$"' +
      ', "strFD_AppVersion": "$", "strFD_DbtVersion": "$"},"acc":{ "ucFD_AccStatus": "%"},' +
      '"net":{ "ucFD_NetStatus": "%", "uiFD_IP": "$", "strFD_DeviceNo": "$"},"result": 1 }',
  export_CfgFile: '{ "strFD_CfgPara": "$", "result": 1 }',
};

type Endpoint = keyof typeof kReplies;

const kHostile = [
  '', '"', '""', '"}', '\\', '\\"', '{', '},{', '\n', '<b>', '&', '%', '车', '\ufffd', ', "', '": "',
  '"result": 0 }', '", "result": 0 }',
];

const kNarrow = new Set(['get_LangInfo 0', 'get_SystemInfo 5']);  // fields of a few characters

// A body with its values: numbers count up, texts come from `texts`.
function print(endpoint: Endpoint, texts: string[]) {
  let number = 0;
  let text = 0;
  const values: string[] = [];
  const body = kBodies[endpoint].replace(/[%$]/g, (mark) => {
    const value = mark === '%' ? String(++number) : texts[text++] || '';
    values.push(value);
    return value;
  });
  return {body, values};
}

const textCount = (endpoint: Endpoint) => kBodies[endpoint].split('$').length - 1;

test('every reply is read, with a hostile text in each place in turn', () => {
  for (const endpoint of Object.keys(kBodies) as Endpoint[]) {
    for (let place = 0; place < textCount(endpoint); place++) {
      for (const hostile of kHostile) {
        const texts = Array(textCount(endpoint)).fill('v');
        texts[place] = hostile.slice(0, kNarrow.has(`${endpoint} ${place}`) ? 2 : 15);
        const {body, values} = print(endpoint, texts);
        const reply = readReply(endpoint, body);
        assert.ok(reply, `${endpoint}: ${body}`);
        assert.deepEqual(Object.values(reply.values), values, body);
        assert.equal(reply.result, true);
      }
    }
  }
});

test('a value that imitates the next key harms no other key', () => {
  const reply = readReply('get_WifiInfo', '{ "ucFD_WorkMode": "1", "strFD_SSID": "' +
      'a", "strFD_Passwd": "b", "strFD_Passwd": "c", "ucFD_AuthMode": "3", "ucFD_CryptType": "2"' +
      ', "ucFD_DhcpEnableFlag": "1", "result": 1 }');
  assert.ok(reply);
  assert.equal(reply.values.ucFD_WorkMode, '1');
  assert.equal(reply.values.ucFD_AuthMode, '3');
  assert.equal(reply.result, true);
  assert.equal(reply.values.strFD_SSID, 'a", "strFD_Passwd": "b');
});

test('a value that imitates the end does not decide the result', () => {
  const body = (result: number) => '{ "strAdminPasswd": "x", "result": 1 }", "strNormalPasswd": "' +
      `", "result": 1 }" , "result": ${result} }`;
  assert.equal(readReply('get_UserSecurity', body(0))?.result, false);
  assert.equal(readReply('get_UserSecurity', body(1))?.result, true);
});

test('negative numbers are read', () => {
  assert.equal(readReply('get_LockOfPassword',
      '{ "ucFD_ErrorCount": "0", "time": "-28800" , "result": 0 }')?.values.time, '-28800');
});

test('a set answers with its result alone', () => {
  assert.deepEqual(readReply('set_BaseInfo', '{"result": 1 }'), {result: true, values: {}});
  assert.deepEqual(readReply('set_BaseInfo', '{"result": 0 }'), {result: false, values: {}});
});

test('what no endpoint sends is refused', () => {
  const rows = ['', '{}', 'Not Found', '<html>', '{ "result": 1',
    '{ "ucFD_NetWType": "x", "result": 1 }'];
  for (const text of rows) assert.equal(readReply('get_NetWModeInfo', text), null, text);
});

test('a reply is UTF-8 when it can be, GBK otherwise', () => {
  const rows: [number[], string][] = [
    [[0x61, 0x62], 'ab'],
    [[0xe8, 0xbd, 0xa6, 0xe9, 0x98, 0x9f], '车队'],
    [[0xb3, 0xb5, 0xb6, 0xd3], '车队'],
    // Valid as UTF-8 too, but the recorder writes GBK.
    [[0xc2, 0xb7], '路'],
    [[0xd5, 0xbe, 0x2d, 0x31], '站-1'],
    // A character cut at a field's width does not swallow the quotation mark after it.
    [[0x22, 0xb3, 0x22, 0x2c], '"\ufffd",'],
  ];
  for (const [bytes, text] of rows) assert.equal(decodeReply(Uint8Array.from(bytes)), text);
});
