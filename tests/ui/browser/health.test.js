// A recorder that fails, partly works and recovers, and a service that does: reported once, and
// cleared by itself.
import assert from 'node:assert/strict';
import test from 'node:test';
import {field, go, health, shown, until, visit} from '../rig.js';
import {page, rig, sharePage} from '../shared.js';

sharePage();

const ssid = () => field(page, 'stWifi/strFD_SSID');
const gone = (state) => health(page, state).waitFor({state: 'detached'});

test('a dead recorder is told once on a page of many forms, and all recovers by itself',
    async () => {
      await rig.stopDevice();
      await page.goto('about:blank');
      await page.goto(`${rig.url}/app.html#/network`);
      await health(page, 'deviceSilent').waitFor();
      const said = await page.locator('body').innerText();
      assert.equal(said.match(/not answer/g).length, 1, said);
      assert.match(await health(page, 'deviceSilent').innerText(), /\d+ s/);
      // Nothing looks as if it were coming.
      for (const name of ['status', 'maintenance', 'security', 'settings', 'fleet']) {
        await page.evaluate((place) => { location.hash = `#/${place}`; }, name);
        const main = page.locator(`main[data-page=${name}]`);
        await main.getByText('Comes when the recorder answers again').first().waitFor();
        await main.locator('.skeleton').waitFor({state: 'detached'});
      }
      await rig.startDevice();
      await gone('deviceSilent');
      await page.locator('[data-section=template] [data-group]').first().waitFor();
      await go(page, 'network');
      assert.equal(await ssid().inputValue(), '公交车队-0123');
      assert.equal(await field(page, 'stMobileGNet/strFD_Apn').inputValue(), 'CMNET');
    });

test('status: what is no longer known turns grey, and lives again', async () => {
  await visit(rig, page, 'status');
  await until(async () => /80012345/.test(await page.locator('main').innerText()), 'the status');
  const colour = () => page.locator('[data-fact="ucFD_AccStatus"] dd').evaluate((node) =>
    getComputedStyle(node).color);
  const living = await colour();
  assert.equal(await page.locator('main.stale').count(), 0);
  await rig.fault('silent');
  await health(page, 'deviceSilent').waitFor();
  await page.locator('main.stale').waitFor();
  assert.notEqual(await colour(), living);
  await rig.clear();
  await gone('deviceSilent');
  await page.locator('main.stale').waitFor({state: 'detached'});
  assert.equal(await colour(), living);
});

test('a slow recorder is not called silent', async () => {
  await rig.fault('delay:2500');
  await page.evaluate(() => {
    window.told = [];
    const look = () => {
      const node = document.querySelector('[data-health]');
      if (node) window.told.push(node.dataset.health);
    };
    new MutationObserver(look).observe(document,
        {subtree: true, childList: true, attributes: true});
  });
  await go(page, 'security');
  assert.deepEqual(await page.evaluate(() => window.told), []);
});

test('a service that is away is told, with a countdown, and found again', async () => {
  await visit(rig, page, 'network');
  await rig.stopDaemon();
  await page.evaluate(() => { location.hash = '#/video'; });
  await health(page, 'serviceSilent').waitFor();
  assert.match(await health(page, 'serviceSilent').innerText(), /\d+ s/);
  await rig.startDaemon();
  await gone('serviceSilent');
  await shown(page, 'video');
});

test('the banner offers another try at once', async () => {
  await rig.fault('silent');
  await page.goto('about:blank');
  await page.goto(`${rig.url}/app.html#/network`);
  await health(page, 'deviceSilent').waitFor();
  await rig.clear();
  await page.locator('[data-health] button').click();
  await shown(page, 'network');
});

test('while nobody looks the status is not asked for, and at once when somebody does',
    async () => {
      const watched = await rig.open();
      await watched.clock.install();
      await rig.login(watched);
      const asked = () => rig.messages('DEVICE_QUERY')
          .filter((text) => text.includes('<stSystemInfo')).length;
      const look = (hidden) => watched.evaluate((value) => {
        Object.defineProperty(document, 'hidden', {configurable: true, get: () => value});
        Object.defineProperty(document, 'visibilityState',
            {configurable: true, get: () => value ? 'hidden' : 'visible'});
        document.dispatchEvent(new Event('visibilitychange'));
      }, hidden);
      const seen = asked();
      await until(async () => { await watched.clock.runFor(1000); return asked() > seen + 1; },
          'two more polls while visible');
      await look(true);
      const settled = asked() + 1;  // one may already have been sent
      for (let minute = 0; minute < 5; minute++) await watched.clock.runFor(60000);
      await watched.evaluate(() => fetch('favicon.svg'));  // every request has been answered by now
      assert.ok(asked() <= settled, `${asked()} > ${settled}`);
      const quiet = asked();
      await look(false);
      await until(async () => { await watched.clock.runFor(100); return asked() > quiet; },
          'a poll after the return');
      await watched.context().close();
    });
