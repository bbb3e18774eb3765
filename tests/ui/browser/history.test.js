// Status with a memory: plots of the polling that happens anyway, the position, the report.
import assert from 'node:assert/strict';
import {join} from 'node:path';
import test, {after, before, beforeEach} from 'node:test';
import {violations} from '../axe.js';
import {pictures} from '../pair.js';
import {go, kCab, kDesk, kPhone, Rig, section, until} from '../rig.js';

const kFolder = pictures();

let rig;
let page;  // its clock moves only as a test moves it
before(async () => {
  rig = await Rig.start();
});
beforeEach(async () => {
  await rig.reset();
  if (page) await page.context().close();
  page = await rig.open();
  await page.clock.install();
  await rig.login(page);
});
after(async () => {
  assert.deepEqual(page.errors, []);
  await rig.stop();
});

const kGood = {GNetExist: 1, GNetSignal: 24, GNetDail: 1, WifiExist: 1, WifiSignal: 78, WifiDail: 1,
  CmsStatus: 1, NetStatus: 1, Disk1Exist: 1, Disk1Size: '100GB/25GB', DeviceNo: '80012345'};

// What the recorder tells from now on.
async function tell(values) {
  const attributes = Object.entries({...kGood, ...values})
      .map(([key, value]) => `${key}="${value}"`);
  await rig.clear();
  await rig.fault('for=stSystemInfo text:<VariCfgSec Action="DEVICE_QUERY" Result="0">' +
      `<stSystemInfo ${attributes.join(' ')}/></VariCfgSec>`);
}

const moment = () => page.locator('.moment').innerText();

// Moves the clock until something is so.
const runUntil = (probe, what) => until(async () => {
  await page.clock.runFor(500);
  return probe();
}, what);

async function poll(times = 1) {
  for (; times; times--) {
    const before = await moment();
    await runUntil(async () => await moment() !== before, 'a poll');
  }
}

const card = () => section(page, 'history');
const plot = (id) => page.locator(`[data-plot="${id}"]`);
const trace = (id, line) => plot(id).locator(`[data-line="${line}"]`);
const signal = () => trace('signals', 'section.mobile').locator('b').innerText();
const when = () => card().locator('.when').innerText();
const told = (id, name) => plot(id).getAttribute(`aria-${name}`);

// The heights of a line's points, as drawn.
const heights = async (id, line) => {
  const drawn = await trace(id, line).locator('path').first().getAttribute('d');
  return drawn.match(/[ML][\d.]+ [\d.]+/g).map((point) => Number(point.split(' ')[1]));
};

test('what is polled becomes plots, and nothing else is asked for', async () => {
  await tell({});
  await poll(3);
  const asked = [];
  page.on('request', (request) => asked.push(new URL(request.url()).pathname));
  await tell({GNetSignal: 9, CmsStatus: 0});
  await poll(3);
  assert.ok(asked.length >= 3 && asked.every((path) => path === '/get_SystemInfo'), asked.join());
  const mobile = await heights('signals', 'section.mobile');
  assert.ok(mobile.length >= 6);
  const [last] = mobile.slice(-1);
  assert.ok(mobile.slice(-3).every((y) => y === last), 'three equal readings');
  assert.ok(last > mobile[mobile.length - 4], 'weaker is lower');
  assert.equal(await signal(), '2 of 5 bars (9)');
  const wifi = await heights('signals', 'section.wifi');
  assert.equal(new Set(wifi.slice(-6)).size, 1);
  const links = trace('links', 'platform.cms');
  assert.match(await links.locator('.up').getAttribute('d'), /M/);
  assert.match(await links.locator('.down').getAttribute('d'), /M/);
  assert.match(await trace('disks', 'disk.1').innerText(), /75 % used/);
  assert.match(await page.locator('#plot-links').textContent(), /Platform server: lost 1 times/);
});

