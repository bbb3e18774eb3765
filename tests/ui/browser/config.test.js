// Exporting and importing the configuration, another recorder's file, and the recorder's own
// address.
import assert from 'node:assert/strict';
import {execFileSync} from 'node:child_process';
import {readFileSync} from 'node:fs';
import test from 'node:test';
import {
  agree, asksToStay, button, cancel, dialog, ended, line, press, put, section, until, visit,
} from '../rig.js';
import {page, rig, sharePage} from '../shared.js';

sharePage('maintenance');

const row = (path) => page.locator(`[data-setting="${path}"]`);
const tick = (path) => row(path).locator('input');
const said = () => section(page, 'import').innerText();
const go = () => button(page, 'import', 'save');

async function choose(name, text) {
  await page.setInputFiles('[data-section="import"] input[type=file]',
      {name, mimeType: 'application/xml', buffer: Buffer.from(text)});
}

async function exportFile() {
  const [download] = await Promise.all([
    page.waitForEvent('download'), button(page, 'export', 'save').click(),
  ]);
  return {name: download.suggestedFilename(), text: readFileSync(await download.path(), 'utf8')};
}

async function bring() {
  await press(page, 'import');
  await agree(page);
  return ended(page, 'import');
}

const clockless = (text) => text.replace(/CurTime="[^"]*"/, '');

test('export, edit, import: only what was edited changes; words, not names, tell it', async () => {
  const {name, text} = await exportFile();
  assert.match(name, /^recorder-80012345-\d{4}-\d\d-\d\d\.xml$/);
  assert.match(text, /strFD_SSID="公交车队-0123"/);
  const edited = text
      .replace('strFD_SSID="公交车队-0123"', 'strFD_SSID="路 &lt;7> &quot;a&amp;b"')
      .replace('strFD_Apn="CMNET"', 'strFD_Apn="fleet"')
      .replace('strFD_Passwd="depot2024"', 'strFD_Passwd="geheim"');
  await choose('edited.xml', edited);
  await row('stWifi/strFD_SSID').waitFor();
  const table = await section(page, 'import').locator('table').innerText();
  assert.match(table, /公交车队-0123[^]*路 <7> "a&b/);
  assert.match(table, /CMNET[^]*fleet/);
  assert.doesNotMatch(table, /geheim|depot2024|strFD_|stWifi/);
  const sets = rig.sets();
  await go().click();
  await cancel(page);
  assert.equal(rig.sets(), sets);
  assert.equal(await bring(), 'applied', await said());
  assert.equal(rig.setting('stWifi', 'strFD_SSID'), '路 <7> "a&b');
  assert.equal(rig.setting('stWifi', 'strFD_Passwd'), 'geheim');
  assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'fleet');
  const again = await exportFile();
  assert.equal(clockless(again.text), clockless(edited));
});

test('after an import the former values can be restored', async () => {
  const {text} = await exportFile();
  await choose('edited.xml',
      text.replace('"CMNET"', '"fleet"').replace('"depot2024"', '"geheim"'));
  assert.equal(await bring(), 'applied', await said());
  assert.equal(rig.setting('stWifi', 'strFD_Passwd'), 'geheim');
  await line(page, 'import').evaluate((node) => node.removeAttribute('data-note'));
  await button(page, 'import', 'restore').click();
  await agree(page);
  assert.equal(await ended(page, 'import'), 'applied', await said());
  assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'CMNET');
  assert.equal(rig.setting('stWifi', 'strFD_Passwd'), 'depot2024');
});

test('a row can be left out', async () => {
  const {text} = await exportFile();
  await choose('edited.xml', text.replace('"CMNET"', '"fleet"').replace('"*99#"', '"*98#"'));
  await tick('stMobileGNet/strFD_PhoneNo').uncheck();
  assert.equal(await bring(), 'applied', await said());
  assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'fleet');
  assert.equal(rig.setting('stMobileGNet', 'strFD_PhoneNo'), '*99#');
});

