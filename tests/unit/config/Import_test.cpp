// What holds for every section and its items, for the whole list in SectionList.
#include <gtest/gtest.h>

#include <cctype>

#include "tests/unit/config/SectionImport.h"

namespace {

std::string Changed(std::string strName, int (*pfnCase)(int)) {
  for (char& c : strName) c = static_cast<char>(pfnCase(c));
  return strName;
}
int Same(int c) { return c; }

void Fill(TiXmlElement& elem, const std::vector<stField>& fields, size_t nBase, unsigned& uiSeed,
          int (*pfnCase)(int), CImport& import) {
  for (const stField& field : fields) {
    const stValue value = Sample(field, uiSeed++);
    elem.SetAttribute(Changed(field.strName, pfnCase), value.strText);
    import.Expect(nBase + field.nOffset, value.bytes);
  }
}

// Every attribute of the section and of all its items, with names in the given case.
void ExpectAllImported(const stSection& section, int (*pfnCase)(int)) {
  SCOPED_TRACE(section.strName);
  TiXmlElement elem(section.strName);
  CImport import(section, 0);
  unsigned uiSeed = 0;
  Fill(elem, section.fields, 0, uiSeed, pfnCase, import);
  for (const stGroup& group : section.groups)
    for (size_t i = 0; i < group.nItems; ++i)
      Fill(*AddItem(elem, group.strContainer, "ITEM_" + std::to_string(i)), group.fields,
           group.nOffset + i * group.nItemSize, uiSeed, pfnCase, import);
  EXPECT_EQ(import.Run(elem), 0);
  EXPECT_TRUE(import.IsAsExpected());
}

}  // namespace

TEST(Import, ListTilesEveryRecordWithItsAttributes) {
  EXPECT_EQ(Sections().size(), 37u);
  for (const stSection& section : Sections())
    EXPECT_EQ(section.nTiled, section.nSize) << section.strName;
}

TEST(Import, StoresEveryAttributeInItsFieldOnly) {
  for (const stSection& section : Sections()) ExpectAllImported(section, Same);
}

TEST(Import, IgnoresTheLetterCaseOfAttributeNames) {
  for (const stSection& section : Sections()) {
    ExpectAllImported(section, tolower);
    ExpectAllImported(section, toupper);
  }
}

TEST(Import, LeavesFieldsWithoutAttribute) {
  for (const stSection& section : Sections()) {
    TiXmlElement elem(section.strName);
    for (const stGroup& group : section.groups) AddItem(elem, group.strContainer, "ITEM_0");
    CImport import(section, kUntouched);
    EXPECT_EQ(import.Run(elem), 0) << section.strName;
    EXPECT_TRUE(import.IsAsExpected()) << section.strName;
  }
}

TEST(Import, SkipsUnknownAttributes) {
  for (const stSection& section : Sections()) {
    TiXmlElement elem(section.strName);
    elem.SetAttribute("strFD_Unknown", "7");
    elem.SetAttribute("ucFD", "7");
    CImport import(section, kUntouched);
    EXPECT_EQ(import.Run(elem), 0) << section.strName;
    EXPECT_TRUE(import.IsAsExpected()) << section.strName;
  }
}

TEST(Import, RejectsAMissingElement) {
  for (const stSection& section : Sections()) {
    CConfig_Task task;
    EXPECT_EQ(section.pfnImport(task, nullptr, nullptr), -1) << section.strName;
  }
}

// The effect of the item names under a container, for every container.
TEST(Import, ReadsItemsByTheDigitInTheirNames) {
  const int kStored = 1, kEnds = 2;  // next to -1: rejected
  const struct {
    const char* pszName;
    int nShort;  // where the name must end after the digit
    int nLong;   // where it may continue
  } kRows[] = {{"ITEM_0", kStored, kStored},
               {"_0", kStored, kStored},
               {"ITEM_9", kEnds, kEnds},
               {"ITEM_10", -1, kEnds},
               {"ITEM_01", -1, kStored},
               {"ITEM", -1, -1},
               {"ITEM_", -1, -1},
               {"ITEM_x", -1, -1},
               {"ITEM_-1", -1, -1},
               {"ITEM_CHN_0", -1, -1},
               {"ITEM__0", -1, -1},
               {"ITEM_\xB2", -1, -1},
               {"ITEM0", -1, -1}};
  size_t nGroups = 0;
  for (const stSection& section : Sections()) {
    for (const stGroup& group : section.groups) {
      ++nGroups;
      for (const auto& row : kRows) {
        SCOPED_TRACE(section.strName + " " + group.strContainer + " " + row.pszName);
        TiXmlElement elem(section.strName);
        CImport import(section, 0);
        CImport unread(section, 0);
        const int nExpected = group.bLongSuffix ? row.nLong : row.nShort;
        unsigned uiSeed = 3;
        Fill(*AddItem(elem, group.strContainer, row.pszName), group.fields, group.nOffset, uiSeed,
             Same, nExpected == kStored ? import : unread);
        EXPECT_EQ(import.Run(elem), nExpected < 0 ? -1 : 0);
        EXPECT_TRUE(import.IsAsExpected());
      }
    }
  }
  EXPECT_EQ(nGroups, 17u);
}

TEST(Import, EndsAtTheFirstItemBeyondTheLimitOrMalformed) {
  for (const stSection& section : Sections()) {
    for (const stGroup& group : section.groups) {
      const struct {
        std::string strName;
        int nRet;
      } kRows[] = {{"ITEM_" + std::to_string(group.nItems), 0}, {"ITEM", -1}};
      for (const auto& row : kRows) {
        SCOPED_TRACE(section.strName + " " + group.strContainer + " " + row.strName);
        TiXmlElement elem(section.strName);
        CImport import(section, 0);
        CImport unread(section, 0);
        unsigned uiSeed = 3;
        const size_t nLast = group.nItems - 1;
        Fill(*AddItem(elem, group.strContainer, "ITEM_" + std::to_string(nLast)), group.fields,
             group.nOffset + nLast * group.nItemSize, uiSeed, Same, import);
        Fill(*AddItem(elem, group.strContainer, row.strName), group.fields, 0, uiSeed, Same,
             unread);
        Fill(*AddItem(elem, group.strContainer, "ITEM_0"), group.fields, 0, uiSeed, Same, unread);
        EXPECT_EQ(import.Run(elem), row.nRet);
        EXPECT_TRUE(import.IsAsExpected());
      }
    }
  }
}

TEST(Import, AcceptsContainersWithoutItems) {
  for (const stSection& section : Sections()) {
    TiXmlElement elem(section.strName);
    for (const stGroup& group : section.groups) {
      TiXmlElement container(group.strContainer);
      container.InsertEndChild(TiXmlText("no element"));
      container.InsertEndChild(TiXmlComment(" nor this "));
      elem.InsertEndChild(container);
    }
    CImport import(section, kUntouched);
    EXPECT_EQ(import.Run(elem), 0) << section.strName;
    EXPECT_TRUE(import.IsAsExpected()) << section.strName;
  }
}
