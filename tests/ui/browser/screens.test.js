// Every page in both languages, on a phone and a desktop, light and dark: what automated checks
// of accessibility find (nothing), and pictures for people to look at.
import assert from 'node:assert/strict';
import {mkdirSync, readFileSync} from 'node:fs';
import {createRequire} from 'node:module';
import {join} from 'node:path';
import test, {after, before} from 'node:test';
import {kDesktop, kPhone, Rig, visit} from '../rig.js';

const kAxe = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');
const kForms = ['device', 'video', 'network', 'platforms', 'security', 'maintenance'];
const kFolder = process.env.SCREENSHOTS;

let rig;
before(async () => {
  rig = await Rig.start();
  if (kFolder) mkdirSync(kFolder, {recursive: true});
});
after(() => rig.stop());

async function shoot(page, name) {
  if (kFolder) await page.screenshot({path: join(kFolder, `${name}.png`), fullPage: true});
}

async function violations(page) {
  await page.evaluate(kAxe);  // evaluated by the test, so the page's policy does not forbid it
  const {violations: found} = await page.evaluate(() => window.axe.run());
  return found.map(({id, nodes}) => `${id}: ${nodes.map((node) => node.html).join(' | ')}`);
}

// Nothing wider than the window: a page on a phone never scrolls sideways.
const overflow = (page) => page.evaluate(() =>
  document.documentElement.scrollWidth - document.documentElement.clientWidth);

async function inspect(page, name, tag) {
  await shoot(page, `${name}-${tag}`);
  assert.deepEqual(await violations(page), [], `${name} ${tag}`);
  assert.equal(await overflow(page), 0, `${name} ${tag} scrolls sideways`);
}

const kLooks = [
  {tag: 'en-desktop', language: 'en', size: kDesktop},
  {tag: 'zh-desktop', language: 'zh', size: kDesktop},
  {tag: 'en-phone', language: 'en', size: kPhone},
  {tag: 'zh-phone', language: 'zh', size: kPhone},
  {tag: 'en-desktop-dark', language: 'en', size: kDesktop, dark: true},
  {tag: 'zh-phone-dark', language: 'zh', size: kPhone, dark: true},
];

for (const look of kLooks) {
  test(`${look.tag}: every page is accessible and fits`, async () => {
    const page = await rig.open(look);
    await page.goto(`${rig.url}/login.html`);
    await page.locator('#password').waitFor();
    await inspect(page, 'login', look.tag);
    await rig.login(page);
    await page.locator('.moment:not(:empty)').waitFor();
    await inspect(page, 'status', look.tag);
    for (const name of kForms) {
      await visit(rig, page, name);
      await inspect(page, name, look.tag);
    }
    assert.deepEqual(page.errors, []);
    await page.context().close();
  });
}

test('errors, notices and dialogs are accessible too', async () => {
  const page = await rig.open({size: kPhone});
  await rig.login(page);
  await visit(rig, page, 'network');
  await page.fill('#WifiInfo-strFD_SSID', '车'.repeat(16));
  await page.click('#WifiInfo .main');
  await page.locator('#WifiInfo-strFD_SSID-error').waitFor();
  await inspect(page, 'error', 'en-phone');
  await page.getByRole('button', {name: 'Discard changes'}).click();
  await page.fill('#LocalNetInfo-strFD_LocalIp', '192.168.1.99');
  await page.click('#LocalNetInfo .main');
  await page.locator('dialog').waitFor();
  await inspect(page, 'dialog', 'en-phone');
  await page.keyboard.press('Escape');
  await page.locator('dialog').waitFor({state: 'detached'});
  await page.context().close();
});

test('the keyboard reaches everything: skip link, pages, fields, save', async () => {
  const page = await rig.open();
  await rig.login(page);
  await visit(rig, page, 'video');
  const focused = () => page.evaluate(() => document.activeElement.textContent.trim() ||
      document.activeElement.id);
  // From the top: where going to a page leaves the starting point differs between browsers.
  await page.evaluate(() => {
    document.body.tabIndex = -1;
    document.body.focus();
    document.body.removeAttribute('tabindex');
  });
  const reached = [];
  for (let i = 0; i < 22; i++) {
    await page.keyboard.press('Tab');
    reached.push(await focused());
  }
  assert.equal(reached[0], 'Skip to content');
  for (const stop of ['Sign out', 'Status', 'Maintenance', 'MirrorInfo-strFD_LeftRight',
    'MainStreamInfo-uiFD_BitRate', 'SubStreamInfo-ucFD_SFrameRate', 'Save'])
    assert.ok(reached.includes(stop), `${stop}: ${reached}`);
  await page.locator('.skip').focus();
  await page.keyboard.press('Enter');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'main');
  await page.locator('#MirrorInfo-strFD_LeftRight').focus();
  await page.keyboard.press('Space');
  assert.ok(await page.locator('#MirrorInfo-strFD_LeftRight').isChecked());
  await page.locator('#SubStreamInfo-ucFD_SFrameRate').fill('9');
  await page.keyboard.press('Enter');
  await page.locator('#SubStreamInfo .good').waitFor();
  assert.equal(rig.setting('stSubStream', 'ucFD_FrameRate'), '9');
  await page.context().close();
});

test('the style sheets are asked for with the session, and nothing elsewhere', async () => {
  const page = await rig.open();
  const asked = [];
  page.on('request', (request) => asked.push(new URL(request.url())));
  await rig.login(page);
  await visit(rig, page, 'device');
  const gated = asked.filter((url) => /^\/(page|sets)\.css$/.test(url.pathname));
  assert.ok(gated.length >= 3);
  for (const url of gated) assert.match(url.search, /^\?time=\d+&SessionID=[0-9a-f]{32}$/);
  for (const url of asked) assert.equal(url.origin, rig.url);
  await page.context().close();
});
