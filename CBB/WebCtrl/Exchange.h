// The exchanges with the device application that the endpoints share: what a query is (data) and
// how it runs; and a set, from its socket to the restart.
#pragma once

#include <tinyxml.h>

#include <cstdio>
#include <cstring>

#include "CBB/Util/Trace.h"
#include "CBB/WebCtrl/WebCtrl.h"
#include "config/Config_Task.h"
#include "control/VariCfgSec.h"

#define QUERY(section) "<VariCfgSec Action=\"DEVICE_QUERY\">" section "</VariCfgSec>"
#define SET(section) "<VariCfgSec Action=\"DEVICE_SET\">" section "</VariCfgSec>"

constexpr int kMaxQueryReply = 2048;

// One query: the request text; the importer, which fills the record and returns 0, or leaves it
// unchanged; the longest reply accepted (at most kMaxQueryReply bytes; it arrives in the request's
// buffer); and the prefix for a trace of the reply's text (null: no such trace).
template <class R>
struct stQuery {
  const char* pszRequest;
  int (*pfnImport)(TiXmlElement* pSection, R& rec);
  int nCapacity = kMaxQueryReply;
  const char* pszReplyTrace = nullptr;
};

// Imports a section with the importer pfnImport and copies its member pRecord out on success.
template <auto pfnImport, auto pRecord>
int ImportRecord(TiXmlElement* pSection, typename MemberOf<pRecord>::Field& rec) {
  CConfig_Task task;
  const int nRet = (task.*pfnImport)(pSection, nullptr);
  if (nRet == 0) rec = task.Record().*pRecord;
  return nRet;
}

// The import of a section into its record: importer and member cannot drift apart.
#define IMPORT(section) ImportRecord<&CConfig_Task::Import_##section, &stConfig::section##Info>

// One set. It lives as long as its sender, which sends once, or again when the message was not
// accepted. The socket to the device closes last, after the restart.
class CSetExchange {
 public:
  explicit CSetExchange(CWebCtrl& service);

  // Formats a message of any length, sends it and waits for the device's Result. An accepted set
  // restarts the service before this returns. Returns 0 when there was a Result of any value,
  // otherwise the transaction's code.
  int Send(const char* pszFormat, ...) __attribute__((format(printf, 2, 3)));
  // The same for nLen bytes sent unchanged, with a time-out in seconds.
  int SendText(const char* pszMsg, int nLen, int nTimeoutSec);

  // Whether the last message was accepted: Result 0.
  bool IsAccepted() const { return m_bAccepted; }

 private:
  CWebCtrl& m_service;
  CUdpCtrlSocket m_sock;
  bool m_bAccepted = false;
};

template <class R>
int CWebCtrl::Query(const stQuery<R>& query, R& rec) {
  char szText[kMaxQueryReply + 1] = {};
  strncpy(szText, query.pszRequest, kMaxQueryReply);
  int nLen = query.nCapacity;
  if (GetParaInfoByCmd(szText, szText, nLen) != 0) return -1;
  if (query.pszReplyTrace != nullptr) printf("%s%s.\n", query.pszReplyTrace, szText);
  TiXmlDocument doc;
  TiXmlElement* pSection = nullptr;
  if (GetParaSection(szText, doc, pSection) != 0) return -1;
  return query.pfnImport(pSection, rec);
}

template <class R>
int CWebCtrl::Ask(const stQuery<R>& query, R& rec, const char* pszFun) {
  TraceFun(pszFun);
  const int nRet = Query(query, rec);
  TraceFun(pszFun);
  return nRet;
}
