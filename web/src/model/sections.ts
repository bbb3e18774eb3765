// The sections as data, from which forms, review, undo and read-back are made. Where a set endpoint
// would overwrite values that it does not know, the section is saved by an import of the changes.
import {gbFields, gbValues, gbWanted} from './gb28181';
import {address, bitRate, code, frameRate, netmask, onOff, port, secret, text, type Field,
  type Read, type Values} from './fields';
import type {Query} from '../recorder/replies';
import type {WordKey} from '../words';

export type PageId =
    'status' | 'device' | 'video' | 'network' | 'platforms' | 'security' | 'maintenance'
    | 'settings' | 'fleet';
export type SectionId = 'base' | 'language' | 'cameras' | 'subStream' | 'wifi' | 'mobile'
    | 'localEth0' | 'netMode' | 'server' | 'gb28181' | 'password' | 'all';

export interface Section {
  id: SectionId;
  page: PageId;
  also?: PageId;  // shows it, too, and changes nothing
  title: WordKey;
  get?: Query;  // always queried; with `whole`, only where the configuration is not available
  whole?: boolean;
  set?: string;  // the set endpoint; without it the changes are imported
  fields: (read: Read) => Field[];
  values?: (read: Read, fields: Field[]) => Values;  // otherwise by wire, then by path
  wanted?: (changed: Values, all: Values) => Values;  // what to import for the changes
}

const list = (...fields: Field[]) => () => fields;

const base = 'stBaseInfo/';
const wifi = 'stWifi/';
const ap = 'stWifiAp/';
const eth0 = 'stLocalEth0/';
const gnet = 'stMobileGNet/';
const cms = 'stCMS/';

export const kApName = `${ap}strFD_SSID`;
export const kApPassword = `${ap}strFD_Passwd`;
export const isAccessPoint = (values: Values) => values[`${wifi}ucFD_WorkMode`] === '2';
const isStation = (values: Values) => !isAccessPoint(values);
const byDomain = (values: Values) => Number(values[`${cms}ucFD_AddressType`]) !== 0;
const byAddress = (values: Values) => !byDomain(values);

const kMost = 64;  // cameras that a page shows

const camera = (k: number): Field[] => {
  const labelValues = {channel: k + 1};
  const stream = `stMainStream/stVideoPara/VChn_${k}/`;
  const mirror = `stVideoMirror/stVideoMirrorPara/VChn_${k}/`;
  const wire = (name: string) => k === 0 ? {wire: name} : {};
  return [
    frameRate(`${stream}ucFD_FrameRate`, 'frameRate', {labelValues, ...wire('ucFD_FrameRate')}),
    bitRate(`${stream}uiFD_BitRate`, 'bitRate', {labelValues, ...wire('uiFD_BitRate')}),
    onOff(`${mirror}ucFD_LeftRight`, 'leftRight', {labelValues}),
    onOff(`${mirror}ucFD_UpDown`, 'upDown', {labelValues}),
  ];
};

// Every camera that the configuration names; without any, only the first.
function cameras({settings}: Read): Field[] {
  const all: Field[] = [];
  for (let k = 0; k < kMost; k++) {
    const fields = camera(k).filter(({path}) => !settings || settings.has(path));
    if (!fields.length || (!settings && k > 0)) break;
    all.push(...(settings ? fields : fields.filter(({wire}) => wire)));
  }
  return all;
}

// The endpoint has only the values of the working mode's network.
function wifiFields({reply}: Read): Field[] {
  const own = Number(reply.ucFD_WorkMode) === 2 ? ap : wifi;
  const dhcp = (more: Partial<Field>) => onOff(`${ap}ucFD_DhcpEnableFlag`, 'dhcp', more);
  const fields = (at: string, when: Field['when']) => {
    const wire = (name: string) => ({when, ...(at === own ? {wire: name} : {})});
    return [
      text(`${at}strFD_SSID`, 'ssid', 31, {least: 1, ...wire('strFD_SSID')}),
      secret(`${at}strFD_Passwd`, 'wifiPassword', 31, wire('strFD_Passwd')),
      code(`${at}ucFD_AuthMode`, 'authMode', wire('ucFD_AuthMode')),
      code(`${at}ucFD_CryptType`, 'cryptType', wire('ucFD_CryptType')),
      ...(at === ap ? [dhcp(wire('ucFD_DhcpEnableFlag'))] : []),
    ];
  };
  return [
    {path: `${wifi}ucFD_WorkMode`, wire: 'ucFD_WorkMode', kind: 'choice', label: 'workMode',
      help: 'help.workMode', options: [['1', 'workMode.1'], ['2', 'workMode.2']]},
    ...fields(wifi, isStation), ...fields(ap, isAccessPoint),
  ];
}

const entities = {entities: true};

export const kNewPassword = secret('fresh', 'newPassword', 127, {least: 1, ...entities});

// Every setting has a field once the script of the pages that show them has come.
let every: Section['fields'] = () => [];
export const giveFields = (fields: Section['fields']) => { every = fields; };

