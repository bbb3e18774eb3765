// Every field of every section: read, changed, saved, read back, and found in the recorder's file.
import assert from 'node:assert/strict';
import {spawnSync} from 'node:child_process';
import test, {after, before} from 'node:test';
import {field, kPassword, notice, press, Rig, settled, visit} from '../rig.js';

let rig;
let page;
before(async () => {
  rig = await Rig.start();
  page = await rig.open();
  await rig.login(page);
});
after(async () => {
  assert.deepEqual(page.errors, []);
  await rig.stop();
});

async function put(id, name, value) {
  const input = field(page, id, name);
  const kind = await input.evaluate((node) => node.type);
  if (kind === 'checkbox') await input.setChecked(value === '1');
  else if (kind === 'select-one') await input.selectOption(value);
  else await input.fill(value);
}

async function get(id, name) {
  const input = field(page, id, name);
  const kind = await input.evaluate((node) => node.type);
  return kind === 'checkbox' ? String(Number(await input.isChecked())) : input.inputValue();
}

async function saveSection(id) {
  await press(page, id);
  return settled(page, id);
}

// page, section, element in the file, [form name, value before, value to set, attribute]
const kSections = [
  ['device', 'BaseInfo', 'stBaseInfo', [
    ['strFD_DeviceNo', '80012345', '粤B12&34', 'strFD_DeviceNo'],
    ['ucFD_TimeZone', '8', '9', 'ucFD_TimeZone'],
    ['ucFD_GpsSTFlag', '1', '0', 'ucFD_GpsSTFlag'],
  ]],
  ['video', 'MirrorInfo', 'VChn_0', [
    ['strFD_LeftRight', '0', '1', 'ucFD_LeftRight'], ['strFD_UpDown', '0', '1', 'ucFD_UpDown'],
  ]],
  ['video', 'MainStreamInfo', 'stVideoPara>\\s*<VChn_0', [
    ['ucFD_FrameRate', '25', '20', 'ucFD_FrameRate'],
    ['uiFD_BitRate', '2048', '4096', 'uiFD_BitRate'],
  ]],
  ['video', 'SubStreamInfo', 'stSubStream', [
    ['ucFD_SFrameRate', '12', '15', 'ucFD_FrameRate'],
    ['uiFD_SBitRate', '256', '512', 'uiFD_BitRate'],
  ]],
  ['network', 'NetWModeInfo', 'stNetWorkMode', [['ucFD_NetWType', '1', '2', 'ucFD_NetType']]],
  ['network', 'LocalNetInfo', 'stLocalEth0', [
    ['strFD_NetMask', '255.255.255.0', '255.255.0.0', 'uiFD_NetMask'],
    ['strFD_GateWay', '192.168.1.1', '192.168.1.2', 'uiFD_GateWay'],
    ['strFD_Mac', '00:00:5E:00:53:21', '00:00:5E:00:53:99', 'strFD_Mac'],
  ]],
  ['network', 'WifiInfo', 'stWifi', [
    ['strFD_SSID', '公交车队-0123', '路 "一" <甲>', 'strFD_SSID'],
    ['strFD_Passwd', 'depot2024', '%&#+"< \'=?密', 'strFD_Passwd'],
    ['ucFD_AuthMode', '3', '4', 'ucFD_AuthMode'], ['ucFD_CryptType', '2', '1', 'ucFD_CryptType'],
  ]],
  ['network', 'GNetInfo', 'stMobileGNet', [
    ['ucFD_NetType', '4', '5', 'ucFD_NetType'], ['strFD_Apn', 'CMNET', 'private.apn', 'strFD_Apn'],
    ['strFD_PhoneNo', '*99#', '*99***1#', 'strFD_PhoneNo'],
    ['strFD_UserName', 'card', '用户@page.css?time', 'strFD_UserName'],
    ['strFD_UserPasswd', 'card', 'a+b=c&d', 'strFD_UserPasswd'],
  ]],
  ['platforms', 'VCmsInfo', 'stCMS', [
    ['ucFD_AddressType', '0', '1', 'ucFD_AddressType'],
    ['strFD_Address', '10.255.255.101', 'cms.fleet.example', 'strFD_Domain'],
    ['usFD_Port', '6608', '6609', 'usFD_Port'],
  ]],
];

for (const [name, id, element, rows] of kSections) {
  test(`${name}: ${id} is read, changed and read back`, async () => {
    await visit(rig, page, name);
    for (const [variable, old] of rows) assert.equal(await get(id, variable), old, variable);
    for (const [variable, , value] of rows) await put(id, variable, value);
    assert.equal(await saveSection(id), 'good', await notice(page, id).innerText());
    for (const [variable, , value, attribute] of rows) {
      assert.equal(rig.setting(element, attribute), value, variable);
      assert.equal(await get(id, variable), value, variable);
    }
    await visit(rig, page, name);
    for (const [variable, , value] of rows) assert.equal(await get(id, variable), value, variable);
  });
}

