// The sign-in: who gets in, who does not, and what counts as an attempt.
import assert from 'node:assert/strict';
import test, {after, before, beforeEach} from 'node:test';
import {
  agree, button, dialog, field, go, kPassword, memory, Rig, shown, type, until, visit,
} from '../rig.js';

let rig;
before(async () => { rig = await Rig.start(); });
beforeEach(() => rig.reset());
after(() => rig.stop());

const kOffset = 28800;  // between the service's clock and the stored lock time
const now = () => Math.floor(Date.now() / 1000);
const setLock = (count, time) =>
  rig.post('set_LockOfPassword', `ucFD_ErrorCount=${count}&time=${time}`);
const wrongEntries = () => rig.setting('stLockOfPassword', 'ucFD_ErrorCount');
const state = (page, name) => page.locator(`.status[data-note="${name}"]`).waitFor();
const submit = (page) => page.locator('button[type=submit]');
const words = (page) => page.locator('body').innerText();

async function at(asked = '') {
  const page = await rig.open();
  await page.goto(`${rig.url}/login.html${asked}`);
  return page;
}

test('without a session no page is shown; after the sign-in comes the one that was asked for',
    async () => {
      const page = await rig.open();
      await page.goto(`${rig.url}/app.html#/network`);
      await page.locator('#password').waitFor();
      assert.equal(await page.locator('main[data-page="network"]').count(), 0);
      await type(page, kPassword);
      await shown(page, 'network');
      assert.equal(new URL(page.url()).hash, '#/network');
      await page.context().close();
    });

test('the bare address opens the pages for a session, else the sign-in', async () => {
  const page = await rig.enter();
  const cookies = await page.context().cookies();
  await page.goto(`${rig.url}/`);
  await shown(page, 'status');
  assert.equal(new URL(page.url()).hash, '#/');
  await page.context().addCookies(cookies.map((one) => ({...one, value: '0'.repeat(32)})));
  await page.goto(`${rig.url}/`);
  await page.locator('#password').waitFor();
  await page.context().clearCookies();
  await page.goto(`${rig.url}/`);
  await type(page, kPassword);
  await shown(page, 'status');
  await page.context().close();
});

test('a session that the recorder does not know is left at the gate', async () => {
  const page = await rig.enter();
  const cookies = await page.context().cookies();
  const session = cookies.find(({value}) => /^[0-9a-f]{32}$/.test(value));
  await page.context().addCookies([{...session, value: '0'.repeat(32)}]);
  await page.goto('about:blank');
  await page.goto(`${rig.url}/app.html#/video`);
  await page.locator('#password').waitFor();
  assert.equal(await page.locator('main[data-page]').count(), 0);
  await page.context().close();
});

test('a wrong password is counted by the recorder, a right one sets the count back', async () => {
  const page = await at();
  await type(page, 'nonsense');
  await state(page, 'wrong');
  assert.match(await words(page), /\b4\b/);
  assert.equal(wrongEntries(), '1');
  const time = Number(rig.setting('stLockOfPassword', 'uiFD_LockTime'));
  assert.ok(Math.abs(now() - kOffset - time) < 60);
  await type(page, kPassword);
  await shown(page, 'status');
  assert.equal(wrongEntries(), '0');
  await page.context().close();
});

test('the fifth wrong entry locks, the lock shows the time left and ends', async () => {
  await setLock(4, now() - kOffset);
  const page = await at();
  await type(page, 'nonsense');
  await state(page, 'locked');
  assert.match(await words(page), /60:00|59:\d\d/);
  assert.equal(await submit(page).getAttribute('aria-disabled'), 'true');
  await page.clock.install();
  await page.reload();
  await state(page, 'locked');
  await setLock(5, now() - kOffset - 3600);
  await page.clock.fastForward('01:00:00');
  await state(page, 'open');
  await type(page, kPassword);
  await shown(page, 'status');
  await page.context().close();
});

test('wrong entries of a clock that ran ahead do not count', async () => {
  await setLock(4, now() - kOffset + 86400);
  const page = await at();
  await type(page, 'nonsense');
  await state(page, 'wrong');
  assert.match(await words(page), /\b4\b/);
  assert.equal(wrongEntries(), '1');
  await page.context().close();
});

test('a lock ahead of the recorder\'s clock keeps nobody out', async () => {
  await setLock(5, now() - kOffset + 86400);
  const page = await at();
  await page.locator('button[type=submit]:not([aria-disabled])').waitFor();
  await type(page, kPassword);
  await shown(page, 'status');
  await page.context().close();
});

// what does not answer, what is entered
const kSilent =
    [['silent', ''], ['for=stUserSec silent', 'nonsense'], ['for=stUserSec silent', '']];

test('a silent recorder is no wrong password, lets nobody in and counts nothing', async () => {
  const page = await at();
  const counted = rig.messages().length;
  for (const [fault, password] of kSilent) {
    await page.locator('[data-reached="answers"]', {hasText: '80012345'}).waitFor();
    await rig.fault(fault);
    await type(page, password);
    await state(page, 'deviceSilent');
    assert.match(page.url(), /login\.html/);
    await rig.clear();
    assert.equal(wrongEntries(), '0', `${fault} ${password}`);
    await page.reload();
  }
  assert.equal(rig.messages().length, counted);
  await page.context().close();
});

