// A browser with the pair behind it, and the pages as a test sees them. One rig per file.
import {chromium} from 'playwright-core';
import {kPassword, Pair} from './pair.js';
import {until} from './until.js';

export const kDesk = {width: 1366, height: 768};
export const kCab = {width: 800, height: 480};
export const kPhone = {width: 390, height: 844};
export const kPages =
    ['status', 'device', 'video', 'network', 'platforms', 'security', 'maintenance', 'settings',
      'fleet'];

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

  // A new browser profile; texts are in English unless specified (null: no choice made).
  async open({size = kDesk, language = 'en', dark = false, ...more} = {}) {
    const context = await this.browser.newContext({
      viewport: size, locale: language === 'zh' ? 'zh-CN' : 'en-GB',
      colorScheme: dark ? 'dark' : 'light', acceptDownloads: true, ...more,
    });
    context.setDefaultTimeout(kPatienceMs);
    if (language) {
      await context.addInitScript((chosen) => {
        if (location.protocol !== 'http:') return;
        if (!localStorage['language.chosen']) localStorage['language.chosen'] = chosen;
      }, language);
    }
    const page = await context.newPage();
    page.errors = [];
    page.on('pageerror', (error) => page.errors.push(error.message));
    page.on('dialog', (question) => question.accept());  // leaving with changes asks for confirmation
    return page;
  }

  // A page with a session. The sign-in itself has its own tests.
  async enter(options) {
    const page = await this.open(options);
    const reply = await this.post('cmp_UserSecurity', `strFD_AdminPasswd=${kPassword}`,
        {Referer: `${this.url}/login.html`});
    const value = /"jsession": "([0-9a-f]{32})"/.exec(reply)[1];
    await page.context().addCookies([{name: 'jsession', value, url: this.url}]);
    await visit(this, page, 'status');
    return page;
  }

  // Signs in as a user does.
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

// The page once it has read everything.
export const shown = (page, name) => page.waitForFunction((wanted) => {
  const main = document.querySelector(`main[data-page="${wanted}"]`);
  return main && main.children.length > 2 && !main.querySelector('.skeleton');
}, name);

// Discards everything that was typed in this tab.
export const forget = (page) => page.evaluate(() => sessionStorage.clear());

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

export const section = (page, id) => page.locator(`[data-section="${id}"]`);
export const fieldRow = (page, path) => page.locator(`[data-field="${path}"]`);
export const field = (page, path) => fieldRow(page, path).locator('input, select').first();
export const health = (page, state) => page.locator(`[data-health="${state}"]`);
export const dialog = (page) => page.locator('[role=dialog]');
export const agree = (page) => dialog(page).locator('.main').click();
export const cancel = (page) => page.keyboard.press('Escape');

// The status below a form.
export const line = (page, id) => section(page, id).locator('.status').last();
export const words = (page, id) => line(page, id).innerText();
export const button = (page, id, action) =>
  section(page, id).locator(action === 'save' ? '.main' : `[data-action="${action}"]`);

// The path of the field that has the focus.
export const focused = (page) => page.evaluate(() => {
  const row = document.activeElement.closest('[data-field]');
  return row ? row.dataset.field : null;
});

// The message at a field with an error.
export async function error(page, path) {
  await fieldRow(page, path).locator('[aria-invalid="true"]').waitFor();
  return fieldRow(page, path).locator('.error').innerText();
}

// Clicks the save button. The status line is reset, so ended() sees the new result.
export async function press(page, id) {
  await line(page, id).evaluate((node) => node.removeAttribute('data-note'));
  await button(page, id, 'save').click();
}

// Waits for the final status and returns its name: 'applied', 'refused', 'elsewhere' ...
export async function ended(page, id) {
  const node = section(page, id).locator('.status[data-note]').last();
  await node.waitFor();
  return node.getAttribute('data-note');
}

// Saves as a user does: the button, the list of changes, the result.
export async function save(page, id) {
  await press(page, id);
  await agree(page);
  return ended(page, id);
}

// Puts a value into whatever kind of control the field has.
export async function put(page, path, value) {
  const input = field(page, path);
  const kind = await input.evaluate((node) => node.type);
  if (kind === 'checkbox') await input.setChecked(value === '1');
  else if (kind === 'select-one') await input.selectOption(value);
  else await input.fill(value);
}

export async function get(page, path) {
  const input = field(page, path);
  const kind = await input.evaluate((node) => node.type);
  return kind === 'checkbox' ? String(Number(await input.isChecked())) : input.inputValue();
}

// Waits until the effect of the last input has been painted.
export const painted = (page) => page.evaluate(() => new Promise((resolve) => {
  requestAnimationFrame(() => requestAnimationFrame(resolve));
}));

// Whether the page would ask before it is closed.
export const asksToStay = (page) => page.evaluate(() => {
  const leaving = new Event('beforeunload', {cancelable: true});
  window.dispatchEvent(leaving);
  return leaving.defaultPrevented;
});

// Everything that the browser stores for these pages, as one text.
export const memory = (page) => page.evaluate(() =>
  JSON.stringify([{...localStorage}, {...sessionStorage}, document.cookie, history.state]));

export {kPassword, until};
