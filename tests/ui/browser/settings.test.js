// All settings: found, changed in place, reviewed, sent alone, read back; on paper and copied.
import assert from 'node:assert/strict';
import test from 'node:test';
import {violations} from '../axe.js';
import {
  agree, button, dialog, ended, error, fieldRow, focused, go, kCab, kDesk, kPhone, line, memory,
  painted, press, put, section, visit,
} from '../rig.js';
import {page, rig, sharePage} from '../shared.js';

const kApn = 'stMobileGNet/strFD_Apn';
const kCrash = 'stGSensor/fFD_Crash';
const kPower = 'stPower/usPOffDelayTime';
const kSecret = 'stWifi/strFD_Passwd';

sharePage('settings');

const find = (text) => page.fill('#find-setting', text);
const group = (name) => page.locator(`[data-group="${name}"]`);
const row = (path) => page.locator(`[data-setting="${path}"]`);
const rows = () => page.locator('[data-setting]').evaluateAll((all) =>
  all.map(({dataset}) => dataset.setting));
const open = (name) => group(name).locator('button').first().click();

async function change(path, value) {
  await find(path.split('/').pop());
  await put(page, path, value);
}

test('every exported setting is there: folded, with words, and on demand', async () => {
  const reply = await rig.post('export_CfgFile', '');
  const [, xml] = /strFD_CfgPara": "([^]*)", "result/.exec(reply);
  const count = xml.match(/<VariCfgSec[^>]*>([^]*)/)[1].match(/\s\w+="/g).length;
  assert.match(await section(page, 'find').innerText(),
      new RegExp(`${count} of ${count} settings`));
  assert.equal(await page.locator('[data-group]').count(), 37);
  assert.deepEqual(await rows(), []);
  await open('stMainStream');
  const shown = await rows();
  assert.ok(shown.length && shown.every((path) => path.startsWith('stMainStream/')));
  const all = Number(await group('stMainStream').locator('button .hint').innerText());
  assert.ok(shown.length < all);
  await group('stMainStream').locator('[data-action=more]').click();
  assert.equal((await rows()).length, all);
});

test('words of both languages, raw names, values find a setting, no password does', async () => {
  for (const text of ['access point name', '接入点', 'strfd_apn', 'CMNET']) {
    await find(text);
    assert.ok((await rows()).includes(kApn), text);
  }
  await find('depot2024');
  assert.deepEqual(await rows(), []);
  await find('stVehicle stWifi');
  assert.match(await section(page, 'find').innerText(), /\b0 of/);
});

test('what was changed is checked, reviewed, sent alone and read back', async () => {
  await change(kPower, '65536');
  await press(page, 'all');
  assert.match(await error(page, kPower), /0[^]*65535/);
  await put(page, kPower, '120');
  await change(kCrash, '2.5');
  await find('');
  assert.equal(await page.locator('nav [data-page=settings] .badge').innerText(),
      '2\nchanges not saved');
  const former = [rig.setting('stPower', 'usPOffDelayTime'), rig.setting('stGSensor', 'fFD_Crash')];
  const sets = rig.sets();
  await press(page, 'all');
  const asked = await dialog(page).innerText();
  for (const text of [...former, '120', '2.5']) assert.ok(asked.includes(text), asked);
  assert.doesNotMatch(asked, /usFD_|stPower|stGSensor/);
  await agree(page);
  assert.equal(await ended(page, 'all'), 'applied', await section(page, 'all').innerText());
  const [message, ...more] = rig.messages().slice(sets);
  assert.deepEqual(more, []);
  assert.deepEqual(message.match(/\w+="[^"]*"/g),
      ['Action="DEVICE_SET"', 'usPOffDelayTime="120"', 'fFD_Crash="2.5"']);
  assert.equal(rig.setting('stPower', 'usPOffDelayTime'), '120');
  await button(page, 'all', 'restore').click();
  await agree(page);
  await line(page, 'all').filter({hasText: /Saved/}).waitFor();
  assert.equal(rig.setting('stPower', 'usPOffDelayTime'), former[0]);
});

test('how a save ended is in sight on a phone, above what was changed', async () => {
  await page.setViewportSize(kPhone);
  await find('stPower');
  await fieldRow(page, kPower).locator('input').click();
  const bar = () => section(page, 'all').locator('.foot').evaluate((node) =>
    node.getBoundingClientRect().top);
  const before = await bar();
  await page.keyboard.type('1');
  assert.equal(await bar(), before, 'the bar moved over the field');
  await page.evaluate(() => scrollTo(0, 0));
  await page.keyboard.press('Control+s');
  await agree(page);
  await ended(page, 'all');
  assert.ok(await line(page, 'all').evaluate((node) =>
    node.getBoundingClientRect().bottom <= innerHeight));
  await page.setViewportSize(kDesk);
});

test('a wrong field is shown wherever it is, and stays while it is mended', async () => {
  await find('');
  await open('stMainStream');
  await group('stMainStream').locator('[data-action=more]').click();
  const paths = (await rows()).filter((path) => path.startsWith('stMainStream/'));
  const path = paths.filter((each) => each.endsWith('ucFD_FrameRate')).pop();
  assert.ok(paths.indexOf(path) >= 40);
  await put(page, path, '61');
  await open('stMainStream');
  assert.deepEqual(await rows(), []);
  await find('stVehicle');
  await press(page, 'all');
  assert.match(await error(page, path), /1[^]*60/);
  const input = fieldRow(page, path).locator('input');
  assert.ok(await input.evaluate((each) => each === document.activeElement));
  await page.keyboard.press('End');
  await page.keyboard.press('Backspace');
  await page.keyboard.type('0');
  assert.equal(await input.inputValue(), '60');
  await button(page, 'all', 'discard').click();
});

test('changes outlast a reload, passwords do not', async () => {
  await change(kApn, 'fleet');
  await change(kSecret, 'geheim');
  assert.doesNotMatch(await memory(page), /geheim|depot2024/);
  await visit(rig, page, 'settings');
  assert.equal(await page.locator('nav [data-page=settings] .badge').innerText(),
      '1\nchanges not saved');
  await find(kApn.slice(-3));
  assert.equal(await fieldRow(page, kApn).locator('input').inputValue(), 'fleet');
});

test('a setting that a colleague has changed meanwhile is asked about', async () => {
  await change(kApn, 'fleet');
  await rig.change('<stMobileGNet strFD_Apn="colleague"/>');
  await press(page, 'all');
  await agree(page);
  assert.equal(await ended(page, 'all'), 'conflict');
  assert.equal(await focused(page), kApn);
  await row(kApn).locator('[data-take=mine]').click();
  await press(page, 'all');
  await agree(page);
  assert.equal(await ended(page, 'all'), 'applied');
  assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'fleet');
});

