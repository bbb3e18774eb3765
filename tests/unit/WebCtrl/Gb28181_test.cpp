#include "CBB/WebCtrl/Gb28181.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using Items = std::vector<std::pair<int64_t, std::string>>;

Items Split(const std::string& strList, uint32_t uiChannels) {
  Items items;
  SplitIdList(strList, uiChannels, "list", "item",
              [&](int64_t nIndex, const std::string& strId) { items.emplace_back(nIndex, strId); });
  return items;
}

TEST(SplitIdList, CountsDownFromTheLastChannel) {
  const struct {
    const char* pszList;
    uint32_t uiChannels;
    Items items;
  } rows[] = {
      {"*A*B*", 4, {{3, "B"}, {2, "A"}}},
      {"*A*B*", 2, {{1, "B"}, {0, "A"}}},
      {"*first*second*third*", 3, {{2, "third"}, {1, "second"}, {0, "first"}}},
      // more identifiers than channels
      {"*A*B*C*", 2, {{1, "C"}, {0, "B"}, {-1, "A"}}},
      {"*A*B*", 0, {{-1, "B"}, {-2, "A"}}},
      {"*A*B*", 0xFFFFFFFFU, {{4294967294, "B"}, {4294967293, "A"}}},
      // empty identifiers
      {"****", 4, {{3, ""}, {2, ""}, {1, ""}}},
      {"*A**", 4, {{3, ""}, {2, "A"}}},
      {"**A*", 4, {{3, "A"}, {2, ""}}},
      // not as the pages send it: the last character is dropped whatever it is, and text before the
      // first star belongs to no identifier
      {"*A*BC", 4, {{3, "B"}, {2, "A"}}},
      {"xyz*A*", 4, {{3, "A"}}},
      {"ABCDE", 4, {}},
      // nothing in it
      {"", 4, {}},
      {"*", 4, {}},
      {"**", 4, {}},
      {"*A*", 4, {}},
      {"***", 4, {}},
      // one character more
      {"*AB*", 4, {{3, "AB"}}},
  };
  for (const auto& row : rows) {
    testing::internal::CaptureStdout();
    const Items items = Split(row.pszList, row.uiChannels);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(row.items, items) << row.pszList << " " << row.uiChannels;
  }
}

TEST(SplitIdList, PrintsTheListAndEachIdentifier) {
  const struct {
    const char* pszList;
    const char* pszPrinted;
  } rows[] = {{"*A*BB*", "list = *A*BB\nitem = BB\nitem = A\n"},
              {"*A*", ""},
              {"", ""},
              {"ABCDE", "list = ABCD\n"},
              {"****", "list = ***\nitem = \nitem = \nitem = \n"}};
  for (const auto& row : rows) {
    testing::internal::CaptureStdout();
    Split(row.pszList, 4);
    EXPECT_EQ(row.pszPrinted, testing::internal::GetCapturedStdout()) << row.pszList;
  }
}

TEST(SplitIdList, HandsIdentifiersOverWhole) {
  const std::string strLong(500, 'x');
  testing::internal::CaptureStdout();
  EXPECT_EQ((Items{{0, strLong}}), Split("*" + strLong + "*", 1));
  testing::internal::GetCapturedStdout();
}

}  // namespace