test('arrow keys go from reading to reading, in all plots', async () => {
  await tell({});
  await poll(2);
  await tell({GNetSignal: 9});
  await poll(2);
  const most = Number(await told('signals', 'valuemax'));
  assert.ok(most >= 4);
  const latest = await when();
  await plot('disks').focus();
  assert.equal(await told('disks', 'valuenow'), String(most));
  for (let steps = 0; steps < 2; steps++) await page.keyboard.press('ArrowLeft');
  assert.equal(await told('disks', 'valuenow'), String(most - 2));
  assert.equal(await signal(), '4 of 5 bars (24)');
  assert.notEqual(await when(), latest);
  assert.match(await told('signals', 'valuetext'),
      /^At [\d:]+; Mobile network: 4 of 5 bars \(24\)/);
  await page.keyboard.press('ArrowRight');
  assert.equal(await signal(), '2 of 5 bars (9)');
  await page.keyboard.press('Home');
  assert.equal(await told('links', 'valuenow'), '0');
  await page.keyboard.press('ArrowLeft');
  assert.equal(await told('links', 'valuenow'), '0');
  await page.keyboard.press('End');
  assert.equal(await when(), latest);
  await page.keyboard.press('Home');
  await poll();
  assert.equal(await told('links', 'valuenow'), '0');
  await page.keyboard.press('Tab');
  await page.keyboard.press('Tab');
  assert.notEqual(await when(), latest);
  assert.equal(await told('links', 'valuenow'), String(most + 1));
});

test('the pointer reads out, and the latest is back when it has gone', async () => {
  await tell({});
  await poll(4);
  const latest = await when();
  await plot('signals').scrollIntoViewIfNeeded();
  const {x, y, width} = await plot('signals').boundingBox();
  const drawn = await trace('signals', 'section.mobile').locator('path').first().getAttribute('d');
  const places = drawn.match(/[ML][\d.]+/g).map((place) => Number(place.slice(1)) / 1000);
  const most = places.length - 1;
  assert.ok(most >= 4);
  for (const i of [0, 2, most - 1, most, 1]) {
    await page.mouse.move(x + Math.min(places[i] * width, width - 1), y + 30);
    await until(async () => await told('signals', 'valuenow') === String(i), `reading ${i}`);
    assert.equal(await when() === latest, i === most);
    assert.equal(await page.locator('.trace .mark').count(), 10);
  }
  await page.mouse.move(2, 2);
  await until(async () => await when() === latest, 'the latest reading');
  assert.equal(await page.locator('.trace .mark').count(), 0);
});

test('a silence is a gap, and told as one', async () => {
  await tell({});
  await poll(2);
  await rig.clear();
  await rig.fault('silent');
  await runUntil(() => page.locator('[data-health]').count(), 'the silence');
  assert.match(await when(), /^No answer from [\d:]+ to [\d:]+$/);
  assert.equal(await signal(), '–');
  await tell({});
  await runUntil(async () => !await page.locator('[data-health]').count(), 'an answer');
  await poll(2);
  assert.equal(await page.locator('.trace .silent').count(), 10);
  assert.equal((await trace('signals', 'section.mobile').locator('path').first()
      .getAttribute('d')).match(/M/g).length, 2);
  await plot('signals').focus();
  await runKeysUntil('ArrowLeft', /^No answer from/);
  assert.match(await card().locator('.unseen').last().textContent(), /1 times, [1-9]\d* s/);
});

async function runKeysUntil(key, text) {
  for (let steps = 0; steps < 20; steps++) {
    if (text.test(await when())) return;
    await page.keyboard.press(key);
  }
  assert.fail(`never came: ${text}`);
}

test('the time on other pages was not read, and what was read before is still there', async () => {
  await tell({});
  await poll(2);
  await go(page, 'device');
  await page.clock.runFor(60000);
  await go(page, 'status');
  await poll();
  await plot('signals').focus();
  await runKeysUntil('ArrowLeft', /^Not read from/);
  await page.keyboard.press('ArrowLeft');
  assert.equal(await signal(), '4 of 5 bars (24)');
  assert.equal(await page.locator('.trace .silent').count(), 0);
});

