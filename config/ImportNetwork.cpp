// Importers of the network sections, each below its attribute tables.
#include "config/Config_Task.h"

constexpr stAttr<stNetWorkMode> kNetWorkMode[] = {
    ATTR(stNetWorkMode, ucFD_NetType),       ATTR(stNetWorkMode, ucFD_GNAuthMode),
    ATTR(stNetWorkMode, ucFD_StreamType),    ATTR(stNetWorkMode, ucFD_GNEnableMode),
    ATTR(stNetWorkMode, usFD_ExtFunBitFlag), ATTR(stNetWorkMode, ucFD_EnableHR808),
    ATTR(stNetWorkMode, ucFD_EnableJSIASS),  ATTR(stNetWorkMode, usFD_GPSInterval),
};

int CConfig_Task::Import_stNetWorkMode(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kNetWorkMode, Dest(pDst).stNetWorkModeInfo);
}

constexpr stAttr<stMobileGNet> kMobileGNet[] = {
    ATTR(stMobileGNet, ucFD_NetType),     ATTR(stMobileGNet, strFD_Apn),
    ATTR(stMobileGNet, strFD_PhoneNo),    ATTR(stMobileGNet, strFD_UserName),
    ATTR(stMobileGNet, strFD_UserPasswd),
};

int CConfig_Task::Import_stMobileGNet(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kMobileGNet, Dest(pDst).stMobileGNetInfo);
}

constexpr stAttr<stWifi> kWifi[] = {
    ATTR(stWifi, ucFD_WorkMode),
    ATTR(stWifi, strFD_SSID),
    ATTR(stWifi, strFD_Passwd),
    ATTR(stWifi, ucFD_AuthMode),
    ATTR(stWifi, ucFD_CryptType),
    ATTR(stWifi, ucFD_DhcpEnableFlag),
    ATTR_AS(stWifi, uiFD_IP, StoreAddress),
    ATTR_AS(stWifi, uiFD_GateWay, StoreAddress),
    ATTR_AS(stWifi, uiFD_NetMask, StoreAddress),
    ATTR_AS(stWifi, uiFD_DNS, StoreAddress),
};

int CConfig_Task::Import_stWifi(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kWifi, Dest(pDst).stWifiInfo);
}

constexpr stAttr<stWifiAp> kWifiAp[] = {
    ATTR(stWifiAp, strFD_SSID),          ATTR(stWifiAp, strFD_Passwd),
    ATTR(stWifiAp, ucFD_AuthMode),       ATTR(stWifiAp, ucFD_CryptType),
    ATTR(stWifiAp, ucFD_DhcpEnableFlag),
};

int CConfig_Task::Import_stWifiAp(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kWifiAp, Dest(pDst).stWifiApInfo);
}

constexpr stAttr<stLocalEth0> kLocalEth0[] = {
    ATTR(stLocalEth0, ucFD_DhcpEnableFlag),
    ATTR_AS(stLocalEth0, uiFD_LocalIp, StoreAddress),
    ATTR_AS(stLocalEth0, uiFD_NetMask, StoreAddress),
    ATTR_AS(stLocalEth0, uiFD_GateWay, StoreAddress),
    ATTR(stLocalEth0, strFD_Mac),
};

int CConfig_Task::Import_stLocalEth0(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kLocalEth0, Dest(pDst).stLocalEth0Info);
}

constexpr stAttr<stCMS> kCMS[] = {
    ATTR(stCMS, ucFD_AddressType),
    ATTR_AS(stCMS, uiFD_IP, StoreAddress),
    ATTR(stCMS, strFD_Domain),
    ATTR(stCMS, usFD_Port),
};

int CConfig_Task::Import_stCMS(TiXmlElement* pElem, int nSlot, stConfig* pDst) {
  if (nSlot < 1 || nSlot > 4) nSlot = 0;
  return Walk(pElem, kCMS, Dest(pDst).stCMSInfo[nSlot]);
}

constexpr stAttr<stGB28181> kGB28181[] = {
    ATTR(stGB28181, ucFD_Enable),      ATTR(stGB28181, strFD_Manufacturer),
    ATTR(stGB28181, strFD_ModelName),  ATTR(stGB28181, strFD_ServerIp),
    ATTR(stGB28181, usFD_ServerPort),  ATTR(stGB28181, strFD_ServerID),
    ATTR(stGB28181, strFD_DeviceId),   ATTR(stGB28181, usFD_DevicePort),
    ATTR(stGB28181, strFD_DeviceUser), ATTR(stGB28181, strFD_DevicePass),
    ATTR(stGB28181, ucFD_WebSEnable),  ATTR(stGB28181, strFD_WebSAddr),
};

namespace {

// Deliberate: an identifier may fill all 32 bytes, which leaves no room for a NUL.
int CopyId(char* pId, const char* pszText) {
  memset(pId, 0, 32);
  memcpy(pId, pszText, strnlen(pszText, 32));
  return 0;
}

// Only sub-device 0 is read, so its three identifiers are rows over the whole record.
int StoreLensId(stGB28181& rec, const char* pszText) { return CopyId(rec.LensId(0), pszText); }
int StoreAudioInId(stGB28181& rec, const char* pszText) {
  return CopyId(rec.strFD_AudioInId[0], pszText);
}
int StoreAlarmInId(stGB28181& rec, const char* pszText) {
  return CopyId(rec.AlarmInId(0), pszText);
}

}  // namespace

constexpr stAttr<stGB28181> kGB28181SubId[] = {
    {"strFD_LensId", StoreLensId},
    {"strFD_AudioInId", StoreAudioInId},
    {"strFD_AlarmInId", StoreAlarmInId},
};

int CConfig_Task::Import_stGB28181(TiXmlElement* pElem, stConfig* pDst) {
  stGB28181& rec = Dest(pDst).stGB28181Info;
  if (Walk(pElem, kGB28181, rec) < 0) return -1;
  return WalkIndexed(pElem, "stGB28181SubID", kGB28181SubId, &rec, 1, Suffix::kAtLeastTwo);
}

constexpr stAttr<stServerGroup> kServerGroup[] = {
    ATTR(stServerGroup, ucFD_Enable),
    ATTR(stServerGroup, usFD_GroupNo),
    ATTR_AS(stServerGroup, uiFD_IP, StoreAddress),
    ATTR(stServerGroup, strFD_UserName),
    ATTR(stServerGroup, strFD_UserPWD),
};

int CConfig_Task::Import_stServerGroup(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kServerGroup, Dest(pDst).stServerGroupInfo);
}
