// Status: what the recorder is doing, read again every few seconds while the page is looked at.
import {query} from './api.js';
import {card, el, facts, icon} from './dom.js';
import {t} from './i18n.js';
import {Notice} from './notice.js';
import {openPage} from './shell.js';

const kPauseMs = 5000;
const kLongPauseMs = 15000;  // after a failure, which has cost the service seconds already
const kBars = 5;

const isSet = (value) => Number(value) > 0;

// How a value of the reply is shown: a class for its tone, and its words.
const plain = (text) => ({text: text.trim() || t('value.none')});
const yesNo = (value, yes, no) =>
  isSet(value) ? {text: t(yes), tone: 'on'} : {text: t(no), tone: 'off'};
const link = (value) => yesNo(value, 'status.online', 'status.offline');
const fitted = (value) => yesNo(value, 'status.fitted', 'status.missing');

// Modules count 0 to 31 (99: unknown); larger numbers are a percentage.
function signal(value) {
  const level = Number(value);
  if (level === 99 || level < 0) return {text: t('status.unknown')};
  const bars = Math.min(kBars, Math.ceil(level / (level <= 31 ? 31 : 100) * kBars));
  const marks = Array.from({length: kBars}, (_, i) => i < bars);
  return {text: t('status.signal', {bars, most: kBars, value}), style: 'bars', marks};
}

// A row of digits gets a light each; anything else is shown as it comes.
const inputs = (text) => /^[01]+$/.test(text) ?
  {text, style: 'lights', marks: [...text].map(isSet)} : plain(text);

const disk = (exists, size) => isSet(exists) ? {...plain(size), tone: 'on'} : fitted(exists);
const mode = (word) => plain(t(word === 'Client' ? 'workMode.1' : 'workMode.2'));
const ignition = (value) => yesNo(value, 'on', 'off');

// One row per card; its rows: label key, how the value is shown, the reply's keys.
const kCards = [
  ['gps', 'pin', [
    ['gps.module', fitted, 'ucFD_GpsExist'],
    ['gps.position', plain, 'strFD_GpsPos'],
  ]],
  ['mobile', 'mobile', [
    ['module', fitted, 'ucFD_GNetExist'],
    ['dial', link, 'ucFD_GNetDail'],
    ['signal', signal, 'uiFD_GNetSignal'],
    ['mobile.sim', fitted, 'ucFD_SimExist'],
    ['mobile.imei', plain, 'strFD_GNetIMEI'],
    ['mobile.imsi', plain, 'ucFD_SimIMSI'],
    ['mobile.iccid', plain, 'ucFD_SimICCID'],
    ['mobile.revision', plain, 'strFD_GNetRevision'],
  ]],
  ['wifi', 'network', [
    ['module', fitted, 'ucFD_WifiExist'],
    ['wifi.mode', mode, 'ucFD_WifiMode'],
    ['dial', link, 'ucFD_WifiDail'],
    ['signal', signal, 'uiFD_WifiSignal'],
  ]],
  ['platforms', 'platforms', [
    ['platform.cms', link, 'ucFD_CmsStatus'],
    ['address', plain, 'uiFD_IP'],
    ['platform.jtt808', link, 'ucFD_JTT808Status'],
    ['platform.gb28181', link, 'ucFD_GB28181Status'],
  ]],
  ['disks', 'disk', [
    ['disk.1', disk, 'disk1Exist', 'disk1Size'], ['disk.2', disk, 'disk2Exist', 'disk2Size'],
  ]],
  ['io', 'plug', [['io.inputs', inputs, 'strFD_IOStatus']]],
  ['versions', 'chip', [
    ['version.app', plain, 'strFD_AppVersion'],
    ['version.mcu', plain, 'strFD_McuVersion'],
    ['version.boot', plain, 'strFD_LdrVersion'],
    ['version.kernel', plain, 'strFD_KnlVersion'],
    ['version.files', plain, 'strFD_RfsVersion'],
    ['version.data', plain, 'strFD_DbtVersion'],
  ]],
];
const kSummary = [
  ['deviceNo', plain, 'strFD_DeviceNo'],
  ['ignition', ignition, 'ucFD_AccStatus'],
  ['page.network', link, 'ucFD_NetStatus'],
];

function show(node, value) {
  const {text, tone = '', style, marks} = value;
  if (node.shown === JSON.stringify(value)) return;
  node.shown = JSON.stringify(value);
  node.className = tone;
  const mark = (full) => el('i', {class: full && 'full'});
  const picture = marks && el('span', {class: style, 'aria-hidden': 'true'}, marks.map(mark));
  node.replaceChildren(picture || '', el('span', {}, text));
}

class StatusView {
  constructor() {
    this.cells = [];
    this.notice = new Notice();
    this.moment = el('p', {class: 'moment'});
    const cards = kCards.map(([name, sign, rows]) =>
      card(name, [icon(sign), t(`section.${name}`)], this.list(rows)));
    this.node = el('div', {class: 'live', 'aria-busy': 'true'}, this.notice.node,
        this.list(kSummary, 'summary'), el('div', {class: 'cards'}, cards), this.moment);
  }

  list(rows, style) {
    return facts(rows.map(([key, make, ...names]) => {
      const cell = el('dd', {});
      this.cells.push([cell, make, names]);
      return [t(key), cell];
    }), style);
  }

  fill(reply) {
    for (const [cell, make, names] of this.cells) show(cell, make(...names.map((n) => reply[n])));
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

openPage('status', (main) => {
  const view = new StatusView();
  main.append(view.node);
  return view.watch();
});
