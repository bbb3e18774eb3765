// Status: what the recorder is doing, read again every few seconds while the page is looked at.
import {query} from './api.js';
import {el, icon} from './dom.js';
import {t} from './i18n.js';
import {Notice} from './notice.js';
import {openPage} from './shell.js';

const kPauseMs = 5000;
const kLongPauseMs = 15000;  // after a failure, which has cost the service seconds already
const kBars = 5;

const isSet = (value) => Number(value) > 0;

// How a value of the reply is shown: a class for its tone, and its words.
const plain = (text) => ({text: text || t('value.none')});
const yesNo = (value, yes, no) => ({text: t(isSet(value) ? yes : no), tone: isSet(value) ? 'on' : 'off'});
const link = (value) => yesNo(value, 'status.online', 'status.offline');
const fitted = (value) => yesNo(value, 'status.fitted', 'status.missing');

// Modules count 0 to 31 (99: unknown); larger numbers are a percentage.
export function signalBars(value) {
  const signal = Number(value);
  if (signal === 99 || signal < 0) return null;
  return Math.min(kBars, Math.ceil((signal <= 31 ? signal / 31 : signal / 100) * kBars));
}

function signal(value) {
  const count = signalBars(value);
  if (count === null) return {text: t('status.unknown'), bars: 0};
  return {text: t('status.signal', {bars: count, most: kBars, value}), bars: count};
}

// Inputs as a row of digits, one light each; anything else is shown as it comes.
const inputs = (text) => /^[01]{1,32}$/.test(text) ? {text, lights: [...text]} : plain(text);

const disk = (n) => (s) =>
  isSet(s[`disk${n}Exist`]) ? {...plain(s[`disk${n}Size`]), tone: 'on'} : fitted('0');

// One row per card: its rows of label key and how the value is made of the reply.
const kCards = [
  ['gps', 'pin', [
    ['gps.module', (s) => fitted(s.ucFD_GpsExist)],
    ['gps.position', (s) => plain(s.strFD_GpsPos)],
  ]],
  ['mobile', 'mobile', [
    ['mobile.module', (s) => fitted(s.ucFD_GNetExist)],
    ['mobile.dial', (s) => link(s.ucFD_GNetDail)],
    ['mobile.signal', (s) => signal(s.uiFD_GNetSignal)],
    ['mobile.sim', (s) => fitted(s.ucFD_SimExist)],
    ['mobile.imei', (s) => plain(s.strFD_GNetIMEI)],
    ['mobile.imsi', (s) => plain(s.ucFD_SimIMSI)],
    ['mobile.iccid', (s) => plain(s.ucFD_SimICCID)],
    ['mobile.revision', (s) => plain(s.strFD_GNetRevision.trim())],
  ]],
  ['wifi', 'network', [
    ['wifi.module', (s) => fitted(s.ucFD_WifiExist)],
    ['wifi.mode', (s) => plain(t(s.ucFD_WifiMode === 'Client' ? 'workMode.1' : 'workMode.2'))],
    ['wifi.dial', (s) => link(s.ucFD_WifiDail)],
    ['wifi.signal', (s) => signal(s.uiFD_WifiSignal)],
  ]],
  ['platforms', 'platforms', [
    ['platform.cms', (s) => link(s.ucFD_CmsStatus)],
    ['platform.address', (s) => plain(s.uiFD_IP)],
    ['platform.jtt808', (s) => link(s.ucFD_JTT808Status)],
    ['platform.gb28181', (s) => link(s.ucFD_GB28181Status)],
  ]],
  ['disks', 'disk', [['disk.1', disk(1)], ['disk.2', disk(2)]]],
  ['io', 'plug', [['io.inputs', (s) => inputs(s.strFD_IOStatus)]]],
  ['versions', 'chip', [
    ['version.app', (s) => plain(s.strFD_AppVersion)],
    ['version.mcu', (s) => plain(s.strFD_McuVersion)],
    ['version.boot', (s) => plain(s.strFD_LdrVersion)],
    ['version.kernel', (s) => plain(s.strFD_KnlVersion)],
    ['version.files', (s) => plain(s.strFD_RfsVersion)],
    ['version.data', (s) => plain(s.strFD_DbtVersion)],
  ]],
];
const kSummary = [
  ['summary.device', (s) => plain(s.strFD_DeviceNo)],
  ['summary.ignition', (s) => yesNo(s.ucFD_AccStatus, 'on', 'off')],
  ['summary.network', (s) => link(s.ucFD_NetStatus)],
];

function barsNode(count) {
  return el('span', {class: 'bars', 'aria-hidden': 'true'},
      Array.from({length: kBars}, (_, i) => el('i', {class: i < count ? 'full' : ''})));
}

const lightsNode = (lights) => el('span', {class: 'lights', 'aria-hidden': 'true'},
    lights.map((light) => el('i', {class: light === '1' ? 'full' : ''})));

function show(node, value) {
  if (node.shown === JSON.stringify(value)) return;
  node.shown = JSON.stringify(value);
  node.className = value.tone || '';
  node.replaceChildren(...[
    value.bars !== undefined && barsNode(value.bars), value.lights && lightsNode(value.lights),
    el('span', {}, value.text),
  ].filter(Boolean));
}

export class StatusView {
  constructor() {
    this.cells = [];
    this.notice = new Notice();
    this.moment = el('p', {class: 'moment'});
    const cards = kCards.map(([name, sign, rows]) =>
      el('section', {class: 'card', id: name, 'aria-labelledby': `${name}-title`},
          el('h2', {id: `${name}-title`}, icon(sign), t(`card.${name}`)), this.list('facts', rows)));
    this.node = el('div', {class: 'live', 'aria-busy': 'true'}, this.notice.node,
        this.list('summary', kSummary), el('div', {class: 'cards'}, cards), this.moment);
  }

  list(style, rows) {
    return el('dl', {class: style}, rows.map(([key, make]) => {
      const cell = el('dd', {});
      this.cells.push([cell, make]);
      return el('div', {}, el('dt', {}, t(key)), cell);
    }));
  }

  fill(reply) {
    for (const [cell, make] of this.cells) show(cell, make(reply));
    this.node.setAttribute('aria-busy', 'false');
    this.node.classList.remove('stale');
    this.notice.say();
    this.time = new Date().toLocaleTimeString(document.documentElement.lang);
    this.moment.textContent = t('status.moment', {time: this.time});
  }

  fail(kind) {
    this.node.classList.add('stale');
    const since = this.time ? ` ${t('status.stale', {time: this.time})}` : '';
    const text = t(`load.${kind}`) + since;
    if (this.notice.node.textContent !== text) this.notice.say('bad', text);
  }

  // Returns how long to wait before the next reading.
  async read() {
    try {
      const reply = await query('get_SystemInfo');
      if (!reply.result) throw Object.assign(new Error(), {kind: 'silent'});
      this.fill(reply);
      return kPauseMs;
    } catch (fault) {
      if (!fault.kind) throw fault;
      this.fail(fault.kind);
      return kLongPauseMs;
    }
  }

  async watch() {
    for (;;) {
      const pauseMs = await this.read();
      await new Promise((resume) => { setTimeout(resume, pauseMs); });
      if (document.hidden) {
        await new Promise((resume) => {
          document.addEventListener('visibilitychange', resume, {once: true});
        });
      }
    }
  }
}

openPage('status', ['page.css'], (main) => {
  const view = new StatusView();
  main.append(view.node);
  return view.watch();
});
