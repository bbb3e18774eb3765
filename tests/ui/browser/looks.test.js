// Every page in both languages and themes and at common screen sizes: automated accessibility
// checks find nothing, nothing overflows, and screenshots are taken for review.
import assert from 'node:assert/strict';
import {join} from 'node:path';
import test, {after, before} from 'node:test';
import {violations} from '../axe.js';
import {pictures} from '../pair.js';
import {
  button, dialog, ended, error, focused, go, health, kCab, kDesk, kPages, kPhone, press, put, Rig,
  shown, until,
} from '../rig.js';

const kZoomed = {width: kDesk.width / 2, height: kDesk.height / 2};  // the desktop's at 200 %
const kFolder = pictures();

let rig;
before(async () => { rig = await Rig.start(); });
after(() => rig.stop());

// What overflows the window, and words broken at a line end.
const misfits = (page) => page.evaluate(() => {
  const found = [];
  const width = document.documentElement.clientWidth;
  if (document.documentElement.scrollWidth > width) found.push('the page scrolls sideways');
  const texts = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
  const range = document.createRange();
  for (let node = texts.nextNode(); node; node = texts.nextNode()) {
    if (!node.parentElement.getClientRects().length) continue;
    for (const {0: word, index} of node.data.matchAll(/[A-Za-z]{2,}/g)) {
      range.setStart(node, index);
      range.setEnd(node, index + word.length);
      const lines = new Set([...range.getClientRects()].filter((one) => one.width)
          .map((one) => Math.round(one.top)));
      if (lines.size > 1) found.push(`${word} is broken`);
    }
  }
  for (const node of document.querySelectorAll('button, input, select, a, th, h1, h2')) {
    const box = node.getBoundingClientRect();
    if (box.width > 1 && box.right > width + 1 && !node.closest('.wide'))
      found.push(`${node.outerHTML.slice(0, 80)} sticks out`);
  }
  return found;
});

async function shoot(page, name) {
  if (kFolder) await page.screenshot({path: join(kFolder, `${name}.png`), fullPage: true});
}

const kSizes = [['desk', kDesk], ['cab', kCab], ['phone', kPhone]];

for (const language of ['en', 'zh']) {
  for (const dark of [false, true]) {
    const look = `${language}-${dark ? 'dark' : 'light'}`;
    test(`${look}: every page is accessible and fits every screen`, async () => {
      const page = await rig.open({language, dark});
      await page.goto(`${rig.url}/login.html`);
      await page.locator('#password').waitFor();
      const wrong = [];
      const inspect = async (name) => {
        for (const [tag, size] of kSizes) {
          await page.setViewportSize(size);
          await shoot(page, `${name}-${tag}-${look}`);
          wrong.push(...(await misfits(page)).map((text) => `${name} ${tag}: ${text}`));
        }
        wrong.push(...(await violations(page)).map((text) => `${name}: ${text}`));
      };
      await inspect('login');
      await rig.login(page);
      for (const name of kPages) {
        await go(page, name);
        await inspect(name);
      }
      assert.deepEqual(wrong, []);
      assert.deepEqual(page.errors, []);
      await page.context().close();
    });
  }
}

test('at 200 % nothing is lost', async () => {
  const page = await rig.enter({size: kZoomed, deviceScaleFactor: 2});
  const wrong = [];
  for (const name of kPages) {
    await go(page, name);
    wrong.push(...(await misfits(page)).map((text) => `${name}: ${text}`));
    await shoot(page, `${name}-zoomed`);
  }
  assert.deepEqual(wrong, []);
  await page.context().close();
});

test('letters half as large again fit a phone', async () => {
  const page = await rig.enter({size: kPhone});
  await page.evaluate(() => { document.documentElement.style.fontSize = '24px'; });
  const wrong = [];
  for (const name of kPages) {
    await go(page, name);
    wrong.push(...(await misfits(page)).map((text) => `${name}: ${text}`));
  }
  assert.deepEqual(wrong, []);
  await page.context().close();
});

test('the menu shows all its entries on a phone', async () => {
  const page = await rig.enter({size: kPhone});
  const boxes = await page.locator('nav a').evaluateAll((links) =>
    links.map((link) => link.getBoundingClientRect().toJSON()));
  assert.equal(boxes.length, kPages.length);
  for (const {left, right, top, bottom} of boxes)
    assert.ok(right > left && left >= 0 && right <= kPhone.width && top >= 0 &&
        bottom <= kPhone.height);
  await page.context().close();
});

// Controls that a finger 44 px wide does not hit: itself, a label of it or what stands in it.
const slight = (page) => page.evaluate(() => {
  const reach = 21;
  const hits = (node, x, y) => {
    const found = document.elementFromPoint(x, y);
    return found && (node.contains(found) ||
        [...node.labels || []].includes(found.closest('label')));
  };
  const found = [];
  const controls = 'a[href]:not(.skip), button, select, input:not([type=file])';
  for (const node of document.querySelectorAll(controls)) {
    node.scrollIntoView({block: 'center'});
    const {left, top, width, height} = node.getBoundingClientRect();
    const [x, y] = [left + width / 2, top + height / 2];
    const ends = [[x - reach, y], [x + reach, y], [x, y - reach], [x, y + reach]];
    if (width && !ends.every((end) => hits(node, ...end))) found.push(node.outerHTML.slice(0, 90));
  }
  return found;
});

