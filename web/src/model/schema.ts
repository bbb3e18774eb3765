// What the recorder's records know of a setting: its kind, its width or range, and what it is not
// for. A setting is known by its section and its own name, whichever item of a list it belongs to.
import {isSecret} from '../recorder/config';

export type Kind = 'text' | 'number' | 'decimal' | 'address' | 'mask' | 'time' | 'hex';
export type Unit = 'kbit' | 'fps' | 'percent' | 'day' | 'baud';

export interface Attribute {
  section: string;
  name: string;
  kind: Kind;
  width?: number;  // bytes that a text can hold without its end, or that the digits of a hex fill
  least?: number;  // bytes that a text must have, and may have where that is less than its width
  most?: number;
  min?: number;
  max?: number;
  unit?: Unit;
  onOff?: boolean;  // 0 or 1
  secret?: boolean;  // hidden in print, copies, reports and templates
  identity?: boolean;  // belongs to this recorder alone: nothing for others
  live?: boolean;  // changes by itself
  status?: boolean;  // told by the recorder, no setting
}

// A number's width and a decimal show in the name's prefix. Behind ":" stands what does not: the
// width of a text, "c" or "i" a number of 8 or 32 bits, "a" an address, "m" a network mask, "t" a
// time of day, "x128" digits for 128 bytes, "-" no value that is kept. "!" marks what belongs to one
// recorder: what identifies it, its vehicle, its driver or its place in a network, and what its own
// disks and sensors need.
const kSections: Record<string, string> = {
  stBaseInfo: 'strFD_DeviceNo:15! ucFD_TimeZone ucFD_TZAdjust ucFD_DstEnable ucFD_DstFromMon ' +
      'ucFD_DstFromDay ucFD_DstToMon ucFD_DstToDay ucFD_NowIsDst ucFD_DateStyle ucFD_GpsMode ' +
      'ucFD_GpsSTFlag ucFD_DiskFormatFlag! usFD_DstAdjust usFD_SizeOf2ndPart! strFD_CurTime:23',
  stUserSec: 'ucFD_PWEnableFlag ucFD_UserStatus strFD_NormalPasswd:7 strFD_AdminPasswd:7 ' +
      'strFD_UserName:15 strFD_UserPWD:127 usFD_UserRoles',
  stLockOfPassword: 'ucFD_ErrorCount uiFD_LockTime',
  stDisplay: 'ucFD_AutoEnable ucFD_LcdTimeout ucFD_WinMax ucFD_WinNum ucFD_VideoOutMode ' +
      'ucFD_VideoOutRes usFD_GuiTimeout strLanguage:3',
  stVersion: 'VideoCnt:i Model:31 strMcuVer:31 strUbootVer:31 strKernelVer:31 strRootfsVer:31 ' +
      'strAppVer:31 strDBVer:31 strWifiVer:31',
  stSystemInfo: 'GpsExist:c GNetExist:c SimExist:c GNetDail:c WifiExist:c WifiMode:c WifiDail:c ' +
      'CmsStatus:c JTT808Status:c GB28181Status:c Disk1Exist:c Disk2Exist:c Disk3Exist:c ACC:c ' +
      'NetStatus:c GNetSignal:i WifiSignal:i VideoCnt:i GpsPos:63! ATI:63 IMSI:63! ICCID:63! ' +
      'Disk1Size:63 Disk2Size:63 Disk3Size:63 IMEI:31! IO:31 Model:31 McuVer:31 BootVer:31 ' +
      'KnlVer:31 RfsVer:31 AppVer:31 DBVer:31 WifiVer:31 DeviceNo:15! CMS:a',
  stNetWorkMode: 'ucFD_NetType ucFD_GNAuthMode ucFD_StreamType ucFD_GNEnableMode ' +
      'ucFD_EnableHR808 ucFD_EnableJSIASS usFD_ExtFunBitFlag usFD_GPSInterval',
  stMobileGNet: 'ucFD_NetType strFD_Apn:31 strFD_PhoneNo:23! strFD_UserName:35 strFD_UserPasswd:35',
  stWifi: 'ucFD_WorkMode ucFD_AuthMode ucFD_CryptType ucFD_DhcpEnableFlag strFD_SSID:31! ' +
      'strFD_Passwd:31 uiFD_IP:a! uiFD_GateWay:a! uiFD_NetMask:m! uiFD_DNS:a!',
  stWifiAp: 'ucFD_AuthMode ucFD_CryptType ucFD_DhcpEnableFlag strFD_SSID:31! strFD_Passwd:31',
  stLocalEth0: 'ucFD_DhcpEnableFlag uiFD_LocalIp:a! uiFD_NetMask:m! uiFD_GateWay:a! strFD_Mac:23!',
  stCMS: 'ucFD_AddressType uiFD_IP:a strFD_Domain:63 usFD_Port',
  stGB28181: 'ucFD_Enable ucFD_WebSEnable usFD_ServerPort usFD_DevicePort strFD_WebSAddr:255 ' +
      'strFD_Manufacturer:31 strFD_ModelName:31 strFD_ServerIp:31 strFD_ServerID:31 ' +
      'strFD_DeviceId:31! strFD_DeviceUser:31! strFD_DevicePass:31 strFD_LensId:31! ' +
      'strFD_AudioInId:31! strFD_AlarmInId:31!',
  stServerGroup: 'ucFD_Enable usFD_GroupNo uiFD_IP:a strFD_UserName:31! strFD_UserPWD:31',
  stVideoMirror: 'ucFD_LeftRight ucFD_UpDown ucFD_Rotate',
  stMainStream: 'ucFD_VideoMode ucFD_VEncFormat ucFD_AEncFormat ucFD_Resolution ucFD_Quality ' +
      'ucFD_FrameRate ucFD_Gop uiFD_BitRate uiFD_DisableAudio uiFD_DisableVideo uiFD_EnableROI ' +
      'ucFD_ROI_X:i ucFD_ROI_Y:i ucFD_ROI_Wight:i ucFD_ROI_Height:i',
  stSubStream: 'ucFD_EncodeMode ucFD_Resolution ucFD_Quality ucFD_FrameRate uiFD_BitRate',
  stVideoCrop: 'uiFD_X uiFD_Y uiFD_Width uiFD_Height',
  stOverlay: 'ucFD_DeviceNoEnable ucFD_ChnNameEnable ucFD_TimeEnable ucFD_GPSEnable ' +
      'ucFD_LPlateEnable ucFD_SpeedEnable ucFD_TempEnable ucFD_IOEnable ucFD_GSensorEnable ' +
      'ucFD_BatteryEnable',
  stChnOverlay: 'ucFD_Resolution ucDisplayStyle ucPreviewEnable',
  stRecord: 'ucFD_RecordMode ucFD_SDUsage ucFD_AutoCoverEnable ucFD_AlarmRecordType ' +
      'uiFD_PreRecordTime uiFD_AlarmRecordTime uiFD_AlarmRecordDays',
  stChnRecord: 'ucRecordEnable ucHaveAudio ucSubStream',
  stSnapshot: 'ucFD_SaveDays ucFD_MultiSnapEnable ucFD_SnapCount uiFD_Interval',
  stExport: 'ucFD_PasswdEnable ucFD_WorkMode ucFD_ExportEnable ucFD_ExportLimit',
  stTimingRec: 'ucRT1Type ucRT2Type uiStartT1 uiEndT1 uiStartT2 uiEndT2',
  stAlarm: 'ucDiskFaulAlarm ucDiskSpaceAlarm ucVideoLostAlarm ucSOSButtonAlarm ucIOEnable ' +
      'ucIONumber ucIOLevel ucIOFunc usIOLast fOxygenAlarm',
  stAlarmLinkage: 'strLinkageName:31 ucLinkageEnable ucAlarmInType ucViewChnNo ucIOEnable ' +
      'ucIONumber ucIOLevel ucIOFunc usAlarmOutType usAlarmRecordCh usAlarmSendCh usAlarmSnapCh ' +
      'usAlarmRecordLast usIOLast',
  stSpeed: 'ucFD_LowSpeedIsEnable ucFD_LowSpeedUnit ucFD_OverSpeedIsEnable ucFD_OverSpeedUnit ' +
      'ucFD_PeakingIsEnable ucFD_TimeUnit ucFD_FatigueEnable usFD_LowSpeed usFD_OverSpeed ' +
      'usFD_OverTime usFD_DrivingTime usFD_RestTime',
  stTempAlarm: 'ucFD_TempType ucFD_LowTempEnable ucFD_HighTempEnable fFD_LowTemp fFD_HighTemp',
  stGSensor: 'fFD_X! fFD_XLimit fFD_Y! fFD_YLimit fFD_Z! fFD_ZLimit fFD_RAccel fFD_RDecel ' +
      'fFD_Crash fFD_Swerve fFD_TrunOver ucFD_AlarmEnable ReCalibrate:-',
  stVda: 'ucFD_Enable ucFD_Wday1 ucFD_Wday2 ucFD_Wday3 ucFD_Percent uiStartT1 uiEndT1 uiStartT2 ' +
      'uiEndT2 uiStartT3 uiEndT3 uiFD_Mask',
  stVehicle: 'strFD_CompanyName:31 strFD_LicensePlate:31! strFD_DriverName:31! ' +
      'strFD_DeviceNum:31! strFD_Phonenumber:31! strFD_ServiceTel:31 strFD_ProvincialId:31 ' +
      'strFD_CityDomainId:31 strFD_CarColors:31 strFD_Authentication:31! strFD_TerminalType:31 ' +
      'strFD_TerminalID:31! strFD_FacturerID:31 strFD_CarVIN:31! strFD_CarType:31 ' +
      'strFD_DrivingLicense:31!',
  stSerial: 'ucFD_DataMode ucDataBit ucParity ucStopBit ucCount uiBaudRate',
  stPtz: 'usPtzAddress ucPtzProtocol ucSerialIndex ucAutoStoped',
  stPower: 'ucPowerMode ucPOnDelayEnable usPOffDelayTime uiTimingPOnTime uiTimingPOffTime ' +
      'uiAccOffStopRecCh',
  stReserve: 'ucReserveData:x128',
  stIpc: 'ucFD_Enable ucFD_IPCNum ucFD_PureNVR ucFD_Valid usFD_FuncMode strFD_User:31 ' +
      'strFD_Pass:31 strFD_Wday:31 uiFD_IP:a! strFD_StartT:t strFD_EndT:t',
};

