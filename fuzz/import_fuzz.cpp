// Hostile reply text through the parser into every importer. For every text, an importer writes
// only into its own section's record, and every text field stays terminated within its capacity,
// except the 32-byte identifiers, which may fill theirs.
#include <cstdlib>
#include <cstring>
#include <string>

#include "control/XmlText.h"
#include "tests/unit/config/SectionList.h"

namespace {

void Require(bool bHolds) {
  if (!bHolds) abort();
}

void CheckTexts(const std::vector<stField>& fields, const char* pBase) {
  for (const stField& field : fields) {
    const bool bText = field.eKind == Kind::kText || field.eKind == Kind::kDeviceNo ||
                       field.eKind == Kind::kRevision;
    if (bText) Require(memchr(pBase + field.nOffset, '\0', field.nWidth) != nullptr);
  }
}

bool AllZero(const char* pFrom, const char* pEnd) {
  static const char s_szZero[sizeof(stConfig)] = {};
  return memcmp(pFrom, s_szZero, static_cast<size_t>(pEnd - pFrom)) == 0;
}

void CheckRecord(const stSection& section, const stConfig& config) {
  const char* const pConfig = reinterpret_cast<const char*>(&config);
  const char* const pRecord = pConfig + section.nOffset;
  Require(AllZero(pConfig, pRecord));
  Require(AllZero(pRecord + section.nSize, pConfig + sizeof(config)));
  CheckTexts(section.fields, pRecord);
  for (const stGroup& group : section.groups)
    for (size_t i = 0; i < group.nItems; ++i)
      CheckTexts(group.fields, pRecord + group.nOffset + i * group.nItemSize);
}

void ImportAll(CConfig_Task& task, TiXmlElement* pElem) {
  for (const stSection& section : Sections()) {
    stConfig config;
    memset(static_cast<void*>(&config), 0, sizeof(config));
    const int nRet = section.pfnImport(task, pElem, &config);
    Require(nRet >= -1 && nRet <= 1);
    CheckRecord(section, config);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  const std::string strText(reinterpret_cast<const char*>(pData), nSize);
  TiXmlDocument doc;
  if (ParseXml(doc, strText.c_str()) != 0) return 0;
  TiXmlElement* const pRoot = doc.RootElement();
  if (pRoot == nullptr) return 0;
  // Any element may serve as a section, the root as well as those inside it.
  CConfig_Task task;
  ImportAll(task, pRoot);
  int nSections = 0;
  for (TiXmlElement* p = pRoot->FirstChildElement(); p != nullptr && nSections < 4;
       p = p->NextSiblingElement(), ++nSections)
    ImportAll(task, p);
  return 0;
}
