// The pictures of docs/pages.md, taken with the simulated recorder as delivered; they are small
// enough to be kept beside the text. A picture that the text lacks, or shows without its being taken
// here, fails.
import assert from 'node:assert/strict';
import {readFileSync, writeFileSync} from 'node:fs';
import {join} from 'node:path';
import test, {after, before, beforeEach} from 'node:test';
import {fileURLToPath} from 'node:url';
import {pictures} from '../pair.js';
import {
  agree, dialog, forget, health, kCab, kPhone, painted, press, put, Rig, save, section, type, until,
  visit,
} from '../rig.js';

const kFolder = pictures();
const kQuality = 85;
const kMostBytes = 60000;
const kManual = fileURLToPath(new URL('../../../docs/pages.md', import.meta.url));
const kStream = 'stSubStream/';

let rig;
before(async () => { rig = await Rig.start(); });
after(() => rig.stop());
beforeEach(() => rig.reset());

// A file as another recorder of the fleet would export it.
const kForeign = {name: 'recorder-80054321.xml', mimeType: 'text/xml', buffer: Buffer.from(
    '<VariCfgSec><stBaseInfo strFD_DeviceNo="80054321" ucFD_TimeZone="9"/>' +
    '<stOverlay ucFD_TempEnable="1"/><stSpeed usFD_OverSpeed="80"/></VariCfgSec>')};

async function wrongPassword(page) {
  await type(page, 'guess');
  await page.locator('[data-note=wrong]').waitFor();
}

async function review(page) {
  await put(page, `${kStream}ucFD_FrameRate`, '15');
  await put(page, `${kStream}uiFD_BitRate`, '384');
  await press(page, 'subStream');
  await dialog(page).waitFor();
}

async function saved(page) {
  await put(page, `${kStream}ucFD_FrameRate`, '15');
  assert.equal(await save(page, 'subStream'), 'applied');
}

async function conflict(page) {
  await put(page, 'stMobileGNet/strFD_Apn', 'fleet');
  await rig.change('<stMobileGNet strFD_Apn="depot"/>');
  assert.equal(await save(page, 'mobile'), 'conflict');
}

async function compare(page) {
  await page.locator('[data-section=import] input[type=file]').setInputFiles(kForeign);
  await page.locator('[data-setting]').first().waitFor();
}

async function search(page) {
  await page.fill('#find-setting', 'overspeed');
  await page.locator('[data-setting="stSpeed/usFD_OverSpeed"]').waitFor();
  await page.evaluate(() => scrollTo(0, document.body.scrollHeight));  // the bar is at the end there
}

// A drive: the signal falls and rises, the platform is lost for a while. The page's clock is moved, so
// that half an hour takes seconds.
async function drive(page) {
  await page.clock.install();
  await rig.login(page);
  for (let k = 0; k < 60; k++) {
    const signal = Math.round(18 + 9 * Math.cos(k / 7) + 2 * Math.sin(k * 2));
    await rig.clear();
    await rig.fault('for=stSystemInfo text:<VariCfgSec Action="DEVICE_QUERY" Result="0">' +
        `<stSystemInfo GNetExist="1" GNetSignal="${signal}" GNetDail="1" WifiExist="1" ` +
        `WifiSignal="${90 - Math.floor(k / 2)}" WifiDail="${Number(k < 48)}" JTT808Status="1" ` +
        `CmsStatus="${Number(signal > 12)}" NetStatus="1" Disk1Exist="1" Disk2Exist="1" ` +
        `Disk1Size="931.5GB/${400 - k}GB" Disk2Size="119.2GB/87.3GB"/></VariCfgSec>`);
    const before = await page.locator('.moment').innerText();
    await page.clock.fastForward(18000);
    await until(async () => await page.locator('.moment').innerText() !== before, 'a reading');
  }
}