test('what the recorder tells about itself can be read and not be changed', async () => {
  await find('stVersion');
  assert.ok((await rows()).length > 5);
  assert.equal(await page.locator('[data-setting] input').count(), 0);
});

test('the password of the sign-in is changed where the present one is asked for', async () => {
  await find('USER_0 strFD_UserPWD');
  const [path, ...more] = await rows();
  assert.deepEqual([path, more], ['stUserSec/stCustomUser/USER_0/strFD_UserPWD', []]);
  assert.equal(await row(path).locator('input').count(), 0);
  assert.match(await row(path).innerText(), /Security/);
});

test('the sheet for the workshop has every setting and no password', async () => {
  await page.emulateMedia({media: 'print'});
  await page.evaluate(() => window.dispatchEvent(new Event('beforeprint')));
  const sheet = page.locator('.sheet');
  const text = await sheet.innerText();
  assert.equal(await sheet.locator('tbody').count(), 37);
  assert.match(text, /80012345[^]*粤B12345/);
  assert.match(text, /Access point name \(APN\)\s+strFD_Apn\s+CMNET/);
  assert.doesNotMatch(text, /depot2024|admin123/);
  assert.equal(await page.locator('.card:visible').count(), 0);
  await page.evaluate(() => window.dispatchEvent(new Event('afterprint')));
  assert.equal(await sheet.locator('*').count(), 0);
  await page.emulateMedia({media: null});
});

