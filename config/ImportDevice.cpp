// Importers of the recorder's own sections, each below its attribute tables.
#include <algorithm>
#include <cstdio>

#include "config/Config_Task.h"

namespace {

int StoreDeviceNo(stBaseInfo& rec, const char* pszText) {
  const size_t nLen = strlen(pszText);
  if (nLen < 5 || nLen > 12) {
    printf("CConfig_Task::Import_stBaseInfo, invalid device id:%s.\n", pszText);
    fflush(stdout);
    return -1;
  }
  return Store<&stBaseInfo::strFD_DeviceNo>(rec, pszText);
}

}  // namespace

constexpr stAttr<stBaseInfo> kBaseInfo[] = {
    {"strFD_DeviceNo", StoreDeviceNo},    ATTR(stBaseInfo, ucFD_TimeZone),
    ATTR(stBaseInfo, ucFD_TZAdjust),      ATTR(stBaseInfo, ucFD_DstEnable),
    ATTR(stBaseInfo, ucFD_DstFromMon),    ATTR(stBaseInfo, ucFD_DstFromDay),
    ATTR(stBaseInfo, ucFD_DstToMon),      ATTR(stBaseInfo, ucFD_DstToDay),
    ATTR(stBaseInfo, ucFD_NowIsDst),      ATTR(stBaseInfo, usFD_DstAdjust),
    ATTR(stBaseInfo, ucFD_DateStyle),     ATTR(stBaseInfo, ucFD_GpsMode),
    ATTR(stBaseInfo, ucFD_GpsSTFlag),     ATTR(stBaseInfo, ucFD_DiskFormatFlag),
    ATTR(stBaseInfo, usFD_SizeOf2ndPart), ATTR(stBaseInfo, strFD_CurTime),
};

int CConfig_Task::Import_stBaseInfo(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kBaseInfo, Dest(pDst).stBaseInfoInfo);
}

constexpr stAttr<stUserSec> kUserSec[] = {
    ATTR(stUserSec, ucFD_PWEnableFlag),
    ATTR(stUserSec, strFD_NormalPasswd),
    ATTR(stUserSec, strFD_AdminPasswd),
};

constexpr stAttr<stUserItem> kUserItem[] = {
    ATTR(stUserItem, ucFD_UserStatus),
    ATTR(stUserItem, strFD_UserName),
    ATTR(stUserItem, strFD_UserPWD),
    ATTR(stUserItem, usFD_UserRoles),
};

int CConfig_Task::Import_stUserSec(TiXmlElement* pElem, stConfig* pDst) {
  stUserSec& rec = Dest(pDst).stUserSecInfo;
  if (Walk(pElem, kUserSec, rec) < 0) return -1;
  return WalkIndexed(pElem, "stCustomUser", kUserItem, rec.stCustomUser);
}

constexpr stAttr<stLockOfPassword> kLockOfPassword[] = {
    ATTR(stLockOfPassword, ucFD_ErrorCount),
    ATTR(stLockOfPassword, uiFD_LockTime),
};

int CConfig_Task::Import_stLockOfPassword(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kLockOfPassword, Dest(pDst).stLockOfPasswordInfo);
}

constexpr stAttr<stDisplay> kDisplay[] = {
    ATTR(stDisplay, ucFD_AutoEnable),   ATTR(stDisplay, ucFD_LcdTimeout),
    ATTR(stDisplay, usFD_GuiTimeout),   ATTR(stDisplay, strLanguage),
    ATTR(stDisplay, ucFD_WinMax),       ATTR(stDisplay, ucFD_WinNum),
    ATTR(stDisplay, ucFD_VideoOutMode), ATTR(stDisplay, ucFD_VideoOutRes),
};

int CConfig_Task::Import_stDisplay(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kDisplay, Dest(pDst).stDisplayInfo);
}

constexpr stAttr<stVersion> kVersion[] = {
    ATTR(stVersion, VideoCnt),    ATTR(stVersion, Model),        ATTR(stVersion, strMcuVer),
    ATTR(stVersion, strUbootVer), ATTR(stVersion, strKernelVer), ATTR(stVersion, strRootfsVer),
    ATTR(stVersion, strAppVer),   ATTR(stVersion, strDBVer),     ATTR(stVersion, strWifiVer),
};

int CConfig_Task::Import_stVersion(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kVersion, Dest(pDst).stVersionInfo);
}

namespace {

// Keeps the text between "Revision:" and the end of the line in a modem's identification text.
int StoreRevision(stSystemInfo& rec, const char* pszText) {
  static constexpr char kMark[] = "Revision:";
  memset(rec.ATI, 0, sizeof(rec.ATI));
  const char* pszMark = strstr(pszText, kMark);
  if (pszMark == nullptr) return 0;
  const char* pszFrom = pszMark + sizeof(kMark) - 1;
  const char* pszEnd = strstr(pszFrom, "\r\n");
  const size_t nLen = pszEnd != nullptr ? static_cast<size_t>(pszEnd - pszFrom) : strlen(pszFrom);
  memcpy(rec.ATI, pszFrom, std::min(nLen, sizeof(rec.ATI) - 1));
  return 0;
}

}  // namespace

constexpr stAttr<stSystemInfo> kSystemInfo[] = {
    ATTR(stSystemInfo, GpsExist),
    ATTR(stSystemInfo, GpsPos),
    ATTR(stSystemInfo, GNetExist),
    ATTR(stSystemInfo, IMEI),
    {"ATI", StoreRevision},
    ATTR(stSystemInfo, SimExist),
    ATTR(stSystemInfo, IMSI),
    ATTR(stSystemInfo, ICCID),
    ATTR(stSystemInfo, GNetSignal),
    ATTR(stSystemInfo, GNetDail),
    ATTR(stSystemInfo, WifiExist),
    ATTR(stSystemInfo, WifiMode),
    ATTR(stSystemInfo, WifiSignal),
    ATTR(stSystemInfo, WifiDail),
    ATTR(stSystemInfo, CmsStatus),
    ATTR(stSystemInfo, JTT808Status),
    ATTR(stSystemInfo, GB28181Status),
    ATTR(stSystemInfo, Disk1Exist),
    ATTR(stSystemInfo, Disk1Size),
    ATTR(stSystemInfo, Disk2Exist),
    ATTR(stSystemInfo, Disk2Size),
    ATTR(stSystemInfo, Disk3Exist),
    ATTR(stSystemInfo, Disk3Size),
    ATTR(stSystemInfo, IO),
    ATTR(stSystemInfo, VideoCnt),
    ATTR(stSystemInfo, Model),
    ATTR(stSystemInfo, McuVer),
    ATTR(stSystemInfo, BootVer),
    ATTR(stSystemInfo, KnlVer),
    ATTR(stSystemInfo, RfsVer),
    ATTR(stSystemInfo, AppVer),
    ATTR(stSystemInfo, DBVer),
    ATTR(stSystemInfo, WifiVer),
    ATTR(stSystemInfo, ACC),
    ATTR(stSystemInfo, NetStatus),
    ATTR_AS(stSystemInfo, CMS, StoreAddress),
    ATTR(stSystemInfo, DeviceNo),
};

int CConfig_Task::Import_stSystemInfo(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kSystemInfo, Dest(pDst).stSystemInfoInfo);
}
