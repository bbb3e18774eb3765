// Every section, every attribute and its width, written independently of the product's tables, so
// that a forgotten, misspelt or misplaced attribute is noticed. Immutable after first use.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "config/Config_Task.h"

// How an attribute's text is stored in its field.
enum class Kind {
  kNumber,
  kText,
  kIdentifier,
  kFloat,
  kWholeFloat,
  kTimeOfDay,
  kAddress,
  kRoiCorner,
  kRoiSize,
  kHexBytes,
  kDeviceNo,
  kRevision
};

struct stField {
  std::string strName;
  Kind eKind;
  size_t nOffset;  // in the section's record or in the group's item
  size_t nWidth;
};

// The items under one container child.
struct stGroup {
  std::string strContainer;
  size_t nItems;
  size_t nOffset;  // of item 0, in the section's record
  size_t nItemSize;
  bool bLongSuffix;  // a name may continue after the digit
  std::vector<stField> fields;
};

struct stSection {
  std::string strName;
  int (*pfnImport)(CConfig_Task& task, TiXmlElement* pElem, stConfig* pDst);
  size_t nOffset;  // of the record, in stConfig
  size_t nSize;
  size_t nTiled;  // the sum of the listed attributes
  std::vector<stField> fields;
  std::vector<stGroup> groups;
};

const std::vector<stSection>& Sections();
