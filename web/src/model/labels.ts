// Names that a deployment gives to code numbers, in a file beside the pages: by setting and number a
// text, or one for each language. A file with anything else in it is refused as a whole.
import type {Language} from '../words';

export const kLabelsFile = 'labels.json';

type Texts = Record<Language, string>;
export type Labels = ReadonlyMap<string, ReadonlyMap<string, Texts>>;
export type LabelsError =
    | {error: 'long' | 'json'}
    | {error: 'setting'; name: string}
    | {error: 'number' | 'text'; name: string; value: string};

export const kMostBytes = 32768;
export const kMostText = 60;

// The numbers that stand for something else, by section. The stream type of GB28181 is a bit of its
// flags.
const kCodes: Record<string, string> = {
  stBaseInfo: 'ucFD_TimeZone ucFD_DateStyle ucFD_GpsMode',
  stUserSec: 'ucFD_UserStatus',
  stDisplay: 'ucFD_VideoOutMode ucFD_VideoOutRes',
  stVideoMirror: 'ucFD_Rotate',
  stMainStream: 'ucFD_VideoMode ucFD_VEncFormat ucFD_AEncFormat ucFD_Resolution ucFD_Quality',
  stSubStream: 'ucFD_EncodeMode ucFD_Resolution ucFD_Quality',
  stChnOverlay: 'ucFD_Resolution ucDisplayStyle',
  stRecord: 'ucFD_RecordMode ucFD_SDUsage ucFD_AlarmRecordType',
  stExport: 'ucFD_WorkMode ucFD_ExportLimit',
  stTimingRec: 'ucRT1Type ucRT2Type',
  stSerial: 'ucFD_DataMode ucParity',
  stPtz: 'ucPtzProtocol',
  stAlarm: 'ucIOLevel ucIOFunc',
  stAlarmLinkage: 'ucAlarmInType usAlarmOutType ucIOLevel ucIOFunc',
  stPower: 'ucPowerMode',
  stSpeed: 'ucFD_LowSpeedUnit ucFD_OverSpeedUnit ucFD_TimeUnit',
  stTempAlarm: 'ucFD_TempType',
  stIpc: 'usFD_FuncMode',
  stNetWorkMode: 'ucFD_NetType ucFD_GNAuthMode ucFD_StreamType ucFD_GNEnableMode',
  stMobileGNet: 'ucFD_NetType',
  stWifi: 'ucFD_AuthMode ucFD_CryptType',
  stWifiAp: 'ucFD_AuthMode ucFD_CryptType',
  stGB28181: 'streamType',
};

export const codePaths = () => Object.keys(kCodes).reduce<string[]>((paths, section) =>
  paths.concat((kCodes[section] || '').split(' ').map((name) => `${section}/${name}`)), []);

export const largestCode = (path: string) =>
  /\/uc/.test(path) ? 255 : /\/us/.test(path) ? 65535 : 1;

type Tree = Record<string, unknown>;
const isTree = (value: unknown): value is Tree =>
  typeof value === 'object' && value !== null && !Array.isArray(value);

const isText = (value: unknown): value is string =>
  typeof value === 'string' && value.trim() !== '' && value.length <= kMostText;

function textsOf(value: unknown): Texts | null {
  if (isText(value)) return {zh: value, en: value};
  if (!isTree(value) || Object.keys(value).sort().join() !== 'en,zh') return null;
  const {zh, en} = value;
  return isText(zh) && isText(en) ? {zh, en} : null;
}

function namesOf(name: string, tree: Tree): Map<string, Texts> | LabelsError {
  const names = new Map<string, Texts>();
  for (const value of Object.keys(tree)) {
    if (!/^(?:0|[1-9]\d{0,4})$/.test(value) || Number(value) > largestCode(name))
      return {error: 'number', name, value};
    const texts = textsOf(tree[value]);
    if (!texts) return {error: 'text', name, value};
    names.set(value, texts);
  }
  return names;
}

function parse(bytes: Uint8Array): unknown {
  try {
    return JSON.parse(new TextDecoder('utf-8', {fatal: true}).decode(bytes));
  } catch {
    return null;
  }
}

// The names of a file, or what is wrong with it.
export function readLabels(bytes: Uint8Array): {labels: Labels} | LabelsError {
  if (bytes.length > kMostBytes) return {error: 'long'};
  const tree = parse(bytes);
  if (!isTree(tree)) return {error: 'json'};
  const known = new Set(codePaths());
  const labels = new Map<string, Map<string, Texts>>();
  for (const name of Object.keys(tree)) {
    const below = tree[name];
    if (!known.has(name) || !isTree(below)) return {error: 'setting', name};
    const names = namesOf(name, below);
    if ('error' in names) return names;
    labels.set(name, names);
  }
  return {labels};
}