// What a recorder reports about itself is not a setting.
const kNoSetting = /^(?:stSystemInfo|stVersion)\//;
// Changes by itself: an old value would set it back.
const kLive = /^(?:stBaseInfo\/(?:strFD_CurTime|ucFD_NowIsDst)|stLockOfPassword\/.*)$/;

export const isStatus = (path: string) => kNoSetting.test(path);
export const isLive = (path: string) => kLive.test(path);

const kBits: Record<string, number> = {c: 8, s: 16, i: 32};
const kKinds: Record<string, Kind> =
    {a: 'address', m: 'mask', t: 'time', f: 'decimal', x: 'hex', '-': 'text'};
const kRow = /^(\w+?)(?::([a-z-]?)(\d*))?(!?)$/;
const kPrefix = /^(?:u([csi])|(f))(?=FD_|[A-Z])/;
const kOnOff = new RegExp('(?:Enable|EnableFlag|Enable(?:HR808|JSIASS|ROI)|' +
    'Disable(?:Audio|Video)|HaveAudio|LeftRight|UpDown|NowIsDst|GpsSTFlag)$');
const kFlags = 'stGB28181/ucFD_Enable';  // more than one switch in a byte
const kDeviceNo = 'stBaseInfo/strFD_DeviceNo';

const kUnits: Record<string, Unit> = {
  uiFD_BitRate: 'kbit', ucFD_FrameRate: 'fps', ucFD_Percent: 'percent',
  uiFD_AlarmRecordDays: 'day', ucFD_SaveDays: 'day', uiBaudRate: 'baud',
};

