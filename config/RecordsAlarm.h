// Records of alarms: inputs, linkage, speed, temperature, acceleration and video analysis. No
// endpoint queries them. Plain values without ownership; a field is named after its XML attribute.
#pragma once

#include <cstdint>

// One alarm input or output line.
struct stAlarmIOItem {
  uint8_t ucIOEnable;
  uint8_t ucIONumber;
  uint8_t ucIOLevel;
  uint8_t ucIOFunc;
  uint16_t usIOLast;
};
static_assert(sizeof(stAlarmIOItem) == 6);

struct stAlarm {
  uint8_t ucDiskFaulAlarm;
  uint8_t ucDiskSpaceAlarm;
  uint8_t ucVideoLostAlarm;
  uint8_t ucSOSButtonAlarm;
  float fOxygenAlarm;
  stAlarmIOItem stAlarmInIO[8];
};
static_assert(sizeof(stAlarm) == 56);

struct stAlarmLinkageEntry {
  char strLinkageName[32];
  uint8_t ucLinkageEnable;
  uint8_t ucAlarmInType;
  uint16_t usAlarmOutType;
  uint16_t usAlarmRecordCh;
  uint16_t usAlarmSendCh;
  uint16_t usAlarmSnapCh;
  uint8_t ucViewChnNo;
  uint16_t usAlarmRecordLast;
};
static_assert(sizeof(stAlarmLinkageEntry) == 46);

struct stAlarmLinkage {
  stAlarmLinkageEntry stAlarmLinkageItem[8];
  stAlarmIOItem stAlarmOutIO[8];
};
static_assert(sizeof(stAlarmLinkage) == 416);

// Speed limits and fatigue driving.
struct stSpeed {
  uint8_t ucFD_LowSpeedIsEnable;
  uint8_t ucFD_LowSpeedUnit;
  uint16_t usFD_LowSpeed;
  uint8_t ucFD_OverSpeedIsEnable;
  uint8_t ucFD_OverSpeedUnit;
  uint16_t usFD_OverSpeed;
  uint8_t ucFD_PeakingIsEnable;
  uint8_t ucFD_TimeUnit;
  uint16_t usFD_OverTime;
  uint8_t ucFD_FatigueEnable;
  uint16_t usFD_DrivingTime;
  uint16_t usFD_RestTime;
};
static_assert(sizeof(stSpeed) == 18);

// Deliberate: these temperatures are read as whole numbers although they are kept as floats.
struct stTempAlarmItem {
  uint8_t ucFD_TempType;
  uint8_t ucFD_LowTempEnable;
  float fFD_LowTemp;
  uint8_t ucFD_HighTempEnable;
  float fFD_HighTemp;
};

struct stTempAlarm {
  stTempAlarmItem stTempAlarmPara[8];
};
static_assert(sizeof(stTempAlarm) == 128);

// Acceleration sensor.
struct stGSensor {
  float fFD_X, fFD_XLimit;
  float fFD_Y, fFD_YLimit;
  float fFD_Z, fFD_ZLimit;
  uint8_t ucFD_AlarmEnable;
  float fFD_RAccel, fFD_RDecel;
  float fFD_Crash, fFD_Swerve, fFD_TrunOver;
};
static_assert(sizeof(stGSensor) == 48);

// Video analysis of one channel.
struct stVdaItem {
  uint8_t ucFD_Enable;
  uint8_t ucFD_Wday1;
  uint32_t uiStartT1, uiEndT1;
  uint8_t ucFD_Wday2;
  uint32_t uiStartT2, uiEndT2;
  uint8_t ucFD_Wday3;
  uint32_t uiStartT3, uiEndT3;
  uint8_t ucFD_Percent;
  uint32_t uiFD_Mask;
};

struct stVda {
  stVdaItem stVdaPara[8];
};
static_assert(sizeof(stVda) == 352);
