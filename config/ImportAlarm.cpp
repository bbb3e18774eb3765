// Importers of the alarm sections, each below its attribute tables.
#include "config/Config_Task.h"

constexpr stAttr<stAlarm> kAlarm[] = {
    ATTR(stAlarm, ucDiskFaulAlarm),  ATTR(stAlarm, ucDiskSpaceAlarm),
    ATTR(stAlarm, ucVideoLostAlarm), ATTR(stAlarm, ucSOSButtonAlarm),
    ATTR(stAlarm, fOxygenAlarm),
};

constexpr stAttr<stAlarmIOItem> kAlarmIOItem[] = {
    ATTR(stAlarmIOItem, ucIOEnable), ATTR(stAlarmIOItem, ucIONumber),
    ATTR(stAlarmIOItem, ucIOLevel),  ATTR(stAlarmIOItem, ucIOFunc),
    ATTR(stAlarmIOItem, usIOLast),
};

int CConfig_Task::Import_stAlarm(TiXmlElement* pElem, stConfig* pDst) {
  stAlarm& rec = Dest(pDst).stAlarmInfo;
  if (Walk(pElem, kAlarm, rec) < 0) return -1;
  return WalkIndexed(pElem, "stAlarmInIO", kAlarmIOItem, rec.stAlarmInIO);
}

constexpr stAttr<stAlarmLinkageEntry> kAlarmLinkageEntry[] = {
    ATTR(stAlarmLinkageEntry, strLinkageName),    ATTR(stAlarmLinkageEntry, ucLinkageEnable),
    ATTR(stAlarmLinkageEntry, ucAlarmInType),     ATTR(stAlarmLinkageEntry, usAlarmOutType),
    ATTR(stAlarmLinkageEntry, usAlarmRecordCh),   ATTR(stAlarmLinkageEntry, usAlarmSendCh),
    ATTR(stAlarmLinkageEntry, usAlarmSnapCh),     ATTR(stAlarmLinkageEntry, ucViewChnNo),
    ATTR(stAlarmLinkageEntry, usAlarmRecordLast),
};

int CConfig_Task::Import_stAlarmLinkage(TiXmlElement* pElem, stConfig* pDst) {
  stAlarmLinkage& rec = Dest(pDst).stAlarmLinkageInfo;
  const int nRet =
      WalkItems(pElem, "stAlarmLinkageItem", kAlarmLinkageEntry, rec.stAlarmLinkageItem);
  if (nRet != 0) return nRet < 0 ? -1 : 0;
  return WalkIndexed(pElem, "stAlarmOutIO", kAlarmIOItem, rec.stAlarmOutIO);
}

constexpr stAttr<stSpeed> kSpeed[] = {
    ATTR(stSpeed, ucFD_LowSpeedIsEnable), ATTR(stSpeed, ucFD_LowSpeedUnit),
    ATTR(stSpeed, usFD_LowSpeed),         ATTR(stSpeed, ucFD_OverSpeedIsEnable),
    ATTR(stSpeed, ucFD_OverSpeedUnit),    ATTR(stSpeed, usFD_OverSpeed),
    ATTR(stSpeed, ucFD_PeakingIsEnable),  ATTR(stSpeed, ucFD_TimeUnit),
    ATTR(stSpeed, usFD_OverTime),         ATTR(stSpeed, ucFD_FatigueEnable),
    ATTR(stSpeed, usFD_DrivingTime),      ATTR(stSpeed, usFD_RestTime),
};

int CConfig_Task::Import_stSpeed(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kSpeed, Dest(pDst).stSpeedInfo);
}

namespace {

// Deliberate: a temperature is read as a whole number although it is kept as a float.
template <auto M>
int StoreWholeDegrees(stTempAlarmItem& rec, const char* pszText) {
  rec.*M = static_cast<float>(TextToInt(pszText));
  return 0;
}

}  // namespace

constexpr stAttr<stTempAlarmItem> kTempAlarmItem[] = {
    ATTR(stTempAlarmItem, ucFD_TempType),
    ATTR(stTempAlarmItem, ucFD_LowTempEnable),
    ATTR_AS(stTempAlarmItem, fFD_LowTemp, StoreWholeDegrees),
    ATTR(stTempAlarmItem, ucFD_HighTempEnable),
    ATTR_AS(stTempAlarmItem, fFD_HighTemp, StoreWholeDegrees),
};

int CConfig_Task::Import_stTempAlarm(TiXmlElement* pElem, stConfig* pDst) {
  return WalkIndexed(pElem, "stTempAlarmPara", kTempAlarmItem,
                     Dest(pDst).stTempAlarmInfo.stTempAlarmPara);
}

namespace {

// Stores nothing: the attribute's presence alone makes the import return 1.
int AskRecalibration(stGSensor&, const char*) { return 1; }

}  // namespace

constexpr stAttr<stGSensor> kGSensor[] = {
    ATTR(stGSensor, fFD_X),
    ATTR(stGSensor, fFD_XLimit),
    ATTR(stGSensor, fFD_Y),
    ATTR(stGSensor, fFD_YLimit),
    ATTR(stGSensor, fFD_Z),
    ATTR(stGSensor, fFD_ZLimit),
    ATTR(stGSensor, ucFD_AlarmEnable),
    ATTR(stGSensor, fFD_RAccel),
    ATTR(stGSensor, fFD_RDecel),
    ATTR(stGSensor, fFD_Crash),
    ATTR(stGSensor, fFD_Swerve),
    ATTR(stGSensor, fFD_TrunOver),
    {"ReCalibrate", AskRecalibration},
};

int CConfig_Task::Import_stGSensor(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kGSensor, Dest(pDst).stGSensorInfo);
}

constexpr stAttr<stVdaItem> kVdaItem[] = {
    ATTR(stVdaItem, ucFD_Enable), ATTR(stVdaItem, ucFD_Wday1),   ATTR(stVdaItem, uiStartT1),
    ATTR(stVdaItem, uiEndT1),     ATTR(stVdaItem, ucFD_Wday2),   ATTR(stVdaItem, uiStartT2),
    ATTR(stVdaItem, uiEndT2),     ATTR(stVdaItem, ucFD_Wday3),   ATTR(stVdaItem, uiStartT3),
    ATTR(stVdaItem, uiEndT3),     ATTR(stVdaItem, ucFD_Percent), ATTR(stVdaItem, uiFD_Mask),
};

int CConfig_Task::Import_stVda(TiXmlElement* pElem, stConfig* pDst) {
  return WalkIndexed(pElem, "stVdaPara", kVdaItem, Dest(pDst).stVdaInfo.stVdaPara);
}
