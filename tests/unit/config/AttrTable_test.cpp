// The walk and the number conversions, independent of any section.
#include "config/AttrTable.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>

namespace {

struct stSample {
  uint8_t ucFirst;
  uint16_t usSecond;
  char szName[4];
};

int Refuse(stSample&, const char*) { return -1; }
int Ask(stSample&, const char*) { return 1; }

constexpr stAttr<stSample> kSample[] = {
    ATTR(stSample, ucFirst),
    ATTR(stSample, usSecond),
    ATTR(stSample, szName),
    {"Refuse", Refuse},
    {"Ask", Ask},
};

int WalkText(const char* pszXml, stSample& rec) {
  TiXmlDocument doc;
  doc.Parse(pszXml);
  return Walk(doc.RootElement(), kSample, rec);
}

}  // namespace

TEST(Store, CutsTextInsideItsCapacity) {
  stSample rec{1, 2, {'w', 'x', 'y', 'z'}};
  EXPECT_EQ(Store<&stSample::szName>(rec, "abcdef"), 0);
  EXPECT_STREQ(rec.szName, "abc");
  EXPECT_EQ(Store<&stSample::szName>(rec, "q"), 0);
  EXPECT_STREQ(rec.szName, "q");
}

TEST(Store, WrapsIntegerToFieldWidth) {
  stSample rec{};
  EXPECT_EQ(Store<&stSample::ucFirst>(rec, "300"), 0);
  EXPECT_EQ(rec.ucFirst, 44);
  EXPECT_EQ(Store<&stSample::usSecond>(rec, "-1"), 0);
  EXPECT_EQ(rec.usSecond, 65535);
}

TEST(Walk, TakesTheLaterOfTwoSpellings) {
  stSample rec{};
  EXPECT_EQ(WalkText(R"(<s ucFirst="1" UCFIRST="2"/>)", rec), 0);
  EXPECT_EQ(rec.ucFirst, 2);
}

TEST(Walk, StopsWhenAStoreRefuses) {
  stSample rec{};
  EXPECT_EQ(WalkText(R"(<s ucFirst="1" refuse="" usSecond="2"/>)", rec), -1);
  EXPECT_EQ(rec.ucFirst, 1);
  EXPECT_EQ(rec.usSecond, 0);
}

TEST(Walk, GoesOnWhenAStoreAsks) {
  stSample rec{};
  EXPECT_EQ(WalkText(R"(<s ask="" ucFirst="1"/>)", rec), 1);
  EXPECT_EQ(rec.ucFirst, 1);
  EXPECT_EQ(WalkText(R"(<s ask="" refuse=""/>)", rec), -1);
}

TEST(WalkIndexed, RejectsTheSectionWithARefusedItem) {
  TiXmlDocument doc;
  doc.Parse(R"(<s><c><i_0 ucFirst="1"/><i_1 refuse=""/><i_0 ucFirst="9"/></c></s>)");
  stSample recs[2] = {};
  EXPECT_EQ(WalkIndexed(doc.RootElement(), "c", kSample, recs), -1);
  EXPECT_EQ(recs[0].ucFirst, 1);
}

TEST(ItemIndex, IsTheDigitBehindTheFirstUnderscore) {
  const struct {
    const char* pszName;
    int nExact, nAtLeast;
  } kRows[] = {{"CHN_0", 0, 0},   {"CHN_9", 9, 9},   {"_3", 3, 3},      {"CHN_10", -1, 1},
               {"CHN", -1, -1},   {"", -1, -1},      {"CHN_", -1, -1},  {"CHN_A", -1, -1},
               {"CHN_/", -1, -1}, {"CHN_:", -1, -1}, {"A_B_0", -1, -1}, {"CHN_\xFF", -1, -1}};
  for (const auto& row : kRows) {
    EXPECT_EQ(ItemIndex(row.pszName, Suffix::kExactlyTwo), row.nExact) << row.pszName;
    EXPECT_EQ(ItemIndex(row.pszName, Suffix::kAtLeastTwo), row.nAtLeast) << row.pszName;
  }
}

TEST(TextToFloat, StaysDefinedBeyondItsRange) {
  EXPECT_EQ(TextToFloat("2.5x"), 2.5f);
  EXPECT_EQ(TextToFloat("x"), 0.0f);
  EXPECT_EQ(TextToFloat("1e400"), INFINITY);
  EXPECT_EQ(TextToFloat("-1e39"), -INFINITY);
  EXPECT_EQ(TextToFloat("1e-400"), 0.0f);
  EXPECT_TRUE(std::isnan(TextToFloat("nan")));
}

// Slightly above the middle of two floats; rounded to a double first, it is exactly the middle.
TEST(TextToFloat, RoundsByWayOfADouble) {
  EXPECT_EQ(TextToFloat("1.00000005960464477539062500001"), 1.0f);
  EXPECT_EQ(TextToFloat("1.0000001"), 1.0000001f);
  EXPECT_EQ(TextToFloat("3.40282346638528859e38"), FLT_MAX);
  EXPECT_EQ(TextToFloat("-3.40282346638528859e38"), -FLT_MAX);
}

TEST(TextToTimeOfDay, CountsSecondsSinceMidnight) {
  const struct {
    const char* pszText;
    uint32_t uiSeconds;
  } kRows[] = {{"00:00:01", 1}, {"12:34:56", 45296}, {"12:34", 0}, {"12:34:ab", 0},
               {"-1:00:00", 0}, {"99:99:99", 0},     {"noon", 0},  {"", 0}};
  for (const auto& row : kRows)
    EXPECT_EQ(TextToTimeOfDay(row.pszText), row.uiSeconds) << row.pszText;
}

TEST(TextToTimeOfDay, ReadsNoMoreThan22Characters) {
  EXPECT_EQ(TextToTimeOfDay("              12:34:56"), 45296u);
  EXPECT_EQ(TextToTimeOfDay("               12:34:56"), 45245u);  // the 6 is cut off
}

TEST(ConvertAddressValue, ReturnsZeroForEveryText) {
  for (const char* pszText : {"10.0.0.1", "0x1F", "77", "", "abc"}) {
    uint32_t uiValue = 0;
    EXPECT_EQ(ConvertAddressValue(pszText, uiValue), 0) << pszText;
  }
}
