import assert from 'node:assert/strict';
import test, {after, before} from 'node:test';
import {field, kPassword, notice, press, Rig, settled, visit} from '../rig.js';

let rig;
before(async () => { rig = await Rig.start(); });
after(() => rig.stop());

const kOffset = 28800;  // between the service's clock and the stored lock time
const now = () => Math.floor(Date.now() / 1000);

// Posts a form as a page would, without a page.
async function post(endpoint, body, headers = {}) {
  const reply = await fetch(`${rig.url}/${endpoint}`, {method: 'POST', body, headers});
  return reply.text();
}

const setLock = (count, time) =>
  post('set_LockOfPassword', `ucFD_ErrorCount=${count}&time=${time}`);

async function enter(page, password) {
  await page.fill('#password', password);
  await page.click('button[type=submit]');
}

const status = (page) => page.locator('.status').innerText();
const tone = (page, name) => page.locator(`.status.${name}`).waitFor();

test('without a session no page is shown, and the login follows', async () => {
  const page = await rig.open();
  let shown = false;
  await page.exposeFunction('sawApp', () => { shown = true; });
  await page.addInitScript(() => {
    new MutationObserver(() => {
      const app = document.getElementById('app');
      if (app && !app.hidden && !location.pathname.endsWith('login.html')) window.sawApp();
    }).observe(document, {subtree: true, childList: true, attributes: true});
  });
  await page.goto(`${rig.url}/device.html`);
  await page.waitForURL('**/login.html#device');
  assert.equal(shown, false);
  await page.context().close();
});

test('a wrong password is counted by the recorder, a right one sets the count back', async () => {
  const page = await rig.open();
  await page.goto(`${rig.url}/login.html#device`);
  await enter(page, 'nonsense');
  await tone(page, 'bad');
  assert.match(await status(page), /Attempts left: 4/);
  assert.equal(rig.setting('stLockOfPassword', 'ucFD_ErrorCount'), '1');
  const time = Number(rig.setting('stLockOfPassword', 'uiFD_LockTime'));
  assert.ok(Math.abs(now() - kOffset - time) < 60);
  await enter(page, kPassword);
  await page.waitForURL('**/device.html');
  await page.locator('#BaseInfo').waitFor();
  assert.equal(rig.setting('stLockOfPassword', 'ucFD_ErrorCount'), '0');
  await page.context().close();
});

test('an unknown session is left at the gate', async () => {
  const page = await rig.open();
  await page.context().addCookies([{name: 'jsession', value: '0'.repeat(32), url: rig.url}]);
  await page.goto(`${rig.url}/video.html`);
  await page.waitForURL('**/login.html#video');
  await page.context().close();
});

test('the fifth wrong entry locks, the lock shows the time left and ends', async () => {
  const page = await rig.open();
  await setLock(4, now() - kOffset);
  await page.goto(`${rig.url}/login.html`);
  await enter(page, 'nonsense');
  await page.locator('.left:not([hidden])').waitFor();
  assert.match(await page.locator('.left').innerText(), /Time left: (60:00|59:\d\d)/);
  assert.match(await status(page), /Locked/);
  assert.ok(await page.locator('button[type=submit]').isDisabled());
  await page.reload();
  await page.locator('.left:not([hidden])').waitFor();
  await setLock(5, now() - kOffset - 3590);  // ten seconds left, some of them for the restart
  await page.reload();
  await tone(page, 'info');
  assert.match(await status(page), /lock has ended/);
  await enter(page, kPassword);
  await page.waitForURL('**/status.html');
  await page.context().close();
});

test('wrong entries of an earlier hour do not count', async () => {
  const page = await rig.open();
  await setLock(4, now() - kOffset - 4000);
  await page.goto(`${rig.url}/login.html`);
  await enter(page, 'nonsense');
  await tone(page, 'bad');
  assert.match(await status(page), /Attempts left: 4/);
  await setLock(0, 0);
  await page.context().close();
});

test('with a silent recorder nobody gets in, with an empty password neither', async () => {
  const page = await rig.open();
  await rig.fault('silent');
  await page.goto(`${rig.url}/login.html`);
  await enter(page, '');
  await tone(page, 'bad');
  assert.match(await status(page), /does not answer/);
  assert.match(page.url(), /login\.html/);
  await rig.clear();
  await page.context().close();
});

test('a session that ends in the middle of a form loses no input', async () => {
  const page = await rig.open();
  await rig.login(page);
  await visit(rig, page, 'network');
  await field(page, 'WifiInfo', 'strFD_SSID').fill('车队二号');
  for (let i = 0; i < 5; i++) {  // the sixth login pushes the first out
    await new Promise((resume) => { setTimeout(resume, 1050); });  // identifiers are per second
    await post('cmp_UserSecurity', `strFD_AdminPasswd=${kPassword}`,
        {Referer: `${rig.url}/login.html`});
  }
  await page.click('#WifiInfo .main');
  await page.waitForURL('**/login.html#network');
  await enter(page, kPassword);
  await page.waitForURL('**/network.html');
  await notice(page, 'WifiInfo').filter({hasText: 'unsaved changes'}).waitFor();
  assert.equal(await field(page, 'WifiInfo', 'strFD_SSID').inputValue(), '车队二号');
  await press(page, 'WifiInfo');
  assert.equal(await settled(page, 'WifiInfo'), 'good');
  assert.equal(rig.setting('stWifi', 'strFD_SSID'), '车队二号');
  await page.context().close();
});

test('signing out ends the session in this browser', async () => {
  const page = await rig.open();
  await rig.login(page);
  await page.click('#leave');
  await page.waitForURL('**/login.html#status');
  await page.goto(`${rig.url}/status.html`);
  await page.waitForURL('**/login.html#status');
  await page.context().close();
});

test('the language is the recorder\'s until somebody chooses one', async () => {
  const context = await rig.browser.newContext({locale: 'en-GB'});
  const page = await context.newPage();
  await page.goto(`${rig.url}/login.html`);
  await page.locator('html[lang=zh-CN]').waitFor();
  await page.getByRole('button', {name: '登录'}).waitFor();
  await page.getByRole('button', {name: 'English'}).click();
  await page.getByRole('button', {name: 'Sign in'}).waitFor();
  await page.reload();
  await page.getByRole('button', {name: 'Sign in'}).waitFor();
  await context.close();
});
