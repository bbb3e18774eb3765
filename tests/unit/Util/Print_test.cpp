#include "CBB/Util/Print.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "tests/unit/Util/Printed.h"

namespace {

TEST(Print, PutsTheTextsTogether) {
  EXPECT_EQ("LINE:12.\n", Printed([] { Print({"LINE:", std::to_string(12), "", ".\n"}); }));
  EXPECT_EQ("", Printed([] { Print({}); }));
}

TEST(Print, StopsAt1024Characters) {
  const std::string strLong(1020, 'x');
  EXPECT_EQ(strLong + "abcd", Printed([&] { Print({strLong, "abc", "defg", "h"}); }));
  EXPECT_EQ(std::string(1024, 'y'), Printed([] { Print({std::string(5000, 'y')}); }));
}

TEST(Print, IsHeldBackUntilItIsFlushed) {
  const std::string strOut = Printed([] {
    static char s_szBuffer[4096];
    fflush(stdout);
    setvbuf(stdout, s_szBuffer, _IOFBF, sizeof(s_szBuffer));
    Print({"first "});
    EXPECT_EQ(7, write(STDOUT_FILENO, "second ", 7));
    FlushPrinted();
    EXPECT_EQ(5, write(STDOUT_FILENO, "third", 5));
    setvbuf(stdout, nullptr, _IOLBF, 0);
  });
  EXPECT_EQ("second first third", strOut);
}

}  // namespace
