// How a save can end, each in its own words, and what must never happen on the way.
import assert from 'node:assert/strict';
import test, {after, before} from 'node:test';
import {field, kPassword, notice, press, Rig, settled, visit} from '../rig.js';

let rig;
let page;
before(async () => {
  rig = await Rig.start();
  page = await rig.open();
  await rig.login(page);
});
after(async () => {
  assert.deepEqual(page.errors, []);
  await rig.stop();
});

const kForm = 'SubStreamInfo';
const rate = () => field(page, kForm, 'ucFD_SFrameRate');
const storedRate = () => rig.setting('stSubStream', 'ucFD_FrameRate');
const words = () => notice(page, kForm).innerText();

async function start(value) {
  await visit(rig, page, 'video');
  await rate().fill(value);
  await press(page, kForm);
}

async function end(tone, pattern) {
  assert.equal(await settled(page, kForm), tone);
  assert.match(await words(), pattern);
}

async function discard() {
  await page.getByRole('button', {name: 'Discard changes'}).click();
}

test('applied: progress through the restart, then read back; two clicks make one set', async () => {
  const sets = rig.sets();
  await visit(rig, page, 'video');
  await rate().fill('11');
  await page.evaluate(() => {
    const button = document.querySelector('#SubStreamInfo .main');
    button.click();
    button.click();
  });
  await page.locator(`#${kForm} progress`).waitFor();
  assert.match(await words(), /service restarts/);
  assert.ok(await page.locator(`#${kForm} .main`).isDisabled());
  assert.ok(await rate().isDisabled());
  await end('good', /Saved\. The recorder was read again/);
  assert.equal(storedRate(), '11');
  assert.equal(rig.sets(), sets + 1);
});

test('nothing typed, nothing sent', async () => {
  const sets = rig.sets();
  await press(page, kForm);
  await end('info', /Nothing has been changed/);
  assert.equal(rig.sets(), sets);
});

test('refused: the recorder says no, the input stays', async () => {
  await rig.fault('for=set result:1');
  await start('21');
  await end('bad', /Refused by the recorder/);
  assert.equal(await rate().inputValue(), '21');
  assert.equal(storedRate(), '11');
  await rig.clear();
});

test('the input outlives a reload, and can be discarded', async () => {
  await visit(rig, page, 'video');
  assert.equal(await rate().inputValue(), '21');
  assert.match(await words(), /unsaved changes are back/);
  await discard();
  assert.equal(await rate().inputValue(), '11');
  await visit(rig, page, 'video');
  assert.equal(await rate().inputValue(), '11');
});

test('silent: the recorder does not answer the set, nor the reading', async () => {
  await visit(rig, page, 'video');
  await rig.fault('for=stSubStream,set silent');
  await rate().fill('22');
  await press(page, kForm);
  await end('bad', /recorder does not answer/);
  assert.equal(await rate().inputValue(), '22');
  await rig.clear();
  await rig.fault('silent');
  await press(page, kForm);
  await end('bad', /recorder does not answer/);
  await rig.clear();
});

test('an answer that got lost: what the recorder holds decides', async () => {
  await rig.fault('for=set lost');
  await start('22');
  await end('good', /Saved/);
  assert.equal(storedRate(), '22');
  await rig.clear();
});

test('adjusted: the recorder kept something else, and it is named', async () => {
  const reply = (rate) => '<VariCfgSec Action="DEVICE_QUERY" Result="0"><stSubStream ' +
      `ucFD_FrameRate="${rate}" uiFD_BitRate="256"/></VariCfgSec>`;
  await visit(rig, page, 'video');
  await rate().fill('60');
  await rig.fault(`for=set delay:1500`);
  await press(page, kForm);
  await page.locator(`#${kForm} .busy`, {hasText: 'Sent'}).waitFor();
  await rig.fault(`for=stSubStream,query text:${reply(30)}`);
  await end('warn', /Saved in part[^]*Frame rate.* 60 → 30/);
  assert.equal(await rate().inputValue(), '60');
  await rig.clear();
  await discard();
});

test('a colleague changed the section: nothing is sent before that is shown', async () => {
  await visit(rig, page, 'video');
  await rate().fill('13');
  const colleague = await rig.open();
  await rig.login(colleague);
  await visit(rig, colleague, 'video');
  await field(colleague, kForm, 'uiFD_SBitRate').fill('777');
  await colleague.click(`#${kForm} .main`);
  await colleague.locator(`#${kForm} .good`).waitFor();
  await colleague.context().close();
  const sets = rig.sets();
  await press(page, kForm);
  await page.locator(`#${kForm} .warn`).waitFor();
  assert.match(await words(), /somebody changed this section[^]*Bit rate.* 256 → 777/);
  assert.equal(rig.sets(), sets);
  assert.equal(await rate().inputValue(), '13');
  await press(page, kForm);
  await page.locator(`#${kForm} .good`).waitFor();
  assert.deepEqual([storedRate(), rig.setting('stSubStream', 'uiFD_BitRate')], ['13', '777']);
});

test('a second tab shares the session', async () => {
  const tab = await page.context().newPage();
  await visit(rig, tab, 'device');
  await tab.close();
});

