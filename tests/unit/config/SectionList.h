// Every section, every attribute and its width, written out once more and apart from the product's
// tables, so that a forgotten, misspelt or misplaced attribute shows. Immutable after first use.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "config/Config_Task.h"

// How an attribute's text becomes its field.
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
  bool bLongSuffix;  // a name may go on behind the digit
  std::vector<stField> fields;
};

struct stSection {
  std::string strName;
  int (*pfnImport)(CConfig_Task& task, TiXmlElement* pElem, stConfig* pDst);
  size_t nOffset;  // of the record, in stConfig
  size_t nSize;
  size_t nTiled;  // what the listed attributes add up to
  std::vector<stField> fields;
  std::vector<stGroup> groups;
};

const std::vector<stSection>& Sections();
