// Every way in which a save can end, with its message, and what must never happen meanwhile.
import assert from 'node:assert/strict';
import test from 'node:test';
import {
  agree, button, cancel, dialog, ended, field, focused, health, line, painted, press, put, save,
  shown, until, visit, words,
} from '../rig.js';
import {page, rig, sharePage} from '../shared.js';

const kForm = 'mobile';
const kSection = 'stMobileGNet';

sharePage('network');

const apn = () => field(page, 'stMobileGNet/strFD_Apn');
const stored = (name = 'strFD_Apn') => rig.setting(kSection, name);
const discard = () => button(page, kForm, 'discard').click();

async function send(value) {
  await apn().fill(value);
  await press(page, kForm);
  await agree(page);
}

// The recorder has applied the set, the service has not replied yet.
async function underway(value) {
  await rig.fault('for=set delay:1500');
  await apn().fill(value);
  const before = rig.sets();
  await press(page, kForm);
  await agree(page);
  await until(() => rig.sets() > before, 'the set to reach the recorder');
}

test('applied: steps with numbers and seconds, then read back; two clicks make one set',
    async () => {
      await rig.fault('for=set delay:3000');  // long enough for the keys to come in the middle
      await apn().fill('fleet');
      const sets = rig.sets();
      await line(page, kForm).evaluate((node) => node.removeAttribute('data-note'));
      await button(page, kForm, 'save').dblclick();
      await dialog(page).locator('.main').dblclick();
      await line(page, kForm).filter({hasText: /Step \d of \d.*\(\d+ s\)/s}).waitFor();
      await line(page, kForm).locator('[aria-hidden]', {hasText: /^ \(\d+ s\)$/}).waitFor();
      await apn().focus();
      await page.keyboard.press('Control+s');
      await painted(page);
      assert.equal(await dialog(page).count(), 0);
      assert.equal(await ended(page, kForm), 'applied');
      assert.equal(stored(), 'fleet');
      assert.equal(rig.sets(), sets + 1);
      assert.equal(await apn().inputValue(), 'fleet');
    });

test('a value that equals the recorder\'s is no change, and nothing is sent', async () => {
  const sets = rig.sets();
  await apn().fill('fleet');
  await button(page, kForm, 'discard').waitFor();
  await apn().fill('CMNET');
  await button(page, kForm, 'discard').waitFor({state: 'detached'});
  await page.keyboard.press('Control+s');
  await painted(page);
  assert.equal(rig.sets(), sets);
  assert.equal(await dialog(page).count(), 0);
});

// Keys from the button that agrees, and what has the focus then: it stays inside the dialog.
const kRound = [['Tab', 'quiet'], ['Tab', 'scroll'], ['Tab', 'main'], ['Shift+Tab', 'scroll'],
  ['Shift+Tab', 'quiet'], ['Shift+Tab', 'main']];

test('before sending stands the list of changes, in words, without secrets; Escape sends nothing',
    async () => {
      await apn().fill('fleet');
      await field(page, 'stMobileGNet/strFD_UserPasswd').fill('geheim');
      const sets = rig.sets();
      await press(page, kForm);
      const list = await dialog(page).innerText();
      assert.match(list, /CMNET[^]*fleet/);
      assert.doesNotMatch(list, /geheim|strFD_|\bcard\b/);
      for (const [key, next] of kRound) {
        await page.keyboard.press(key);
        assert.equal(await dialog(page).locator(':focus').getAttribute('class'), next, key);
      }
      await cancel(page);
      await dialog(page).waitFor({state: 'detached'});
      assert.equal(rig.sets(), sets);
      assert.equal(await apn().inputValue(), 'fleet');
      await discard();
    });

test('Ctrl-S saves from within a field, Enter agrees, and the focus returns to the field',
    async () => {
      await apn().fill('fleet');
      await line(page, kForm).evaluate((node) => node.removeAttribute('data-note'));
      await page.keyboard.press('Control+s');
      await dialog(page).waitFor();
      await page.keyboard.press('Enter');
      assert.equal(await ended(page, kForm), 'applied');
      assert.equal(stored(), 'fleet');
      await until(async () => await focused(page) === 'stMobileGNet/strFD_Apn', 'the focus');
    });

test('where the button that was pressed is gone, the focus goes on to the form\'s Save', async () => {
  const pressed = async (target) => {
    await target.focus();
    await page.keyboard.press('Enter');
  };
  const onSave = () => page.evaluate((id) =>
    document.activeElement.matches(`[data-section=${id}] [type=submit]`), kForm);
  await apn().fill('fleet');
  await pressed(button(page, kForm, 'discard'));
  await until(onSave, 'the focus after discarding');
  await apn().fill('fleet');
  assert.equal(await save(page, kForm), 'applied');
  await pressed(button(page, kForm, 'restore'));
  await dialog(page).waitFor();
  await page.keyboard.press('Enter');
  await until(onSave, 'the focus while restoring');
  assert.equal(await ended(page, kForm), 'applied');
  await apn().fill('fleet');
  await rig.change('<stMobileGNet strFD_Apn="depot"/>');
  assert.equal(await save(page, kForm), 'conflict');
  await pressed(page.locator('[data-take=mine]'));
  await until(onSave, 'the focus after the choice');
});

