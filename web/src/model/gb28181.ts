// GB28181: the flags byte as a switch and a stream type, and the IDs of each channel. The set
// endpoint writes the IDs of eight channels and knows those of one, so changes are imported.
import {code, isOn, onOff, port, secret, text, type Field, type Read, type Values} from './fields';
import type {WordKey} from '../words';

const kSection = 'stGB28181/';
const kFlags = `${kSection}ucFD_Enable`;
export const kGbEnable = `${kSection}enable`;
export const kGbStream = `${kSection}streamType`;
const kStreamBit = 128;
const kSubDevices = 8;
const kIdBytes = 31;

export const idPath = (k: number, name: string) =>
  `${kSection}stGB28181SubID/SUBDEVID_${k}/${name}`;

// Channels that the configuration names or the recorder counts; without either, only the first.
function channels({reply, settings}: Read): number {
  const counted = Number((settings && settings.get('stVersion/VideoCnt')) || reply.iVideoChnCount);
  let named = 0;
  for (let k = 0; settings && k < kSubDevices; k++)
    if (settings.has(idPath(k, 'strFD_LensId')) || settings.has(idPath(k, 'strFD_AlarmInId')))
      named = k + 1;
  const most = settings ? Math.max(named, counted || 0) : 1;
  return Math.min(kSubDevices, Math.max(1, most));
}

const idFields = (k: number): Field[] => [
  text(idPath(k, 'strFD_LensId'), 'id.lens', kIdBytes, {labelValues: {channel: k + 1}}),
  text(idPath(k, 'strFD_AlarmInId'), 'id.alarm', kIdBytes, {labelValues: {channel: k + 1}}),
];

export function gbFields(read: Read): Field[] {
  const plain = (name: string, label: WordKey) =>
    text(kSection + name, label, 31, {wire: name});
  const ids: Field[] = [];
  for (let k = 0; k < channels(read); k++) ids.push(...idFields(k));
  return [
    onOff(kGbEnable, 'gbEnable'),
    code(kGbStream, 'streamType', {max: 1, kind: 'choice', help: 'help.streamType',
      options: [['0', 'streamType.0'], ['1', 'streamType.1']],
      when: (values) => isOn(values[kGbEnable])}),
    plain('strFD_ServerIp', 'serverIp'),
    port(`${kSection}usFD_ServerPort`, 'serverPort', {wire: 'usFD_ServerPort'}),
    plain('strFD_ServerID', 'serverId'), plain('strFD_DeviceId', 'deviceId'),
    port(`${kSection}usFD_DevicePort`, 'devicePort', {wire: 'usFD_DevicePort'}),
    plain('strFD_DeviceUser', 'userName'),
    secret(`${kSection}strFD_DevicePass`, 'password', 31, {wire: 'strFD_DevicePass'}),
    plain('strFD_Manufacturer', 'manufacturer'), plain('strFD_ModelName', 'modelName'),
    ...ids,
  ];
}

const bare = (list: string | undefined) => (list || '').replace(/^\*/, '').replace(/\*$/, '');

export function gbValues({reply, settings}: Read, fields: Field[]): Values {
  const values: Values = {};
  const flags = Number(settings ? settings.get(kFlags) : undefined);
  if (settings) {
    values[kGbEnable] = flags ? '1' : '0';
    values[kGbStream] = flags & kStreamBit ? '1' : '0';
  } else {
    values[kGbEnable] = reply.ucFD_GB28181Enable || '0';
    values[kGbStream] = reply.ucFD_StreamType || '0';
    values[idPath(0, 'strFD_LensId')] = bare(reply.strFD_LensId);
    values[idPath(0, 'strFD_AlarmInId')] = bare(reply.strFD_AlarmInId);
  }
  for (const {path, wire} of fields) {
    if (path in values) continue;
    values[path] = (settings ? settings.get(path) : wire && reply[wire]) || '';
  }
  return values;
}

// The byte that the recorder stores: 0 for off, bit 0 for on, bit 7 the stream type.
export function gbWanted(changed: Values, all: Values): Values {
  const {[kGbEnable]: enable, [kGbStream]: stream, ...wanted} = changed;
  if (enable === undefined && stream === undefined) return wanted;
  const flags = isOn(all[kGbEnable]) ? 1 + (isOn(all[kGbStream]) ? kStreamBit : 0) : 0;
  return {...wanted, [kFlags]: String(flags)};
}
