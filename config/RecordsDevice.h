// Records of the recorder itself: identity and clock, users, password lock, display, versions, live
// status. Plain values without ownership. A field is named after its XML attribute; a text field
// always keeps a terminating NUL. Numbers are stored as the device application sends them.
#pragma once

#include <cstdint>

// Identity, time zone, daylight saving, positioning and disk options.
struct stBaseInfo {
  char strFD_DeviceNo[16];  // 5 to 12 characters; an import with any other length is rejected
  uint8_t ucFD_TimeZone;
  uint8_t ucFD_TZAdjust;
  uint8_t ucFD_DstEnable;
  uint8_t ucFD_DstFromMon;
  uint8_t ucFD_DstFromDay;
  uint8_t ucFD_DstToMon;
  uint8_t ucFD_DstToDay;
  uint8_t ucFD_NowIsDst;
  uint16_t usFD_DstAdjust;
  uint8_t ucFD_DateStyle;
  uint8_t ucFD_GpsMode;
  uint8_t ucFD_GpsSTFlag;
  uint8_t ucFD_DiskFormatFlag;
  uint16_t usFD_SizeOf2ndPart;
  char strFD_CurTime[24];
};
static_assert(sizeof(stBaseInfo) == 56);

// One account of a browser user.
struct stUserItem {
  uint8_t ucFD_UserStatus;
  char strFD_UserName[16];
  char strFD_UserPWD[128];
  uint16_t usFD_UserRoles;
};
static_assert(sizeof(stUserItem) == 148);

struct stUserSec {
  uint8_t ucFD_PWEnableFlag;
  char strFD_NormalPasswd[8];
  char strFD_AdminPasswd[8];
  stUserItem stCustomUser[2];
};
static_assert(sizeof(stUserSec) == 314);

struct stLockOfPassword {
  uint8_t ucFD_ErrorCount;
  uint32_t uiFD_LockTime;  // seconds
};
static_assert(sizeof(stLockOfPassword) == 8);

struct stDisplay {
  uint8_t ucFD_AutoEnable;
  uint8_t ucFD_LcdTimeout;
  uint16_t usFD_GuiTimeout;
  char strLanguage[4];
  uint8_t ucFD_WinMax;
  uint8_t ucFD_WinNum;
  uint8_t ucFD_VideoOutMode;
  uint8_t ucFD_VideoOutRes;
};
static_assert(sizeof(stDisplay) == 12);

struct stVersion {
  uint32_t VideoCnt;  // channels
  char Model[32];
  char strMcuVer[32];
  char strUbootVer[32];
  char strKernelVer[32];
  char strRootfsVer[32];
  char strAppVer[32];
  char strDBVer[32];
  char strWifiVer[32];
};
static_assert(sizeof(stVersion) == 260);

// Live status at the time of the reply.
struct stSystemInfo {
  uint8_t GpsExist;
  char GpsPos[64];
  uint8_t GNetExist;
  char IMEI[32];
  char ATI[64];  // only the revision from the modem's identification text
  uint8_t SimExist;
  char IMSI[64];
  char ICCID[64];
  uint32_t GNetSignal;
  uint8_t GNetDail;
  uint8_t WifiExist;
  uint8_t WifiMode;
  uint32_t WifiSignal;
  uint8_t WifiDail;
  uint8_t CmsStatus;
  uint8_t JTT808Status;
  uint8_t GB28181Status;
  uint8_t Disk1Exist;
  char Disk1Size[64];
  uint8_t Disk2Exist;
  char Disk2Size[64];
  uint8_t Disk3Exist;
  char Disk3Size[64];
  char IO[32];
  uint32_t VideoCnt;
  char Model[32];
  char McuVer[32], BootVer[32], KnlVer[32], RfsVer[32], AppVer[32], DBVer[32], WifiVer[32];
  uint8_t ACC;
  uint8_t NetStatus;
  uint32_t CMS;  // address, network byte order
  char DeviceNo[16];
};
static_assert(sizeof(stSystemInfo) == 820);
