// Requests that must be refused, and requests that are too long.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "CBB/Http/HeadRules.h"
#include "CBB/Http/Request.h"
#include "tests/unit/Http/Reading.h"

namespace {

std::string Repeat(const std::string& strText, size_t nTimes) {
  std::string strAll;
  for (size_t i = 0; i < nTimes; ++i) strAll += strText;
  return strAll;
}

TEST(RequestRefusals, TellTheStatus) {
  using namespace std::string_literals;
  const struct {
    std::string strBytes;
    int nStatus;
  } rows[] = {
      // Request lines.
      {"\n", 400},
      {"\rGET / HTTP/1.1\r\n\r\n", 400},
      {" GET / HTTP/1.1\r\n\r\n", 400},
      {"GET\r\n\r\n", 400},
      {"GET /\r\n\r\n", 400},
      {"GET /a b HTTP/1.1\r\n\r\n", 400},
      {"GET  / HTTP/1.1\r\n\r\n", 400},
      {"GET /  HTTP/1.1\r\n\r\n", 400},
      {"GET / HTTP/1.1 \r\n\r\n", 400},
      {"GET\t/ HTTP/1.1\r\n\r\n", 400},
      {"GET / HTTP/1.1\n\n", 400},
      {"GET / HTTP/1.1\r\r\n\r\n", 400},
      {"GET / HTTP/1.x\r\n\r\n", 400},
      {"GET / HTTP/11\r\n\r\n", 400},
      {"GET / HTTP/0.9\r\n\r\n", 400},
      {"GET / http/1.1\r\n\r\n", 400},
      {"GET /\x01 HTTP/1.1\r\n\r\n", 400},
      {"GET /\xC3\xA9 HTTP/1.1\r\n\r\n", 400},
      {"GET /\0 HTTP/1.1\r\n\r\n"s, 400},
      {"GET /#a HTTP/1.1\r\n\r\n", 400},
      {"GET a HTTP/1.1\r\n\r\n", 400},
      {"G\xC3\x89T / HTTP/1.1\r\n\r\n", 400},
      {"\x16\x03\x01\x02", 400},
      {"GET / HTTP/2.0\r\n\r\n", 505},
      {"GET / HTTP/3.1\r\n\r\n", 505},
      {"FOO / HTTP/2.0\r\n\r\n", 505},
      {"FOO / HTTP/1.1\r\n\r\n", 501},
      {"get / HTTP/1.1\r\n\r\n", 501},
      {"GETS / HTTP/1.1\r\n\r\n", 501},
      {"CONNECT h:80 HTTP/1.1\r\n\r\n", 501},
      {"PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n", 505},
      // Field lines.
      {"GET / HTTP/1.1\r\nA: b\n\r\n", 400},
      {"GET / HTTP/1.1\r\nA: b\rC: d\r\n\r\n", 400},
      {"GET / HTTP/1.1\r\nA: b\0c\r\n\r\n"s, 400},
      {"GET / HTTP/1.1\r\nA: b\x7F\r\n\r\n", 400},
      {"GET / HTTP/1.1\r\nA: b\r\n c\r\n\r\n", 400},
      {"GET / HTTP/1.1\r\nA: b\r\n\tc\r\n\r\n", 400},
      {"GET / HTTP/1.1\r\n A: b\r\n\r\n", 400},
      {"GET / HTTP/1.1\r\nA : b\r\n\r\n", 400},
      {"GET / HTTP/1.1\r\nA\t: b\r\n\r\n", 400},
      {"GET / HTTP/1.1\r\n: b\r\n\r\n", 400},
      {"GET / HTTP/1.1\r\nA\r\n\r\n", 400},
      {"GET / HTTP/1.1\r\nA(: b\r\n\r\n", 400},
      {"GET / HTTP/1.1\r\nHost: a\r\nHost: b\r\n\r\n", 400},
      {"GET / HTTP/1.1\r\nExpect: much\r\n\r\n", 417},
      // Lengths.
      {"POST / HTTP/1.1\r\n\r\n", 411},
      {"PUT / HTTP/1.1\r\n\r\n", 411},
      {"POST / HTTP/1.0\r\n\r\n", 411},
      {"POST / HTTP/1.1\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nContent-Length: 1\r\nContent-Length: 1\r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nContent-Length: 1, 1\r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nContent-Length: 1 2\r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nContent-Length: 1\t\r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nContent-Length: 1 \t \r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nContent-Length: -1\r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nContent-Length: +1\r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nContent-Length: 0x1\r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nContent-Length: 1.0\r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nContent-Length: one\r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nContent-Length:\r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nContent-Length: 18446744073709551616\r\n\r\n", 413},
      {"POST / HTTP/1.1\r\nContent-Length: 9999999\r\n\r\n", 413},
      // Codings.
      {"POST / HTTP/1.1\r\nContent-Length: 3\r\nTransfer-Encoding: chunked\r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\nContent-Length: 3\r\n\r\n", 400},
      {"POST / HTTP/1.0\r\nTransfer-Encoding: chunked\r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nTransfer-Encoding: chunked, chunked\r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nTransfer-Encoding: gzip\r\n\r\n", 501},
      {"POST / HTTP/1.1\r\nTransfer-Encoding: gzip, chunked\r\n\r\n", 501},
      {"POST / HTTP/1.1\r\nTransfer-Encoding: chunkedx\r\n\r\n", 501},
      {"POST / HTTP/1.1\r\nTransfer-Encoding: chunked\t\r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nTransfer-Encoding: chunked \t \r\n\r\n", 400},
      {"POST / HTTP/1.1\r\nTransfer-Encoding: \x0B"
       "chunked\r\n\r\n",
       400},
  };
  for (const auto& row : rows) {
    EXPECT_EQ("refused " + std::to_string(row.nStatus), ReadHoweverCut(row.strBytes))
        << row.strBytes;
  }
}

TEST(RequestRefusals, KnowBrokenChunks) {
  for (const char* pszBody :
       {"\r\n", "x\r\n", "-1\r\n", "+1\r\n", " 1\r\n", "0x1\r\n", "1\n", "1\r1", "1\r\nab\r\n",
        "1\r\na\n", "1\r\na0\r\n\r\n", "0\r\nA: b\n\r\n", "0\r\n A: b\r\n\r\n",
        "0\r\nA : b\r\n\r\n", "0\r\n: b\r\n\r\n", "0\r\nA: b\r\n c\r\n\r\n", "0\r\n\n",
        "10000000000000000\r\n"}) {
    const std::string strBytes =
        std::string("POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n") + pszBody;
    EXPECT_EQ("refused 400", ReadHoweverCut(strBytes));
  }
}

// A request at a limit, and one that is a byte longer.
TEST(RequestLimits, HoldForTheHead) {
  const std::string strLine = "GET / HTTP/1.1\r\n";
  const auto withTarget = [](size_t nHead) {
    return "GET /" + std::string(nHead - 18, 'a') + " HTTP/1.1\r\n\r\n";
  };
  const auto withField = [&](size_t nHead) {
    return strLine + "A: " + std::string(nHead - strLine.size() - 7, 'a') + "\r\n\r\n";
  };
  const auto withMethod = [](size_t nHead) {
    return std::string(nHead - 15, 'F') + " / HTTP/1.1\r\n\r\n";
  };
  const auto withFields = [&](size_t nFields) {
    return strLine + Repeat("A:b\r\n", nFields) + "\r\n";
  };
  const struct {
    std::string strBytes;
    std::string strStart;
  } rows[] = {
      {withField(8191), "8191: GET"},    {withField(8192), "refused 431"},
      {withField(20000), "refused 431"}, {withTarget(8191), "8191: GET"},
      {withTarget(8192), "refused 431"}, {withTarget(20000), "refused 414"},
      {withMethod(8191), "refused 501"}, {withMethod(20000), "refused 414"},
      {withFields(100), "518: GET"},     {withFields(101), "refused 431"},
  };
  for (const auto& row : rows) {
    const std::string strRead = Read(row.strBytes);
    EXPECT_EQ(row.strStart, strRead.substr(0, row.strStart.size()));
    for (const size_t nCut : {size_t{10}, size_t{8190}, size_t{8191}, size_t{8192}}) {
      EXPECT_EQ(strRead, Read(row.strBytes, {std::min(nCut, row.strBytes.size())})) << nCut;
    }
  }
}

TEST(RequestLimits, RefuseAHeadAsSoonAsItIsTooLong) {
  const std::string strLine = "GET / HTTP/1.1\r\nA: ";
  EXPECT_EQ("partial", Read(strLine + std::string(8191 - strLine.size(), 'a')));
  EXPECT_EQ("refused 431", Read(strLine + std::string(8192 - strLine.size(), 'a')));
  EXPECT_EQ("partial", Read("GET /" + std::string(8191 - 5, 'a')));
  EXPECT_EQ("refused 414", Read("GET /" + std::string(8192 - 5, 'a')));
  EXPECT_EQ("partial", Read(std::string(8191, 'F')));
  EXPECT_EQ("refused 414", Read(std::string(8192, 'F')));
}

TEST(RequestLimits, HoldForTheBody) {
  const auto ofLength = [](size_t nBody) {
    return "POST / HTTP/1.1\r\nContent-Length: " + std::to_string(nBody) + "\r\n\r\n" +
           std::string(nBody, 'a');
  };
  EXPECT_EQ(kMaxBodyBytes + 44, std::stoul(Read(ofLength(kMaxBodyBytes))));
  EXPECT_EQ("refused 413", Read(ofLength(kMaxBodyBytes + 1)));
  const std::string strHead = "POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n";
  EXPECT_EQ("partial", Read(strHead + "100000\r\n"));
  EXPECT_EQ("refused 413", Read(strHead + "100001\r\n"));
  EXPECT_EQ("refused 413", Read(strHead + "1\r\na\r\n100000\r\n"));
  EXPECT_EQ("refused 413", Read(strHead + "FFFFFFFFFFFFFFFF\r\n"));
  // Chunks with their framing have the same limit as a body in one piece.
  const std::string strChunk = "1\r\na\r\n";
  const std::string strLast = "0\r\n\r\n";
  const size_t nMost = (kMaxBodyBytes - strLast.size()) / strChunk.size();
  const std::string strMost = strHead + Repeat(strChunk, nMost) + strLast;
  EXPECT_EQ(strMost.size(), std::stoul(Read(strMost)));
  EXPECT_EQ("refused 413", Read(strHead + Repeat(strChunk, nMost + 1) + strLast));
}

TEST(RequestLimits, HoldForWhatStandsBetweenChunks) {
  const std::string strHead = "POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n";
  const struct {
    std::string strBytes;
    std::string strStart;
  } rows[] = {
      {"1;" + std::string(8000, 'e') + "\r\na\r\n0\r\n\r\n", "8059: POST"},
      {"1;" + std::string(9000, 'e') + "\r\na\r\n0\r\n\r\n", "refused 431"},
      {"1;" + std::string(9000, 'e'), "refused 431"},
      {std::string(9000, '0'), "refused 431"},
      {"0\r\nT: " + std::string(9000, 't'), "refused 431"},
      {"0\r\n" + Repeat("T: t\r\n", 1500) + "\r\n", "refused 431"},
      {"0\r\n" + Repeat("T: t\r\n", 1000) + "\r\n", "6052: POST"},
      {"1;" + std::string(6000, 'e') + "\r\na\r\n0;" + std::string(6000, 'e') + "\r\n\r\n",
       "12060: POST"},
  };
  for (const auto& row : rows) {
    const std::string strRead = Read(strHead + row.strBytes);
    EXPECT_EQ(row.strStart, strRead.substr(0, row.strStart.size()));
    EXPECT_EQ(strRead, Read(strHead + row.strBytes, {100, 4000, 8000})) << row.strStart;
  }
}

}  // namespace
