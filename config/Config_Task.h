// CConfig_Task turns one section element of a device reply into its fixed-size record. Create one
// on the stack for each query: construct, call one importer, copy the wanted record out. No value
// is kept between queries. An object belongs to one thread.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <mutex>

#include "config/AttrTable.h"
#include "config/Records.h"

class StrDict;

class CConfig_Task {
 public:
  // Zeroes the record. Never fails: parts for which memory ran out are absent.
  CConfig_Task();
  // Releases what the task owns.
  virtual ~CConfig_Task();
  CConfig_Task(const CConfig_Task&) = delete;
  CConfig_Task& operator=(const CConfig_Task&) = delete;

  // The task's own record, all zero until an importer without a destination has filled it.
  const stConfig& Record() const { return m_stConfig; }

  // Every importer reads the attributes of pElem (and its item elements) into its section's member
  // of *pDst, or of the task's own record when pDst is null. A missing attribute leaves its field
  // unchanged, so pass a zeroed record. Neither pointer is kept. Returns 0; -1 when the section is
  // rejected (no element, a malformed item name, a bad strFD_DeviceNo): the record is then partly
  // filled and must not be used.

  // Rejects a strFD_DeviceNo that is not 5 to 12 characters long and says so on standard output.
  int Import_stBaseInfo(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stUserSec(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stLockOfPassword(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stDisplay(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stVersion(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stSystemInfo(TiXmlElement* pElem, stConfig* pDst = nullptr);

  int Import_stNetWorkMode(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stMobileGNet(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stWifi(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stWifiAp(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stLocalEth0(TiXmlElement* pElem, stConfig* pDst = nullptr);
  // nSlot 1 to 4 selects that server slot, any other value slot 0.
  int Import_stCMS(TiXmlElement* pElem, int nSlot, stConfig* pDst = nullptr);
  int Import_stGB28181(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stServerGroup(TiXmlElement* pElem, stConfig* pDst = nullptr);

  int Import_stVideoMirror(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stMainStream(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stSubStream(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stVideoCrop(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stOverlay(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stChnOverlay(TiXmlElement* pElem, stConfig* pDst = nullptr);

  int Import_stRecord(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stChnRecord(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stSnapshot(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stExport(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stTimingRec(TiXmlElement* pElem, stConfig* pDst = nullptr);

  int Import_stAlarm(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stAlarmLinkage(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stSpeed(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stTempAlarm(TiXmlElement* pElem, stConfig* pDst = nullptr);
  // Returns 1 instead of 0 when ReCalibrate is among the attributes.
  int Import_stGSensor(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stVda(TiXmlElement* pElem, stConfig* pDst = nullptr);

  // nCopy 1 selects the second copy of the record, any other value the first.
  int Import_stVehicle(TiXmlElement* pElem, int nCopy, stConfig* pDst = nullptr);
  int Import_stSerial(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stPtz(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stPower(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stReserve(TiXmlElement* pElem, stConfig* pDst = nullptr);
  int Import_stIpc(TiXmlElement* pElem, stConfig* pDst = nullptr);

 private:
  struct CRelease {
    void operator()(void* pBlock) const { free(pBlock); }
    void operator()(StrDict* pDict) const;
  };
  struct stWorkEntry {
    uint32_t auiValue[3];
  };
  struct stWorkList {
    uint32_t uiCount;
    uint32_t uiCapacity;
    stWorkEntry aEntry[4096];
  };
  using WorkList = std::unique_ptr<stWorkList, CRelease>;

  // Present in every task and never written to; a part is absent when memory ran out for it.
  struct stParts {
    stParts();
    WorkList apWork[2];
    std::unique_ptr<StrDict, CRelease> pDict;
  };
  struct CKeep {
    void operator()(stParts* pParts) const;
  };
  using Parts = std::unique_ptr<stParts, CKeep>;

  static Parts TakeParts();
  stConfig& Dest(stConfig* pDst) { return pDst != nullptr ? *pDst : m_stConfig; }

  stConfig m_stConfig{};
  std::mutex m_xMutex;
  std::condition_variable m_xCond;
  std::unique_ptr<void, CRelease> m_apHandle[3];  // freed with the task if set
  Parts m_pParts;
};
