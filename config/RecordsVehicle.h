// Records of the vehicle and of the devices wired to the recorder: registration, serial ports,
// pan-tilt heads, power, reserved bytes, network cameras. No endpoint queries them. Plain values
// without ownership; a field is named after its XML attribute.
#pragma once

#include <cstdint>

// Vehicle and registration.
struct stVehicle {
  char strFD_CompanyName[32], strFD_LicensePlate[32], strFD_DriverName[32], strFD_DeviceNum[32];
  char strFD_Phonenumber[32], strFD_ServiceTel[32], strFD_ProvincialId[32], strFD_CityDomainId[32];
  char strFD_CarColors[32], strFD_Authentication[32], strFD_TerminalType[32], strFD_TerminalID[32];
  char strFD_FacturerID[32], strFD_CarVIN[32], strFD_CarType[32], strFD_DrivingLicense[32];
};
static_assert(sizeof(stVehicle) == 512);

struct stSerialItem {
  uint8_t ucFD_DataMode;
  uint32_t uiBaudRate;
  uint8_t ucDataBit;
  uint8_t ucParity;
  uint8_t ucStopBit;
  uint8_t ucCount;
};

struct stSerial {
  stSerialItem stSerialChnPara[8];
};
static_assert(sizeof(stSerial) == 96);

struct stPtzItem {
  uint16_t usPtzAddress;
  uint8_t ucPtzProtocol;
  uint8_t ucSerialIndex;
  uint8_t ucAutoStoped;
};

struct stPtz {
  stPtzItem stChnPtzPara[8];
};
static_assert(sizeof(stPtz) == 48);

struct stPower {
  uint8_t ucPowerMode;
  uint8_t ucPOnDelayEnable;
  uint16_t usPOffDelayTime;
  uint32_t uiTimingPOnTime;
  uint32_t uiTimingPOffTime;
  uint32_t uiAccOffStopRecCh;
};
static_assert(sizeof(stPower) == 16);

struct stReserve {
  uint8_t ucReserveData[128];  // from hexadecimal text
};
static_assert(sizeof(stReserve) == 128);

struct stIpcItem {
  char strFD_User[32];
  char strFD_Pass[32];
  uint32_t uiFD_IP;  // address, as in RecordsNetwork.h
  uint8_t ucFD_Valid;
};

// Weekdays and time of day at which the cameras work.
struct stTPeriodItem {
  char strFD_Wday[32];
  uint32_t strFD_StartT;  // seconds since midnight, sent as "hours:minutes:seconds"
  uint32_t strFD_EndT;
};

// Network cameras.
struct stIpc {
  uint8_t ucFD_Enable;
  uint8_t ucFD_IPCNum;
  uint16_t usFD_FuncMode;
  uint8_t ucFD_PureNVR;
  stIpcItem stChnIpc[8];
  stTPeriodItem stFunTPeriod[8];
};
static_assert(sizeof(stIpc) == 904);
