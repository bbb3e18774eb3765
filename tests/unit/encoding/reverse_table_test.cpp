// Building the reverse table: its cost, and what happens when it cannot be built. It is built once
// per process, so each case runs in its own process.
#include <gtest/gtest.h>
#include <unistd.h>

#include "encoding/unicode_utf-8.h"
#include "tests/unit/encoding/Memory.h"

class ReverseTableDeathTest : public testing::Test {
 protected:
  void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
  void TearDown() override { GTEST_FLAG_SET(death_test_style, "fast"); }

  // Ends this process, with 0 when the condition holds.
  [[noreturn]] static void Finish(bool bHolds) { _exit(bHolds ? 0 : 1); }
  static constexpr size_t kMost = 600 * 1024;
  static constexpr size_t kLeast = 100 * 1024;  // less would mean that nothing was counted
};

TEST_F(ReverseTableDeathTest, TakesLessThan600KiB) {
  const auto Build = [] {
    const size_t nBefore = AllocatedBytes();
    const int nRet = enc_stc_unicode_to_GBK_init();
    const size_t nBytes = AllocatedBytes() - nBefore;
    Finish(nRet == 1 && nBytes > kLeast && nBytes < kMost);
  };
  EXPECT_EXIT(Build(), testing::ExitedWithCode(0), "");
}

TEST_F(ReverseTableDeathTest, IsNotBuiltForAscii) {
  const auto Convert = [] {
    const size_t nBefore = AllocatedBytes();
    uint16_t usGbk = 0;
    Finish(enc_unicode_to_GBK_one('a', &usGbk) == 1 && AllocatedBytes() == nBefore);
  };
  EXPECT_EXIT(Convert(), testing::ExitedWithCode(0), "");
}

TEST_F(ReverseTableDeathTest, IsBuiltOnceByTheFirstConversion) {
  const auto Convert = [] {
    uint16_t usGbk = 0;
    const size_t nBefore = AllocatedBytes();
    const bool bFirst = enc_unicode_to_GBK_one(0x4E2D, &usGbk) == 2;
    const size_t nBuilt = AllocatedBytes();
    const bool bSecond = enc_unicode_to_GBK_one(0x4E02, &usGbk) == 2;
    Finish(bFirst && bSecond && nBuilt > nBefore && AllocatedBytes() == nBuilt);
  };
  EXPECT_EXIT(Convert(), testing::ExitedWithCode(0), "");
}

TEST_F(ReverseTableDeathTest, MustNotBeBuiltTwice) {
  const auto BuildTwice = [] {
    if (enc_stc_unicode_to_GBK_init() == 1) enc_stc_unicode_to_GBK_init();
  };
  EXPECT_DEATH(BuildTwice(), "Assertion `tab_UCS2_to_GBK == \\(\\(void \\*\\)0\\)' failed");
}

TEST_F(ReverseTableDeathTest, WithoutMemoryNothingConvertsUntilThereIsSome) {
  const auto Convert = [](int nAllocation) {
    uint16_t usGbk = 0xBEEF;
    FailAllocation(nAllocation);
    const bool bRefused = enc_unicode_to_GBK_one(0x4E2D, &usGbk) == 0 && usGbk == 0xBEEF;
    FailAllocation(nAllocation);
    const bool bNotBuilt = enc_stc_unicode_to_GBK_init() == 0;
    FailAllocation(0);
    Finish(bRefused && bNotBuilt && enc_unicode_to_GBK_one(0x4E2D, &usGbk) == 2 && usGbk == 0xD6D0);
  };
  EXPECT_EXIT(Convert(1), testing::ExitedWithCode(0), "");
  EXPECT_EXIT(Convert(2), testing::ExitedWithCode(0), "");
}