test('the browser\'s own table gives the recorder\'s character set', async () => {
  const {text, bytes} = await page.evaluate(async () => {
    const {encodeGbk, unstorable} = await import('/js/gbk.js');
    let all = '';
    for (let code = 0x80; code <= 0xffff; code++) {
      const char = String.fromCharCode(code);
      if (unstorable(char) === null) all += char;
    }
    return {text: all, bytes: [...encodeGbk(all)]};
  });
  assert.equal(text.length, 21791);
  const iconv = spawnSync('iconv', ['-f', 'UTF-8', '-t', 'CP936'], {input: text});
  assert.deepEqual(Buffer.from(bytes), iconv.stdout);
});

test('the clock is left alone, set to this device\'s time, and set to another', async () => {
  await visit(rig, page, 'device');
  await put('BaseInfo', 'strFD_CurTime', 'now');
  assert.equal(await saveSection('BaseInfo'), 'good');
  const stored = () => rig.setting('stBaseInfo', 'strFD_CurTime');
  assert.ok(Math.abs(Date.parse(stored().replace(' ', 'T')) - Date.now()) < 60000, stored());
  await put('BaseInfo', 'strFD_CurTime', 'set');
  await page.click('#BaseInfo .main');
  await page.locator('#BaseInfo-strFD_CurTime-error:not([hidden])').waitFor();
  await page.fill('#BaseInfo input[type=datetime-local]', '2030-01-02T03:04:05');
  assert.equal(await saveSection('BaseInfo'), 'good');
  assert.equal(stored(), '2030-01-02 03:04:05');
  assert.equal(await get('BaseInfo', 'strFD_CurTime'), 'keep');
});

test('an address goes back to the placeholder\'s platform', async () => {
  await visit(rig, page, 'platforms');
  await put('VCmsInfo', 'ucFD_AddressType', '0');
  await put('VCmsInfo', 'strFD_Address', 'cms.fleet.example');
  await page.click('#VCmsInfo .main');
  await page.locator('#VCmsInfo-strFD_Address-error:not([hidden])').waitFor();
  await put('VCmsInfo', 'strFD_Address', '10.255.255.102');
  assert.equal(await saveSection('VCmsInfo'), 'good');
  assert.equal(rig.setting('stCMS', 'uiFD_IP'), '203.0.113.102');
});

test('the other Wi-Fi mode brings its own stored values', async () => {
  await visit(rig, page, 'network');
  await put('WifiInfo', 'ucFD_WorkMode', '2');
  await notice(page, 'WifiInfo').filter({hasText: 'access point'}).waitFor();
  assert.equal(await get('WifiInfo', 'strFD_SSID'), '公交车载-0123');
  await page.locator('#WifiInfo [data-field=ucFD_DhcpEnableFlag]').waitFor();
  assert.equal(await saveSection('WifiInfo'), 'good');
  assert.equal(rig.setting('stWifi', 'ucFD_WorkMode'), '2');
  // The recorder accepts the mode, so the service sends nothing of the rest.
  await put('WifiInfo', 'strFD_SSID', '新热点');
  assert.equal(await saveSection('WifiInfo'), 'bad');
  assert.match(await notice(page, 'WifiInfo').innerText(), /Refused/);
  assert.equal(rig.setting('stWifiAp', 'strFD_SSID'), '公交车载-0123');
  assert.equal(await get('WifiInfo', 'strFD_SSID'), '新热点');
  // It refuses the mode: then the rest is sent.
  await rig.fault('for=stWifi,set result:1');
  await put('WifiInfo', 'strFD_Passwd', '热点"密码"');
  await put('WifiInfo', 'ucFD_DhcpEnableFlag', '0');
  await put('WifiInfo', 'ucFD_AuthMode', '1');
  await put('WifiInfo', 'ucFD_CryptType', '3');
  assert.equal(await saveSection('WifiInfo'), 'good');
  await rig.clear();
  const kStored = {strFD_SSID: '新热点', strFD_Passwd: '热点"密码"', ucFD_DhcpEnableFlag: '0',
    ucFD_AuthMode: '1', ucFD_CryptType: '3'};
  for (const [name, value] of Object.entries(kStored))
    assert.equal(rig.setting('stWifiAp', name), value, name);
});

