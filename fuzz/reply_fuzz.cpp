// Hostile device replies through the parser and the operations on messages. For every text, no
// document nests deeper than the limit, the operations agree with each other, and their results
// belong to the document or fit the caller's buffer. In the input a part between two 0x02 is
// repeated many times, so that the fuzzer finds deep nesting as easily as any other mistake.
#include <algorithm>
#include <cstring>
#include <string>

#include "control/VariCfgSec.h"
#include "control/XmlText.h"
#include "fuzz/Input.h"

namespace {

constexpr char kRepeatMark = '\x02';
constexpr size_t kLongestRepeated = 128;

std::string Expand(std::string_view input) {
  std::string strText;
  bool bRepeated = false;
  for (const std::string_view part : Split(input, kRepeatMark)) {
    const int nTimes = bRepeated && part.size() <= kLongestRepeated ? kXmlDepthMax + 1 : 1;
    for (int i = 0; i < nTimes; ++i) strText += part;
    bRepeated = !bRepeated;
  }
  return strText;
}

// Walks the elements without recursion.
int DepthOf(const TiXmlDocument& doc) {
  int nDeepest = 0;
  int nDepth = 1;
  const TiXmlNode* pNode = doc.FirstChild();
  while (pNode != nullptr) {
    if (pNode->ToElement() != nullptr) nDeepest = std::max(nDeepest, nDepth);
    if (pNode->FirstChild() != nullptr) {
      pNode = pNode->FirstChild();
      ++nDepth;
      continue;
    }
    while (pNode != nullptr && pNode->NextSibling() == nullptr) {
      pNode = pNode->Parent() == &doc ? nullptr : pNode->Parent();
      --nDepth;
    }
    if (pNode != nullptr) pNode = pNode->NextSibling();
  }
  return nDeepest;
}

void CheckParser(const char* pszText) {
  TiXmlDocument doc;
  if (ParseXml(doc, pszText) == 0) {
    Require(DepthOf(doc) <= kXmlDepthMax);
  } else {
    Require(doc.FirstChild() == nullptr);
  }
}

void CheckSection(const char* pszText, const TiXmlElement* pRoot) {
  TiXmlDocument doc;
  TiXmlElement* pSection = nullptr;
  if (GetParaSection(pszText, doc, pSection) != 0) {
    Require(pSection == nullptr && (pRoot == nullptr || pRoot->FirstChildElement() == nullptr));
    return;
  }
  Require(pRoot != nullptr && pSection->GetDocument() == &doc);
  Require(pSection->Parent()->ValueStr() == "VariCfgSec");
  Require(pSection->ValueStr() == pRoot->FirstChildElement()->ValueStr());
}

// No capacity lets a write go past it.
void CheckAttr(const char* pszText, const TiXmlElement* pRoot, const char* pszName) {
  constexpr char kUntouched = '\x5A';
  for (const size_t nCapacity : {1U, 2U, 7U, 512U}) {
    std::string strRoom(nCapacity + 1, kUntouched);
    const int nRet = GetParaAttr(pszText, pszName, strRoom.data(), nCapacity);
    const char* const pszValue = pRoot != nullptr ? pRoot->Attribute(pszName) : nullptr;
    Require((nRet == 0) == (pszValue != nullptr) && strRoom[nCapacity] == kUntouched);
    if (pszValue == nullptr) {
      Require(strRoom == std::string(nCapacity + 1, kUntouched));
    } else {
      const size_t nKept = std::min(strlen(pszValue), nCapacity - 1);
      Require(strRoom[nKept] == '\0' && memcmp(strRoom.data(), pszValue, nKept) == 0);
    }
  }
}

void CheckCmdType(const char* pszText, const TiXmlElement* pRoot) {
  constexpr int kUntouched = 77;
  int nCode = kUntouched;
  const int nRet = GetParaCmdType(pszText, nCode);
  Require(nRet == 0 ? pRoot != nullptr && nCode >= 0 && nCode <= kCmdUnknown : nCode == kUntouched);
  const TiXmlAttribute* const pSecond =
      pRoot != nullptr ? pRoot->FirstAttribute()->Next() : nullptr;
  const bool bReply = pSecond != nullptr && strcmp(pSecond->Name(), "Result") == 0;
  Require((nRet == 0) == (pRoot != nullptr && !bReply));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  SilenceTraces();
  const auto pCopy = ExactCopy(Expand(AsText(pData, nSize)), true);
  const char* const pszText = pCopy.get();
  CheckParser(pszText);
  TiXmlDocument doc;
  TiXmlElement* pRoot = nullptr;
  const int nMessage = CheckMessage(pszText, doc, pRoot);
  Require((nMessage == 0) == (pRoot != nullptr));
  // A message that nests too deeply may still have a valid root.
  TiXmlDocument whole;
  Require(CheckRoot(pszText) == nMessage || ParseXml(whole, pszText) != 0);
  Require(pRoot == nullptr || strcmp(pRoot->FirstAttribute()->Name(), "Action") == 0);
  CheckSection(pszText, pRoot);
  for (const char* pszName : {"Action", "Result", "a"}) CheckAttr(pszText, pRoot, pszName);
  CheckCmdType(pszText, pRoot);
  return 0;
}
