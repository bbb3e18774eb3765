// The browser of an old in-cab terminal (Chromium 87): the pages work there, too.
import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import {join} from 'node:path';
import test, {after, before} from 'node:test';
import {OldEngine} from '../old_engine.js';
import {kPassword, Pair, pictures} from '../pair.js';
import {decode} from '../qr.js';
import {kPages} from '../rig.js';
import {until} from '../until.js';

let pair;
let engine;
before(async () => {
  pair = new Pair();
  await pair.startDevice();
  await pair.startDaemon();
  engine = new OldEngine(pair.dir, 'en');
});
after(async () => {
  await engine.stop();
  await pair.stop();
});

const shown = (name) => engine.until((wanted) => {
  const main = document.querySelector(`main[data-page="${wanted}"]`);
  return !!main && main.children.length > 2 && !main.querySelector('.skeleton');
}, name);

async function picture(name) {
  const folder = pictures();
  if (folder) await engine.grab(join(folder, `${name}-old-engine.png`));
}

test('it is as old as it should be', async () => {
  await engine.goto(`${pair.url}/login.html`);
  const agent = await engine.run(() => navigator.userAgent);
  assert.match(agent, /Chrome\/8\d\./);
});

test('sign-in with the keyboard', async () => {
  await engine.run(() => { localStorage['language.chosen'] = 'en'; });
  await engine.goto(`${pair.url}/login.html`);
  await engine.fill('#password', kPassword);
  await picture('login');
  await engine.click('button[type=submit]');
  await shown('status');
});

test('each page shows what the recorder holds', async () => {
  const known = {
    status: '80012345', device: '80012345', network: 'CMNET', platforms: '203.0.113.28',
  };
  for (const name of kPages) {
    await engine.click(`nav a[data-page="${name}"]`);
    await shown(name);
    await picture(name);
    const text = await engine.run(() => {
      const main = document.querySelector('main');
      const inputs = [...main.querySelectorAll('input, select')].map((node) => node.value);
      return [main.innerText, ...inputs].join(' ');
    });
    if (known[name]) assert.ok(text.includes(known[name]), `${name}: ${text}`);
    assert.ok(text.length > 50, name);
  }
});

test('a save arrives', async () => {
  await engine.click('nav a[data-page="network"]');
  await shown('network');
  await engine.fill('[data-field="stMobileGNet/strFD_Apn"] input', 'fleet');
  await engine.click('[data-section="mobile"] .main');
  await engine.click('[role=dialog] .main');
  await engine.until(() =>
    !!document.querySelector('[data-section="mobile"] [data-note="applied"]'));
  assert.equal(pair.setting('stMobileGNet', 'strFD_Apn'), 'fleet');
});

test('a setting is found among all', async () => {
  await engine.click('nav a[data-page="settings"]');
  await shown('settings');
  await engine.fill('#find-setting', 'strFD_Apn');
  // The value of the visit before may stand there until the recorder has been asked again.
  await engine.until(() => {
    const rows = document.querySelectorAll('[data-setting] input');
    return rows.length === 1 && rows[0].value === 'fleet';
  });
  await picture('settings-search');
});

// Where a switch has its knob: on the side whose colour differs from the track's.
async function knob(selector) {
  const box = await engine.run((wanted) => {
    const {left, top, width, height} = document.querySelector(wanted).getBoundingClientRect();
    return {left, width, middle: Math.round(top + height / 2)};
  }, selector);
  const places = [0.28, 0.5, 0.72]
      .map((part) => [Math.round(box.left + part * box.width), box.middle]);
  const [left, track, right] = await engine.colours(places);
  return [left !== track && 'left', right !== track && 'right'].filter(Boolean).join();
}

test('a switch shows the side that it is on', async () => {
  const selector = '[data-field="stBaseInfo/ucFD_GpsSTFlag"] input';
  await engine.click('nav a[data-page="device"]');
  await shown('device');
  await engine.run((wanted) => {
    document.querySelector(wanted).scrollIntoView({block: 'center'});
  }, selector);
  const on = () => engine.run((wanted) => document.querySelector(wanted).checked, selector);
  for (const side of ['right', 'left', 'right']) {
    await until(async () => await on() === (side === 'right'), `the switch on the ${side}`);
    await until(async () => await knob(selector) === side, `the knob on the ${side}`);
    await engine.click(selector);
  }
});

test('the status has a memory', async () => {
  await engine.click('nav a[data-page="status"]');
  await shown('status');
  const width = await engine.until(() => {
    const path = document.querySelector('[data-line="section.mobile"] path');
    return /M.*L.*L/.test(path.getAttribute('d')) && path.getBoundingClientRect().width;
  });
  assert.ok(width > 0);
  await engine.click('[data-plot=signals]');
  await engine.until(() => document.activeElement.dataset.plot === 'signals');
});

test('the access point as a QR code can be read', async () => {
  await engine.click('nav a[data-page="network"]');
  await shown('network');
  await engine.run(() => {
    const mode = document.querySelector('[data-field="stWifi/ucFD_WorkMode"] select');
    mode.value = '2';
    mode.dispatchEvent(new Event('change'));
  });
  await engine.click('[data-action=code]');
  const [name, password] = await engine.until(() => {
    const code = document.querySelector('svg.code');
    if (!code) return null;
    code.scrollIntoView({block: 'center'});
    return ['SSID', 'Passwd'].map((key) =>
      document.querySelector(`[data-field="stWifiAp/strFD_${key}"] input`).value);
  });
  const grabbed = join(pair.dir, 'code.png');
  await until(async () => {
    await engine.grab(grabbed);
    return decode(readFileSync(grabbed)) === `WIFI:T:WPA;S:${name};P:${password};;`;
  }, `the code of ${name}`);
});

test('no script failed', () => assert.deepEqual(engine.errors, []));
