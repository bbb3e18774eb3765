// A mobile link of 400 ms and 400 kbit/s, and the budgets that make it bearable. Each is printed.
import assert from 'node:assert/strict';
import {readdirSync, readFileSync, statSync} from 'node:fs';
import {join} from 'node:path';
import test, {after, before} from 'node:test';
import {kWebRoot} from '../pair.js';
import {kPages, kPassword, Rig, shown, type} from '../rig.js';
import {SlowLink} from '../slow_link.js';

const kWholeBytes = 200000;
const kFirstViewBytes = 45000;
const kFirstViewRequests = 12;
const kFirstViewMs = 3000;
const kPageRequests = 2;
const kFrameMs = 200;  // half a round trip of the link: whatever asked first would be later
const kData = /^\/(get|set|cmp|export|import)_/;

let rig;
let link;
let page;
const asked = [];
before(async () => {
  rig = await Rig.start();
  link = await SlowLink.to(rig.address);
  page = await rig.open();
  page.on('request', (request) => asked.push(new URL(request.url()).pathname));
});
after(async () => {
  link.stop();
  await rig.stop();
});

function within(t, what, value, most) {
  t.diagnostic(`${what}: ${value} of ${most}`);
  assert.ok(value <= most, `${what}: ${value}, more than ${most}`);
}

const taken = () => asked.splice(0);

function files(folder = kWebRoot) {
  return readdirSync(folder, {withFileTypes: true}).flatMap((entry) =>
    entry.isDirectory() ? files(join(folder, entry.name)) : [join(folder, entry.name)]);
}

test('the link is as slow as it says', async () => {
  const [largest] = files().sort((a, b) => statSync(b).size - statSync(a).size);
  const size = statSync(largest).size;
  const begin = Date.now();
  const reply = await fetch(link.url + largest.slice(kWebRoot.length));
  assert.deepEqual(Buffer.from(await reply.arrayBuffer()), readFileSync(largest));
  const least = 800 + link.count() / 50;  // the handshake, the request, 50 bytes a millisecond
  assert.ok(Date.now() - begin >= least - 10, `${Date.now() - begin} ms for ${size} bytes`);
});

test('all files together', (t) => {
  const bytes = files().filter((name) => !name.endsWith('.gz'))
      .reduce((sum, name) => sum + statSync(name).size, 0);
  assert.ok(bytes > 10000);
  within(t, 'bytes in web_root', bytes, kWholeBytes);
});

test('the first view', async (t) => {
  taken();
  link.count();
  const begin = Date.now();
  await page.goto(`${link.url}/login.html`, {waitUntil: 'commit'});
  await page.locator('#password').waitFor();
  await page.fill('#password', kPassword);
  await page.locator('button[type=submit]:not([aria-disabled])').waitFor();
  const ms = Date.now() - begin;
  await page.waitForLoadState('networkidle');
  within(t, 'ms until the password can be entered', ms, kFirstViewMs);
  const requests = taken();
  within(t, `requests (${requests.join(' ')})`, requests.length, kFirstViewRequests);
  within(t, 'bytes on the wire', link.count(), kFirstViewBytes);
});

test('the sign-in and each further page', async (t) => {
  const begin = Date.now();
  await type(page, kPassword);
  await shown(page, 'status');
  t.diagnostic(`ms from the sign-in to the whole status: ${Date.now() - begin}`);
  await page.waitForLoadState('networkidle');
  t.diagnostic(`for it: ${taken().join(' ')}, ${link.count()} bytes`);
  for (const name of kPages.slice(1)) {
    const ms = await page.evaluate((wanted) => new Promise((resolve) => {
      const start = performance.now();
      const look = () => {
        if (!document.querySelector(`main[data-page="${wanted}"] h1`)) return;
        watch.disconnect();
        requestAnimationFrame(() => resolve(Math.round(performance.now() - start)));
      };
      const watch = new MutationObserver(look);
      watch.observe(document, {subtree: true, childList: true, attributes: true});
      document.querySelector(`nav a[data-page="${wanted}"]`).click();
    }), name);
    await shown(page, name);
    const requests = taken().filter((path) => !kData.test(path));
    within(t, `${name}: ms until its frame`, ms, kFrameMs);
    within(t, `${name}: requests besides data (${requests.join(' ')})`, requests.length,
        kPageRequests);
    t.diagnostic(`${name}: ${link.count()} bytes with the recorder's data`);
  }
});
