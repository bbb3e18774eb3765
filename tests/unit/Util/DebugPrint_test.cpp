#include "CBB/Util/DebugPrint.h"

#include <gtest/gtest.h>
#include <sys/time.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

#include "tests/unit/Util/Printed.h"

namespace {

class DebugPrintTest : public testing::Test {
 protected:
  void SetUp() override { Restore(); }
  void TearDown() override { Restore(); }
  static void Restore() {
    SetDebugEnable(1);
    SetDebugLevel(1);
  }
};

// The levels from -1 to 6 whose messages print.
std::string PrintingLevels() {
  return Printed([] {
    for (int i = -1; i <= 6; ++i) DebugPrint(i, "%d ", i);
  });
}

// First in the file: sees the process's initial settings.
TEST(DebugPrint, StartsEnabledAtThreshold1) {
  EXPECT_EQ(1, GetDebugLevel());
  EXPECT_EQ("1 2 3 4 5 6 ", PrintingLevels());
}

TEST_F(DebugPrintTest, PrintsFromTheThresholdUp) {
  const struct {
    int nThreshold;
    const char* pszPrinting;
  } kCases[] = {
      {0, "0 1 2 3 4 5 6 "}, {1, "1 2 3 4 5 6 "}, {2, "2 3 4 5 6 "}, {3, "3 4 5 6 "}, {4, "4 5 6 "},
  };
  for (const auto& row : kCases) {
    SetDebugLevel(row.nThreshold);
    EXPECT_EQ(row.pszPrinting, PrintingLevels()) << row.nThreshold;
  }
}

TEST_F(DebugPrintTest, Threshold5SilencesThePrintButNotTheHexDump) {
  SetDebugLevel(4);
  EXPECT_EQ("Debug[5]-enable=1\n", Printed(DebugRaise));
  EXPECT_EQ("", PrintingLevels());
  EXPECT_EQ("<HEX:RX>(1)-[41 ]\n", Printed([] { DebugHex(5, "RX", "A", 1); }));
  EXPECT_EQ("", Printed([] { DebugHex(4, "RX", "A", 1); }));
}

TEST_F(DebugPrintTest, WritesAtOnceAndBehindWhatWasPrintedBefore) {
  const std::string strOut = Printed([] {
    static char s_szBuffer[4096];
    fflush(stdout);
    setvbuf(stdout, s_szBuffer, _IOFBF, sizeof(s_szBuffer));
    printf("before ");
    DebugPrint(4, "at once ");
    EXPECT_EQ(6, write(STDOUT_FILENO, "behind", 6));
    setvbuf(stdout, nullptr, _IOLBF, 0);
  });
  EXPECT_EQ("before at once behind", strOut);
}

TEST_F(DebugPrintTest, CutsAMessageAtItsBuffer) {
  const std::string strLong(5000, 'x');
  for (const size_t nLen : {size_t{1022}, size_t{1023}, size_t{1024}, size_t{5000}}) {
    const std::string strOut =
        Printed([&] { DebugPrint(4, "%s", strLong.substr(0, nLen).c_str()); });
    EXPECT_EQ(std::string(nLen < 1023 ? nLen : 1023, 'x'), strOut);
  }
  EXPECT_EQ("", Printed([] { DebugPrint(4, "%s", ""); }));
}

TEST_F(DebugPrintTest, EnableFlagMovesTheThreshold) {
  SetDebugEnable(0);
  EXPECT_EQ(4, GetDebugLevel());
  EXPECT_EQ("", PrintingLevels());
  EXPECT_EQ("", Printed([] { DebugHex(9, "RX", "A", 1); }));
  SetDebugEnable(1);
  EXPECT_EQ(0, GetDebugLevel());
  EXPECT_EQ("0 1 2 3 4 5 6 ", PrintingLevels());
}

TEST_F(DebugPrintTest, RaiseStopsAt5AndLowerAt0) {
  SetDebugLevel(4);
  EXPECT_EQ("Debug[5]-enable=1\n", Printed(DebugRaise));
  EXPECT_EQ("Debug[5]-enable=1\n", Printed(DebugRaise));
  EXPECT_EQ("Debug[4]-enable=1\n", Printed(DebugLower));
  SetDebugLevel(1);
  EXPECT_EQ("Debug[0]-enable=1\n", Printed(DebugLower));
  EXPECT_EQ("Debug[0]-enable=1\n", Printed(DebugLower));
}

TEST_F(DebugPrintTest, DisabledThresholdStaysYetIsPrinted) {
  SetDebugEnable(0);
  EXPECT_EQ("Debug[4]-enable=0\n", Printed(DebugRaise));
  EXPECT_EQ("Debug[4]-enable=0\n", Printed(DebugLower));
  EXPECT_EQ(4, GetDebugLevel());
}

TEST_F(DebugPrintTest, EnableFlagIsStoredAsGiven) {
  SetDebugEnable(200);
  EXPECT_EQ("Debug[1]-enable=200\n", Printed(DebugRaise));
}

TEST_F(DebugPrintTest, SetLevelIgnoresWhatIsOutOfRange) {
  for (const int nLevel : {5, -1, INT_MIN, INT_MAX}) {
    SetDebugLevel(3);
    SetDebugLevel(nLevel);
    EXPECT_EQ(3, GetDebugLevel()) << nLevel;
  }
}

TEST_F(DebugPrintTest, HexDumpShowsLabelLengthAndBytes) {
  const unsigned char kData[] = {0x00, 0xAB, 0x10};
  EXPECT_EQ("<HEX:RX>(3)-[00 ab 10 ]\n", Printed([&] { DebugHex(1, "RX", kData, 3); }));
  EXPECT_EQ("", Printed([&] { DebugHex(0, "RX", kData, 3); }));
  EXPECT_EQ("", Printed([&] { DebugHex(4, nullptr, kData, 3); }));
  EXPECT_EQ("", Printed([&] { DebugHex(4, "RX", nullptr, 3); }));
  EXPECT_EQ("", Printed([&] { DebugHex(4, "RX", kData, 0); }));
  EXPECT_EQ("", Printed([&] { DebugHex(4, "RX", kData, -1); }));
}

TEST(PrintDuration, BorrowsOnlyAfterTheSignTest) {
  const struct {
    timeval start;
    timeval end;
    const char* pszExpected;
  } kCases[] = {
      {{10, 0}, {12, 345678}, "DEBUG::run time duration : 2s+345ms\n"},
      {{10, 900000}, {12, 100000}, "DEBUG::run time duration : 1s+200ms\n"},
      {{10, 5}, {10, 5}, "DEBUG::run time duration : 0s+0ms\n"},
      {{10, 0}, {10, 999}, "DEBUG::run time duration : 0s+0ms\n"},
      {{10, 500000}, {10, 400000}, "DEBUG::run time duration : -1s+900ms\n"},
      {{11, 0}, {10, 999999}, "DEBUG::time error.\n"},
  };
  for (const auto& row : kCases)
    EXPECT_EQ(row.pszExpected, Printed([&] { PrintDuration(row.start, row.end); }));
}

// Of the clock that the marks are read from.
void AwaitNextSecond() {
  timeval before{};
  gettimeofday(&before, nullptr);
  for (timeval now = before; now.tv_sec == before.tv_sec; gettimeofday(&now, nullptr)) usleep(1000);
}

TEST(PrintRunTime, TakesTheMarks) {
  MarkEnd();
  AwaitNextSecond();
  MarkStart();
  EXPECT_EQ("DEBUG::time error.\n", Printed(PrintRunTime));
  MarkEnd();
  EXPECT_EQ(0u, Printed(PrintRunTime).rfind("DEBUG::run time duration : ", 0));
}

TEST(CurTimeText, IsTheTextOfCtime) {
  const time_t before = time(nullptr);
  const std::string strText = CurTimeText();
  ASSERT_EQ(25u, strText.size());
  EXPECT_EQ('\n', strText.back());
  tm parsed{};
  ASSERT_NE(nullptr, strptime(strText.c_str(), "%a %b %d %H:%M:%S %Y", &parsed));
  parsed.tm_isdst = -1;
  EXPECT_GE(mktime(&parsed), before);
}

}  // namespace
