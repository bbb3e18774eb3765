// A browser with the pair behind it, and the pages as a test sees them. One rig serves a whole file.
import {chromium} from 'playwright-core';
import {kPassword, Pair} from './pair.js';
import {until} from './until.js';

export const kDesk = {width: 1366, height: 768};
export const kCab = {width: 800, height: 480};
export const kPhone = {width: 390, height: 844};
export const kPages =
    ['status', 'device', 'video', 'network', 'platforms', 'security', 'maintenance'];

const kBrowserOptions = [
  '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-sync',
  '--disable-background-networking', '--disable-component-update',
];
const kPatienceMs = 60000;

export class Rig extends Pair {
  static async start() {
    const rig = new Rig();
    await rig.startDevice();
    await rig.startDaemon();
    await rig.startBrowser();
    return rig;
  }

  async startBrowser() {
    this.browser = await chromium.launch({
      executablePath: process.env.CHROMIUM, args: kBrowserOptions,
    });
  }

  // A fresh browser profile; texts in English unless told otherwise (null: nobody has chosen).
  async open({size = kDesk, language = 'en', dark = false, ...more} = {}) {
    const context = await this.browser.newContext({
      viewport: size, locale: language === 'zh' ? 'zh-CN' : 'en-GB',
      colorScheme: dark ? 'dark' : 'light', acceptDownloads: true, ...more,
    });
    context.setDefaultTimeout(kPatienceMs);
    if (language) {
      await context.addInitScript((chosen) => {
        if (!localStorage['language.chosen']) localStorage['language.chosen'] = chosen;
      }, language);
    }
    const page = await context.newPage();
    page.errors = [];
    page.on('pageerror', (error) => page.errors.push(error.message));
    return page;
  }

  // A signed-in page.
  async enter(options) {
    const page = await this.open(options);
    await this.login(page);
    return page;
  }

  async login(page, password = kPassword) {
    await page.goto(`${this.url}/login.html`);
    await type(page, password);
    await shown(page, 'status');
  }

  async stop() {
    if (this.browser) await this.browser.close();
    await super.stop();
  }
}

// Enters a password at the sign-in.
export async function type(page, password) {
  await page.fill('#password', password);
  await page.click('button[type=submit]');
}

// The page with all that it has read.
export const shown = (page, name) =>
  page.locator(`main[data-page="${name}"][aria-busy="false"]`).waitFor();

// Opens a page by its address, from the server.
export async function visit(rig, page, name) {
  await page.goto('about:blank');
  await page.goto(`${rig.url}/app.html#/${name}`);
  await shown(page, name);
}

// Goes to a page within the application.
export async function go(page, name) {
  await page.evaluate((place) => { location.hash = `#/${place}`; }, name);
  await shown(page, name);
}

export const field = (page, path) => page.locator(`[name="${path}"]`);
export async function error(page, path) {
  await page.locator(`[name="${path}"][aria-invalid="true"]`).waitFor();
  const ids = await field(page, path).getAttribute('aria-describedby');
  return page.locator(ids.split(' ').map((id) => `[id="${id}"]`).join(',')).allInnerTexts()
      .then((texts) => texts.join(' '));
}
export const line = (page, id) => page.locator(`#${id} [role=status]`);
export const words = (page, id) => line(page, id).innerText();
export const health = (page, state) => page.locator(`#health[data-state="${state}"]`);

// Presses the button that saves. The line begins anew: what ended() sees is the answer.
export async function press(page, id) {
  await line(page, id).evaluate((node) => node.removeAttribute('data-end'));
  await page.click(`#${id} button.main`);
}

// Waits for a save's end and gives its name.
export async function ended(page, id) {
  const node = page.locator(`#${id} [role=status][data-end]:not([data-end=""])`);
  await node.waitFor();
  return node.getAttribute('data-end');
}

// Saves as a user does: the button, the list of changes, the end.
export async function save(page, id) {
  await press(page, id);
  await agree(page);
  return ended(page, id);
}

export const agree = (page) => page.click('dialog[open] button.main');

// Puts a value into whatever kind of control the field has.
export async function put(page, path, value) {
  const input = field(page, path);
  const kind = await input.first().evaluate((node) => node.type);
  if (kind === 'checkbox') await input.setChecked(value === '1');
  else if (kind === 'radio') await page.check(`[name="${path}"][value="${value}"]`);
  else if (kind === 'select-one') await input.selectOption(value);
  else await input.fill(value);
}

export async function get(page, path) {
  const input = field(page, path);
  const kind = await input.first().evaluate((node) => node.type);
  if (kind === 'radio') return page.locator(`[name="${path}"]:checked`).inputValue();
  return kind === 'checkbox' ? String(Number(await input.isChecked())) : input.inputValue();
}

// Everything that the browser keeps for these pages, as one text.
export const memory = (page) => page.evaluate(() =>
  JSON.stringify([{...localStorage}, {...sessionStorage}, document.cookie, history.state]));

export {kPassword, until};