test('what somebody changed while the file was looked at is asked about again', async () => {
  const {text} = await exportFile();
  await choose('edited.xml', text.replace('"CMNET"', '"fleet"'));
  await row('stMobileGNet/strFD_Apn').waitFor();
  await rig.change('<stMobileGNet strFD_Apn="colleague"/>');
  const sets = rig.sets();
  assert.equal(await bring(), 'conflict', await said());
  assert.equal(rig.sets(), sets);
  assert.match(await row('stMobileGNet/strFD_Apn').innerText(), /changed by somebody else[^]*colleague/i);
  await line(page, 'import').evaluate((node) => node.removeAttribute('data-note'));
  assert.equal(await bring(), 'applied', await said());
  assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'fleet');
});

// The settings that belong to this recorder alone.
const kOwn = [
  'stBaseInfo/strFD_DeviceNo', 'stVehicle/strFD_DeviceNum', 'stVehicle/strFD_LicensePlate',
  'stLocalEth0/uiFD_LocalIp', 'stGB28181/strFD_DeviceId', 'stGB28181/strFD_DeviceUser',
];

test('another recorder\'s number, plate, addresses and IDs stay out until added', async () => {
  const {text} = await exportFile();
  const other = text.replaceAll('80012345', '80054321').replaceAll('粤B12345', '粤B54321')
      .replaceAll('192.168.1.88', '192.168.1.99')
      .replaceAll('34020000001110000123', '34020000001110000777')
      .replace('"CMNET"', '"fleet"');
  await choose('other.xml', other);
  await page.locator('[data-foreign="80054321"]').waitFor();
  for (const path of kOwn) assert.equal(await tick(path).isChecked(), false, path);
  assert.equal(await tick('stMobileGNet/strFD_Apn').isChecked(), true);
  assert.equal(await bring(), 'applied', await said());
  assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'fleet');
  assert.equal(rig.setting('stBaseInfo', 'strFD_DeviceNo'), '80012345');
  assert.equal(rig.setting('stVehicle', 'strFD_LicensePlate'), '粤B12345');
  assert.equal(rig.setting('stLocalEth0', 'uiFD_LocalIp'), '192.168.1.88');
  assert.equal(rig.setting('stGB28181', 'strFD_DeviceId'), '34020000001110000123');
  await choose('other.xml', other);
  await tick('stVehicle/strFD_LicensePlate').check();
  assert.equal(await bring(), 'applied', await said());
  assert.equal(rig.setting('stVehicle', 'strFD_LicensePlate'), '粤B54321');
  assert.equal(rig.setting('stBaseInfo', 'strFD_DeviceNo'), '80012345');
});

test('a file in the recorder\'s own character set is read', async () => {
  const text = readFileSync(rig.state).toString('latin1').replace('"CMNET"', '"gbk"');
  await choose('gbk.xml', Buffer.from(text, 'latin1'));
  await row('stMobileGNet/strFD_Apn').filter({hasText: 'gbk'}).waitFor();
  assert.equal(await page.locator('[data-setting]').count(), 1);
});

// file, content, reason
const kWrong = [
  ['photo.png', '\x89PNG\r\n', /no configuration/i],
  ['page.html', '<html></html>', /no configuration/i],
  ['cut.xml', '<VariCfgSec Action="DEVICE_QUERY"><stWifi strFD_SS', /cut|end/i],
  ['empty.xml', '<VariCfgSec Action="DEVICE_QUERY"/>', /no settings|empty/i],
  ['twice.xml', '<VariCfgSec><stWifi strFD_SSID="a" strFD_SSID="b"/></VariCfgSec>',
    /twice|repeat|more than once/i],
  ['twice2.xml', '<VariCfgSec><stWifi strFD_SSID="a"/><stWifi strFD_SSID="b"/></VariCfgSec>',
    /twice|repeat|more than once/i],
  ['deep.xml', `<VariCfgSec>${'<a>'.repeat(40)}${'</a>'.repeat(40)}</VariCfgSec>`, /32/],
  ['char.xml', '<VariCfgSec><stWifi strFD_SSID="é😀"/></VariCfgSec>', /😀/],
  ['long.xml', `<VariCfgSec><a b="${'x'.repeat(30700)}"/></VariCfgSec>`, /30,?719/],
];

