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
  dialog, forget, health, kCab, kPhone, painted, press, put, Rig, save, section, type, visit,
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

async function silence(page) {
  await rig.fault('silent');
  await health(page, 'deviceSilent').waitFor();
}

// Name, window, page of the application, what is done there, and the section that is shown.
const kPictures = [
  ['sign-in', kPhone, null, wrongPassword],
  ['status', kCab, 'status'],
  ['device', kCab, 'device'],
  ['video', kCab, 'video'],
  ['review', kCab, 'video', review],
  ['saved', kCab, 'video', saved, 'subStream'],
  ['conflict', kCab, 'network', conflict, 'mobile'],
  ['network', kPhone, 'network'],
  ['platforms', kCab, 'platforms', (page) => page.locator('.grid').evaluate(
      (table) => table.previousElementSibling.previousElementSibling.scrollIntoView())],
  ['security', kCab, 'security'],
  ['import', kCab, 'maintenance', compare, 'import'],
  ['silent', kCab, 'status', silence],
];

const opened = new Map();

// One browser profile for each size of window, as if it were new.
async function open(size, place) {
  const key = place && size;
  if (!opened.has(key)) opened.set(key, place ? await rig.enter({size}) : await rig.open({size}));
  const page = opened.get(key);
  if (place) {
    await forget(page);
    await visit(rig, page, place);
  } else {
    await page.goto(`${rig.url}/login.html`);
    await page.locator('#password:focus').waitFor();
  }
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
