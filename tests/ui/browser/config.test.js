// The configuration to a file and back, the recorder's language, and its own address.
import assert from 'node:assert/strict';
import {execFileSync} from 'node:child_process';
import {readFileSync} from 'node:fs';
import test, {after, before} from 'node:test';
import {field, notice, Rig, settled, visit} from '../rig.js';

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

const importWords = () => notice(page, 'import').innerText();
const choose = (name, buffer) => page.setInputFiles('#import input',
    {name, mimeType: 'application/xml', buffer: Buffer.from(buffer)});

async function exportFile() {
  const [download] = await Promise.all([
    page.waitForEvent('download'),
    page.getByRole('button', {name: 'Export', exact: true}).click(),
  ]);
  return {name: download.suggestedFilename(), text: readFileSync(await download.path(), 'utf8')};
}

const agree = async () => {
  await page.locator('#import .main:visible').click();
  await page.locator('dialog .main').click();
};

test('export, edit, import: only what was edited changes', async () => {
  await visit(rig, page, 'maintenance');
  const {name, text} = await exportFile();
  assert.match(name, /^recorder-80012345-\d{4}-\d\d-\d\d\.xml$/);
  assert.match(text, /strFD_SSID="公交车队-0123"/);
  assert.ok(text.split('\n').length > 50);
  const edited = text.replace('strFD_SSID="公交车队-0123"', 'strFD_SSID="路 &lt;7> &quot;a&amp;b"')
      .replace('strFD_Apn="CMNET"', 'strFD_Apn="fleet"')
      .replace('strFD_Passwd="depot2024"', 'strFD_Passwd="geheim"');
  await choose('edited.xml', edited);
  await page.locator('#import h3', {hasText: 'Settings that would change: 3'}).waitFor();
  const table = await page.locator('#import table').innerText();
  assert.match(table, /stWifi strFD_SSID\s+公交车队-0123\s+路 <7> "a&b/);
  assert.match(table, /strFD_Apn\s+CMNET\s+fleet/);
  assert.doesNotMatch(table, /geheim|depot2024/);
  const sets = rig.sets();
  await page.locator('#import .main').click();
  await page.locator('dialog').getByRole('button', {name: 'Cancel'}).click();
  assert.equal(rig.sets(), sets);
  await agree();
  await page.locator('#import progress').waitFor();
  assert.equal(await settled(page, 'import'), 'good', await importWords());
  assert.equal(rig.setting('stWifi', 'strFD_SSID'), '路 <7> "a&b');
  assert.equal(rig.setting('stWifi', 'strFD_Passwd'), 'geheim');
  assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'fleet');
  const again = await exportFile();
  assert.equal(again.text.replace(/CurTime="[^"]*"/, ''), edited.replace(/CurTime="[^"]*"/, ''));
});

test('a file in the recorder\'s own character set is read', async () => {
  const stored = readFileSync(rig.state);
  const gbk = Buffer.from(stored.toString('latin1').replace('strFD_Apn="fleet"', 'strFD_Apn="gbk"'),
      'latin1');
  await choose('gbk.xml', gbk);
  await page.locator('#import h3', {hasText: 'Settings that would change: 1'}).waitFor();
});

test('a wrong file is refused in the browser, with the reason', async () => {
  const sets = rig.sets();
  const nested = `${'<a>'.repeat(40)}${'</a>'.repeat(40)}`;
  const rows = [
    ['photo.png', '\x89PNG\r\n', /no configuration/],
    ['page.html', '<html></html>', /no configuration/],
    ['cut.xml', '<VariCfgSec Action="DEVICE_QUERY"><stWifi strFD_SS', /no configuration/],
    ['empty.xml', '<VariCfgSec Action="DEVICE_QUERY"/>', /no settings/],
    ['deep.xml', `<VariCfgSec Action="x">${nested}</VariCfgSec>`, /more than 32 levels/],
    ['char.xml', '<VariCfgSec Action="x"><stWifi strFD_SSID="é😀"/></VariCfgSec>',
      /character 😀 in stWifi/],
    ['long.xml', `<VariCfgSec Action="x"><a b="${'x'.repeat(30700)}"/></VariCfgSec>`,
      /at most 30719/],
  ];
  for (const [name, text, pattern] of rows) {
    await choose(name, text);
    await notice(page, 'import').filter({hasText: pattern}).waitFor();
    assert.ok(await page.locator('#import .main').isHidden());
  }
  assert.equal(rig.sets(), sets);
});

test('a file that changes nothing is not sent', async () => {
  const {text} = await exportFile();
  await choose('same.xml', text);
  await notice(page, 'import').filter({hasText: 'already holds everything'}).waitFor();
  assert.ok(await page.locator('#import .main').isHidden());
});

test('an import that the recorder refuses or does not answer is not called done', async () => {
  const {text} = await exportFile();
  await choose('edited.xml', text.replace('strFD_Apn="fleet"', 'strFD_Apn="other"'));
  await rig.fault('for=set result:1');
  await agree();
  await notice(page, 'import').filter({hasText: 'Refused by the recorder'}).waitFor();
  await rig.clear();
  await rig.fault('for=set silent');
  await agree();
  await notice(page, 'import').filter({hasText: 'recorder does not answer'}).waitFor();
  await rig.clear();
  assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'fleet');
});

test('the recorder\'s language changes the pages with it', async () => {
  await visit(rig, page, 'maintenance');
  await field(page, 'LangInfo', 'strLanguage').selectOption('EN');
  await Promise.all([page.waitForEvent('load'), page.click('#LangInfo .main')]);
  assert.equal(rig.setting('stDisplay', 'strLanguage'), 'US');
  await page.getByRole('button', {name: '中文'}).click();
  await page.locator('h1', {hasText: '维护'}).waitFor();
  assert.equal(await page.locator('html').getAttribute('lang'), 'zh-CN');
  await page.getByRole('button', {name: 'English'}).click();
  await page.locator('h1', {hasText: 'Maintenance'}).waitFor();
});

test('the page says the recorder\'s new address, follows it there and reports', async () => {
  await visit(rig, page, 'network');
  const kNew = '192.168.1.89';
  await field(page, 'LocalNetInfo', 'strFD_LocalIp').fill(kNew);
  await page.click('#LocalNetInfo .main');
  assert.match(await page.locator('dialog').innerText(), new RegExp(`http://${kNew}`));
  await page.locator('dialog').getByRole('button', {name: 'Cancel'}).click();
  assert.equal(rig.setting('stLocalEth0', 'uiFD_LocalIp'), rig.address);
  await rig.fault('for=set result:1');
  await page.click('#LocalNetInfo .main');
  await page.locator('dialog .main').click();
  await notice(page, 'LocalNetInfo').filter({hasText: 'Refused by the recorder'}).waitFor();
  await rig.clear();
  await page.click('#LocalNetInfo .main');
  await page.locator('dialog .main').click();
  await notice(page, 'LocalNetInfo').filter({hasText: `Waiting for the recorder at http://${kNew}`})
      .waitFor();
  assert.equal(rig.setting('stLocalEth0', 'uiFD_LocalIp'), kNew);
  execFileSync('ip', ['address', 'add', `${kNew}/24`, 'dev', 'eth0']);
  await page.waitForURL(`http://${kNew}/login.html#moved`);
  await page.locator('.status', {hasText: 'new address'}).waitFor();
});
