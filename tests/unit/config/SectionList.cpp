#include "tests/unit/config/SectionList.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <sstream>

namespace {

struct stGroupText {
  const char* pszContainer;
  size_t nItems;
  const char* pszFields;
};

struct stSectionText {
  const char* pszName;
  int (*pfnImport)(CConfig_Task& task, TiXmlElement* pElem, stConfig* pDst);
  size_t nOffset;
  size_t nSize;
  const char* pszFields;  // "name:kind" in the record's order; an "@offset" overrides the order
  std::vector<stGroupText> groups;
};

#define SECTION(section)                                                                          \
#section,                                                                                       \
      [](CConfig_Task & task, TiXmlElement * p,                                                   \
         stConfig *                                                                               \
             pDst) { return task.Import_##section(p, pDst); }, offsetof(stConfig, section##Info), \
                                                            sizeof(stConfig::section##Info)
// A section with copies: the walk is tested on copy 0, the selection of the copy elsewhere.
#define SECTION_COPY(section)                                                                  \
#section,                                                                                    \
      [](CConfig_Task & task, TiXmlElement * p,                                                \
         stConfig * pDst) { return task.Import_##section(p, 0, pDst); },                       \
                                                                      offsetof(stConfig,       \
                                                                               section##Info), \
                                                                      sizeof(section)

constexpr char kAlarmIO[] = "ucIOEnable:u8 ucIONumber:u8 ucIOLevel:u8 ucIOFunc:u8 usIOLast:u16";

const std::vector<stSectionText> kDeviceSections = {
    {SECTION(stBaseInfo),
     "strFD_DeviceNo:dev16 ucFD_TimeZone:u8 ucFD_TZAdjust:u8 ucFD_DstEnable:u8 "
     "ucFD_DstFromMon:u8 ucFD_DstFromDay:u8 ucFD_DstToMon:u8 ucFD_DstToDay:u8 ucFD_NowIsDst:u8 "
     "usFD_DstAdjust:u16 ucFD_DateStyle:u8 ucFD_GpsMode:u8 ucFD_GpsSTFlag:u8 "
     "ucFD_DiskFormatFlag:u8 usFD_SizeOf2ndPart:u16 strFD_CurTime:c24",
     {}},
    {SECTION(stUserSec),
     "ucFD_PWEnableFlag:u8 strFD_NormalPasswd:c8 strFD_AdminPasswd:c8",
     {{"stCustomUser", 2,
       "ucFD_UserStatus:u8 strFD_UserName:c16 strFD_UserPWD:c128 usFD_UserRoles:u16"}}},
    {SECTION(stLockOfPassword), "ucFD_ErrorCount:u8 uiFD_LockTime:u32", {}},
    {SECTION(stDisplay),
     "ucFD_AutoEnable:u8 ucFD_LcdTimeout:u8 usFD_GuiTimeout:u16 strLanguage:c4 ucFD_WinMax:u8 "
     "ucFD_WinNum:u8 ucFD_VideoOutMode:u8 ucFD_VideoOutRes:u8",
     {}},
    {SECTION(stVersion),
     "VideoCnt:u32 Model:c32 strMcuVer:c32 strUbootVer:c32 strKernelVer:c32 strRootfsVer:c32 "
     "strAppVer:c32 strDBVer:c32 strWifiVer:c32",
     {}},
    {SECTION(stSystemInfo),
     "GpsExist:u8 GpsPos:c64 GNetExist:u8 IMEI:c32 ATI:rev64 SimExist:u8 IMSI:c64 ICCID:c64 "
     "GNetSignal:u32 GNetDail:u8 WifiExist:u8 WifiMode:u8 WifiSignal:u32 WifiDail:u8 "
     "CmsStatus:u8 JTT808Status:u8 GB28181Status:u8 Disk1Exist:u8 Disk1Size:c64 Disk2Exist:u8 "
     "Disk2Size:c64 Disk3Exist:u8 Disk3Size:c64 IO:c32 VideoCnt:u32 Model:c32 McuVer:c32 "
     "BootVer:c32 KnlVer:c32 RfsVer:c32 AppVer:c32 DBVer:c32 WifiVer:c32 ACC:u8 NetStatus:u8 "
     "CMS:ip DeviceNo:c16",
     {}},
};

const std::vector<stSectionText> kNetworkSections = {
    {SECTION(stNetWorkMode),
     "ucFD_NetType:u8 ucFD_GNAuthMode:u8 ucFD_StreamType:u8 ucFD_GNEnableMode:u8 "
     "usFD_ExtFunBitFlag:u16 ucFD_EnableHR808:u8 ucFD_EnableJSIASS:u8 usFD_GPSInterval:u16",
     {}},
    {SECTION(stMobileGNet),
     "ucFD_NetType:u8 strFD_Apn:c32 strFD_PhoneNo:c24 strFD_UserName:c36 strFD_UserPasswd:c36",
     {}},
    {SECTION(stWifi),
     "ucFD_WorkMode:u8 strFD_SSID:c32 strFD_Passwd:c32 ucFD_AuthMode:u8 ucFD_CryptType:u8 "
     "ucFD_DhcpEnableFlag:u8 uiFD_IP:ip uiFD_GateWay:ip uiFD_NetMask:ip uiFD_DNS:ip",
     {}},
    {SECTION(stWifiAp),
     "strFD_SSID:c32 strFD_Passwd:c32 ucFD_AuthMode:u8 ucFD_CryptType:u8 ucFD_DhcpEnableFlag:u8",
     {}},
    {SECTION(stLocalEth0),
     "ucFD_DhcpEnableFlag:u8 uiFD_LocalIp:ip uiFD_NetMask:ip uiFD_GateWay:ip strFD_Mac:c24",
     {}},
    {SECTION_COPY(stCMS), "ucFD_AddressType:u8 uiFD_IP:ip strFD_Domain:c64 usFD_Port:u16", {}},
    {SECTION(stGB28181),
     "ucFD_Enable:u8 strFD_Manufacturer:c32 strFD_ModelName:c32 strFD_ServerIp:c32 "
     "usFD_ServerPort:u16 strFD_ServerID:c32 strFD_DeviceId:c32 usFD_DevicePort:u16 "
     "strFD_DeviceUser:c32 strFD_DevicePass:c32 ucFD_WebSEnable:u8 strFD_WebSAddr:c256",
     {{"stGB28181SubID", 1,
       "strFD_LensId:id32@0 strFD_AlarmInId:id32@64 strFD_AudioInId:id32@320"}}},
    {SECTION(stServerGroup),
     "ucFD_Enable:u8 usFD_GroupNo:u16 uiFD_IP:ip strFD_UserName:c32 strFD_UserPWD:c32",
     {}},
};

const std::vector<stSectionText> kVideoSections = {
    {SECTION(stVideoMirror),
     "",
     {{"stVideoMirrorPara", 1, "ucFD_LeftRight:u8 ucFD_UpDown:u8 ucFD_Rotate:u8"}}},
    {SECTION(stMainStream),
     "ucFD_VideoMode:u8 ucFD_VEncFormat:u8 ucFD_AEncFormat:u8",
     {{"stVideoPara", 1,
       "ucFD_Resolution:u8 ucFD_Quality:u8 ucFD_FrameRate:u8 ucFD_Gop:u8 uiFD_BitRate:u32 "
       "uiFD_DisableAudio:u32 uiFD_DisableVideo:u32 uiFD_EnableROI:u32 ucFD_ROI_X:corner "
       "ucFD_ROI_Y:corner ucFD_ROI_Wight:size ucFD_ROI_Height:size"}}},
    {SECTION(stSubStream),
     "ucFD_EncodeMode:u8 ucFD_Resolution:u8 ucFD_Quality:u8 ucFD_FrameRate:u8 uiFD_BitRate:u32",
     {}},
    {SECTION(stVideoCrop),
     "",
     {{"stVideoCropPara", 8, "uiFD_X:u32 uiFD_Y:u32 uiFD_Width:u32 uiFD_Height:u32"}}},
    {SECTION(stOverlay),
     "ucFD_DeviceNoEnable:u8 ucFD_ChnNameEnable:u8 ucFD_TimeEnable:u8 ucFD_GPSEnable:u8 "
     "ucFD_LPlateEnable:u8 ucFD_SpeedEnable:u8 ucFD_TempEnable:u8 ucFD_IOEnable:u8 "
     "ucFD_GSensorEnable:u8 ucFD_BatteryEnable:u8",
     {}},
    {SECTION(stChnOverlay),
     "",
     {{"stChnOSDPara", 8, "ucFD_Resolution:u8 ucDisplayStyle:u8 ucPreviewEnable:u8"}}},
};

const std::vector<stSectionText> kRecordingSections = {
    {SECTION(stRecord),
     "ucFD_RecordMode:u8 ucFD_SDUsage:u8 ucFD_AutoCoverEnable:u8 ucFD_AlarmRecordType:u8 "
     "uiFD_PreRecordTime:u32 uiFD_AlarmRecordTime:u32 uiFD_AlarmRecordDays:u32",
     {}},
    {SECTION(stChnRecord),
     "",
     {{"stChnRecordPara", 8, "ucRecordEnable:u8 ucHaveAudio:u8 ucSubStream:u8"}}},
    {SECTION(stSnapshot),
     "ucFD_SaveDays:u8 ucFD_MultiSnapEnable:u8 uiFD_Interval:u32 ucFD_SnapCount:u8",
     {}},
    {SECTION(stExport),
     "ucFD_PasswdEnable:u8 ucFD_WorkMode:u8 ucFD_ExportEnable:u8 ucFD_ExportLimit:u8",
     {}},
    {SECTION(stTimingRec),
     "",
     {{"stTimingRecDay", 8,
       "ucRT1Type:u8 ucRT2Type:u8 uiStartT1:u32 uiEndT1:u32 uiStartT2:u32 uiEndT2:u32"}}},
};

const std::vector<stSectionText> kAlarmSections = {
    {SECTION(stAlarm),
     "ucDiskFaulAlarm:u8 ucDiskSpaceAlarm:u8 ucVideoLostAlarm:u8 ucSOSButtonAlarm:u8 "
     "fOxygenAlarm:f32",
     {{"stAlarmInIO", 8, kAlarmIO}}},
    {SECTION(stAlarmLinkage),
     "",
     {{"stAlarmLinkageItem", 8,
       "strLinkageName:c32 ucLinkageEnable:u8 ucAlarmInType:u8 usAlarmOutType:u16 "
       "usAlarmRecordCh:u16 usAlarmSendCh:u16 usAlarmSnapCh:u16 ucViewChnNo:u8 "
       "usAlarmRecordLast:u16"},
      {"stAlarmOutIO", 8, kAlarmIO}}},
    {SECTION(stSpeed),
     "ucFD_LowSpeedIsEnable:u8 ucFD_LowSpeedUnit:u8 usFD_LowSpeed:u16 ucFD_OverSpeedIsEnable:u8 "
     "ucFD_OverSpeedUnit:u8 usFD_OverSpeed:u16 ucFD_PeakingIsEnable:u8 ucFD_TimeUnit:u8 "
     "usFD_OverTime:u16 ucFD_FatigueEnable:u8 usFD_DrivingTime:u16 usFD_RestTime:u16",
     {}},
    {SECTION(stTempAlarm),
     "",
     {{"stTempAlarmPara", 8,
       "ucFD_TempType:u8 ucFD_LowTempEnable:u8 fFD_LowTemp:whole ucFD_HighTempEnable:u8 "
       "fFD_HighTemp:whole"}}},
    {SECTION(stGSensor),
     "fFD_X:f32 fFD_XLimit:f32 fFD_Y:f32 fFD_YLimit:f32 fFD_Z:f32 fFD_ZLimit:f32 "
     "ucFD_AlarmEnable:u8 fFD_RAccel:f32 fFD_RDecel:f32 fFD_Crash:f32 fFD_Swerve:f32 "
     "fFD_TrunOver:f32",
     {}},
    {SECTION(stVda),
     "",
     {{"stVdaPara", 8,
       "ucFD_Enable:u8 ucFD_Wday1:u8 uiStartT1:u32 uiEndT1:u32 ucFD_Wday2:u8 uiStartT2:u32 "
       "uiEndT2:u32 ucFD_Wday3:u8 uiStartT3:u32 uiEndT3:u32 ucFD_Percent:u8 uiFD_Mask:u32"}}},
};

const std::vector<stSectionText> kVehicleSections = {
    {SECTION_COPY(stVehicle),
     "strFD_CompanyName:c32 strFD_LicensePlate:c32 strFD_DriverName:c32 strFD_DeviceNum:c32 "
     "strFD_Phonenumber:c32 strFD_ServiceTel:c32 strFD_ProvincialId:c32 strFD_CityDomainId:c32 "
     "strFD_CarColors:c32 strFD_Authentication:c32 strFD_TerminalType:c32 strFD_TerminalID:c32 "
     "strFD_FacturerID:c32 strFD_CarVIN:c32 strFD_CarType:c32 strFD_DrivingLicense:c32",
     {}},
    {SECTION(stSerial),
     "",
     {{"stSerialChnPara", 8,
       "ucFD_DataMode:u8 uiBaudRate:u32 ucDataBit:u8 ucParity:u8 ucStopBit:u8 ucCount:u8"}}},
    {SECTION(stPtz),
     "",
     {{"stChnPtzPara", 8, "usPtzAddress:u16 ucPtzProtocol:u8 ucSerialIndex:u8 ucAutoStoped:u8"}}},
    {SECTION(stPower),
     "ucPowerMode:u8 ucPOnDelayEnable:u8 usPOffDelayTime:u16 uiTimingPOnTime:u32 "
     "uiTimingPOffTime:u32 uiAccOffStopRecCh:u32",
     {}},
    {SECTION(stReserve), "ucReserveData:hex128", {}},
    {SECTION(stIpc),
     "ucFD_Enable:u8 ucFD_IPCNum:u8 usFD_FuncMode:u16 ucFD_PureNVR:u8",
     {{"stChnIpc", 8, "strFD_User:c32 strFD_Pass:c32 uiFD_IP:ip ucFD_Valid:u8"},
      {"stFunTPeriod", 8, "strFD_Wday:c32 strFD_StartT:time strFD_EndT:time"}}},
};

struct stKindText {
  const char* pszText;
  Kind eKind;
  size_t nWidth;  // 0: written after the kind
};

constexpr stKindText kKinds[] = {
    {"u8", Kind::kNumber, 1},      {"u16", Kind::kNumber, 2},       {"u32", Kind::kNumber, 4},
    {"ip", Kind::kAddress, 4},     {"f32", Kind::kFloat, 4},        {"whole", Kind::kWholeFloat, 4},
    {"time", Kind::kTimeOfDay, 4}, {"corner", Kind::kRoiCorner, 4}, {"size", Kind::kRoiSize, 4},
    {"c", Kind::kText, 0},         {"id", Kind::kIdentifier, 0},    {"hex", Kind::kHexBytes, 0},
    {"dev", Kind::kDeviceNo, 0},   {"rev", Kind::kRevision, 0},
};

size_t AlignUp(size_t nOffset, size_t nAlign) { return (nOffset + nAlign - 1) / nAlign * nAlign; }

// Bytes may be anywhere, numbers are at multiples of their width.
size_t AlignOf(const stField& field) {
  const bool bBytes = field.eKind == Kind::kText || field.eKind == Kind::kIdentifier ||
                      field.eKind == Kind::kHexBytes || field.eKind == Kind::kDeviceNo ||
                      field.eKind == Kind::kRevision;
  return bBytes ? 1 : field.nWidth;
}

// "name:kind"; a kind without a fixed width has it after the word.
stField ParseField(const std::string& strText) {
  const size_t nColon = strText.find(':');
  const std::string strKind = strText.substr(nColon + 1, strText.find('@') - nColon - 1);
  const size_t nDigits = strKind.find_first_of("0123456789");
  for (const stKindText& kind : kKinds) {
    if (strKind != kind.pszText && strKind.substr(0, nDigits) != kind.pszText) continue;
    const size_t nWidth = kind.nWidth ? kind.nWidth : std::stoul(strKind.substr(nDigits));
    return {strText.substr(0, nColon), kind.eKind, 0, nWidth};
  }
  abort();  // our own list is wrong
}

// Lays the fields out from nEnd on, which ends after the last one; nAlign becomes the strictest
// alignment.
std::vector<stField> ParseFields(const char* pszFields, size_t& nEnd, size_t& nAlign) {
  std::vector<stField> fields;
  std::istringstream in(pszFields);
  for (std::string strText; in >> strText;) {
    stField field = ParseField(strText);
    const size_t nAt = strText.find('@');
    field.nOffset = AlignUp(nEnd, AlignOf(field));
    if (nAt != std::string::npos) field.nOffset = std::stoul(strText.substr(nAt + 1));
    nEnd = field.nOffset + field.nWidth;
    nAlign = std::max(nAlign, AlignOf(field));
    fields.push_back(field);
  }
  return fields;
}

stSection ParseSection(const stSectionText& text) {
  stSection section{text.pszName, text.pfnImport, text.nOffset, text.nSize, 0, {}, {}};
  size_t nAlign = 1;
  section.fields = ParseFields(text.pszFields, section.nTiled, nAlign);
  for (const stGroupText& groupText : text.groups) {
    stGroup group{groupText.pszContainer, groupText.nItems, 0, 0, false, {}};
    size_t nItemAlign = 1;
    group.fields = ParseFields(groupText.pszFields, group.nItemSize, nItemAlign);
    group.bLongSuffix = group.strContainer == "stGB28181SubID";
    group.nItemSize = AlignUp(group.nItemSize, nItemAlign);
    group.nOffset = AlignUp(section.nTiled, nItemAlign);
    section.nTiled = group.nOffset + group.nItems * group.nItemSize;
    nAlign = std::max(nAlign, nItemAlign);
    section.groups.push_back(group);
  }
  section.nTiled = AlignUp(section.nTiled, nAlign);
  return section;
}

}  // namespace

const std::vector<stSection>& Sections() {
  static const std::vector<stSection> s_sections = [] {
    std::vector<stSection> sections;
    for (const auto* pTexts : {&kDeviceSections, &kNetworkSections, &kVideoSections,
                               &kRecordingSections, &kAlarmSections, &kVehicleSections})
      std::transform(pTexts->begin(), pTexts->end(), std::back_inserter(sections), ParseSection);
    return sections;
  }();
  return s_sections;
}
