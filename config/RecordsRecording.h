// Records of recording, snapshots, export and timed recording. No endpoint queries them. Plain
// values without ownership; a field is named after its XML attribute.
#pragma once

#include <cstdint>

struct stRecord {
  uint8_t ucFD_RecordMode;
  uint8_t ucFD_SDUsage;
  uint8_t ucFD_AutoCoverEnable;
  uint8_t ucFD_AlarmRecordType;
  uint32_t uiFD_PreRecordTime;
  uint32_t uiFD_AlarmRecordTime;
  uint32_t uiFD_AlarmRecordDays;
};
static_assert(sizeof(stRecord) == 16);

struct stChnRecordItem {
  uint8_t ucRecordEnable;
  uint8_t ucHaveAudio;
  uint8_t ucSubStream;
};

struct stChnRecord {
  stChnRecordItem stChnRecordPara[8];
};
static_assert(sizeof(stChnRecord) == 24);

struct stSnapshot {
  uint8_t ucFD_SaveDays;
  uint8_t ucFD_MultiSnapEnable;
  uint32_t uiFD_Interval;
  uint8_t ucFD_SnapCount;
};
static_assert(sizeof(stSnapshot) == 12);

struct stExport {
  uint8_t ucFD_PasswdEnable;
  uint8_t ucFD_WorkMode;
  uint8_t ucFD_ExportEnable;
  uint8_t ucFD_ExportLimit;
};
static_assert(sizeof(stExport) == 4);

// The two recording periods of a day.
struct stTimingRecItem {
  uint8_t ucRT1Type;
  uint8_t ucRT2Type;
  uint32_t uiStartT1;
  uint32_t uiEndT1;
  uint32_t uiStartT2;
  uint32_t uiEndT2;
};

struct stTimingRec {
  stTimingRecItem stTimingRecDay[8];
};
static_assert(sizeof(stTimingRec) == 160);
