// A file against the recorder: what an import would change, and what of it to leave out at first.
import type {Settings} from '../recorder/config';

// `from` is null where the recorder lacks a setting of the file.
export interface ImportRow { path: string; from: string | null; to: string; chosen: boolean }

export const kDeviceNo = 'stBaseInfo/strFD_DeviceNo';

// What a recorder tells about itself is no setting.
const kNoSetting = /^(?:stSystemInfo|stVersion)\//;
// Moves by itself: an old value would set it back.
const kLive = /^(?:stBaseInfo\/(?:strFD_CurTime|ucFD_NowIsDst)|stLockOfPassword\/.*)$/;
// Says which recorder, vehicle or place in the network this is.
const kIdentity = new RegExp('/(?:strFD_(?:DeviceNo|DeviceNum|LicensePlate|Phonenumber|' +
    'Authentication|TerminalID|CarVIN|DeviceId|DeviceUser|LensId|AudioInId|AlarmInId|Mac)|' +
    'uiFD_(?:LocalIp|IP|NetMask|GateWay|DNS))$');

export const identifies = (path: string) => kIdentity.test(path);
export const isStatus = (path: string) => kNoSetting.test(path);
export const isLive = (path: string) => kLive.test(path);

// The file's device number when it is not this recorder's.
export function foreignNumber(now: Settings, file: Settings): string | null {
  const number = file.get(kDeviceNo);
  return number && number !== now.get(kDeviceNo) ? number : null;
}

// What the recorder has and the file has not stays as it is.
export function compareFile(now: Settings, file: Settings): ImportRow[] {
  const foreign = foreignNumber(now, file) !== null;
  const rows: ImportRow[] = [];
  for (const [path, to] of file) {
    const held = now.get(path);
    const from = held === undefined ? null : held;
    if (isStatus(path) || from === to) continue;
    rows.push({path, from, to, chosen: !isLive(path) && !(foreign && identifies(path))});
  }
  return rows;
}

export const sectionOf = (path: string) => path.split('/')[0] || '';

export const chosenOf = (rows: ImportRow[]): [string, string][] =>
  rows.filter(({chosen}) => chosen).map(({path, to}) => [path, to]);