test('after a save the former values can be restored', async () => {
  await apn().fill('fleet');
  await put(page, 'stMobileGNet/strFD_PhoneNo', '*98#');
  assert.equal(await save(page, kForm), 'applied');
  assert.deepEqual([stored(), stored('strFD_PhoneNo')], ['fleet', '*98#']);
  await line(page, kForm).evaluate((node) => node.removeAttribute('data-note'));
  await button(page, kForm, 'restore').click();
  await agree(page);
  assert.equal(await ended(page, kForm), 'applied');
  assert.deepEqual([stored(), stored('strFD_PhoneNo')], ['CMNET', '*99#']);
  assert.equal(await apn().inputValue(), 'CMNET');
});

test('refused: the recorder says no, the input stays and can be discarded', async () => {
  await rig.fault('for=set result:1');
  await send('fleet');
  assert.equal(await ended(page, kForm), 'refused');
  assert.equal(await apn().inputValue(), 'fleet');
  assert.equal(stored(), 'CMNET');
  await discard();
  assert.equal(await apn().inputValue(), 'CMNET');
});

test('deviceSilent: the recorder does not answer the set; the input stays', async () => {
  await rig.fault('for=set silent');
  await send('fleet');
  assert.equal(await ended(page, kForm), 'deviceSilent');
  assert.doesNotMatch(await words(page, kForm), /[Rr]efused/);
  assert.equal(await apn().inputValue(), 'fleet');
  await rig.clear();
  assert.equal(await save(page, kForm), 'applied');
});

test('an answer that got lost: what the recorder holds decides', async () => {
  await rig.fault('for=set lost');
  await send('fleet');
  assert.equal(await ended(page, kForm), 'applied');
  assert.equal(stored(), 'fleet');
});

test('what the recorder made of a value is named', async () => {
  await rig.fault('for=set delay:1500');
  const sets = rig.sets();
  await send('fleet');
  await until(() => rig.sets() > sets, 'the set');
  await rig.fault('for=stMobileGNet,query text:<VariCfgSec Action="DEVICE_QUERY" Result="0">' +
      '<stMobileGNet ucFD_NetType="4" strFD_Apn="other" strFD_PhoneNo="*99#" ' +
      'strFD_UserName="card" strFD_UserPasswd="card"/></VariCfgSec>');
  assert.notEqual(await ended(page, kForm), 'applied');
  assert.match(await words(page, kForm), /New\s+Recorder now[^]*fleet[^]*other/);
  assert.equal(await apn().inputValue(), 'fleet');
  await rig.clear();
  await discard();
});

test('a reload in mid-save: what the recorder has is not called unsaved', async () => {
  await underway('fleet');
  await page.reload();
  await shown(page, 'network');
  assert.equal(await apn().inputValue(), 'fleet');
  assert.equal(stored(), 'fleet');
  await button(page, kForm, 'discard').waitFor({state: 'detached'});
  assert.equal(await page.locator('nav .badge').count(), 0);
});

test('the service killed in mid-save and back again: the save ends by what arrived', async () => {
  await underway('fleet');
  await rig.stopDaemon();
  await rig.startDaemon();
  assert.equal(await ended(page, kForm), 'applied');
  assert.equal(stored(), 'fleet');
});

test('the service killed before the set arrived: nothing is called saved, the input stays',
    async () => {
      await apn().fill('fleet');
      await press(page, kForm);
      await dialog(page).waitFor();
      await rig.stopDaemon();
      await agree(page);
      assert.notEqual(await ended(page, kForm), 'applied');
      assert.equal(await apn().inputValue(), 'fleet');
      await rig.startDaemon();
      await health(page, 'serviceSilent').waitFor({state: 'detached'});
      assert.equal(await save(page, kForm), 'applied');
      assert.equal(stored(), 'fleet');
    });

test('serviceSilent: the service hangs', async () => {
  await apn().fill('fleet');
  await press(page, kForm);
  await dialog(page).waitFor();
  rig.daemon.kill('SIGSTOP');
  await agree(page);
  assert.equal(await ended(page, kForm), 'serviceSilent');
  rig.daemon.kill('SIGCONT');
  assert.equal(await apn().inputValue(), 'fleet');
});

test('the session is renewed before a save, and the set comes after it', async () => {
  const asked = [];
  const note = (request) => asked.push(new URL(request.url()));
  page.on('request', note);
  await apn().fill('fleet');
  assert.equal(await save(page, kForm), 'applied');
  page.off('request', note);
  const gate = asked.findIndex((url) =>
    /^\/(page|sets)\.css$/.test(url.pathname) &&
        /\btime=\d+/.test(url.search) && /\bSessionID=[0-9a-f]{32}/.test(url.search));
  const sent = asked.findIndex((url) => /^\/(set_|import_)/.test(url.pathname));
  assert.ok(gate >= 0 && gate < sent, asked.map(String).join('\n'));
});

test('a time zone is saved without touching the clock, or anything else', async () => {
  await visit(rig, page, 'device');
  const clock = rig.setting('stBaseInfo', 'strFD_CurTime');
  await put(page, 'stBaseInfo/ucFD_TimeZone', '9');
  assert.equal(await save(page, 'base'), 'applied');
  assert.equal(rig.setting('stBaseInfo', 'ucFD_TimeZone'), '9');
  assert.equal(rig.setting('stBaseInfo', 'strFD_CurTime'), clock);
  assert.doesNotMatch(rig.messages().at(-1), /strFD_CurTime|strFD_DeviceNo/);
});