test('a wrong file is refused, with the reason, and nothing is sent', async () => {
  const sets = rig.sets();
  for (const [name, text, pattern] of kWrong) {
    await choose(name, text);
    await line(page, 'import').filter({hasText: pattern}).waitFor();
    assert.equal(await go().count(), 0, name);
  }
  assert.equal(rig.sets(), sets);
});

test('a file that changes nothing is not sent', async () => {
  const {text} = await exportFile();
  await choose('same.xml', text);
  await line(page, 'import').filter({hasText: /already/i}).waitFor();
  assert.equal(await go().count(), 0);
});

test('an import that the recorder refuses or does not answer is not called done', async () => {
  const {text} = await exportFile();
  await choose('edited.xml', text.replace('"CMNET"', '"fleet"'));
  await rig.fault('for=set result:1');
  assert.equal(await bring(), 'refused');
  await rig.clear();
  await rig.fault('for=set silent');
  assert.equal(await bring(), 'deviceSilent');
  assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'CMNET');
});

test('closing while an import is under way asks, before and after it does not', async () => {
  const {text} = await exportFile();
  await choose('edited.xml', text.replace('"CMNET"', '"fleet"'));
  await rig.fault('for=set delay:1500');
  const sets = rig.sets();
  await press(page, 'import');
  assert.equal(await asksToStay(page), false);
  await agree(page);
  await until(() => rig.sets() > sets, 'the set to reach the recorder');
  assert.equal(await asksToStay(page), true);
  assert.equal(await ended(page, 'import'), 'applied', await said());
  assert.equal(await asksToStay(page), false);
});

// From here on the recorder's address changes, so these come last.
async function arrive(address) {
  execFileSync('ip', ['address', 'add', `${address}/24`, 'dev', 'eth0']);
  await page.waitForURL((url) => url.hostname === address);
  await page.locator('#password').waitFor();
  assert.match(await page.locator('body').innerText(), /new address/i);
}

test('the recorder\'s new address is said before, and followed without a question', async () => {
  const asked = [];
  page.on('dialog', (question) => asked.push(question.type()));
  await visit(rig, page, 'network');
  await put(page, 'stLocalEth0/uiFD_LocalIp', '192.168.1.89');
  await button(page, 'localEth0', 'save').click();
  assert.match(await dialog(page).innerText(), /192\.168\.1\.89/);
  await cancel(page);
  assert.equal(rig.setting('stLocalEth0', 'uiFD_LocalIp'), rig.address);
  await rig.fault('for=set result:1');
  await button(page, 'localEth0', 'save').click();
  await agree(page);
  assert.equal(await ended(page, 'localEth0'), 'refused');
  await rig.clear();
  await button(page, 'localEth0', 'save').click();
  await agree(page);
  await until(() => rig.setting('stLocalEth0', 'uiFD_LocalIp') === '192.168.1.89', 'the set');
  await arrive('192.168.1.89');
  assert.deepEqual(asked, []);
});

test('an import that moves the recorder is followed', async () => {
  await rig.login(page);
  await visit(rig, page, 'maintenance');
  const {text} = await exportFile();
  await choose('moved.xml', text.replace('"192.168.1.88"', '"192.168.1.90"'));
  await go().click();
  assert.match(await dialog(page).innerText(), /192\.168\.1\.90/);
  const said = [];
  page.on('console', (message) => said.push(message.text()));
  await page.locator('[data-section=import]').evaluate((card) => {
    new MutationObserver(() => console.log(card.innerText))
        .observe(card, {subtree: true, childList: true, characterData: true});
  });
  const arrived = () => said.some((text) => /answers at its new address/.test(text));
  await page.route('http://192.168.1.90/login.html', async (route) => {
    await until(arrived, 'the news, while the page there is on its way').catch(() => {});
    await route.continue();
  });
  await agree(page);
  await until(() => rig.setting('stLocalEth0', 'uiFD_LocalIp') === '192.168.1.90', 'the set');
  await arrive('192.168.1.90');
  assert.ok(arrived(), said.join());
  assert.doesNotMatch(said.join(), /nothing answers there/);
});
