// Records of the recorder's network side: modes, mobile network, Wi-Fi, wired address, platform
// servers. Plain values without ownership. A field is named after its XML attribute; a text field
// always keeps a terminating NUL, except the GB28181 identifiers. Addresses are in network byte
// order when they came as dotted text, otherwise they are the number that was sent.
#pragma once

#include <cstdint>

struct stNetWorkMode {
  uint8_t ucFD_NetType;
  uint8_t ucFD_GNAuthMode;
  uint8_t ucFD_StreamType;
  uint8_t ucFD_GNEnableMode;
  uint16_t usFD_ExtFunBitFlag;
  uint8_t ucFD_EnableHR808;
  uint8_t ucFD_EnableJSIASS;
  uint16_t usFD_GPSInterval;
};
static_assert(sizeof(stNetWorkMode) == 10);

struct stMobileGNet {
  uint8_t ucFD_NetType;
  char strFD_Apn[32];
  char strFD_PhoneNo[24];
  char strFD_UserName[36];
  char strFD_UserPasswd[36];
};
static_assert(sizeof(stMobileGNet) == 129);

// Station settings with the working mode.
struct stWifi {
  uint8_t ucFD_WorkMode;
  char strFD_SSID[32];
  char strFD_Passwd[32];
  uint8_t ucFD_AuthMode;
  uint8_t ucFD_CryptType;
  uint8_t ucFD_DhcpEnableFlag;
  uint32_t uiFD_IP;
  uint32_t uiFD_GateWay;
  uint32_t uiFD_NetMask;
  uint32_t uiFD_DNS;
};
static_assert(sizeof(stWifi) == 84);

// Access-point settings.
struct stWifiAp {
  char strFD_SSID[32];
  char strFD_Passwd[32];
  uint8_t ucFD_AuthMode;
  uint8_t ucFD_CryptType;
  uint8_t ucFD_DhcpEnableFlag;
};
static_assert(sizeof(stWifiAp) == 67);

struct stLocalEth0 {
  uint8_t ucFD_DhcpEnableFlag;
  uint32_t uiFD_LocalIp;
  uint32_t uiFD_NetMask;
  uint32_t uiFD_GateWay;
  char strFD_Mac[24];
};
static_assert(sizeof(stLocalEth0) == 40);

// One platform server slot.
struct stCMS {
  uint8_t ucFD_AddressType;  // 0: uiFD_IP is used, otherwise strFD_Domain
  uint32_t uiFD_IP;
  char strFD_Domain[64];
  uint16_t usFD_Port;
};
static_assert(sizeof(stCMS) == 76);

// Client of the GB/T 28181 platform. ucFD_Enable holds flags: bit 0 enabled, bit 7 stream type.
struct stGB28181 {
  uint8_t ucFD_Enable;
  char strFD_Manufacturer[32];
  char strFD_ModelName[32];
  char strFD_ServerIp[32];
  uint16_t usFD_ServerPort;
  char strFD_ServerID[32];
  char strFD_DeviceId[32];
  uint16_t usFD_DevicePort;
  char strFD_DeviceUser[32];
  char strFD_DevicePass[32];
  uint8_t ucFD_WebSEnable;
  char strFD_WebSAddr[256];
  // Sub-device identifiers. One that fills all 32 bytes carries no NUL: print with "%.32s".
  char strSubId[10][32];
  char strFD_AudioInId[1][32];

  // The identifiers of sub-device k (0 to 7), 32 bytes inside the record, never null.
  // Deliberate: the lists share one storage, so AlarmInId(k) and LensId(k + 2) are the same bytes.
  char* LensId(int k) { return strSubId[k]; }
  const char* LensId(int k) const { return strSubId[k]; }
  char* AlarmInId(int k) { return strSubId[k + 2]; }
  const char* AlarmInId(int k) const { return strSubId[k + 2]; }
};
static_assert(sizeof(stGB28181) == 840);

// The second group of platform servers; the service does not query it.
struct stServerGroup {
  uint8_t ucFD_Enable;
  uint16_t usFD_GroupNo;
  uint32_t uiFD_IP;
  char strFD_UserName[32];
  char strFD_UserPWD[32];
};
static_assert(sizeof(stServerGroup) == 72);
