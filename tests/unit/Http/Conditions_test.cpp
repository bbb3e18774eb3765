#include "CBB/Http/Conditions.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/unit/Http/ParsedRequest.h"

namespace {

constexpr time_t kModified = 1456790400;  // Tue, 01 Mar 2016 00:00:00 GMT
constexpr stRepresentation kFile = {"\"a\"", kModified, 20};

std::string Selected(const std::string& strMethod, const std::string& strFields) {
  CParsedRequest request(strMethod + " / HTTP/1.1\r\n" + strFields + "\r\n");
  const stSelection part = Select(*request.Get(), kFile);
  const std::string strStatus = std::to_string(part.nStatus);
  if (part.nStatus != 200 && part.nStatus != 206) return strStatus;
  return strStatus + " " + std::to_string(part.nAt) + "+" + std::to_string(part.nSize);
}

struct stCase {
  const char* pszFields;
  const char* pszSelected;
};

template <size_t N>
void ExpectForGet(const stCase (&rows)[N]) {
  for (const stCase& row : rows) {
    EXPECT_EQ(row.pszSelected, Selected("GET", row.pszFields)) << row.pszFields;
  }
}

TEST(Select, JudgesConditionsInTheOrderOfHttp) {
  constexpr stCase kRows[] = {
      {"", "200 0+20"},
      {"If-None-Match: \"a\"\r\n", "304"},
      {"If-None-Match: W/\"a\"\r\n", "304"},
      {"If-None-Match: *\r\n", "304"},
      {"If-None-Match: \"b\", W/\"c\" ,\"a\"\r\n", "304"},
      {"If-None-Match: \"b\"\r\nIf-None-Match: \"a\"\r\n", "304"},
      {"If-None-Match: \"b\"\r\nIf-None-Match: \"c\"\r\nIf-None-Match: \"a\"\r\n", "304"},
      {"If-None-Match: \"a\"\r\nIf-None-Match: \"b\"\r\nIf-None-Match: \"c\"\r\n", "304"},
      {"If-None-Match: \"b,a\"\r\n", "200 0+20"},
      {"If-None-Match: a\r\n", "200 0+20"},
      {"If-None-Match: \"a\r\n", "200 0+20"},
      {"If-None-Match: a\", \"a\"\r\n", "200 0+20"},
      {"If-None-Match: \"A\"\r\n", "200 0+20"},
      // Behind a field of one letter.
      {"A: b\r\nIf-None-Match: \"a\"\r\n", "304"},
      {"A: b\r\nIf-Modified-Since: Tue, 01 Mar 2016 00:00:00 GMT\r\n", "304"},
      {"If-Modified-Since: Tue, 01 Mar 2016 00:00:00 GMT\r\n", "304"},
      {"If-Modified-Since: Tue, 01 Mar 2016 00:00:01 GMT\r\n", "304"},
      {"If-Modified-Since: Mon, 29 Feb 2016 23:59:59 GMT\r\n", "200 0+20"},
      {"If-Modified-Since: Tuesday, 01-Mar-16 00:00:00 GMT\r\n", "304"},
      {"If-Modified-Since: Tue Mar  1 00:00:00 2016\r\n", "304"},
      {"If-Modified-Since: today\r\n", "200 0+20"},
      {"If-Modified-Since: Tue, 01 Mar 2016\r\n", "200 0+20"},
      // A list of tags counts, and a date sent with it does not.
      {"If-None-Match: \"b\"\r\nIf-Modified-Since: Tue, 01 Mar 2016 00:00:00 GMT\r\n", "200 0+20"},
      {"If-Match: \"a\"\r\n", "200 0+20"},
      {"If-Match: *\r\n", "200 0+20"},
      {"If-Match: \"b\"\r\n", "412"},
      {"If-Match: W/\"a\"\r\n", "412"},
      {"If-Match: \"b\", \"a\"\r\n", "200 0+20"},
      {"If-Match: \"b\"\r\nIf-None-Match: \"a\"\r\n", "412"},
      {"If-Unmodified-Since: Tue, 01 Mar 2016 00:00:00 GMT\r\n", "200 0+20"},
      {"If-Unmodified-Since: Mon, 29 Feb 2016 23:59:59 GMT\r\n", "412"},
      {"If-Unmodified-Since: today\r\n", "200 0+20"},
      {"If-Match: \"a\"\r\nIf-Unmodified-Since: Mon, 29 Feb 2016 23:59:59 GMT\r\n", "200 0+20"},
  };
  ExpectForGet(kRows);
}

TEST(Select, CutsARangeToTheFile) {
  constexpr stCase kRows[] = {
      {"Range: bytes=0-\r\n", "206 0+20"},
      {"Range: bytes=0-0\r\n", "206 0+1"},
      {"Range: bytes=7-12\r\n", "206 7+6"},
      {"Range: bytes=19-\r\n", "206 19+1"},
      {"Range: bytes=0-999999\r\n", "206 0+20"},
      {"Range: bytes=7-99999999999999999999\r\n", "206 7+13"},
      {"Range: BYTES=7-12\r\n", "206 7+6"},
      {"Range: bytes=-5\r\n", "206 15+5"},
      {"Range: bytes=-20\r\n", "206 0+20"},
      {"Range: bytes=-99999999999999999999\r\n", "206 0+20"},
      {"Range: bytes=20-\r\n", "416"},
      {"Range: bytes=20-30\r\n", "416"},
      {"Range: bytes=99999999999999999999-\r\n", "416"},
      {"Range: bytes=-0\r\n", "416"},
      // Not understood, so the whole file is sent.
      {"Range: bytes=0-1,3-4\r\n", "200 0+20"},
      {"Range: bytes=5-3\r\n", "200 0+20"},
      {"Range: bytes=-\r\n", "200 0+20"},
      {"Range: bytes=\r\n", "200 0+20"},
      {"Range: bytes=a-b\r\n", "200 0+20"},
      {"Range: bytes=1\r\n", "200 0+20"},
      {"Range: bytes=1-2x\r\n", "200 0+20"},
      {"Range: lines=1-2\r\n", "200 0+20"},
      // Only for this version.
      {"Range: bytes=1-2\r\nIf-Range: \"a\"\r\n", "206 1+2"},
      {"Range: bytes=1-2\r\nIf-Range: \"b\"\r\n", "200 0+20"},
      {"Range: bytes=1-2\r\nIf-Range: W/\"a\"\r\n", "200 0+20"},
      {"Range: bytes=1-2\r\nIf-Range: Tue, 01 Mar 2016 00:00:00 GMT\r\n", "206 1+2"},
      {"Range: bytes=1-2\r\nIf-Range: Wed, 02 Mar 2016 00:00:00 GMT\r\n", "200 0+20"},
      {"Range: bytes=1-2\r\nIf-None-Match: \"a\"\r\n", "304"},
  };
  ExpectForGet(kRows);
}

TEST(Select, TakesRangesFromGetAndConditionsFromGetAndHead) {
  const struct {
    const char* pszMethod;
    const char* pszFields;
    const char* pszSelected;
  } rows[] = {
      {"HEAD", "Range: bytes=1-2\r\n", "200 0+20"},
      {"HEAD", "If-None-Match: \"a\"\r\n", "304"},
      {"POST", "Content-Length: 0\r\nRange: bytes=1-2\r\n", "200 0+20"},
      {"POST", "Content-Length: 0\r\nIf-None-Match: \"a\"\r\n", "200 0+20"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.pszSelected, Selected(row.pszMethod, row.pszFields)) << row.pszFields;
  }
}

TEST(Select, HasNoRangeOfAnEmptyFile) {
  for (const char* pszRange : {"bytes=0-", "bytes=0-0", "bytes=-1"}) {
    CParsedRequest request(std::string("GET / HTTP/1.1\r\nRange: ") + pszRange + "\r\n\r\n");
    EXPECT_EQ(416, Select(*request.Get(), {"\"a\"", kModified, 0}).nStatus) << pszRange;
  }
}

TEST(AcceptsGzip, FollowsTheListAndItsWeights) {
  const struct {
    const char* pszFields;
    bool bAccepts;
  } rows[] = {
      {"", false},
      {"Accept-Encoding: gzip\r\n", true},
      {"Accept-Encoding: deflate, GZIP;q=0.5, br\r\n", true},
      {"Accept-Encoding: deflate\r\nAccept-Encoding: gzip\r\n", true},
      {"Accept-Encoding: *\r\n", true},
      {"Accept-Encoding: *;q=0\r\n", false},
      {"Accept-Encoding: gzip;q=0\r\n", false},
      {"Accept-Encoding: gzip; q=0.000\r\n", false},
      {"Accept-Encoding: gzip;q=0.001\r\n", true},
      {"Accept-Encoding: *, gzip;q=0\r\n", false},
      {"Accept-Encoding: gzip, *;q=0\r\n", true},
      {"Accept-Encoding: identity\r\n", false},
      {"Accept-Encoding: gzipped\r\n", false},
      {"Accept: gzip\r\n", false},
  };
  for (const auto& row : rows) {
    CParsedRequest request(std::string("GET / HTTP/1.1\r\n") + row.pszFields + "\r\n");
    EXPECT_EQ(row.bAccepts, AcceptsGzip(*request.Get())) << row.pszFields;
  }
}

TEST(HttpDate, IsReadInItsThreeForms) {
  const struct {
    const char* pszDate;
    time_t time;
  } rows[] = {
      {"Tue, 01 Mar 2016 00:00:00 GMT", kModified},
      {"Tuesday, 01-Mar-16 00:00:00 GMT", kModified},
      {"Tue Mar  1 00:00:00 2016", kModified},
      {"Thu, 01 Jan 1970 00:00:00 GMT", 0},
      {"Tue, 19 Jan 2038 03:14:08 GMT", 2147483648},
      {"", -1},
      {"Tue, 01 Mar 2016 00:00:00", -1},
      {"Tue, 01 Mar 2016 00:00:00 GMT ", -1},
      {"Tue, 01 Mar 2016 00:00:00 CET", -1},
      {"Tue, 41 Mar 2016 00:00:00 GMT", -1},
      {"1456790400", -1},
      {"Tue, 01 Mar 2016 00:00:00 GMT, and so on, and so on, and so on, and so on", -1},
  };
  for (const auto& row : rows) EXPECT_EQ(row.time, ParseHttpDate(row.pszDate)) << row.pszDate;
}

TEST(HttpDate, IsNotReadFromATextThatIsLongerThanAnyDate) {
  const std::string strBlanks(1000, ' ');
  EXPECT_EQ(-1, ParseHttpDate("Tue," + strBlanks + "01 Mar 2016 00:00:00 GMT"));
  EXPECT_EQ(-1, ParseHttpDate(strBlanks));
}

TEST(HttpDate, IsWrittenInTheFirstForm) {
  char szDate[kHttpDateSize];
  FormatHttpDate(kModified, szDate);
  EXPECT_STREQ("Tue, 01 Mar 2016 00:00:00 GMT", szDate);
}

}  // namespace