test('another language at the sign-in keeps what was typed', async () => {
  const page = await at();
  await page.fill('#password', 'half a pass');
  await page.getByRole('button', {name: '中文'}).click();
  await page.locator('html[lang=zh-CN]').waitFor();
  assert.equal(await page.inputValue('#password'), 'half a pass');
  await page.context().close();
});

test('the language is the recorder\'s until somebody chooses one', async () => {
  const page = await rig.open({language: null, locale: 'en-GB'});
  await page.goto(`${rig.url}/login.html`);
  await page.locator('html[lang=zh-CN]').waitFor();
  await page.getByRole('button', {name: 'English'}).click();
  await page.getByRole('button', {name: 'Sign in'}).waitFor();
  await page.reload();
  await page.getByRole('button', {name: 'Sign in'}).waitFor();
  await page.context().close();
});

test('a password is shown when asked, and hidden again', async () => {
  const page = await at();
  await page.fill('#password', 'secret');
  const kind = () => page.locator('#password').getAttribute('type');
  assert.equal(await kind(), 'password');
  const reveal = page.locator('button[aria-controls="password"]');
  await reveal.click();
  assert.equal(await kind(), 'text');
  await reveal.click();
  assert.equal(await kind(), 'password');
  await page.context().close();
});

test('signing out ends the session and leaves no secret in the browser', async () => {
  const page = await rig.enter();
  await visit(rig, page, 'network');
  await field(page, 'stWifi/strFD_SSID').fill('Depot two');
  await field(page, 'stWifi/strFD_Passwd').fill('geheim-new');
  await page.click('#leave');
  await dialog(page).filter({hasText: 'Network'}).waitFor();
  await agree(page);
  await page.locator('#password').waitFor();
  const kept = await memory(page);
  for (const secret of ['geheim-new', 'depot2024', 'bus80012345', kPassword, 'Depot two'])
    assert.ok(!kept.includes(secret), `${secret} in ${kept}`);
  await page.goto(`${rig.url}/app.html#/network`);
  await page.locator('#password').waitFor();
  await page.context().close();
});

test('going back after signing out shows nothing of the pages', async () => {
  const page = await rig.enter();
  await go(page, 'network');
  await go(page, 'video');
  // A browser may restore the page as it was left, with its whole state.
  await page.context().clearCookies();
  await page.evaluate(() => {
    window.dispatchEvent(new PageTransitionEvent('pageshow', {persisted: true}));
  });
  await page.locator('#password').waitFor();
  const returned = page.waitForEvent('framenavigated', (frame) => frame.url().includes('app.html'));
  await page.evaluate(() => history.back());
  await returned;
  await page.locator('#password').waitFor();
  await page.context().close();
});

test('signing out in one tab ends the other at its next page', async () => {
  const page = await rig.enter();
  const other = await page.context().newPage();
  await visit(rig, other, 'video');
  await page.click('#leave');
  await page.locator('#password').waitFor();
  await other.evaluate(() => { location.hash = '#/network'; });
  await other.locator('#password').waitFor();
  await page.context().close();
});

test('two presses are one try', async () => {
  const page = await at();
  const tries = [];
  page.on('request', (request) => {
    if (request.url().includes('cmp_UserSecurity')) tries.push(request.url());
  });
  await page.fill('#password', 'nonsense');
  await submit(page).dblclick();
  await state(page, 'wrong');
  assert.equal(tries.length, 1);
  assert.equal(wrongEntries(), '1');
  await page.context().close();
});

test('a session that ends within a form loses no input, and keeps no secret', async () => {
  const page = await rig.enter();
  await visit(rig, page, 'network');
  await field(page, 'stWifi/strFD_SSID').fill('车队二号');
  await field(page, 'stWifi/strFD_Passwd').fill('geheim-new');
  const seen = new Set();  // numbers change every second; the sixth removes the first
  await until(async () => {
    const reply = await rig.post('cmp_UserSecurity', `strFD_AdminPasswd=${kPassword}`,
        {Referer: `${rig.url}/login.html`});
    return seen.add(/[0-9a-f]{32}/.exec(reply)[0]).size > 5;
  }, 'six other sessions');
  await button(page, 'wifi', 'save').click();
  await agree(page);
  await page.locator('#password').waitFor();
  await page.locator('[data-note=kept]').waitFor();
  assert.ok(!(await memory(page)).includes('geheim-new'));
  await type(page, kPassword);
  await shown(page, 'network');
  assert.equal(await field(page, 'stWifi/strFD_SSID').inputValue(), '车队二号');
  assert.equal(rig.setting('stWifi', 'strFD_SSID'), '公交车队-0123');
  await page.context().close();
});

test('without scripts both documents say what is needed, in both languages', async () => {
  const page = await rig.open({javaScriptEnabled: false});
  for (const document of ['login.html', 'app.html']) {
    await page.goto(`${rig.url}/${document}`);
    const text = await page.locator('body').innerText();
    assert.match(text, /JavaScript/, document);
    assert.match(text, /[一-龥]/, document);
  }
  await page.context().close();
});
