// The real pair behind a browser test: the daemon and the simulated recorder, with their messages.
// run.sh has created the namespace. stop() stops everything started here.
import {spawn} from 'node:child_process';
import dgram from 'node:dgram';
import {once} from 'node:events';
import {
  copyFileSync, cpSync, existsSync, mkdirSync, mkdtempSync, openSync, readFileSync, rmSync,
} from 'node:fs';
import {get} from 'node:http';
import {tmpdir} from 'node:os';
import {dirname, join} from 'node:path';
import {until} from './until.js';

export const kPassword = 'admin123';  // of the simulated recorder's default settings
export const kWebRoot = join(dirname(process.env.WEBCTRL_BIN), 'web_root');

const kEntities = {quot: '"', lt: '<', gt: '>', amp: '&', apos: "'"};
const plain = (value) => value.replace(/&(\w+);/g, (_, name) => kEntities[name]);

function answers(url) {
  return new Promise((answer) => {
    get(url, (reply) => { reply.resume(); answer(true); }).on('error', () => answer(false));
  });
}

// A datagram quoted by the simulator's log, as readable text.
function unquote(text) {
  const bytes = text.replace(/\\x([0-9a-f]{2})|\\(.)/gi,
      (_, code, char) => code ? String.fromCharCode(parseInt(code, 16)) : char);
  return new TextDecoder('gbk').decode(Buffer.from(bytes, 'latin1'));
}

export class Pair {
  constructor() {
    this.dir = mkdtempSync(join(tmpdir(), 'ui-'));
    this.state = join(this.dir, 'state.xml');
    this.log = join(this.dir, 'datagrams.log');
    this.address = process.env.UI_ADDRESS;
    this.url = `http://${this.address}`;
    this.program = process.env.WEBCTRL_BIN;
  }

  output(name) { return openSync(join(this.dir, name), 'a'); }

  // A copy of the daemon that serves a copy of the pages, so that a test may change them.
  ownRoot() {
    this.root = join(this.dir, 'web_root');
    cpSync(kWebRoot, this.root, {recursive: true, preserveTimestamps: true});
    this.program = join(this.dir, 'webctrl');
    copyFileSync(process.env.WEBCTRL_BIN, this.program);
  }

  async startDevice(...more) {
    const words = ['--state', this.state, '--control', '0', '--log', this.log, ...more];
    this.device = spawn(process.env.DEVSIM_BIN, words,
        {stdio: ['ignore', 'pipe', this.output('devsim.log')]});
    let text = '';
    const control = /control on [\d.]+:(\d+)/;
    while (!control.test(text)) text += (await once(this.device.stdout, 'data'))[0];
    this.controlPort = Number(control.exec(text)[1]);
    this.device.stdout.resume();
  }

  async stopDevice() {
    this.device.kill('SIGKILL');
    await once(this.device, 'exit');
  }

  async startDaemon() {
    const log = this.output('webctrl.log');
    this.daemon = spawn(this.program, [], {stdio: ['ignore', log, log]});
    await until(() => {
      if (this.daemon.exitCode !== null) throw new Error('the daemon has ended');
      return answers(`${this.url}/favicon.svg`);
    }, 'the daemon to listen');
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

  // Restores the recorder's factory settings. Quick, so every test may begin with it.
  async reset() {
    await this.clear();
    await this.command('reset');
  }

  // Posts a form as a page would.
  async post(endpoint, body, headers = {}) {
    const reply = await fetch(`${this.url}/${endpoint}`, {method: 'POST', body, headers});
    return reply.text();
  }

  // A change that somebody else makes meanwhile: sent to the recorder like a message of the
  // service.
  change(xml) {
    const body = new URLSearchParams({strFD_CfgPara: `<VariCfgSec>${xml}</VariCfgSec>`});
    return this.post('import_CfgFile', body);
  }

  // The simulator's settings, as text.
  stored() { return new TextDecoder('gbk').decode(readFileSync(this.state)); }

  // An attribute of an element in the simulator's file, entities resolved. A prefix selects the
  // element of a section: 'stMainStream[^]*?<VChn_1'.
  setting(element, name) {
    const pattern = new RegExp(`<${element}\\s[^>]*?\\b${name}=("[^"]*"|'[^']*')`);
    const value = pattern.exec(this.stored());
    return value && plain(value[1].slice(1, -1));
  }

  // The messages that the recorder received with this action, oldest first.
  messages(action = 'DEVICE_SET') {
    if (!existsSync(this.log)) return [];
    const lines = readFileSync(this.log, 'latin1').split('\n');
    return lines.filter((line) => line.startsWith('recv') && line.includes(action))
        .map((line) => unquote(line.slice(line.indexOf('"') + 1, -1)));
  }

  // How many sets the recorder received.
  sets() { return this.messages().length; }

  async stop() {
    if (this.daemon) await this.stopDaemon();
    if (this.device) await this.stopDevice();
    rmSync(this.dir, {recursive: true, force: true});
  }
}

// This run's folder for files to review afterwards, or null.
export function pictures() {
  const folder = process.env.SCREENSHOTS;
  if (folder) mkdirSync(folder, {recursive: true});
  return folder || null;
}
