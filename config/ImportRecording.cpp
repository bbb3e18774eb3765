// Importers of recording, snapshots and export, each below its attribute tables.
#include "config/Config_Task.h"

constexpr stAttr<stRecord> kRecord[] = {
    ATTR(stRecord, ucFD_RecordMode),      ATTR(stRecord, ucFD_SDUsage),
    ATTR(stRecord, ucFD_AutoCoverEnable), ATTR(stRecord, ucFD_AlarmRecordType),
    ATTR(stRecord, uiFD_PreRecordTime),   ATTR(stRecord, uiFD_AlarmRecordTime),
    ATTR(stRecord, uiFD_AlarmRecordDays),
};

int CConfig_Task::Import_stRecord(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kRecord, Dest(pDst).stRecordInfo);
}

constexpr stAttr<stChnRecordItem> kChnRecordItem[] = {
    ATTR(stChnRecordItem, ucRecordEnable),
    ATTR(stChnRecordItem, ucHaveAudio),
    ATTR(stChnRecordItem, ucSubStream),
};

int CConfig_Task::Import_stChnRecord(TiXmlElement* pElem, stConfig* pDst) {
  return WalkIndexed(pElem, "stChnRecordPara", kChnRecordItem,
                     Dest(pDst).stChnRecordInfo.stChnRecordPara);
}

constexpr stAttr<stSnapshot> kSnapshot[] = {
    ATTR(stSnapshot, ucFD_SaveDays),
    ATTR(stSnapshot, ucFD_MultiSnapEnable),
    ATTR(stSnapshot, uiFD_Interval),
    ATTR(stSnapshot, ucFD_SnapCount),
};

int CConfig_Task::Import_stSnapshot(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kSnapshot, Dest(pDst).stSnapshotInfo);
}

constexpr stAttr<stExport> kExport[] = {
    ATTR(stExport, ucFD_PasswdEnable),
    ATTR(stExport, ucFD_WorkMode),
    ATTR(stExport, ucFD_ExportEnable),
    ATTR(stExport, ucFD_ExportLimit),
};

int CConfig_Task::Import_stExport(TiXmlElement* pElem, stConfig* pDst) {
  return Walk(pElem, kExport, Dest(pDst).stExportInfo);
}

constexpr stAttr<stTimingRecItem> kTimingRecItem[] = {
    ATTR(stTimingRecItem, ucRT1Type), ATTR(stTimingRecItem, ucRT2Type),
    ATTR(stTimingRecItem, uiStartT1), ATTR(stTimingRecItem, uiEndT1),
    ATTR(stTimingRecItem, uiStartT2), ATTR(stTimingRecItem, uiEndT2),
};

int CConfig_Task::Import_stTimingRec(TiXmlElement* pElem, stConfig* pDst) {
  return WalkIndexed(pElem, "stTimingRecDay", kTimingRecItem,
                     Dest(pDst).stTimingRecInfo.stTimingRecDay);
}
