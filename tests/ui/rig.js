// The real pair for a browser test: daemon and simulated recorder, and a browser to look at them.
// run.sh has made the namespace. Everything that is started here is stopped by stop().
import {spawn} from 'node:child_process';
import dgram from 'node:dgram';
import {once} from 'node:events';
import {mkdtempSync, openSync, readFileSync, rmSync} from 'node:fs';
import {get} from 'node:http';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {chromium} from 'playwright-core';

export const kPassword = 'admin123';  // of the simulated recorder's default settings
export const kDesktop = {width: 1280, height: 800};
export const kPhone = {width: 390, height: 844};
const kBrowserOptions = [
  '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-sync',
  '--disable-background-networking', '--disable-component-update',
];

const pause = (ms) => new Promise((resume) => { setTimeout(resume, ms); });

function reachable(url) {
  return new Promise((answer) => {
    get(url, (reply) => { reply.resume(); answer(true); }).on('error', () => answer(false));
  });
}

// A recorder with its daemon and a browser.
export class Rig {
  constructor() {
    this.dir = mkdtempSync(join(tmpdir(), 'ui-'));
    this.state = join(this.dir, 'state.xml');
    this.address = process.env.UI_ADDRESS;
    this.url = `http://${this.address}`;
  }

  static async start() {
    const rig = new Rig();
    await rig.startDevice();
    await rig.startDaemon();
    rig.browser = await chromium.launch({
      executablePath: process.env.CHROMIUM, args: kBrowserOptions,
    });
    return rig;
  }

  output(name) { return openSync(join(this.dir, name), 'a'); }

  async startDevice() {
    const log = join(this.dir, 'datagrams.log');
    const words = ['--state', this.state, '--control', '0', '--log', log];
    this.device = spawn(process.env.DEVSIM_BIN, words,
        {stdio: ['ignore', 'pipe', this.output('devsim.log')]});
    let text = '';
    const control = /control on [\d.]+:(\d+)/;
    while (!control.test(text)) text += (await once(this.device.stdout, 'data'))[0];
    this.controlPort = Number(control.exec(text)[1]);
    this.device.stdout.resume();
    this.log = log;
  }

  async startDaemon() {
    const log = this.output('webctrl.log');
    this.daemon = spawn(process.env.WEBCTRL_BIN, [], {stdio: ['ignore', log, log]});
    for (let tries = 100; !await reachable(`${this.url}/favicon.svg`); tries--) {
      if (!tries || this.daemon.exitCode !== null) throw new Error('the daemon does not listen');
      await pause(50);
    }
  }

  async stopDaemon() {
    this.daemon.kill('SIGKILL');
    await once(this.daemon, 'exit');
  }

  // A command for the simulator: 'fault for=set result:1', 'clear', 'reset'.
  async command(text) {
    const socket = dgram.createSocket('udp4');
    socket.send(text, this.controlPort, '127.0.0.1');
    const [reply] = await once(socket, 'message');
    socket.close();
    if (!reply.toString().startsWith('ok')) throw new Error(`${text}: ${reply}`);
  }

  fault(text) { return this.command(`fault ${text}`); }

  clear() { return this.command('clear'); }

  async reset() {
    await this.clear();
    await this.command('reset');
  }

  // The settings that the simulator keeps, as text.
  stored() { return new TextDecoder('gbk').decode(readFileSync(this.state)); }

  // An attribute of a section in the simulator's file, entities resolved.
  setting(section, name) {
    const pattern = new RegExp(`<${section}\\s[^>]*?\\b${name}=("[^"]*"|'[^']*')`);
    const value = pattern.exec(this.stored());
    const entities = {quot: '"', lt: '<', gt: '>', amp: '&', apos: "'"};
    return value && value[1].slice(1, -1).replace(/&(\w+);/g, (_, entity) => entities[entity]);
  }

  // How many sets the simulator received.
  sets() { return (readFileSync(this.log, 'latin1').match(/recv .*DEVICE_SET/g) || []).length; }

  // A fresh browser profile; texts in English unless told otherwise.
  async open({size = kDesktop, language = 'en', dark = false} = {}) {
    const context = await this.browser.newContext({
      viewport: size, locale: language === 'zh' ? 'zh-CN' : 'en-GB',
      colorScheme: dark ? 'dark' : 'light', acceptDownloads: true,
    });
    context.setDefaultTimeout(60000);
    await context.addInitScript((chosen) => {
      if (!localStorage['language.chosen']) localStorage['language.chosen'] = chosen;
    }, language);
    const page = await context.newPage();
    page.errors = [];
    page.on('pageerror', (error) => page.errors.push(error.message));
    return page;
  }

  async login(page, password = kPassword) {
    await page.goto(`${this.url}/login.html`);
    await page.fill('#password', password);
    await page.click('button[type=submit]');
    await page.waitForURL('**/status.html');
  }

  async stop() {
    if (this.browser) await this.browser.close();
    if (this.daemon) await this.stopDaemon();
    if (this.device) this.device.kill('SIGKILL');
    rmSync(this.dir, {recursive: true, force: true});
  }
}

// The line below a section's form, and its tone when it has settled.
export const notice = (page, id) => page.locator(`#${id} .status`);

export async function settled(page, id) {
  const line = page.locator(`#${id} .status:is(.good, .warn, .bad, .info)`);
  await line.waitFor({timeout: 60000});
  return line.getAttribute('class').then((names) => names.replace('status ', ''));
}

// Presses the main button of a section, whose line begins anew: what settled() sees is the answer.
export async function press(page, id) {
  await page.locator(`#${id} .status`).evaluate((line) => {
    line.className = 'status';
    line.replaceChildren();
  });
  await page.click(`#${id} .main`);
}

export const field = (page, id, name) => page.locator(`#${id}-${name}`);

// Opens a page and waits until all its sections are loaded.
export async function visit(rig, page, name) {
  await page.goto(`${rig.url}/${name}.html`);
  await page.waitForFunction(() =>
    document.querySelector('#main') && !document.querySelector('fieldset:disabled, .busy'));
}