test('the copied text has what a search finds, and no password', async () => {
  await find('stWifi/');
  await button(page, 'find', 'copy').click();
  await line(page, 'find').filter({hasText: /Copied/}).waitFor();
  await page.evaluate(() => document.body.appendChild(document.createElement('textarea')).focus());
  await page.keyboard.press('Control+V');
  const text = await page.locator('body > textarea').inputValue();
  assert.match(text, /80012345/);
  assert.match(text, /\[stWifi\][^\n]*\nucFD_WorkMode\t/);
  assert.match(text, /strFD_SSID\t[^\t]+\t公交车队-0123/);
  assert.doesNotMatch(text, /depot2024|stMobileGNet/);
});

test('an opened page, with a fault and a search, is accessible in either language', async () => {
  await change(kPower, 'x');
  await press(page, 'all');
  await error(page, kPower);
  assert.deepEqual(await violations(page), []);
  await page.click('[data-action=language]');
  await find('电源');
  assert.ok((await rows()).includes(kPower));
  assert.deepEqual(await violations(page), []);
  await page.click('[data-action=language]');
});

test('it works with the keyboard alone', async () => {
  await page.focus('#find-setting');
  await page.keyboard.type('strFD_Apn');
  for (let left = 10; left && await page.evaluate(() =>
    !document.activeElement.closest('[data-field]')); left--) await page.keyboard.press('Tab');
  await page.keyboard.press('Control+A');
  await page.keyboard.type('fleet');
  await page.keyboard.press('Control+S');
  await dialog(page).waitFor();
  await page.keyboard.press('Enter');
  assert.equal(await ended(page, 'all'), 'applied');
  assert.equal(rig.setting('stMobileGNet', 'strFD_Apn'), 'fleet');
});

test('a page whose script does not come says so, and asks for it again', async () => {
  const other = await rig.enter();
  await other.route('**/assets/settings.*', (route) => route.abort());
  await other.evaluate(() => { location.hash = '#/settings'; });
  await other.locator('main [data-note=failed]').waitFor();
  await other.unroute('**/assets/settings.*');
  await other.locator('main [data-note=failed] button').click();
  await other.locator('[data-group=stWifi]').waitFor();
  await other.context().close();
});

// As many as an export can hold.
const kMany = 2000;
const kSlower = 4;  // an in-cab terminal
const kAnswerMs = 100;
const kWord = 'frame';

// More settings than the recorder has, in as few bytes as possible.
function filler(count) {
  const parts = Array.from({length: 12}, () => []);
  for (let k = 0; k < count; k++) parts[k % parts.length].push(` a${k}="${k % 10}"`);
  return parts.map((list, i) => `<stP${i}${list.join('')}/>`).join('');
}

// Milliseconds of the processor that the page takes for a letter until it is painted.
async function effort(metrics, letter) {
  const begin = await metrics();
  await page.keyboard.type(letter);
  await painted(page);
  return (await metrics() - begin) * 1000;
}

test('with 2,000 settings each letter of a search is answered at once', async (t) => {
  const held = Number(/of (\d+) settings/.exec(await section(page, 'find').innerText())[1]);
  await rig.change(filler(kMany - held));
  await page.setViewportSize(kCab);
  await visit(rig, page, 'settings');
  assert.match(await section(page, 'find').innerText(), /2000 of 2000 settings/);
  const session = await page.context().newCDPSession(page);
  await session.send('Performance.enable', {timeDomain: 'threadTicks'});
  const metrics = async () => {
    const {metrics: all} = await session.send('Performance.getMetrics');
    return all.find(({name}) => name === 'TaskDuration').value;
  };
  await page.focus('#find-setting');
  // What else the machine has to do only ever makes it longer: the best of three counts.
  const tries = [];
  for (const letter of [...kWord, ...kWord, ...kWord]) {
    if (tries.length % kWord.length === 0) await find('');
    tries.push(await effort(metrics, letter));
  }
  for (const [i, letter] of [...kWord].entries()) {
    const best = Math.min(...tries.filter((_, k) => k % kWord.length === i));
    const ms = Math.round(best * kSlower);
    t.diagnostic(`"${letter}": ${ms} ms of ${kAnswerMs} on a processor ${kSlower} times slower`);
    assert.ok(ms <= kAnswerMs, `${letter}: ${ms} ms`);
  }
  await session.detach();
  await go(page, 'status');
});
