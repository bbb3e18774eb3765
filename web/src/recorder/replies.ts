// Parses replies. Their values are unescaped, so a reply is matched against its known keys, in
// order and with the fields' widths, and ends with "result".

// One row per reply: keys in order. "key" is a number, "key:31" a text of at most 31 characters,
// "key:*" a text of any length, "group/key" opens a group first, "name=key" renames a repeated key.
export const kReplies = {
  get_LangInfo: 'strLanguage:2',
  get_BaseInfo: 'strFD_DeviceNo:15 ucFD_TimeZone ucFD_GpsSTFlag strFD_CurTime:63',
  get_UserSecurity: 'strAdminPasswd:127 strNormalPasswd:127',
  cmp_UserSecurity: 'jsession:32',
  get_LockOfPassword: 'ucFD_ErrorCount time',
  get_MirrorInfo: 'strFD_LeftRight strFD_UpDown',
  get_MainStreamInfo: 'ucFD_FrameRate uiFD_BitRate',
  get_SubStreamInfo: 'ucFD_SFrameRate uiFD_SBitRate',
  get_NetWModeInfo: 'ucFD_NetWType',
  get_VCmsInfo: 'ucFD_AddressType strFD_Address:63 usFD_Port',
  get_WifiInfo: 'ucFD_WorkMode strFD_SSID:31 strFD_Passwd:31 ucFD_AuthMode ucFD_CryptType ' +
      'ucFD_DhcpEnableFlag',
  get_GNetInfo: 'ucFD_NetType strFD_Apn:31 strFD_PhoneNo:23 strFD_UserName:35 strFD_UserPasswd:35',
  get_LocalNetInfo: 'strFD_LocalIp:63 strFD_NetMask:63 strFD_GateWay:63 strFD_Mac:23',
  get_VersionInfo: 'strFD_AppVersion:31 strFD_KnlVersion:31',
  get_GB28181Info: 'ucFD_GB28181Enable strFD_Manufacturer:31 strFD_ModelName:31 ' +
      'strFD_ServerIp:31 usFD_ServerPort strFD_ServerID:31 strFD_DeviceId:31 usFD_DevicePort ' +
      'strFD_DeviceUser:31 strFD_DevicePass:31 strFD_LensId:34 iVideoChnCount ucFD_StreamType ' +
      'strFD_AlarmInId:34',
  get_SystemInfo: 'gps/ucFD_GpsExist strFD_GpsPos:63 gnet/ucFD_GNetExist strFD_GNetIMEI:31 ' +
      'strFD_GNetRevision:63 ucFD_SimExist ucFD_SimIMSI:63 ucFD_SimICCID:63 uiFD_GNetSignal ' +
      'ucFD_GNetDail wifi/ucFD_WifiExist ucFD_WifiMode:6 uiFD_WifiSignal ucFD_WifiDail ' +
      'cms/ucFD_CmsStatus ucFD_JTT808Status ucFD_GB28181Status ' +
      'disk/list/disk1Exist=ucFD_DiskExist disk1Size=strFD_DiskSize:63 ' +
      'disk2Exist=ucFD_DiskExist disk2Size=strFD_DiskSize:63 io/strFD_IOStatus:31 ' +
      'version/strFD_McuVersion:31 strFD_LdrVersion:31 strFD_KnlVersion:31 strFD_RfsVersion:31 ' +
      'strFD_AppVersion:31 strFD_DbtVersion:31 acc/ucFD_AccStatus net/ucFD_NetStatus uiFD_IP:63 ' +
      'strFD_DeviceNo:15',
  export_CfgFile: 'strFD_CfgPara:*',
};

export type Query = keyof typeof kReplies;
// result is false when the recorder did not answer the service.
export interface Reply { result: boolean; values: Record<string, string> }

const kRow = /^((?:\w+\/)*)(?:(\w+)=)?(\w+)(?::(\d+|\*))?$/;
const kBetween = '[\\s,{}\\[\\]]*';  // commas and brackets, present or missing

function compileRow(row: string) {
  const [, groups = '', alias, key = '', width] = kRow.exec(row) || [];
  const opening = groups.split('/').filter(Boolean).map((g) => `"${g}"\\s*:${kBetween}`).join('');
  const value = !width ? '(-?\\d+)' : width === '*' ? '([^]*)' : `([^]{0,${width}})`;
  return {name: alias || key, pattern: `${kBetween}${opening}"${key}"\\s*:\\s*"${value}"`};
}

function compile(rows: string) {
  const parts = rows.split(' ').filter(Boolean).map(compileRow);
  const result = `${kBetween}"result"\\s*:\\s*(\\d+)${kBetween}$`;
  return {
    names: parts.map((part) => part.name),
    pattern: new RegExp(`^${parts.map((part) => part.pattern).join('')}${result}`),
  };
}

const compiled: Record<string, ReturnType<typeof compile>> = {};

// Null when the endpoint does not send such a reply. Endpoints without a row answer with "result".
export function readReply(endpoint: string, text: string): Reply | null {
  const rows: Record<string, string> = kReplies;
  const known = compiled[endpoint] || (compiled[endpoint] = compile(rows[endpoint] || ''));
  const match = known.pattern.exec(text);
  if (!match) return null;
  const values: Record<string, string> = {};
  known.names.forEach((name, i) => { values[name] = match[i + 1] || ''; });
  return {result: match[known.names.length + 1] === '1', values};
}

// UTF-8 when the bytes are valid UTF-8, GBK otherwise. Short GBK texts can look like two-byte UTF-8
// sequences; the recorder writes GBK, so these are GBK, too.
export function decodeReply(bytes: Uint8Array): string {
  let text: string;
  try {
    text = new TextDecoder('utf-8', {fatal: true}).decode(bytes);
  } catch {
    return new TextDecoder('gbk').decode(bytes);
  }
  if (/[\u0080-\u07ff]/.test(text) && !/[\u0800-\uffff]/.test(text))
    return new TextDecoder('gbk').decode(bytes);
  return text;
}