export const kSections: readonly Section[] = [
  {
    id: 'base', page: 'device', title: 'section.base', get: 'get_BaseInfo',
    fields: list(
        text(`${base}strFD_DeviceNo`, 'deviceNo',
            15, {wire: 'strFD_DeviceNo', least: 5, most: 12, help: 'help.deviceNo'}),
        {path: `${base}ucFD_TimeZone`, wire: 'ucFD_TimeZone', kind: 'number', label: 'timeZone',
          help: 'help.timeZone', min: 0, max: 255},
        onOff(`${base}ucFD_GpsSTFlag`, 'gpsTime', {wire: 'ucFD_GpsSTFlag', help: 'help.gpsTime'}),
        {path: `${base}strFD_CurTime`, wire: 'strFD_CurTime', kind: 'clock', label: 'clock',
          help: 'help.clock', live: true}),
  },
  {
    id: 'language', page: 'device', title: 'section.language', get: 'get_LangInfo',
    set: 'set_LangInfo',
    fields: list({path: 'stDisplay/strLanguage', wire: 'strLanguage', kind: 'choice',
      label: 'language', help: 'help.language', options: [['CN', 'lang.zh'], ['EN', 'lang.en']]}),
  },
  {
    id: 'cameras', page: 'video', title: 'section.cameras', get: 'get_MainStreamInfo', whole: true,
    fields: cameras,
  },
  {
    id: 'subStream', page: 'video', title: 'section.subStream', get: 'get_SubStreamInfo',
    fields: list(frameRate('stSubStream/ucFD_FrameRate', 'frameRate', {wire: 'ucFD_SFrameRate'}),
        bitRate('stSubStream/uiFD_BitRate', 'bitRate', {wire: 'uiFD_SBitRate'})),
  },
  {
    id: 'wifi', page: 'network', title: 'section.wifi', get: 'get_WifiInfo', whole: true,
    fields: wifiFields,
  },
  {
    id: 'mobile', page: 'network', title: 'section.mobile', get: 'get_GNetInfo',
    set: 'set_GNetInfo',
    fields: list(code(`${gnet}ucFD_NetType`, 'mobileType', {wire: 'ucFD_NetType'}),
        text(`${gnet}strFD_Apn`, 'apn', 31, {wire: 'strFD_Apn'}),
        text(`${gnet}strFD_PhoneNo`, 'phoneNo', 23, {wire: 'strFD_PhoneNo'}),
        text(`${gnet}strFD_UserName`, 'userName', 35, {wire: 'strFD_UserName'}),
        secret(`${gnet}strFD_UserPasswd`, 'password', 35, {wire: 'strFD_UserPasswd'})),
  },
  {
    id: 'localEth0', page: 'network', title: 'section.localEth0', get: 'get_LocalNetInfo',
    set: 'set_LocalNetInfo',
    fields: list(address(`${eth0}uiFD_LocalIp`, 'localIp', {wire: 'strFD_LocalIp'}),
        netmask(`${eth0}uiFD_NetMask`, 'netMask', {wire: 'strFD_NetMask'}),
        address(`${eth0}uiFD_GateWay`, 'gateWay', {wire: 'strFD_GateWay', help: 'help.gateWay',
          inside: [`${eth0}uiFD_LocalIp`, `${eth0}uiFD_NetMask`]}),
        {path: `${eth0}strFD_Mac`, wire: 'strFD_Mac', kind: 'mac', label: 'mac', bytes: 23}),
  },
  {
    id: 'netMode', page: 'network', title: 'section.netMode', get: 'get_NetWModeInfo',
    set: 'set_NetWModeInfo',
    fields: list(code('stNetWorkMode/ucFD_NetType', 'netType', {wire: 'ucFD_NetWType'})),
  },
  {
    id: 'server', page: 'platforms', title: 'platform.cms', get: 'get_VCmsInfo',
    set: 'set_VCmsInfo',
    fields: ({reply}) => {
      const held = Number(reply.ucFD_AddressType) === 0 ? 'uiFD_IP' : 'strFD_Domain';
      const type = held === 'uiFD_IP' || reply.ucFD_AddressType === undefined ? '1'
        : reply.ucFD_AddressType;
      const wire = (name: string) => name === held ? {wire: 'strFD_Address'} : {};
      return [
        {path: `${cms}ucFD_AddressType`, wire: 'ucFD_AddressType', kind: 'choice',
          label: 'addressType', options: [['0', 'localIp'], [type, 'addressType.1']]},
        address(`${cms}uiFD_IP`, 'serverIp', {when: byAddress, needed: true,
          ...wire('uiFD_IP')}),
        {path: `${cms}strFD_Domain`, kind: 'host', label: 'serverDomain', bytes: 63, least: 1,
          needed: true, when: byDomain, ...wire('strFD_Domain')},
        port(`${cms}usFD_Port`, 'port', {wire: 'usFD_Port'}),
      ];
    },
  },
  {
    id: 'gb28181', page: 'platforms', title: 'section.gb28181', get: 'get_GB28181Info', whole: true,
    fields: gbFields, values: gbValues, wanted: gbWanted,
  },
  {
    id: 'password', page: 'security', title: 'password',
    fields: list(secret('current', 'currentPassword', 127),
        kNewPassword,
        secret('repeat', 'repeatPassword', 127, {least: 1, ...entities})),
    values: () => ({current: '', fresh: '', repeat: ''}),
  },
  {
    id: 'all', page: 'settings', also: 'fleet', title: 'section.all', whole: true,
    fields: (read) => every(read),
  },
];

export const sectionById = (id: SectionId) => kSections.find((section) => section.id === id)!;
export const readOn = (page: PageId) =>
  kSections.filter((section) => section.page === page || section.also === page);
export const sectionsOf = (page: PageId) => kSections.filter((section) => section.page === page);

// The values of a section's fields.
export function valuesOf(section: Section, read: Read, fields: Field[]): Values {
  if (section.values) return section.values(read, fields);
  const values: Values = {};
  for (const {path, wire} of fields) {
    const value = read.settings && read.settings.has(path) ? read.settings.get(path)
      : wire ? read.reply[wire] : undefined;
    if (value !== undefined) values[path] = value;
  }
  return values;
}