test('on a touch screen a finger hits every control', async () => {
  const page = await rig.enter({size: kPhone, hasTouch: true, isMobile: true});
  const wrong = [];
  for (const name of kPages) {
    await go(page, name);
    const fold = page.locator('[data-group=stBaseInfo] .fold button');
    if (await fold.count()) await fold.click();
    if (name === 'maintenance') {
      await page.locator('[data-section=import] input').setInputFiles({name: 'speed.xml',
        mimeType: 'text/xml', buffer: Buffer.from('<VariCfgSec><stSpeed usFD_OverSpeed="80" ' +
            'usFD_OverTime="9"/></VariCfgSec>')});
      await page.locator('[data-setting]').first().waitFor();
    }
    wrong.push(...(await slight(page)).map((text) => `${name}: ${text}`));
  }
  assert.deepEqual(wrong, []);
  await page.context().close();
});

test('errors, the list of changes and the banner are accessible too', async () => {
  const page = await rig.enter({size: kPhone});
  await go(page, 'network');
  await put(page, 'stWifi/strFD_SSID', '车'.repeat(16));
  await button(page, 'wifi', 'save').click();
  await error(page, 'stWifi/strFD_SSID');
  assert.deepEqual(await violations(page), []);
  await shoot(page, 'error-phone-en-light');
  await put(page, 'stWifi/strFD_SSID', 'depot');
  await press(page, 'wifi');
  await dialog(page).waitFor();
  assert.deepEqual(await violations(page), []);
  await shoot(page, 'review-phone-en-light');
  await page.keyboard.press('Escape');
  await rig.fault('silent');
  await page.evaluate(() => { location.hash = '#/video'; });
  await health(page, 'deviceSilent').waitFor();
  assert.deepEqual(await violations(page), []);
  await shoot(page, 'silent-phone-en-light');
  await rig.clear();
  await page.context().close();
});

test('times have 24 hours, whatever the browser speaks', async () => {
  const page = await rig.enter({locale: 'en-US', timezoneId: 'Asia/Shanghai'});
  for (const name of ['status', 'device']) {
    await go(page, name);
    assert.doesNotMatch(await page.locator('main').innerText(), /\b[AP]M\b/);
  }
  await put(page, 'stBaseInfo/strFD_CurTime', 'set');
  const kinds = await page.locator('[data-section="base"] input').evaluateAll((all) =>
    all.map((input) => input.type));
  assert.ok(kinds.length > 2 && !kinds.some((kind) => /date|time/.test(kind)), kinds.join());
  await page.context().close();
});

test('the theme is chosen with a switch, and stays', async () => {
  const page = await rig.enter();
  const ground = () => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  const light = await ground();
  const choose = async (theme) => {
    for (let tries = 0; tries < 3; tries++) {
      if (await page.locator(`[data-theme-now="${theme}"]`).count()) return;
      await page.locator('[data-action="theme"]').click();
    }
    assert.fail(`no ${theme} theme`);
  };
  await choose('dark');
  await page.waitForFunction((before) =>
    getComputedStyle(document.body).backgroundColor !== before, light);
  const dark = await ground();
  await page.reload();
  await shown(page, 'status');
  assert.equal(await ground(), dark);
  await choose('light');
  assert.equal(await ground(), light);
  await page.context().close();
});

test('the keyboard alone signs in, goes to a page, changes a setting and saves it', async () => {
  await rig.reset();
  const page = await rig.open();
  await page.goto(`${rig.url}/login.html`);
  await page.locator('#password').waitFor();
  const active = (name) => page.evaluate((key) => document.activeElement[key] || '', name);
  const tabTo = async (there) => {
    for (let steps = 0; steps < 120; steps++) {
      if (await there()) return;
      await page.keyboard.press('Tab');
    }
    assert.fail(`never reached: ${there}`);
  };
  await tabTo(async () => await active('id') === 'password');
  await page.keyboard.type('admin123');
  await page.keyboard.press('Enter');
  await shown(page, 'status');
  await page.evaluate(() => document.activeElement.blur());
  await page.keyboard.press('Tab');
  assert.match(await active('textContent'), /skip/i);
  await tabTo(async () => await active('hash') === '#/video');
  await page.keyboard.press('Enter');
  await shown(page, 'video');
  const mirror = 'stVideoMirror/stVideoMirrorPara/VChn_0/ucFD_LeftRight';
  await tabTo(async () => await focused(page) === mirror);
  await page.keyboard.press('Space');
  await tabTo(async () => await focused(page) === 'stSubStream/ucFD_FrameRate');
  await page.keyboard.press('Control+a');
  await page.keyboard.type('9');
  await page.keyboard.press('Enter');
  await dialog(page).waitFor();
  await page.keyboard.press('Enter');
  await until(async () => await ended(page, 'subStream') === 'applied', 'the save');
  assert.equal(rig.setting('stSubStream', 'ucFD_FrameRate'), '9');
  await page.context().close();
});
