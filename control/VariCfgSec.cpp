#include "control/VariCfgSec.h"

#include <cassert>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "CBB/Util/OtherFun.h"
#include "CBB/Util/Print.h"
#include "control/XmlText.h"

namespace {

constexpr char kRoot[] = "VariCfgSec";
constexpr char kAction[] = "Action";
constexpr char kResult[] = "Result";
constexpr uint8_t kBroadcast = 1;
constexpr size_t kResultSize = 512;

// The line numbers in the traces of a query.
constexpr char kLineQueryStart[] = "461";
constexpr char kLineQueryDone[] = "477";

// Indexed by CParaCmd.
constexpr const char* kActions[] = {"BROAD_SEARCH", "DEVICE_QUERY", "DEVICE_SET", "DEVICE_REBOOT",
                                    "DEVICE_FORMAT"};
static_assert(sizeof(kActions) / sizeof(kActions[0]) == kCmdUnknown, "one row per known command");

int ActionCode(const char* pszAction) {
  int nCode = 0;
  while (nCode < kCmdUnknown && strcmp(kActions[nCode], pszAction) != 0) ++nCode;
  return nCode;
}

// Checks a parsed message; returns what CheckMessage does.
int FindRoot(TiXmlDocument& doc, TiXmlElement*& pRoot) {
  TiXmlElement* const pFound = doc.FirstChildElement(kRoot);
  if (pFound == nullptr) return -2;
  // Deliberate: the lines name the classifier, whichever function makes the check.
  const TiXmlAttribute* const pAttr = pFound->FirstAttribute();
  if (pAttr == nullptr) {
    printf("CWebCtrl::GetParaCmdType, get first pAttribute failed.\n");
    return -1;
  }
  if (strcmp(pAttr->Name(), kAction) != 0) {
    printf("CWebCtrl::GetParaCmdType, first attribute name is not Action.\n");
    return -1;
  }
  pRoot = pFound;
  return 0;
}

}  // namespace

int GetParaInfoByCmd(const char* pszDevIp, uint16_t usDevPort, const char* pszRequest, char* pReply,
                     int& nCapacity) {
  Print({"FUN:", __func__, ", LINE:", kLineQueryStart, ", dst.ip:", pszDevIp,
         ", dst:port:", std::to_string(usDevPort), ".\n"});
  CUdpCtrlSocket sock(pszDevIp, usDevPort, kLocalPort, kBroadcast, kInterface);
  if (const int nRet = sock.SendDataToHost(pszRequest, static_cast<int>(strlen(pszRequest))))
    return nRet;
  if (sock.RecvDataFromHost(pReply, nCapacity, kDeviceTimeoutSec)) return -1;
  // The rest of a longer request may follow the reply in the same buffer.
  pReply[nCapacity] = '\0';
  Print({"FUN:", __func__, ", LINE:", kLineQueryDone, ".\n"});
  return 0;
}

int SetParaInfoByCmd(CUdpCtrlSocket& sock, const char* pszMsg, int nLen, int& nResult,
                     int nTimeoutSec) {
  if (const int nRet = sock.SendDataToHost(pszMsg, nLen)) return nRet;
  // On the heap: the thread's stack is only 128 KiB.
  const std::unique_ptr<char[]> pReply(new (std::nothrow) char[kReplyMax + 1]());
  if (pReply == nullptr) return -1;
  int nReplyLen = kReplyMax;
  if (sock.RecvDataFromHost(pReply.get(), nReplyLen, nTimeoutSec)) return -1;
  char szResult[kResultSize] = "";
  if (GetParaAttr(pReply.get(), kResult, szResult, sizeof(szResult))) return -1;
  nResult = TextToInt(szResult);
  return 0;
}

int CheckMessage(const char* pszText, TiXmlDocument& doc, TiXmlElement*& pRoot) {
  return ParseXml(doc, pszText) ? -2 : FindRoot(doc, pRoot);
}

int CheckRoot(const char* pszText) {
  const std::string strTag(pszText, RootTagLength(pszText));
  TiXmlDocument doc;
  TiXmlElement* pRoot = nullptr;
  const int nRet = CheckMessage(strTag.c_str(), doc, pRoot);
  if (nRet != -2) return nRet;
  if (ParseXml(doc, pszText)) ParseXml(doc, OutermostXml(pszText).c_str());
  return FindRoot(doc, pRoot);
}

int GetParaSection(const char* pszReply, TiXmlDocument& doc, TiXmlElement*& pSection) {
  TiXmlElement* pRoot = nullptr;
  if (CheckMessage(pszReply, doc, pRoot)) return -1;
  pSection = pRoot->FirstChildElement();
  return pSection != nullptr ? 0 : -1;
}

int GetParaAttr(const char* pszReply, const char* pszName, char* pszValue, size_t nCapacity) {
  assert(nCapacity > 0);
  TiXmlDocument doc;
  TiXmlElement* pRoot = nullptr;
  if (CheckMessage(pszReply, doc, pRoot)) return -1;
  const char* const pszFound = pRoot->Attribute(pszName);
  if (pszFound == nullptr) return -1;
  snprintf(pszValue, nCapacity, "%s", pszFound);
  return 0;
}

int GetParaCmdType(const char* pszText, int& nCode) {
  printf("----------------------CWebCtrl::GetParaCmdType, data:%s.\n", pszText);
  TiXmlDocument doc;
  TiXmlElement* pRoot = nullptr;
  const int nRet = CheckMessage(pszText, doc, pRoot);
  if (nRet == -2)
    printf("CWebCtrl::GetParaCmdType, xmlDoc.FirstChildElement[VariCfgSec] failed.\n");
  if (nRet) return -1;
  const TiXmlAttribute* const pAction = pRoot->FirstAttribute();
  const TiXmlAttribute* const pSecond = pAction->Next();
  if (pSecond != nullptr && !strcmp(pSecond->Name(), kResult)) {
    printf("CWebCtrl::GetParaCmdType, is resp msg, do't handle.\n");
    return -1;
  }
  nCode = ActionCode(pAction->Value());
  printf("CWebCtrl::GetParaCmdType, support cmd:%s.\n", pAction->Value());
  return 0;
}
