// The recorder's status as data: cards, their rows, and what each value means.
import type {Values} from './fields';
import {readPlace, type Place} from './position';
import type {WordKey} from '../words';

// `tone` says whether something is wrong: bad and warn stand out, normal values do not.
export type Tone = '' | 'bad' | 'warn';
export type Shown =
    | {kind: 'text'; text: string; tone: Tone}
    | {kind: 'words'; words: WordKey; tone: Tone}
    | {kind: 'signal'; bars: number; value: string; tone: Tone}
    | {kind: 'disk'; text: string; used: number | null; tone: Tone}
    | {kind: 'place'; text: string; place: Place | null; tone: Tone}
    | {kind: 'inputs'; states: boolean[]};

export const kBars = 5;
const kWeakBars = 1;
const kFullDisk = 0.95;

const isSet = (value: string | undefined) => Number(value) > 0;
const text = (value = ''): Shown => ({kind: 'text', text: value.trim(), tone: ''});
const words = (key: WordKey, tone: Tone = ''): Shown => ({kind: 'words', words: key, tone});
const place = (value = ''): Shown =>
  ({kind: 'place', text: value.trim(), place: readPlace(value), tone: ''});
export const link = (value?: string) =>
  isSet(value) ? words('status.online') : words('status.offline', 'warn');
// What a module needs is missing only if the module is present.
const needed = (value?: string, module?: string) =>
  words(isSet(value) ? 'status.fitted' : 'status.missing',
      isSet(module) && !isSet(value) ? 'warn' : '');
const vital = (value?: string) =>
  isSet(value) ? words('status.online') : words('status.offline', 'bad');
const fitted = (value?: string) => isSet(value) ? words('status.fitted') : words('status.missing');

// Modules count 0 to 31 (99: unknown); larger numbers are a percentage.
export function signalPart(value: string): number | null {
  const level = Number(value);
  if (level === 99 || level < 0) return null;
  return Math.min(1, level / (level <= 31 ? 31 : 100));
}

export function signal(value = ''): Shown {
  const part = signalPart(value);
  if (part === null) return words('status.unknown', 'warn');
  const bars = Math.ceil(part * kBars);
  return {kind: 'signal', bars, value, tone: bars <= kWeakBars ? 'warn' : ''};
}

const kUnits: Record<string, number> = {k: 1e3, m: 1e6, g: 1e9, t: 1e12};
const kSizes = /^\s*([\d.]+)\s*([kmgt])i?b?\s*\/\s*([\d.]+)\s*([kmgt])i?b?\s*$/i;

// "931.5GB/412.7GB" is a disk's capacity and free space; anything else is shown unchanged.
export function disk(exists = '', size = '', other = ''): Shown {
  if (!isSet(exists)) return words('status.missing', isSet(other) ? '' : 'bad');
  const match = kSizes.exec(size);
  if (!match) return text(size);
  const bytes = (number = '', unit = '') => Number(number) * (kUnits[unit.toLowerCase()] || 1);
  const whole = bytes(match[1], match[2]);
  const free = bytes(match[3], match[4]);
  if (!(whole > 0) || free > whole) return text(size);
  const used = 1 - free / whole;
  return {kind: 'disk', text: size, used, tone: used >= kFullDisk ? 'warn' : ''};
}

// In a row of digits each one is an input.
const inputs = (value = ''): Shown => /^[01]+$/.test(value) ?
  {kind: 'inputs', states: Array.from(value, isSet)} : text(value);

const mode = (value?: string) => words(value === 'Client' ? 'workMode.1' : 'workMode.2');

export interface Row {
  label: WordKey;
  keys: string[];
  show: (...values: (string | undefined)[]) => Shown;
  unless?: (values: Values) => boolean;  // says nothing then
  personal?: boolean;  // names a subscriber: stays out of what is handed on
}

export const row = (label: WordKey, show: Row['show'], ...keys: string[]): Row =>
  ({label, show, keys});
export const only = (fitting: string, inner: Row): Row =>
  ({...inner, unless: (values) => !isSet(values[fitting])});
const personal = (inner: Row): Row => ({...inner, personal: true});

export type CardId = 'gps' | 'mobile' | 'wifi' | 'platforms' | 'disks' | 'io' | 'versions';

export const kCards: readonly (readonly [CardId, readonly Row[]])[] = [
  ['mobile', [
    row('module', fitted, 'ucFD_GNetExist'),
    only('ucFD_GNetExist', row('dial', link, 'ucFD_GNetDail')),
    only('ucFD_GNetExist', row('signal', signal, 'uiFD_GNetSignal')),
    row('mobile.sim', needed, 'ucFD_SimExist', 'ucFD_GNetExist'),
    personal(row('mobile.imei', text, 'strFD_GNetIMEI')),
    personal(row('mobile.imsi', text, 'ucFD_SimIMSI')),
    personal(row('mobile.iccid', text, 'ucFD_SimICCID')),
    row('mobile.revision', text, 'strFD_GNetRevision'),
  ]],
  ['wifi', [
    row('module', fitted, 'ucFD_WifiExist'),
    row('wifi.mode', mode, 'ucFD_WifiMode'),
    only('ucFD_WifiExist', row('dial', link, 'ucFD_WifiDail')),
    only('ucFD_WifiExist', row('signal', signal, 'uiFD_WifiSignal')),
  ]],
  ['platforms', [
    row('platform.cms', link, 'ucFD_CmsStatus'),
    row('serverIp', text, 'uiFD_IP'),
    row('platform.jtt808', link, 'ucFD_JTT808Status'),
    row('platform.gb28181', link, 'ucFD_GB28181Status'),
  ]],
  ['disks', [
    row('disk.1', disk, 'disk1Exist', 'disk1Size', 'disk2Exist'),
    row('disk.2', disk, 'disk2Exist', 'disk2Size', 'disk1Exist'),
  ]],
  ['gps', [
    row('gps.module', fitted, 'ucFD_GpsExist'),
    row('gps.position', place, 'strFD_GpsPos'),
  ]],
  ['io', [row('io.inputs', inputs, 'strFD_IOStatus')]],
  ['versions', [
    row('version.app', text, 'strFD_AppVersion'),
    row('version.mcu', text, 'strFD_McuVersion'),
    row('version.boot', text, 'strFD_LdrVersion'),
    row('version.kernel', text, 'strFD_KnlVersion'),
    row('version.files', text, 'strFD_RfsVersion'),
    row('version.data', text, 'strFD_DbtVersion'),
  ]],
];

export const kSummary: readonly Row[] = [
  row('deviceNo', text, 'strFD_DeviceNo'),
  row('ignition', (value) => words(isSet(value) ? 'on' : 'off'), 'ucFD_AccStatus'),
  row('page.network', vital, 'ucFD_NetStatus'),
];

export const shownOf = ({show, keys}: Row, values: Values): Shown =>
  show(...keys.map((key) => values[key]));
