// The access point as a QR code: what another program reads from the screen is what a phone reads.
import assert from 'node:assert/strict';
import {join} from 'node:path';
import test from 'node:test';
import {violations} from '../axe.js';
import {pictures} from '../pair.js';
import {decode} from '../qr.js';
import {get, kCab, kPhone, put, save, section} from '../rig.js';
import {page, sharePage} from '../shared.js';

const kName = 'stWifiAp/strFD_SSID';
const kPassword = 'stWifiAp/strFD_Passwd';
const kFolder = pictures();
const kMode = 'stWifi/ucFD_WorkMode';

sharePage('network', () => page.setViewportSize(kCab));

const card = () => section(page, 'accessPoint');
const code = () => card().locator('svg.code');
const ask = () => card().locator('[data-action="code"]').click();
const hint = (name) => card().locator(`[data-hint="${name}"]`);

const seen = async () => decode(await page.screenshot());

async function openNetwork(name, password) {
  await put(page, kMode, '2');
  await put(page, kName, name);
  await put(page, kPassword, password);
}

test('nothing of it is seen before it is asked for, and nothing is fetched', async () => {
  const asked = [];
  page.on('request', (request) => asked.push(request.url()));
  assert.equal(await card().count(), 0);
  await openNetwork('bus 12', 'platform9');
  await card().scrollIntoViewIfNeeded();
  assert.equal(await code().count(), 0);
  assert.equal(await seen(), null);
  assert.deepEqual(asked, []);
  await ask();
  await code().waitFor();
  assert.equal(asked.length, 1);
  await ask();
  assert.equal(await code().count(), 0);
});

// name, password, what a phone has to read
const kNetworks = [
  ['bus 12', 'platform9', 'WIFI:T:WPA;S:bus 12;P:platform9;;'],
  ['a;b,c:d"e\\f', '\\";,:\'<&%+ ',
    'WIFI:T:WPA;S:a\\;b\\,c\\:d\\"e\\\\f;P:\\\\\\"\\;\\,\\:\'<&%+ ;;'],
  ['公交车队-0123', '密码;12345', 'WIFI:T:WPA;S:公交车队-0123;P:密码\\;12345;;'],
  ['open', '', 'WIFI:T:nopass;S:open;;'],
  ['short', 'seven77', 'WIFI:T:WPA;S:short;P:seven77;;'],
  ['n'.repeat(31), '"'.repeat(31), `WIFI:T:WPA;S:${'n'.repeat(31)};P:${'\\"'.repeat(31)};;`],
];

test('a decoder reads what the form holds, keystroke by keystroke', async () => {
  await openNetwork('first', 'secret-1');
  await ask();
  for (const [name, password, text] of kNetworks) {
    await put(page, kName, name);
    await put(page, kPassword, password);
    await code().scrollIntoViewIfNeeded();
    assert.equal(await seen(), text, name);
    assert.equal(await hint('open').count(), password ? 0 : 1);
    assert.equal(await hint('letters').count(), /^[ -~]*$/.test(name) ? 0 : 1, name);
    assert.equal(await hint('short').count(), /^.{1,7}$/.test(password) ? 1 : 0, password);
  }
});

test('a name or password that does not fit has no code', async () => {
  await openNetwork('depot', 'platform9');
  await ask();
  await code().waitFor();
  for (const [path, value] of [[kName, ''], [kName, '车'.repeat(16)], [kPassword, 'p'.repeat(32)],
    [kName, 'x'.repeat(5000)]]) {
    const held = await get(page, path);
    await put(page, path, value);
    await card().locator('[data-note="invalid"]').waitFor();
    assert.equal(await code().count(), 0);
    await put(page, path, held);
    await code().waitFor();
  }
});

test('it says while the recorder does not hold it yet', async () => {
  await openNetwork('depot', 'platform9');
  await ask();
  await hint('unsaved').waitFor();
  assert.equal(await save(page, 'wifi'), 'applied');
  await hint('unsaved').waitFor({state: 'detached'});
  await code().scrollIntoViewIfNeeded();
  if (kFolder) await page.screenshot({path: join(kFolder, 'accesspoint-cab-en-light.png')});
  assert.equal(decode(await code().screenshot()), 'WIFI:T:WPA;S:depot;P:platform9;;');
  await put(page, kMode, '1');
  assert.equal(await card().count(), 0);
});

test('it reads in the dark theme and on a phone, not on paper, and is accessible', async () => {
  await openNetwork('depot', 'platform9');
  await ask();
  await page.setViewportSize(kPhone);
  await page.emulateMedia({colorScheme: 'dark'});
  await code().scrollIntoViewIfNeeded();
  assert.equal(await page.evaluate(() => document.documentElement.dataset.theme), 'dark');
  assert.equal(await seen(), 'WIFI:T:WPA;S:depot;P:platform9;;');
  assert.deepEqual(await violations(page), []);
  assert.doesNotMatch(await page.locator('main').innerHTML(), /platform9/);
  await page.emulateMedia({media: 'print'});
  assert.equal(await code().isVisible(), false);
  await page.emulateMedia({media: 'screen', colorScheme: 'light'});
});

test('a script that does not come is told, and asked for again', async () => {
  await page.route('**/assets/qr.*', (route) => route.abort());
  await openNetwork('depot', 'platform9');
  await ask();
  const told = card().locator('[data-note="failed"]');
  await told.waitFor();
  await page.unroute('**/assets/qr.*');
  await told.locator('button').click();
  await code().waitFor();
  assert.equal(await get(page, kName), 'depot');
});