function numberOf(path: string, name: string, bits: number): Partial<Attribute> {
  return {kind: 'number', min: 0, max: 2 ** bits - 1, unit: kUnits[name],
    onOff: kOnOff.test(name) && path !== kFlags};
}

function valueOf(path: string, name: string, letter: string, width: number): Partial<Attribute> {
  const [, number, decimal] = kPrefix.exec(name) || [];
  const type = letter || (width ? '' : number || decimal || '');
  const bits = kBits[type];
  if (bits) return numberOf(path, name, bits);
  return {kind: kKinds[type] || 'text', ...(width ? {width} : {}),
    ...(path === kDeviceNo ? {least: 5, most: 12} : {})};
}

function attributeFrom(section: string, row: string): Attribute {
  const [, name = '', letter = '', width = '', identity = ''] = kRow.exec(row) || [];
  const path = `${section}/${name}`;
  return {section, name, kind: 'text', ...valueOf(path, name, letter, Number(width)),
    secret: isSecret(path), identity: identity === '!', live: isLive(path), status: isStatus(path)};
}

let known: Map<string, Attribute> | null = null;

// Every attribute by section and name, made when it is first asked for.
function all(): Map<string, Attribute> {
  if (known) return known;
  known = new Map();
  for (const section of Object.keys(kSections)) {
    for (const row of (kSections[section] || '').split(' ')) {
      const attribute = attributeFrom(section, row);
      known.set(`${section}/${attribute.name}`, attribute);
    }
  }
  return known;
}

export const knownSections = () => Object.keys(kSections);
export const knownAttributes = () => [...all().values()];

// By its path, "stWifi/strFD_SSID" or with items on the way; undefined when the records lack it.
export const attributeOf = (path: string): Attribute | undefined =>
  all().get(path.replace(/\/.*\//, '/'));

let own: Set<string> | null = null;

// Belongs to one recorder alone. What the records lack is known by its name in other sections.
export function identifies(path: string): boolean {
  const attribute = attributeOf(path);
  if (attribute) return Boolean(attribute.identity);
  own = own || new Set(knownAttributes().filter(({identity}) => identity).map(({name}) => name));
  return own.has(path.replace(/.*\//, ''));
}