test('GB28181: nothing is saved before the shared places are decided, then all is', async () => {
  await visit(rig, page, 'platforms');
  const before = rig.sets();
  await put('GB28181Info', 'strFD_Manufacturer', '南湾 & 公司');
  await page.click('#GB28181Info .main');
  await page.locator('#GB28181Info-place2-error:not([hidden])').waitFor();
  assert.equal(rig.sets(), before);
  await page.getByRole('button', {name: 'Keep alarm-input IDs'}).click();
  const rows = {ucFD_GB28181Enable: '1', ucFD_StreamType: '1', strFD_ModelName: 'M"1"',
    strFD_ServerIp: '203.0.113.29', usFD_ServerPort: '5061', strFD_ServerID: '34020000002000000009',
    strFD_DeviceId: '34020000001110000999', usFD_DevicePort: '5062', strFD_DeviceUser: 'user<1>',
    strFD_DevicePass: 'p&w', place0: '34020000001310000091', place9: '34020000001340000098'};
  for (const [name, value] of Object.entries(rows)) await put('GB28181Info', name, value);
  assert.equal(await saveSection('GB28181Info'), 'good');
  assert.equal(rig.setting('stGB28181', 'strFD_Manufacturer'), '南湾 & 公司');
  assert.equal(rig.setting('stGB28181', 'ucFD_Enable'), '129');
  for (const [name, value] of Object.entries(rows))
    if (/^(str|us)/.test(name)) assert.equal(rig.setting('stGB28181', name), value, name);
  assert.equal(rig.setting('SUBDEVID_0', 'strFD_LensId'), '34020000001310000091');
  assert.equal(rig.setting('SUBDEVID_1', 'strFD_LensId'), '34020000001310000002');
  for (let k = 2; k < 8; k++) {
    assert.equal(rig.setting(`SUBDEVID_${k}`, 'strFD_LensId'), `3402000000134000000${k - 1}`);
    const alarm = rig.setting(`SUBDEVID_${k - 2}`, 'strFD_AlarmInId');
    assert.equal(alarm, `3402000000134000000${k - 1}`);
  }
  assert.equal(rig.setting('SUBDEVID_7', 'strFD_AlarmInId'), '34020000001340000098');
  await visit(rig, page, 'platforms');
  assert.equal(await page.locator('.notice:visible').count(), 0);
});

test('GB28181: without the exported configuration nothing can be saved', async () => {
  await rig.fault('for=stGB28181 text:<VariCfgSec Action="DEVICE_QUERY"><stGB28181 ' +
      'strFD_ModelName="M"/></VariCfgSec>');
  await rig.fault('for=stVersion text:<VariCfgSec Action="DEVICE_QUERY"><stVersion VideoCnt="0"/>' +
      '</VariCfgSec>');
  await page.goto(`${rig.url}/platforms.html`);
  assert.equal(await settled(page, 'GB28181Info'), 'bad');
  assert.ok(await page.locator('#GB28181Info .main').isDisabled());
  await rig.clear();
});

test('the password changes only with the present one and two equal new ones', async () => {
  await visit(rig, page, 'security');
  await put('UserSecurity', 'current', 'nonsense');
  await put('UserSecurity', 'fresh', 'new"密码<&%');
  await put('UserSecurity', 'repeat', 'other');
  await page.click('#UserSecurity .main');
  await page.locator('#UserSecurity-repeat-error:not([hidden])').waitFor();
  await put('UserSecurity', 'repeat', 'new"密码<&%');
  await page.click('#UserSecurity .main');
  await page.locator('#UserSecurity-current-error:not([hidden])').waitFor();
  assert.equal(rig.setting('USER_0', 'strFD_UserPWD'), kPassword);
  await put('UserSecurity', 'current', kPassword);
  assert.equal(await saveSection('UserSecurity'), 'good');
  assert.equal(rig.setting('USER_0', 'strFD_UserPWD'), 'new"密码<&%');
  assert.equal(await get('UserSecurity', 'fresh'), '');
  await rig.login(page, 'new"密码<&%');
});

test('the lock counter is shown and set back', async () => {
  const body = `ucFD_ErrorCount=3&time=${Math.floor(Date.now() / 1000) - 28800}`;
  await fetch(`${rig.url}/set_LockOfPassword`, {method: 'POST', body});
  await visit(rig, page, 'security');
  await page.locator('#lock', {hasText: '3 of 5'}).waitFor();
  await page.getByRole('button', {name: 'Set counter to zero'}).click();
  assert.equal(await settled(page, 'lock'), 'good');
  assert.equal(rig.setting('stLockOfPassword', 'ucFD_ErrorCount'), '0');
});
