// How every attribute of a kind converts unusual texts, for the whole list in SectionList.
#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "tests/unit/config/SectionImport.h"

namespace {

// A text and its value.
using NumberRow = std::pair<const char*, uint32_t>;
using FloatRow = std::pair<const char*, float>;

// Imports a single attribute over non-zero bytes, so that an extra byte written is noticed.
void ExpectStored(const stSection& section, const stGroup* pGroup, const stField& field,
                  const stValue& value) {
  SCOPED_TRACE(section.strName + " " + field.strName + "=\"" + value.strText.substr(0, 40) + "\"");
  TiXmlElement elem(section.strName);
  CImport import(section, kUntouched);
  TiXmlElement* pHolder = &elem;
  size_t nBase = 0;
  if (pGroup != nullptr) {
    pHolder = AddItem(elem, pGroup->strContainer, "ITEM_" + std::to_string(pGroup->nItems - 1));
    nBase = pGroup->nOffset + (pGroup->nItems - 1) * pGroup->nItemSize;
  }
  pHolder->SetAttribute(field.strName, value.strText);
  import.Expect(nBase + field.nOffset, value.bytes);
  EXPECT_EQ(import.Run(elem), 0);
  EXPECT_TRUE(import.IsAsExpected());
}

// Calls fn for every attribute of every section; the group is null for the section's own.
template <class Fn>
void ForEachField(Fn fn) {
  for (const stSection& section : Sections()) {
    for (const stField& field : section.fields) fn(section, nullptr, field);
    for (const stGroup& group : section.groups)
      for (const stField& field : group.fields) fn(section, &group, field);
  }
}

template <class Row, size_t N, class Fn>
void ExpectRows(Kind eKind, const Row (&rows)[N], Fn fnBytes) {
  size_t nFields = 0;
  ForEachField([&](const stSection& section, const stGroup* pGroup, const stField& field) {
    if (field.eKind != eKind) return;
    ++nFields;
    for (const Row& row : rows)
      ExpectStored(section, pGroup, field, {row.first, fnBytes(row, field)});
  });
  EXPECT_GT(nFields, 0u);
}

}  // namespace

TEST(Import, WrapsNumbersToTheFieldsWidth) {
  const NumberRow kRows[] = {{"0", 0},
                             {"255", 255},
                             {"300", 300},
                             {"65535", 65535},
                             {"65537", 65537},
                             {"-1", 0xFFFFFFFF},
                             {"2147483647", 0x7FFFFFFF},
                             {"2147483648", 0x80000000},
                             {"4294967297", 1},
                             {"99999999999999999999", 0xFFFFFFFF},
                             {"-99999999999999999999", 0},
                             {"", 0},
                             {"-", 0},
                             {"abc", 0},
                             {"0x1F", 0},
                             {" 12abc", 12},
                             {"+5", 5}};
  ExpectRows(Kind::kNumber, kRows,
             [](const auto& row, const auto& field) { return OfNumber(row.second, field.nWidth); });
  ExpectRows(Kind::kRoiCorner, kRows,
             [](const auto& row, const auto&) { return OfNumber(row.second / 16 * 16, 4); });
  ExpectRows(Kind::kRoiSize, kRows,
             [](const auto& row, const auto&) { return OfNumber((row.second + 16) / 16 * 16, 4); });
  ExpectRows(Kind::kWholeFloat, kRows, [](const auto& row, const auto&) {
    return OfFloat(static_cast<float>(static_cast<int32_t>(row.second)));
  });
}

TEST(Import, ReadsFloats) {
  const FloatRow kRows[] = {{"1.5", 1.5f},        {"-0.25", -0.25f}, {"12", 12.0f},
                            {"abc", 0.0f},        {"", 0.0f},        {"1e999", INFINITY},
                            {"-1e39", -INFINITY}, {"1e-999", 0.0f},  {" 3.5 g", 3.5f}};
  ExpectRows(Kind::kFloat, kRows, [](const auto& row, const auto&) { return OfFloat(row.second); });
}

TEST(Import, ReadsAddressesInEverySpelling) {
  const uint32_t kLeft = 0x5A5A5A5A;
  const NumberRow kRows[] = {{"10.0.0.1", htonl(0x0A000001)},
                             {"0x0A000001", 0x0A000001},
                             {"0Xff", 0xFF},
                             {"0x123456789", 0x23456789},
                             {"167772161", 167772161},
                             {"-1", 0xFFFFFFFF},
                             {"", 0},
                             {"1.2.3.999", 0xFFFFFFFF},
                             {"...", 0xFFFFFFFF},
                             {"abc", kLeft},
                             {"0x", kLeft},
                             {"0x1g", kLeft},
                             {"256.1.1.1", kLeft},
                             {"1.2.3", kLeft},
                             {" 10.0.0.1", kLeft},
                             {"10.0.0.1 ", kLeft}};
  ExpectRows(Kind::kAddress, kRows,
             [](const auto& row, const auto&) { return OfNumber(row.second, 4); });
}

TEST(Import, ReadsTimesOfDay) {
  const NumberRow kRows[] = {{"00:00:00", 0},
                             {"08:30:15", 30615},
                             {"23:59:59", 86399},
                             {"7:5:3", 25503},
                             {"abc", 0},
                             {"", 0},
                             {"24:00:00", 0},
                             {"08:30:15 and much more text than the limit", 30615},
                             {"                         08:30:15", 0}};
  ExpectRows(Kind::kTimeOfDay, kRows,
             [](const auto& row, const auto&) { return OfNumber(row.second, 4); });
}

TEST(Import, CutsTextsToCapacityLessOne) {
  size_t nFields = 0;
  ForEachField([&](const stSection& section, const stGroup* pGroup, const stField& field) {
    if (field.eKind != Kind::kText) return;
    ++nFields;
    for (const size_t nLen : {size_t{0}, field.nWidth - 1, field.nWidth, size_t{5000}}) {
      const std::string strText(nLen, 'x');
      ExpectStored(section, pGroup, field,
                   {strText, OfText(strText.substr(0, field.nWidth - 1), field.nWidth)});
    }
  });
  EXPECT_EQ(nFields, 71u);
}

TEST(Import, LetsIdentifiersFillTheirBytes) {
  size_t nFields = 0;
  ForEachField([&](const stSection& section, const stGroup* pGroup, const stField& field) {
    if (field.eKind != Kind::kIdentifier) return;
    ++nFields;
    for (const size_t nLen : {0, 20, 31, 32, 33, 5000}) {
      const std::string strText(nLen, '7');
      ExpectStored(section, pGroup, field, {strText, OfText(strText.substr(0, 32), 32)});
    }
  });
  EXPECT_EQ(nFields, 3u);
}
