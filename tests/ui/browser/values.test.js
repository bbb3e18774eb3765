// Every field of every section: read, changed, saved, and found in the recorder's own file;
// everything else there stays the same.
import assert from 'node:assert/strict';
import test from 'node:test';
import {
  agree, button, dialog, ended, error, field, fieldRow, focused, get, kPassword, press, put, save,
  section, shown, visit, words,
} from '../rig.js';
import {page, rig, sharePage} from '../shared.js';

sharePage();

const kGb = 'stGB28181/';
const kSubId = `${kGb}stGB28181SubID/SUBDEVID_`;
const kCms = 'stCMS/';

// The value at a path, in the recorder's file.
function stored(path) {
  const parts = path.split('/');
  const name = parts.pop();
  return rig.setting(parts.map((part, i) => i + 1 < parts.length ? `${part}[\\s>][^]*?<` : part)
      .join(''), name);
}

// The file without the values of these paths, that is what must not change.
function others(paths) {
  const names = new Set(paths.map((path) => path.split('/').pop()));
  return rig.stored().replace(/(\w+)=("[^"]*"|'[^']*')/g, (all, name) => names.has(name) ? '' : all)
      .replace(/\s+/g, ' ');
}

// page, section, [path, value before, value to set]
const kSections = [
  ['device', 'base', [
    ['stBaseInfo/strFD_DeviceNo', '80012345', '粤B12&34'], ['stBaseInfo/ucFD_TimeZone', '8', '9'],
    ['stBaseInfo/ucFD_GpsSTFlag', '1', '0'],
  ]],
  ['video', 'cameras', [
    ['stMainStream/stVideoPara/VChn_0/ucFD_FrameRate', '25', '20'],
    ['stMainStream/stVideoPara/VChn_2/uiFD_BitRate', '2048', '4096'],
    ['stVideoMirror/stVideoMirrorPara/VChn_7/ucFD_UpDown', '0', '1'],
  ]],
  ['video', 'subStream', [
    ['stSubStream/ucFD_FrameRate', '12', '15'], ['stSubStream/uiFD_BitRate', '256', '512'],
  ]],
  ['network', 'netMode', [['stNetWorkMode/ucFD_NetType', '1', '2']]],
  ['network', 'localEth0', [
    ['stLocalEth0/uiFD_NetMask', '255.255.255.0', '255.255.0.0'],
    ['stLocalEth0/uiFD_GateWay', '192.168.1.1', '192.168.1.2'],
    ['stLocalEth0/strFD_Mac', '00:00:5E:00:53:21', '00:00:5E:00:53:99'],
  ]],
  ['network', 'wifi', [
    ['stWifi/strFD_SSID', '公交车队-0123', '路 "一" <甲>'],
    ['stWifi/strFD_Passwd', 'depot2024', '%&#+"< \'=?密'],
    ['stWifi/ucFD_AuthMode', '3', '4'], ['stWifi/ucFD_CryptType', '2', '1'],
  ]],
  ['network', 'mobile', [
    ['stMobileGNet/ucFD_NetType', '4', '5'], ['stMobileGNet/strFD_Apn', 'CMNET', 'private.apn'],
    ['stMobileGNet/strFD_PhoneNo', '*99#', '*99***1#'],
    ['stMobileGNet/strFD_UserName', 'card', '用户@page.css?time'],
    ['stMobileGNet/strFD_UserPasswd', 'card', 'a+b=c&d'],
  ]],
  ['platforms', 'gb28181', [
    [`${kGb}strFD_Manufacturer`, 'NanWan', '南湾 & 公司'],
    [`${kGb}strFD_ModelName`, 'MDVR-8CH', 'M"1"'],
    [`${kGb}strFD_ServerIp`, '203.0.113.28', '203.0.113.29'],
    [`${kGb}usFD_ServerPort`, '5060', '5061'],
    [`${kGb}strFD_DeviceUser`, '34020000001110000123', 'user<1>'],
    [`${kGb}strFD_DevicePass`, '12345678', 'p&w'],
    [`${kSubId}0/strFD_LensId`, '34020000001310000001', 'lens & <1>'],
    [`${kSubId}7/strFD_AlarmInId`, '34020000001340000008', '34020000001340000098'],
  ]],
];

for (const [name, id, rows] of kSections) {
  test(`${name}: ${id} is read, changed and read back, and nothing else`, async () => {
    await visit(rig, page, name);
    const paths = rows.map(([path]) => path);
    const beside = others(paths);
    for (const [path, old] of rows) assert.equal(await get(page, path), old, path);
    for (const [path, , value] of rows) await put(page, path, value);
    assert.equal(await save(page, id), 'applied', await words(page, id));
    for (const [path, , value] of rows) {
      assert.equal(stored(path), value, path);
      assert.equal(await get(page, path), value, path);
    }
    assert.equal(others(paths), beside);
  });
}

test('the access point: name, password and mode are saved, also one after the other', async () => {
  await visit(rig, page, 'network');
  await put(page, 'stWifi/ucFD_WorkMode', '2');
  assert.equal(await get(page, 'stWifiAp/strFD_SSID'), '公交车载-0123');
  await put(page, 'stWifiAp/strFD_SSID', '新热点 & <1>');
  assert.equal(await save(page, 'wifi'), 'applied', await words(page, 'wifi'));
  assert.equal(stored('stWifi/ucFD_WorkMode'), '2');
  assert.equal(stored('stWifiAp/strFD_SSID'), '新热点 & <1>');
  await put(page, 'stWifiAp/strFD_Passwd', 'bus-second');
  await put(page, 'stWifiAp/ucFD_DhcpEnableFlag', '0');
  assert.equal(await save(page, 'wifi'), 'applied', await words(page, 'wifi'));
  assert.equal(stored('stWifiAp/strFD_Passwd'), 'bus-second');
  assert.equal(stored('stWifiAp/ucFD_DhcpEnableFlag'), '0');
  assert.equal(stored('stWifi/strFD_SSID'), '公交车队-0123');
});

test('GB28181 is switched off, and on again, without touching an ID', async () => {
  await visit(rig, page, 'platforms');
  const beside = others([`${kGb}ucFD_Enable`]);
  await put(page, `${kGb}enable`, '0');
  assert.equal(await save(page, 'gb28181'), 'applied', await words(page, 'gb28181'));
  assert.equal(stored(`${kGb}ucFD_Enable`), '0');
  assert.equal(others([`${kGb}ucFD_Enable`]), beside);
  await put(page, `${kGb}enable`, '1');
  await put(page, `${kGb}streamType`, '1');
  assert.equal(await save(page, 'gb28181'), 'applied', await words(page, 'gb28181'));
  assert.equal(stored(`${kGb}ucFD_Enable`), '129');
  assert.equal(others([`${kGb}ucFD_Enable`]), beside);
});

test('as many IDs and cameras are shown as the recorder has, also when it has others later',
    async () => {
      await visit(rig, page, 'platforms');
      assert.equal(await page.locator('[data-field$="/strFD_LensId"]').count(), 8);
      await rig.change('<stGB28181><stGB28181SubID>' +
          '<SUBDEVID_1 strFD_LensId="other &amp; &lt;2&gt;"/></stGB28181SubID>' +
          '</stGB28181><stMainStream><stVideoPara>' +
          '<VChn_8 ucFD_FrameRate="8" uiFD_BitRate="800"/></stVideoPara></stMainStream>');
      await visit(rig, page, 'platforms');
      assert.equal(await get(page, `${kSubId}1/strFD_LensId`), 'other & <2>');
      await visit(rig, page, 'video');
      assert.equal(await get(page, 'stMainStream/stVideoPara/VChn_8/ucFD_FrameRate'), '8');
    });

test('another number of channels while somebody types: what was typed is sent, and only that',
    async () => {
      await visit(rig, page, 'platforms');
      await put(page, `${kSubId}7/strFD_LensId`, 'lens eight');
      await rig.change('<stVersion VideoCnt="4"/>');
      const beside = others([`${kSubId}7/strFD_LensId`]);
      const end = await save(page, 'gb28181');
      assert.equal(end, 'applied', await words(page, 'gb28181'));
      assert.equal(stored(`${kSubId}7/strFD_LensId`), 'lens eight');
      assert.equal(others([`${kSubId}7/strFD_LensId`]), beside);
    });

test('a switch value above 1 is on, stays what it is, and is set to 0 and 1', async () => {
  const kFlag = 'stBaseInfo/ucFD_GpsSTFlag';
  await rig.change('<stBaseInfo ucFD_GpsSTFlag="3"/><stWifiAp ucFD_DhcpEnableFlag="2"/>' +
      '<stVideoMirror><stVideoMirrorPara><VChn_1 ucFD_UpDown="7"/></stVideoMirrorPara>' +
      '</stVideoMirror>');
  await visit(rig, page, 'video');
  assert.equal(await get(page, 'stVideoMirror/stVideoMirrorPara/VChn_1/ucFD_UpDown'), '1');
  await visit(rig, page, 'device');
  assert.equal(await get(page, kFlag), '1');
  await put(page, 'stBaseInfo/ucFD_TimeZone', '7');
  assert.equal(await save(page, 'base'), 'applied', await words(page, 'base'));
  assert.equal(stored(kFlag), '3');
  await put(page, kFlag, '0');
  assert.equal(await save(page, 'base'), 'applied');
  assert.equal(stored(kFlag), '0');
  await put(page, kFlag, '1');
  assert.equal(await save(page, 'base'), 'applied');
  assert.equal(stored(kFlag), '1');
});

// page, section, path, input, message
const kWrong = [
  ['network', 'localEth0', 'stLocalEth0/uiFD_NetMask', '255.0.255.0', /mask/i],
  ['network', 'localEth0', 'stLocalEth0/uiFD_GateWay', '10.0.0.1', /192\.168\.1\.0/],
  ['network', 'localEth0', 'stLocalEth0/uiFD_LocalIp', '192.168.1.', /address/i],
  ['network', 'localEth0', 'stLocalEth0/strFD_Mac', '00:00:5E', /./],
  ['network', 'wifi', 'stWifi/strFD_SSID', '车'.repeat(16), /32.*31|31.*32/s],
  ['network', 'wifi', 'stWifi/strFD_SSID', '', /./],
  ['network', 'wifi', 'stWifi/strFD_SSID', 'a😀', /😀/],
  ['network', 'wifi', 'stWifi/ucFD_AuthMode', '256', /255/],
  ['network', 'mobile', 'stMobileGNet/strFD_PhoneNo', '1'.repeat(24), /24.*23|23.*24/s],
  ['video', 'subStream', 'stSubStream/ucFD_FrameRate', '256', /./],
  ['video', 'subStream', 'stSubStream/ucFD_FrameRate', '0', /./],
  ['video', 'subStream', 'stSubStream/uiFD_BitRate', '99999999', /./],
  ['video', 'cameras', 'stMainStream/stVideoPara/VChn_3/ucFD_FrameRate', '200', /./],
  ['platforms', 'server', 'stCMS/usFD_Port', '65536', /65535/],
  ['device', 'base', 'stBaseInfo/strFD_DeviceNo', '1234', /5/],
];

test('what is wrong is told at its field, has the focus, and is not sent', async () => {
  let open = '';
  for (const [name, id, path, value, pattern] of kWrong) {
    if (name !== open) await visit(rig, page, open = name);
    const sets = rig.sets();
    const old = await get(page, path);
    await put(page, path, value);
    await button(page, id, 'save').click();
    assert.match(await error(page, path), pattern, `${path} ${value}`);
    assert.equal(await focused(page), path);
    assert.equal(await dialog(page).count(), 0, path);
    assert.equal(rig.sets(), sets);
    await put(page, path, old);
    await fieldRow(page, path).locator('[aria-invalid="true"]').waitFor({state: 'detached'});
  }
});

test('blanks around an address are taken off', async () => {
  await visit(rig, page, 'network');
  await put(page, 'stLocalEth0/uiFD_GateWay', ' 192.168.1.7 ');
  assert.equal(await save(page, 'localEth0'), 'applied', await words(page, 'localEth0'));
  assert.equal(stored('stLocalEth0/uiFD_GateWay'), '192.168.1.7');
  assert.equal(await get(page, 'stLocalEth0/uiFD_GateWay'), '192.168.1.7');
});

test('the platform by address and by domain: each keeps its own text', async () => {
  await visit(rig, page, 'platforms');
  assert.equal(await get(page, `${kCms}uiFD_IP`), '10.255.255.101');
  await put(page, `${kCms}ucFD_AddressType`, '1');
  assert.notEqual(await get(page, `${kCms}strFD_Domain`), '10.255.255.101');
  await put(page, `${kCms}strFD_Domain`, 'cms.fleet.example');
  assert.equal(await save(page, 'server'), 'applied', await words(page, 'server'));
  assert.equal(stored(`${kCms}strFD_Domain`), 'cms.fleet.example');
  assert.equal(stored(`${kCms}ucFD_AddressType`), '1');
  assert.equal(stored(`${kCms}uiFD_IP`), '203.0.113.101');
  await put(page, `${kCms}ucFD_AddressType`, '0');
  assert.notEqual(await get(page, `${kCms}uiFD_IP`), 'cms.fleet.example');
  await put(page, `${kCms}uiFD_IP`, '10.255.255.102');
  assert.equal(await save(page, 'server'), 'applied', await words(page, 'server'));
  assert.equal(stored(`${kCms}uiFD_IP`), '203.0.113.102');
  assert.equal(stored(`${kCms}strFD_Domain`), 'cms.fleet.example');
});

test('script in a reply of the recorder is text', async () => {
  const hostile = '&lt;img src=x onerror=&quot;window.hit=1&quot;&gt;';
  await rig.fault('for=stSystemInfo text:<VariCfgSec Action="DEVICE_QUERY" Result="0">' +
      `<stSystemInfo GpsExist="1" GpsPos="${hostile}" AppVer="${hostile.slice(0, 60)}"` +
      ' DeviceNo="&quot;,&quot;result&quot;:0}"/></VariCfgSec>');
  await page.goto('about:blank');
  await page.goto(`${rig.url}/app.html#/status`);
  await page.locator('main', {hasText: '<img src=x onerror="window.hit=1">'}).waitFor();
  assert.match(await page.locator('main').innerText(), /","result":0}/);
  assert.equal(await page.evaluate(() => window.hit), undefined);
  assert.equal(await page.locator('main img, main script').count(), 0);
});

test('the password changes only with the present one and two equal new ones', async () => {
  const kNew = 'new"密码<&%';
  await visit(rig, page, 'security');
  await put(page, 'current', 'nonsense');
  await put(page, 'fresh', kNew);
  await put(page, 'repeat', 'other');
  await press(page, 'password');
  await error(page, 'repeat');
  await put(page, 'repeat', kNew);
  await press(page, 'password');
  await agree(page);
  await error(page, 'current');
  assert.equal(rig.setting('USER_0', 'strFD_UserPWD'), kPassword);
  await put(page, 'current', kPassword);
  assert.equal(await save(page, 'password'), 'applied');
  assert.equal(rig.setting('USER_0', 'strFD_UserPWD'), kNew);
  assert.equal(await get(page, 'fresh'), '');
  await rig.login(page, kNew);
});

test('the lock counter is shown and set back', async () => {
  const time = Math.floor(Date.now() / 1000) - 28800;
  await rig.post('set_LockOfPassword', `ucFD_ErrorCount=3&time=${time}`);
  await visit(rig, page, 'security');
  await section(page, 'lock').filter({hasText: /3 of 5/}).waitFor();
  await button(page, 'lock', 'reset').click();
  assert.equal(await ended(page, 'lock'), 'applied');
  await section(page, 'lock').filter({hasText: /0 of 5/}).waitFor();
  assert.equal(rig.setting('stLockOfPassword', 'ucFD_ErrorCount'), '0');
});

test('the recorder\'s language is one thing, the pages\' another', async () => {
  await visit(rig, page, 'device');
  await put(page, 'stDisplay/strLanguage', 'EN');
  assert.equal(await save(page, 'language'), 'applied');
  assert.equal(rig.setting('stDisplay', 'strLanguage'), 'US');
  await shown(page, 'device');
  assert.equal(await field(page, 'stDisplay/strLanguage').first().isVisible(), true);
});
