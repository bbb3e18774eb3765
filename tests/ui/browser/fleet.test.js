// A template for many recorders: made here, applied elsewhere, told line by line, kept on a list.
import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import test from 'node:test';
import {violations} from '../axe.js';
import {
  agree, button, cancel, dialog, ended, kCab, kDesk, kPhone, memory, press, section, visit,
} from '../rig.js';
import {page, rig, sharePage} from '../shared.js';

const kApn = 'stMobileGNet/strFD_Apn';
const kPlate = 'stVehicle/strFD_LicensePlate';
const kSecret = 'stWifi/strFD_Passwd';
const kTemplate = '<VariCfgSec><stMobileGNet strFD_Apn="fleet" strFD_PhoneNo="*99#"/>' +
    '<stPower usPOffDelayTime="120"/><stWifi strFD_Passwd="geheim"/></VariCfgSec>';

sharePage('fleet', () =>
  page.evaluate(() => localStorage.removeItem('fleet.runs')));

const group = (name) => section(page, 'template').locator(`[data-group="${name}"]`);
const take = (path) => section(page, 'template').locator(`[data-setting="${path}"] input`);
const line = (path) => section(page, 'apply').locator(`[data-line="${path}"]`);
const took = (path) => line(path).getAttribute('data-took');
const runs = () => page.locator('[data-run]').evaluateAll((all) =>
  all.map(({dataset}) => [dataset.run, dataset.end]));

const choose = (text, name = 'depot.xml') =>
  page.setInputFiles('[data-section="apply"] input[type=file]',
      {name, mimeType: 'application/xml', buffer: Buffer.from(text)});

async function saved(id) {
  const [download] = await Promise.all([
    page.waitForEvent('download'), button(page, id, 'save').click(),
  ]);
  return {name: download.suggestedFilename(), text: readFileSync(await download.path(), 'utf8')};
}

async function apply() {
  await press(page, 'apply');
  await agree(page);
  return ended(page, 'apply');
}

test('a template holds the chosen settings; what names this recorder only by hand', async () => {
  for (const name of ['stVehicle', 'stMobileGNet', 'stWifi', 'stPower'])
    await group(name).locator('.all input').check();
  await page.fill('#find-template', 'depot2024');
  assert.match(await section(page, 'template').innerText(), /\b0 of/);
  await page.fill('#template-name', 'depot north');
  const {name, text} = await saved('template');
  assert.match(name, /^template-depot-north-\d{4}-\d\d-\d\d\.xml$/);
  assert.match(text, /strFD_Apn="CMNET"/);
  assert.match(text, /usPOffDelayTime="/);
  const others = ['80012345', '粤B12345', 'depot2024', '公交车队', '张伟', 'stCMS', 'stBaseInfo'];
  for (const own of others)
    assert.ok(!text.includes(own), `${own} in ${text}`);
  await page.fill('#find-template', 'strFD_LicensePlate');
  await take(kPlate).check();
  await page.fill('#find-template', kSecret);
  await take(kSecret).check();
  await page.locator('[data-apart="2"]').waitFor();
  const byHand = (await saved('template')).text;
  assert.match(byHand, /粤B12345/);
  assert.match(byHand, /depot2024/);
  assert.doesNotMatch(await section(page, 'template').innerText(), /depot2024/);
});

test('a saved template changes nothing where it was made, and any import reads it', async () => {
  await group('stMobileGNet').locator('.all input').check();
  const {text} = await saved('template');
  await choose(text);
  assert.equal(await ended(page, 'apply'), 'unchanged');
  assert.equal(await took(kApn), 'same');
  assert.deepEqual(await runs(), [['80012345', 'unchanged']]);
  await rig.change('<stMobileGNet strFD_Apn="other"/>');
  await visit(rig, page, 'maintenance');
  await page.setInputFiles('[data-section="import"] input[type=file]',
      {name: 'a.xml', mimeType: 'application/xml', buffer: Buffer.from(text)});
  await page.locator(`[data-section="import"] [data-setting="${kApn}"]`).waitFor();
  assert.equal(await page.locator('[data-section="import"] [data-setting]').count(), 1);
});

test('another recorder gets what it lacks; each line says what it took', async () => {
  await rig.change('<stBaseInfo strFD_DeviceNo="80054321"/>' +
      '<stVehicle strFD_LicensePlate="=1+1"/>');
  await visit(rig, page, 'fleet');
  await choose(kTemplate);
  const row = section(page, 'apply').locator(`[data-setting="${kApn}"]`);
  assert.match(await row.innerText(), /CMNET[^]*fleet/);
  assert.doesNotMatch(await section(page, 'apply').innerText(), /geheim|depot2024|stMobileGNet/);
  await button(page, 'apply', 'save').click();
  await cancel(page);
  assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'CMNET');
  assert.deepEqual(await runs(), []);
  assert.equal(await apply(), 'applied');
  assert.equal(await page.evaluate(() => document.activeElement.type), 'file');
  assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'fleet');
  assert.equal(rig.setting('stWifi', 'strFD_Passwd'), 'geheim');
  assert.deepEqual([await took(kApn), await took('stMobileGNet/strFD_PhoneNo')], ['taken', 'same']);
  assert.doesNotMatch(await section(page, 'apply').innerText(), /geheim|depot2024/);
  assert.doesNotMatch(await memory(page), /geheim|depot2024/);
  assert.deepEqual(await runs(), [['80054321', 'applied']]);
  const {name, text} = await saved('runs');
  assert.match(name, /^applied-\d{4}-\d\d-\d\d\.csv$/);
  assert.match(text, /"80054321","'=1\+1","192\.168\.1\.88","depot\.xml","apply","applied","3","1"/);
  assert.doesNotMatch(text, /geheim|depot2024/);
});

