// What is typed and not yet saved: where it is kept, what is never kept, and changes by somebody
// else.
import assert from 'node:assert/strict';
import test, {after, before, beforeEach} from 'node:test';
import {
  asksToStay, button, dialog, field, fieldRow, get, go, memory, put, Rig, save, shown, visit, words,
} from '../rig.js';

const kApn = 'stMobileGNet/strFD_Apn';
const kPhone = 'stMobileGNet/strFD_PhoneNo';

let rig;
let page;
before(async () => { rig = await Rig.start(); });
beforeEach(async () => {
  await rig.reset();
  page = await rig.enter();
  await visit(rig, page, 'network');
});
after(() => rig.stop());

async function over() {
  assert.deepEqual(page.errors, []);
  await page.context().close();
}

const badge = (name) => page.locator(`nav a[data-page="${name}"] .badge`);
const colleague = (value, name = 'strFD_Apn') => rig.change(`<stMobileGNet ${name}="${value}"/>`);

test('a draft outlives other pages and a reload; a badge tells how many changes wait where',
    async () => {
      await put(page, kApn, 'fleet');
      await put(page, kPhone, '*98#');
      await badge('network').filter({hasText: '2'}).waitFor();
      await go(page, 'video');
      await put(page, 'stSubStream/ucFD_FrameRate', '11');
      await badge('video').filter({hasText: '1'}).waitFor();
      await page.reload();
      await shown(page, 'video');
      assert.equal(await get(page, 'stSubStream/ucFD_FrameRate'), '11');
      await badge('network').filter({hasText: '2'}).waitFor();
      await go(page, 'network');
      assert.deepEqual([await get(page, kApn), await get(page, kPhone)], ['fleet', '*98#']);
      await button(page, 'mobile', 'discard').click();
      assert.deepEqual([await get(page, kApn), await get(page, kPhone)], ['CMNET', '*99#']);
      await badge('network').waitFor({state: 'detached'});
      await over();
    });

test('closing with changes asks, without changes it does not', async () => {
  assert.equal(await asksToStay(page), false);
  await put(page, kApn, 'fleet');
  assert.equal(await asksToStay(page), true);
  await button(page, 'mobile', 'discard').click();
  assert.equal(await asksToStay(page), false);
  await over();
});

test('a password never enters a draft', async () => {
  const secrets = ['stWifi/strFD_Passwd', 'stMobileGNet/strFD_UserPasswd'];
  for (const path of secrets) await put(page, path, 'geheim-1');
  await put(page, kApn, 'fleet');
  await go(page, 'platforms');
  await put(page, 'stGB28181/strFD_DevicePass', 'geheim-2');
  await go(page, 'security');
  for (const path of ['current', 'fresh', 'repeat']) await put(page, path, 'geheim-3');
  await go(page, 'network');
  const kept = await memory(page);
  assert.match(kept, /fleet/);
  assert.doesNotMatch(kept, /geheim|depot2024|bus80012345|admin123|12345678"/);
  await page.reload();
  await shown(page, 'network');
  assert.equal(await get(page, kApn), 'fleet');
  for (const path of secrets) assert.notEqual(await get(page, path), 'geheim-1');
  await over();
});

test('no secret is on the screen unless somebody asks', async () => {
  for (const [name, paths] of [
    ['network', ['stWifi/strFD_Passwd', 'stMobileGNet/strFD_UserPasswd']],
    ['platforms', ['stGB28181/strFD_DevicePass']],
  ]) {
    await go(page, name);
    for (const path of paths)
      assert.equal(await field(page, path).getAttribute('type'), 'password', path);
    assert.doesNotMatch(await page.locator('main').innerText(), /depot2024|12345678\b/);
  }
  await over();
});

test('a colleague changed another field of the section: both changes end on the recorder',
    async () => {
      await put(page, kApn, 'fleet');
      await colleague('*77#', 'strFD_PhoneNo');
      assert.equal(await save(page, 'mobile'), 'elsewhere');
      assert.match(await words(page, 'mobile'), /Before\s+Recorder now[^]*\*99#[^]*\*77#/);
      assert.equal(await save(page, 'mobile'), 'applied');
      assert.deepEqual([rig.setting('stMobileGNet', 'strFD_Apn'),
        rig.setting('stMobileGNet', 'strFD_PhoneNo')], ['fleet', '*77#']);
      await over();
    });

// The page's question shows both values; nothing has been sent.
async function asks(mine, theirs) {
  const sets = rig.sets();
  assert.equal(await save(page, 'mobile'), 'conflict');
  assert.match(await fieldRow(page, kApn).innerText(), new RegExp(theirs));
  assert.equal(await get(page, kApn), mine);
  assert.equal(rig.sets(), sets);
}

const take = (whose) => fieldRow(page, kApn).locator(`[data-take="${whose}"]`).click();

test('a colleague changed the very field: asked, and mine can win', async () => {
  await put(page, kApn, 'fleet');
  await colleague('theirs');
  await asks('fleet', 'theirs');
  await take('mine');
  assert.equal(await save(page, 'mobile'), 'applied', await words(page, 'mobile'));
  assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'fleet');
  await over();
});

test('a colleague changed the very field: asked, and theirs can win', async () => {
  await put(page, kApn, 'fleet');
  await colleague('theirs');
  await asks('fleet', 'theirs');
  await take('theirs');
  assert.equal(await get(page, kApn), 'theirs');
  assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'theirs');
  await over();
});

test('the base of a draft survives a reload: a change in between is asked about', async () => {
  await put(page, kApn, 'fleet');
  await colleague('theirs');
  const sets = rig.sets();
  await page.reload();
  await shown(page, 'network');
  assert.equal(await get(page, kApn), 'fleet');
  assert.match(await fieldRow(page, kApn).innerText(), /theirs/);
  await button(page, 'mobile', 'save').click();
  assert.equal(await dialog(page).count(), 0);
  await take('mine');
  assert.equal(await save(page, 'mobile'), 'applied');
  assert.equal(rig.sets(), sets + 1);
  assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'fleet');
  await over();
});

test('two tabs: one session, drafts of their own, and what one saved the other does not undo',
    async () => {
      const tab = await page.context().newPage();
      await visit(rig, tab, 'network');
      await put(page, kApn, 'fleet');
      assert.equal(await get(tab, kApn), 'CMNET');
      await put(tab, kPhone, '*98#');
      assert.equal(await save(tab, 'mobile'), 'applied');
      assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'CMNET');
      await tab.close();
      assert.equal(await save(page, 'mobile'), 'elsewhere');
      assert.equal(await save(page, 'mobile'), 'applied');
      assert.deepEqual([rig.setting('stMobileGNet', 'strFD_Apn'),
        rig.setting('stMobileGNet', 'strFD_PhoneNo')], ['fleet', '*98#']);
      await over();
    });
