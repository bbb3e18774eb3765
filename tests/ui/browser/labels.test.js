// Names of code numbers that a deployment puts beside the pages, against the real pair.
import assert from 'node:assert/strict';
import {rmSync, writeFileSync} from 'node:fs';
import {join} from 'node:path';
import test, {after, before, beforeEach} from 'node:test';
import {dialog, field, fieldRow, go, press, put, Rig, save} from '../rig.js';

const kAuth = 'stWifi/ucFD_AuthMode';
const kCipher = 'stWifi/ucFD_CryptType';
const kZone = 'stBaseInfo/ucFD_TimeZone';
const kStream = 'stGB28181/streamType';
const kNames = {
  [kAuth]: {0: {zh: '开放', en: 'Open'}, 2: 'WPA', 3: 'WPA2 <b>'},
  [kZone]: {0: 'UTC', 9: {zh: '东京', en: 'Tokyo'}},
  [kStream]: {1: {zh: '主动', en: 'Active'}},
};

let rig;
let file;
before(async () => {
  rig = new Rig();
  rig.ownRoot();
  file = join(rig.root, 'labels.json');
  await rig.startDevice();
  await rig.startDaemon();
  await rig.startBrowser();
});
after(() => rig.stop());
beforeEach(async () => {
  rmSync(file, {force: true});
  await rig.reset();
});

const serve = (content) => writeFileSync(file, content);
const name = (names) => serve(JSON.stringify(names));

async function enter(options) {
  const page = await rig.enter(options);
  await page.waitForLoadState('networkidle');
  return page;
}

const options = (page, path) => field(page, path).locator('option').allInnerTexts();
const notice = (page) => page.locator('main > [data-note=labels]');

test('named numbers are choices, a recorder’s number without a name stays one', async () => {
  name(kNames);
  const page = await enter();
  await go(page, 'device');
  assert.deepEqual(await options(page, kZone), ['UTC (0)', 'Tokyo (9)', 'Other (8)']);
  await put(page, kZone, '9');
  assert.deepEqual(await options(page, kZone), ['UTC (0)', 'Tokyo (9)', 'Other (8)']);
  assert.equal(await save(page, 'base'), 'applied');
  assert.equal(rig.setting('stBaseInfo', 'ucFD_TimeZone'), '9');
  assert.deepEqual(await options(page, kZone), ['UTC (0)', 'Tokyo (9)']);
  await page.context().close();
});

test('a name is text, in the list of changes too, and follows the language', async () => {
  name(kNames);
  const page = await enter();
  await go(page, 'network');
  assert.deepEqual(await options(page, kAuth), ['Open (0)', 'WPA (2)', 'WPA2 <b> (3)']);
  await put(page, kAuth, '0');
  await press(page, 'wifi');
  const row = dialog(page).locator(`[data-change="${kAuth}"]`);
  assert.deepEqual(await row.locator('td').allInnerTexts(), ['WPA2 <b> (3)', 'Open (0)']);
  await page.keyboard.press('Escape');
  await page.locator('[data-action=language]').click();
  assert.deepEqual(await options(page, kAuth), ['开放 (0)', 'WPA (2)', 'WPA2 <b> (3)']);
  await page.context().close();
});

test('a number that the file leaves out is typed as before', async () => {
  name(kNames);
  const page = await enter();
  await go(page, 'network');
  assert.equal(await field(page, kCipher).evaluate((node) => node.type), 'text');
  assert.match(await fieldRow(page, kCipher).innerText(), /0 to 255/);
  assert.doesNotMatch(await fieldRow(page, kAuth).innerText(), /0 to 255/);
  await page.context().close();
});

test('a stream type without a name keeps the one that it has', async () => {
  name(kNames);
  const page = await enter();
  await go(page, 'platforms');
  assert.deepEqual((await options(page, kStream)).sort(), ['Active (1)', 'Type 0']);
  await put(page, kStream, '1');
  await save(page, 'gb28181');
  assert.equal(rig.setting('stGB28181', 'ucFD_Enable'), '129');
  await page.context().close();
});

test('without a file numbers are typed, and nobody is told anything', async () => {
  const page = await enter();
  for (const [place, path] of [['device', kZone], ['network', kAuth]]) {
    await go(page, place);
    assert.equal(await field(page, path).evaluate((node) => node.type), 'text');
    assert.equal(await notice(page).count(), 0);
  }
  assert.equal(await page.locator('[data-health]').count(), 0);
  assert.deepEqual(page.errors, []);
  await page.context().close();
});

test('a broken file is told with the reason, and numbers are typed', async () => {
  for (const [content, reason] of [['{"stWifi/ucFD_AuthMode": {"3": "WPA2"', /no JSON/],
    [JSON.stringify({...kNames, 'stWifi/strFD_SSID': {}}), /“stWifi\/strFD_SSID”/],
    [JSON.stringify({[kAuth]: {300: 'x'}}), /“300”; they go from 0 to 255/]]) {
    serve(content);
    const page = await enter();
    assert.equal(await notice(page).count(), 0, 'the status is for drivers, too');
    await go(page, 'network');
    assert.match(await notice(page).innerText(), reason);
    assert.equal(await field(page, kAuth).evaluate((node) => node.type), 'text');
    await page.context().close();
  }
});

test('the file is asked for once in each visit', async () => {
  name(kNames);
  const page = await rig.open();
  const asked = [];
  page.on('request', (request) => asked.push(new URL(request.url()).pathname));
  await rig.login(page);
  for (const place of ['device', 'network', 'status', 'network']) await go(page, place);
  assert.equal(asked.filter((path) => path === '/labels.json').length, 1);
  await page.context().close();
});
