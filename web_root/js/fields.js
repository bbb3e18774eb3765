// The settings as data: sections with their endpoints, fields with their variable, text keys and
// limits. bytes: the most on the way; least, most: the fewest and most stored; when(values): shown,
// checked and compared only then; live: changes by itself, so it is never compared.

const code = (name, label) => ({name, kind: 'number', label, help: 'code.help', min: 0, max: 255});
const port = (name, label) => ({name, kind: 'number', label, min: 1, max: 65535});
const ipv4 = (name, label) => ({name, kind: 'ipv4', label});
const text = (name, label, bytes, more = {}) => ({name, kind: 'text', label, bytes, ...more});
const secret = (name, label, bytes, more = {}) => ({name, kind: 'secret', label, bytes, ...more});
const toggle = (name, label, more = {}) => ({name, kind: 'toggle', label, ...more});

const kBitRate = {kind: 'number', label: 'bitRate', min: 1, max: 1000000};
const kFrameRate = {kind: 'number', label: 'frameRate', min: 1, max: 255};

const isAccessPoint = (values) => values.ucFD_WorkMode === '2';

export const kSections = {
  base: {
    get: 'get_BaseInfo', set: 'set_BaseInfo', title: 'base',
    fields: [
      text('strFD_DeviceNo', 'deviceNo', 15, {least: 5, most: 12}),
      {name: 'ucFD_TimeZone', kind: 'number', label: 'timeZone', help: 'timeZone.help',
        min: 0, max: 255},
      toggle('ucFD_GpsSTFlag', 'gpsTime'),
      {name: 'strFD_CurTime', kind: 'clock', label: 'clock', live: true},
    ],
  },
  mirror: {
    get: 'get_MirrorInfo', set: 'set_MirrorInfo', title: 'mirror',
    fields: [
      toggle('strFD_LeftRight', 'leftRight'),
      toggle('strFD_UpDown', 'upDown'),
    ],
  },
  mainStream: {
    get: 'get_MainStreamInfo', set: 'set_MainStreamInfo', title: 'mainStream',
    fields: [{name: 'ucFD_FrameRate', ...kFrameRate}, {name: 'uiFD_BitRate', ...kBitRate}],
  },
  subStream: {
    get: 'get_SubStreamInfo', set: 'set_SubStreamInfo', title: 'subStream',
    fields: [{name: 'ucFD_SFrameRate', ...kFrameRate}, {name: 'uiFD_SBitRate', ...kBitRate}],
  },
  netMode: {
    get: 'get_NetWModeInfo', set: 'set_NetWModeInfo', title: 'netMode',
    fields: [code('ucFD_NetWType', 'netType')],
  },
  localNet: {
    get: 'get_LocalNetInfo', set: 'set_LocalNetInfo', title: 'localNet',
    fields: [
      ipv4('strFD_LocalIp', 'localIp'), ipv4('strFD_NetMask', 'netMask'),
      ipv4('strFD_GateWay', 'gateWay'),
      {name: 'strFD_Mac', kind: 'mac', label: 'mac', bytes: 23},
    ],
  },
  wifi: {
    get: 'get_WifiInfo', set: 'set_WifiInfo', title: 'wifi',
    fields: [
      {name: 'ucFD_WorkMode', kind: 'choice', label: 'workMode', help: 'workMode.help',
        options: [['1', 'workMode.1'], ['2', 'workMode.2']]},
      text('strFD_SSID', 'ssid', 31, {least: 1}), secret('strFD_Passwd', 'wifiPassword', 31),
      code('ucFD_AuthMode', 'authMode'), code('ucFD_CryptType', 'cryptType'),
      toggle('ucFD_DhcpEnableFlag', 'dhcp', {when: isAccessPoint}),
    ],
  },
  mobile: {
    get: 'get_GNetInfo', set: 'set_GNetInfo', title: 'mobile',
    fields: [
      code('ucFD_NetType', 'mobileType'), text('strFD_Apn', 'apn', 31),
      text('strFD_PhoneNo', 'phoneNo', 23), text('strFD_UserName', 'userName', 35),
      secret('strFD_UserPasswd', 'password', 35),
    ],
  },
  server: {
    get: 'get_VCmsInfo', set: 'set_VCmsInfo', title: 'server',
    fields: [
      {name: 'ucFD_AddressType', kind: 'choice', label: 'addressType',
        options: [['0', 'addressType.0'], ['1', 'addressType.1']]},
      {name: 'strFD_Address', kind: 'host', label: 'address', bytes: 63,
        least: 1, numeric: (values) => values.ucFD_AddressType === '0'},
      port('usFD_Port', 'port'),
    ],
  },
  gb28181: {
    get: 'get_GB28181Info', set: 'set_GB28181Info', title: 'gb28181',
    fields: [
      toggle('ucFD_GB28181Enable', 'gbEnable'),
      {name: 'ucFD_StreamType', kind: 'choice', label: 'streamType', help: 'streamType.help',
        options: [['0', 'streamType.0'], ['1', 'streamType.1']],
        when: (values) => values.ucFD_GB28181Enable === '1'},
      text('strFD_Manufacturer', 'manufacturer', 31), text('strFD_ModelName', 'modelName', 31),
      text('strFD_ServerIp', 'address', 31), port('usFD_ServerPort', 'serverPort'),
      text('strFD_ServerID', 'serverId', 31), text('strFD_DeviceId', 'deviceId', 31),
      port('usFD_DevicePort', 'devicePort'), text('strFD_DeviceUser', 'userName', 31),
      secret('strFD_DevicePass', 'password', 31),
    ],
  },
  password: {
    get: 'get_UserSecurity', set: 'set_UserSecurity', title: 'changePassword',
    fields: [
      secret('current', 'currentPassword', 127, {autocomplete: 'current-password'}),
      secret('fresh', 'newPassword', 127, {least: 1, autocomplete: 'new-password'}),
      secret('repeat', 'repeatPassword', 127, {least: 1, autocomplete: 'new-password'}),
    ],
  },
  language: {
    get: 'get_LangInfo', set: 'set_LangInfo', title: 'recorderLanguage',
    fields: [
      {name: 'strLanguage', kind: 'choice', label: 'language', help: 'language.help',
        options: [['CN', 'language.zh'], ['EN', 'language.en']]},
    ],
  },
};