test('the card is accessible, on a phone and in the dark, too', async () => {
  for (const [signals, online] of [[24, 1], [20, 1], [11, 0], [3, 0], [17, 1], [26, 1]]) {
    await tell({GNetSignal: signals, CmsStatus: online});
    await poll(2);
  }
  await plot('links').focus();
  for (let steps = 0; steps < 6; steps++) await page.keyboard.press('ArrowLeft');
  const chosen = await told('links', 'valuenow');
  for (const [size, colorScheme] of [[kPhone, 'dark'], [kCab, 'light'], [kDesk, 'light']]) {
    await page.setViewportSize(size);
    await page.emulateMedia({colorScheme});
    assert.deepEqual(await violations(page), []);
    assert.equal(await told('links', 'valuenow'), chosen);
    const name = `history-${size.width}-en-${colorScheme}.png`;
    if (kFolder) await card().screenshot({path: join(kFolder, name)});
  }
});

// What a user would paste.
async function pasted() {
  await page.evaluate(() => {
    const area = document.body.appendChild(document.createElement('textarea'));
    area.id = 'pasted';
    area.focus();
  });
  await page.keyboard.press('Control+v');
  return page.locator('#pasted').evaluate((node) => {
    node.remove();
    return node.value;
  });
}

test('a position can be copied and opened, no position cannot', async () => {
  await tell({GpsExist: 1, GpsPos: 'S33.867500 E151.207000'});
  await poll();
  const fact = page.locator('[data-fact="strFD_GpsPos"]');
  assert.equal(await fact.locator('a').getAttribute('href'), 'geo:-33.8675,151.207');
  await fact.locator('[data-action="copy-position"]').click();
  await fact.locator('[data-note="copied"]').waitFor();
  assert.equal(await page.evaluate(() => window.isSecureContext), false);
  assert.equal(await pasted(), '-33.8675,151.207');
  for (const nowhere of ['', 'no fix', 'N0.000000 E0.000000']) {
    await tell({GpsExist: 1, GpsPos: nowhere});
    await poll();
    assert.equal(await fact.locator('a, button').count(), 0, nowhere);
    assert.match(await fact.innerText(), nowhere ? new RegExp(nowhere) : /–/);
  }
});

test('the report is copied, without a secret of the recorder', async () => {
  await page.locator('[data-action="copy-report"]').click();
  await page.locator('.live > .copy [data-note="copied"]').waitFor();
  const text = await pasted();
  for (const part of ['80012345', 'V3.6.18_20240415', 'MCU_V1.2.7', 'HeadlessChrome', rig.url,
    'Last saves', 'Signal: 4 of 5 bars (24)'])
    assert.ok(text.includes(part), `${part} in ${text}`);
  assert.ok(text.split('\n').length > 40);
  const secrets = rig.stored().match(
      /(?:Passw?d|Pass|Password|PWD|IMSI|ICCID|IMEI|Phone\w*|SSID|DeviceUser)="[^"]+"/g)
      .map((found) => found.slice(found.indexOf('"') + 1, -1))
      .filter((secret) => secret !== 'card');  // which is the name of a thing as well
  assert.ok(secrets.length > 10, secrets.join());
  for (const secret of secrets) assert.ok(!text.includes(secret), secret);
});

test('where the browser lets nothing be copied, the text is shown', async () => {
  await page.evaluate(() => { document.execCommand = () => false; });
  await page.locator('[data-action="copy-report"]').click();
  const area = page.locator('.live > .copy [data-note="refused"] textarea');
  await area.waitFor();
  assert.match(await area.inputValue(), /V3\.6\.18_20240415/);
  await area.focus();
  assert.equal(await area.evaluate((node) => node.selectionEnd), (await area.inputValue()).length);
  assert.deepEqual(await violations(page), []);
});
