// An upgrade between two visits of a browser that has cached all it could of the first edition. The
// files' dates do not help: a firmware image may give every edition the same old one.
import assert from 'node:assert/strict';
import {readdirSync, readFileSync, renameSync, rmSync, utimesSync, writeFileSync} from 'node:fs';
import {join} from 'node:path';
import test, {after, before} from 'node:test';
import {field, go, kPassword, Rig, shown, type, until} from '../rig.js';

const kYearMs = 365 * 86400 * 1000;
const kOld = new Date(Date.now() - 2 * kYearMs);
const kOlder = new Date(Date.now() - 3 * kYearMs);

let rig;
before(async () => {
  rig = new Rig();
  rig.ownRoot();
  await rig.startDevice();
  await rig.startBrowser();
});
after(() => rig.stop());

// Another edition of the pages: different hashes, same sizes.
function edition(number, date) {
  rmSync(rig.root, {recursive: true, force: true});
  rig.ownRoot();
  const assets = join(rig.root, 'assets');
  const renamed = new Map();
  const names = readdirSync(rig.root, {recursive: true}).map(String);
  for (const name of names.filter((one) => one.endsWith('.gz'))) rmSync(join(rig.root, name));
  if (number > 1) {
    for (const name of readdirSync(assets)) {
      const other = name.replace(/\.([0-9a-f]{10})\./, (_, hash) => `.${flip(hash)}.`);
      renamed.set(name, other);
      renameSync(join(assets, name), join(assets, other));
    }
  }
  const marks = new Map([...renamed].map(([name, other]) => [part(name), part(other)]));
  const build = /data-build="([0-9a-f]{10})"/.exec(read('app.html'))[1];
  if (number > 1) marks.set(build, flip(build));
  for (const name of readdirSync(rig.root, {recursive: true}).map(String)) {
    if (!/\.(html|css|js)$/.test(name)) continue;
    let text = read(name);
    for (const [hash, other] of marks) text = text.replaceAll(hash, other);
    if (/^assets.*\.js$/.test(name)) text += `\nwindow.edition=${number};`;
    writeFileSync(join(rig.root, name), text);
  }
  for (const name of readdirSync(rig.root, {recursive: true}).map(String))
    utimesSync(join(rig.root, name), date, date);
}

const read = (name) => readFileSync(join(rig.root, name), 'utf8');
const part = (name) => /\.([0-9a-f]{10})\./.exec(name)[1];
const flip = (hash) => hash.replace(/./g, (digit) => ((parseInt(digit, 16) + 1) % 16).toString(16));

async function serve(number, date) {
  if (rig.daemon) await rig.stopDaemon();
  edition(number, date);
  await rig.startDaemon();
}

const running = (page, number) => until(() => page.evaluate((wanted) => window.edition === wanted,
    number).catch(() => false), `edition ${number}`);

const kDates = [['older ones', kOlder], ['the same ones', kOld]];

for (const [what, date] of kDates) {
  test(`the second visit runs the new edition when its files have ${what}`, async () => {
    await serve(1, kOld);
    const page = await rig.enter();
    await go(page, 'network');
    await running(page, 1);
    await page.goto('about:blank');
    await serve(2, date);
    await page.goto(`${rig.url}/app.html#/network`);
    await running(page, 2);
    // The new service has no session yet, so its gate lets this one through.
    await shown(page, 'network');
    await page.reload();
    await shown(page, 'network');
    await running(page, 2);
    assert.deepEqual(page.errors, []);
    await page.context().close();
  });

  test(`the sign-in after an upgrade is the new one when its files have ${what}`, async () => {
    await serve(1, kOld);
    const page = await rig.open();
    await page.goto(`${rig.url}/login.html`);
    await page.locator('#password').waitFor();
    await page.goto('about:blank');
    await serve(2, date);
    await page.goto(`${rig.url}/login.html`);
    await page.locator('#password').waitFor();
    await type(page, kPassword);
    await shown(page, 'status');
    await running(page, 2);
    assert.deepEqual(page.errors, []);
    await page.context().close();
  });
}

test('a page that is open during the upgrade takes the new edition and keeps the input',
    async () => {
      await serve(1, kOld);
      const page = await rig.enter();
      await go(page, 'network');
      await field(page, 'stMobileGNet/strFD_Apn').fill('fleet');
      await serve(2, kOld);
      await page.evaluate(() => { location.hash = '#/device'; });
      await running(page, 2);
      await shown(page, 'device');
      await go(page, 'network');
      assert.equal(await field(page, 'stMobileGNet/strFD_Apn').inputValue(), 'fleet');
      assert.deepEqual(page.errors, []);
      await page.context().close();
    });