async function code(page) {
  await put(page, 'stWifi/ucFD_WorkMode', '2');
  await section(page, 'accessPoint').locator('[data-action=code]').click();
  await section(page, 'accessPoint').locator('svg.code').waitFor();
}

const kTemplate = {name: 'template-city-buses.xml', mimeType: 'text/xml', buffer: Buffer.from(
    '<VariCfgSec><stOverlay ucFD_TempEnable="1" ucFD_TimeEnable="1"/>' +
    '<stSpeed usFD_OverSpeed="80"/></VariCfgSec>')};

async function template(page) {
  await page.locator('[data-section=apply] input[type=file]').setInputFiles(kTemplate);
  await page.locator('[data-section=apply] [data-setting]').first().waitFor();
}

async function apply(page) {
  await template(page);
  await press(page, 'apply');
  await agree(page);
  await page.locator('[data-section=apply] [data-line]').first().waitFor();
}

async function silence(page) {
  await rig.fault('silent');
  await health(page, 'deviceSilent').waitFor();
}

// Name, window, page of the application or null for the sign-in, what is done there, and the section
// that is shown.
const kPictures = [
  ['sign-in', kPhone, null, wrongPassword],
  ['status', kCab, 'status'],
  ['history', kCab, null, drive, 'history'],
  ['device', kCab, 'device'],
  ['video', kCab, 'video'],
  ['review', kCab, 'video', review],
  ['saved', kCab, 'video', saved, 'subStream'],
  ['conflict', kCab, 'network', conflict, 'mobile'],
  ['network', kPhone, 'network'],
  ['code', kCab, 'network', code, 'accessPoint'],
  ['platforms', kCab, 'platforms', (page) => page.locator('.grid').evaluate(
      (table) => table.previousElementSibling.previousElementSibling.scrollIntoView())],
  ['security', kCab, 'security'],
  ['import', kCab, 'maintenance', compare, 'import'],
  ['settings', kCab, 'settings', search, 'all'],
  ['template', kCab, 'fleet', template, 'apply'],
  ['applied', kCab, 'fleet', apply, 'apply'],
  ['silent', kCab, 'status', silence],
];

const opened = new Map();

// One browser profile for each size of window, as if it were new, and one for each sign-in.
async function open(size, place) {
  if (!place) {
    const page = await rig.open({size});
    await page.goto(`${rig.url}/login.html`);
    await page.locator('#password:focus').waitFor();
    return page;
  }
  if (!opened.has(size)) opened.set(size, await rig.enter({size}));
  const page = opened.get(size);
  await forget(page);
  await visit(rig, page, place);
  return page;
}

// The window or a section of the page, as a small file.
async function shoot(page, id) {
  await painted(page);
  const clip = id && {...await section(page, id).evaluate((node) => {
    const {left, top, width, height} = node.getBoundingClientRect();
    return {x: left + scrollX - 8, y: top + scrollY - 8, width: width + 16, height: height + 16};
  }), scale: 1};
  const session = await page.context().newCDPSession(page);
  const {data} = await session.send('Page.captureScreenshot', {format: 'webp', quality: kQuality,
    ...(clip ? {clip, captureBeyondViewport: true} : {})});
  return Buffer.from(data, 'base64');
}

for (const [name, size, place, act, id] of kPictures) {
  test(`the picture ${name}`, async (t) => {
    const page = await open(size, place);
    if (act) await act(page);
    const picture = await shoot(page, id);
    if (kFolder) writeFileSync(join(kFolder, `page-${name}.webp`), picture);
    t.diagnostic(`${picture.length} bytes`);
    assert.ok(picture.length < kMostBytes, `${picture.length}`);
    assert.deepEqual(page.errors, []);
  });
}

test('the manual shows these pictures and no others', () => {
  const shown = [...readFileSync(kManual, 'utf8').matchAll(/\]\(images\/page-([\w-]+)\.webp\)/g)];
  assert.deepEqual(shown.map(([, name]) => name).sort(), kPictures.map(([name]) => name).sort());
});