test('errors stand at their fields, and nothing is sent', async () => {
  await visit(rig, page, 'network');
  const sets = rig.sets();
  const rows = [
    ['strFD_SSID', '车'.repeat(16), /32 bytes, at most 31/], ['strFD_SSID', '', /fill in/],
    ['strFD_SSID', '"'.repeat(6), /36 bytes, at most 31/], ['strFD_SSID', 'a😀', /character: 😀/],
    ['ucFD_AuthMode', '256', /0 to 255/],
  ];
  const kValid = {strFD_SSID: 'x', ucFD_AuthMode: '3'};
  for (const [name, value, pattern] of rows) {
    await field(page, 'WifiInfo', name).fill(value);
    await page.click('#WifiInfo .main');
    const error = page.locator(`#WifiInfo-${name}-error`);
    await error.waitFor();
    assert.match(await error.innerText(), pattern);
    assert.equal(await field(page, 'WifiInfo', name).getAttribute('aria-invalid'), 'true');
    assert.equal(await page.evaluate(() => document.activeElement.id), `WifiInfo-${name}`);
    await field(page, 'WifiInfo', name).fill(kValid[name]);
  }
  assert.equal(rig.sets(), sets);
  await discard();
});

test('script in a reply of the recorder is text', async () => {
  const hostile = '&lt;img src=x onerror=&quot;window.hit=1&quot;&gt;';
  await rig.fault('for=stSystemInfo text:<VariCfgSec Action="DEVICE_QUERY" Result="0">' +
      `<stSystemInfo GpsExist="1" GpsPos="${hostile}" AppVer="${hostile.slice(0, 60)}"` +
      ' DeviceNo="&quot;,&quot;result&quot;:0}"/></VariCfgSec>');
  await rig.fault('for=stWifi text:<VariCfgSec Action="DEVICE_QUERY" Result="0"><stWifi ' +
      'ucFD_WorkMode="1" strFD_SSID="&quot;&gt;&lt;script&gt;hit=1&lt;/script&gt;"/></VariCfgSec>');
  await page.goto(`${rig.url}/status.html`);
  await page.locator('#gps', {hasText: '<img src=x onerror="window.hit=1">'}).waitFor();
  assert.equal(await page.locator('.summary dd').first().innerText(), '","result":0}');
  await visit(rig, page, 'network');
  const ssid = field(page, 'WifiInfo', 'strFD_SSID');
  assert.equal(await ssid.inputValue(), '"><script>hit=1</script>');
  assert.equal(await page.evaluate(() => window.hit), undefined);
  assert.equal(await page.locator('#main img, #main script').count(), 0);
  await rig.clear();
});

test('the status goes on living: it tells a silent recorder and finds it again', async () => {
  await page.goto(`${rig.url}/status.html`);
  await page.locator('.moment:not(:empty)').waitFor();
  await rig.fault('for=stSystemInfo silent');
  await page.locator('.live > .bad').waitFor();
  assert.match(await page.locator('.live > .bad').innerText(), /does not answer.*Shown below/);
  assert.equal(await page.locator('.summary dd').first().innerText(), '80012345');
  await rig.clear();
  await page.locator('.live > .bad').waitFor({state: 'detached'});
});

test('lost: the connection goes while the save is on its way, and comes back', async () => {
  await rig.fault('for=set delay:1500');
  await start('14');
  await page.locator(`#${kForm} .busy`, {hasText: 'Sent'}).waitFor();
  await rig.stopDaemon();
  await page.locator(`#${kForm} .busy`, {hasText: 'Reading back'}).waitFor();
  await rig.startDaemon();  // the recorder took the set; only the answer is gone
  await end('good', /Saved/);
  assert.equal(storedRate(), '14');
  await rig.clear();
});

test('lost for good: the words say so and the input stays', async () => {
  await rig.fault('for=set delay:1500');
  await start('15');
  await page.locator(`#${kForm} .busy`, {hasText: 'Sent'}).waitFor();
  await rig.stopDaemon();
  await end('bad', /Connection lost/);
  assert.equal(await rate().inputValue(), '15');
  await rig.startDaemon();
  const sets = rig.sets();  // it had arrived: the next try finds that out and sends nothing
  await press(page, kForm);
  await end('good', /Saved/);
  assert.equal(rig.sets(), sets);
});

test('noservice: the service hangs', async () => {
  await rig.login(page, kPassword);
  await start('16');
  await page.locator(`#${kForm} .busy`, {hasText: 'Sent'}).waitFor();
  rig.daemon.kill('SIGSTOP');
  await end('bad', /web service does not answer/);
  assert.equal(await rate().inputValue(), '16');
  rig.daemon.kill('SIGCONT');
});

test('a page that finds no service says so and offers another try', async () => {
  await visit(rig, page, 'video');
  await rig.fault('for=stSubStream silent');
  await page.reload();
  await page.locator(`#${kForm} .bad`).waitFor();
  assert.match(await words(), /recorder does not answer/);
  await rig.clear();
  await page.locator(`#${kForm}`).getByRole('button', {name: 'Try again'}).click();
  await page.locator(`#${kForm} fieldset:enabled`).waitFor();
});