test('what the recorder keeps is told, and a refusal is no success', async () => {
  await choose(kTemplate);
  await rig.fault('for=set result:1');
  assert.equal(await apply(), 'refused');
  assert.equal(await took(kApn), 'kept');
  assert.equal(await took('stMobileGNet/strFD_PhoneNo'), 'same');
  await rig.clear();
  assert.equal(await apply(), 'applied');
  assert.equal(await took(kApn), 'taken');
  assert.deepEqual((await runs()).map(([, end]) => end).sort(), ['applied', 'refused']);
});

test('a row that is left out is not sent, and former values come back', async () => {
  await choose(kTemplate);
  await section(page, 'apply').locator(`[data-setting="${kApn}"] input`).uncheck();
  assert.equal(await apply(), 'applied');
  assert.equal(await took(kApn), 'left');
  // What is now held is what a template made here takes.
  await page.fill('#find-template', 'usPOffDelayTime');
  await section(page, 'template').locator('.take').filter({hasText: '120'}).waitFor();
  assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'CMNET');
  assert.equal(rig.setting('stPower', 'usPOffDelayTime'), '120');
  await button(page, 'apply', 'restore').click();
  await agree(page);
  await page.locator('[data-run] .tag').waitFor();
  assert.notEqual(rig.setting('stPower', 'usPOffDelayTime'), '120');
  assert.equal(rig.setting('stWifi', 'strFD_Passwd'), 'depot2024');
});

test('the list outlasts a reload, is saved, added again and emptied', async () => {
  await choose(kTemplate);
  await apply();
  await visit(rig, page, 'fleet');
  assert.equal((await runs()).length, 1);
  const {text} = await saved('runs');
  const clear = () => button(page, 'runs', 'clear').click();
  await clear();
  assert.equal((await runs()).length, 1);
  await clear();
  await page.locator('[data-run]').waitFor({state: 'detached'});
  const add = (content) => page.setInputFiles('[data-section="runs"] input[type=file]',
      {name: 'a.csv', mimeType: 'text/csv', buffer: Buffer.from(content)});
  await add('<VariCfgSec/>');
  await section(page, 'runs').locator('[data-note=foreign]').waitFor();
  await add(text);
  await page.locator('[data-run]').waitFor();
  assert.equal((await runs()).length, 1);
});

test('on a phone both values of a compared setting are in sight, and a section takes one line',
    async () => {
      await page.setViewportSize(kPhone);
      await choose('<VariCfgSec><stBaseInfo strFD_DeviceNo="80054321"/></VariCfgSec>');
      const cells = section(page, 'apply').locator('[data-setting] td');
      await cells.nth(2).waitFor();
      const hidden = await cells.evaluateAll((all) => all.filter((cell) => {
        const inside = document.createRange();
        inside.selectNodeContents(cell);
        const {right} = cell.closest('.scroll').getBoundingClientRect();
        return inside.getBoundingClientRect().right > right;
      }).length);
      assert.equal(hidden, 0);
      await group('stPower').locator('.all input').check();
      const [name, mark] = await group('stPower').locator('h3, .all').evaluateAll((all) =>
        all.map((node) => node.getBoundingClientRect().toJSON()));
      assert.ok(mark.left >= name.right && mark.top < name.bottom);
      await page.setViewportSize(kDesk);
    });

test('what is open is accessible and fits small screens', async () => {
  await page.fill('#find-template', 'strFD_');
  await choose(kTemplate);
  await apply();
  for (const size of [kCab, kPhone]) {
    await page.setViewportSize(size);
    assert.deepEqual(await violations(page), []);
    assert.ok(await page.evaluate(() =>
      document.documentElement.scrollWidth <= document.documentElement.clientWidth));
  }
  assert.equal(await dialog(page).count(), 0);
});
