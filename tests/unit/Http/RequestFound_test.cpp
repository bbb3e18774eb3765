// Requests that were once read wrongly, found by the fuzz targets.
#include <gtest/gtest.h>

#include <string>

#include "tests/unit/Http/Reading.h"

namespace {

// The reader was freed, and then written to.
TEST(RequestFound, ControlByteInAChunksExtensionIsRefused) {
  using namespace std::string_literals;
  const std::string strHead = "POST /a HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n";
  EXPECT_EQ(ReadHoweverCut(strHead + "1;a\0b\r\nx\r\n0\r\n\r\n"s), "refused 400");
}

// Cut after the CR it was accepted: the second extension hid the error.
TEST(RequestFound, BareReturnBeforeAChunksExtensionIsRefused) {
  const std::string strHead = "POST /a HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n";
  for (const char* pszLine : {"1\r;b\n", "1;a\r;b\n", "1\r ;b\n", "1;a\r;b\r\n"})
    EXPECT_EQ(ReadHoweverCut(strHead + pszLine + "x\r\n0\r\n\r\n"), "refused 400") << pszLine;
}

// It counted as no coding at all, and the other line as the only one.
TEST(RequestFound, EmptyCodingBesideAnotherIsRefused) {
  const std::string strCoding = "Transfer-Encoding: chunked\r\n",
                    strEmpty = "Transfer-Encoding:\r\n";
  for (const std::string& strLines : {strCoding + strEmpty, strEmpty + strCoding})
    EXPECT_EQ(ReadHoweverCut("POST /a HTTP/1.1\r\n" + strLines + "\r\n0\r\n\r\n"), "refused 400");
}

// The parser waited for another protocol to begin.
TEST(RequestFound, PrefaceOfAnotherProtocolIsRefusedAtItsVersion) {
  EXPECT_EQ(ReadHoweverCut("PRI * HTTP/1.1\r\n"), "refused 501");
}

TEST(RequestFound, HostOfOtherBytesThanAHostHasIsRefused) {
  for (const char* pszHost : {"a{b", "a|b", "a^b", "a`b", "\xC3\xA9", "a\\b"}) {
    const std::string strLines = std::string("Host: ") + pszHost + "\r\n\r\n";
    EXPECT_EQ(ReadHoweverCut("GET / HTTP/1.1\r\n" + strLines), "refused 400") << pszHost;
  }
}

}  // namespace
