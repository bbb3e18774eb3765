#include "CBB/Http/Request.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "CBB/Http/HeadRules.h"
#include "tests/unit/Http/ParsedRequest.h"
#include "tests/unit/Http/Reading.h"

namespace {

constexpr char kChunked[] = "POST /a HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n";

// The beginning of the description of a request that consists of all the bytes.
std::string AllOf(std::string_view bytes) { return std::to_string(bytes.size()) + ": "; }

TEST(Request, TakesWholeRequestsOfEveryKind) {
  const struct {
    const char* pszBytes;
    const char* pszRead;
  } rows[] = {
      {"GET / HTTP/1.1\r\n\r\n", "GET / - HTTP/1.1  -;"},
      {"GET / HTTP/1.0\r\n\r\n", "GET / - HTTP/1.0  -; closes"},
      {"GET / HTTP/1.9\r\n\r\n", "GET / - HTTP/1.9  -;"},
      {"GET /a?b=c&d HTTP/1.1\r\nHost: x\r\n\r\n", "GET /a b=c&d HTTP/1.1 {Host=x} -;"},
      {"GET /a? HTTP/1.1\r\n\r\n", "GET /a - HTTP/1.1  -;"},
      {"GET /a??b HTTP/1.1\r\n\r\n", "GET /a ?b HTTP/1.1  -;"},
      // Methods.
      {"HEAD /a HTTP/1.1\r\n\r\n", "HEAD /a - HTTP/1.1  -; head"},
      {"DELETE /a HTTP/1.1\r\n\r\n", "DELETE /a - HTTP/1.1  -;"},
      {"OPTIONS * HTTP/1.1\r\n\r\n", "OPTIONS * - HTTP/1.1  -;"},
      {"M-SEARCH /a HTTP/1.1\r\n\r\n", "M-SEARCH /a - HTTP/1.1  -;"},
      // Absolute targets.
      {"GET http://h/a?b HTTP/1.1\r\n\r\n", "GET /a b HTTP/1.1  -;"},
      {"GET http://h HTTP/1.1\r\n\r\n", "GET / - HTTP/1.1  -;"},
      {"GET http://h?b HTTP/1.1\r\n\r\n", "GET / b HTTP/1.1  -;"},
      // Fields.
      {"GET / HTTP/1.1\r\nA:b\r\nC: \td e\tf \t\r\n\r\n", "GET / - HTTP/1.1 {A=b}{C=d e\tf} -;"},
      {"GET / HTTP/1.1\r\nA:\r\nB: \r\nC: d\r\n\r\n", "GET / - HTTP/1.1 {C=d} -;"},
      {"GET / HTTP/1.1\r\nA: b:c\r\nA: d\r\n\r\n", "GET / - HTTP/1.1 {A=b:c}{A=d} -;"},
      {"GET / HTTP/1.1\r\nA: \xFF\x80\r\n\r\n", "GET / - HTTP/1.1 {A=\xFF\x80} -;"},
      {"GET / HTTP/1.1\r\nUpgrade: h2c\r\nConnection: Upgrade\r\n\r\n",
       "GET / - HTTP/1.1 {Upgrade=h2c}{Connection=Upgrade} -;"},
      {"GET / HTTP/1.1\r\nConnection: a, close\r\n\r\n",
       "GET / - HTTP/1.1 {Connection=a, close} -; closes"},
      {"GET / HTTP/1.0\r\nConnection: Keep-Alive\r\n\r\n",
       "GET / - HTTP/1.0 {Connection=Keep-Alive} -;"},
      // Bodies with a length.
      {"POST / HTTP/1.1\r\nContent-Length: 0\r\n\r\n", "POST / - HTTP/1.1 {Content-Length=0} -;"},
      {"POST / HTTP/1.1\r\nContent-Length: 3\r\n\r\na=1",
       "POST / - HTTP/1.1 {Content-Length=3} a=1;"},
      {"POST / HTTP/1.1\r\nContent-Length: \t003 \r\n\r\na=1",
       "POST / - HTTP/1.1 {Content-Length=003} a=1;"},
      {"GET / HTTP/1.1\r\nContent-Length: 2\r\n\r\n\r\n",
       "GET / - HTTP/1.1 {Content-Length=2} \r\n;"},
      {"POST / HTTP/1.1\r\nExpect: 100-continue\r\nContent-Length: 1\r\n\r\na",
       "POST / - HTTP/1.1 {Expect=100-continue}{Content-Length=1} a; awaits a sign"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(AllOf(row.pszBytes) + row.pszRead, ReadHoweverCut(row.pszBytes));
  }
}

TEST(Request, KeepsAsManyFieldsAsItMayHave) {
  std::string strBytes = "GET / HTTP/1.1\r\n", strFields;
  for (size_t i = 0; i < kMaxFieldLines; ++i) {
    const std::string strName = "Name" + std::to_string(i), strValue = std::to_string(i * i);
    strBytes += strName + ": " + strValue + "\r\n";
    strFields += "{" + strName + "=" + strValue + "}";
  }
  strBytes += "\r\n";
  EXPECT_EQ(AllOf(strBytes) + "GET / - HTTP/1.1 " + strFields + " -;", Read(strBytes));
}

TEST(Request, FreesABodyOfItsChunks) {
  const struct {
    const char* pszBody;
    const char* pszRead;
  } rows[] = {
      {"0\r\n\r\n", "-"},
      {"3\r\na=1\r\n0\r\n\r\n", "a=1"},
      {"1\r\na\r\n2\r\n=1\r\n0\r\n\r\n", "a=1"},
      {"00000A\r\n0123456789\r\n000\r\n\r\n", "0123456789"},
      {"a\r\n0123456789\r\n0\r\n\r\n", "0123456789"},
      {"2\r\n\r\n\r\n0\r\n\r\n", "\r\n"},
      {"3;a\r\na=1\r\n0;b=c\r\n\r\n", "a=1"},
      {"3;a=\"b;c\"\r\na=1\r\n0\r\n\r\n", "a=1"},
      {"3\r\na=1\r\n0\r\nA: b\r\nContent-Length: 9\r\n\r\n", "a=1"},
      {"5\r\n0\r\n\r\n\r\n0\r\n\r\n", "0\r\n\r\n"},
  };
  for (const auto& row : rows) {
    const std::string strBytes = std::string(kChunked) + row.pszBody;
    EXPECT_EQ(
        AllOf(strBytes) + "POST /a - HTTP/1.1 {Transfer-Encoding=chunked} " + row.pszRead + ";",
        ReadHoweverCut(strBytes));
  }
}

TEST(Request, WaitsForTheRest) {
  const struct {
    const char* pszBytes;
    const char* pszRead;
  } rows[] = {
      {"", "partial"},
      {"\r", "partial"},
      {"G", "partial"},
      {"GET / HTTP/1.1\r\n\r", "partial"},
      {"FOO / HTTP/1.1\r", "partial"},
      {"POST / HTTP/1.1\r\nContent-Length: 3\r\n\r\na=", "partial"},
      {"POST / HTTP/1.1\r\nExpect: 100-continue\r\nContent-Length: 3\r\n\r", "partial"},
      {"POST / HTTP/1.1\r\nExpect: 100-Continue\r\nContent-Length: 3\r\n\r\n",
       "partial, awaits a sign"},
      {"POST / HTTP/1.1\r\nExpect: 100-continue\r\nTransfer-Encoding: chunked\r\n\r\n1",
       "partial, awaits a sign"},
      {"POST / HTTP/1.0\r\nExpect: 100-continue\r\nContent-Length: 3\r\n\r\n", "partial"},
  };
  for (const auto& row : rows) EXPECT_EQ(row.pszRead, ReadHoweverCut(row.pszBytes));
  for (const char* pszRest : {"", "3", "3\r\na=1", "3\r\na=1\r\n0\r\n", "0\r\nA: b\r\n"}) {
    EXPECT_EQ("partial", ReadHoweverCut(std::string(kChunked) + pszRest));
  }
}

TEST(Request, IsReadAnewOnceItWasForgotten) {
  CRequest request;
  EXPECT_EQ(0U, request.Held());
  EXPECT_EQ(Reading::kRefused, request.Read("POST / HTTP/1.1\r\n\r\n"));
  request.Clear();
  EXPECT_EQ(Reading::kPartial, request.State());
  EXPECT_EQ(Reading::kPartial, request.Read("POST / HTTP"));
  request.Clear();
  EXPECT_EQ(Reading::kWhole, request.Read("HEAD / HTTP/1.1\r\n\r\n"));
  EXPECT_EQ(19U, request.Length());
  EXPECT_LT(0U, request.Held());
  request.Clear();
  EXPECT_EQ(0U, request.Held());
}

TEST(Request, HoldsTheBodyThatItFreesOfItsChunks) {
  CRequest request;
  const std::string strHead = kChunked;
  request.Read(strHead);
  const size_t nBefore = request.Held();
  request.Read(strHead + "186A0\r\n" + std::string(100000, 'a'));
  EXPECT_LE(nBefore + 100000, request.Held());
}

TEST(Request, GivesTheLibraryAPathThatItMayWriteTo) {
  CParsedRequest request("GET http://recorder HTTP/1.1\r\n\r\n");
  const mg_str& uri = request.Get()->uri;
  const_cast<char*>(uri.p)[0] = '/';
  EXPECT_EQ("/", std::string(uri.p, uri.len));
}

TEST(EmptyLines, AreCountedInFrontOfARequest) {
  const struct {
    const char* pszBytes;
    size_t nBytes;
  } rows[] = {{"", 0},       {"\r", 0},          {"\r\n", 2}, {"\r\n\r\nGET", 4},
              {"\r\n\r", 2}, {"GET\r\n\r\n", 0}, {"\n", 0},   {"\n\r\n", 0}};
  for (const auto& row : rows) EXPECT_EQ(row.nBytes, EmptyLines(row.pszBytes)) << row.pszBytes;
}

// Pieces that the request parser must handle, good and bad.
constexpr const char* kPieces[] = {"GET ",
                                   "POST ",
                                   "FOO ",
                                   "/a",
                                   "http://h",
                                   "?",
                                   " HTTP/1.1",
                                   " HTTP/1.0",
                                   " HTTP/2.0",
                                   "\r\n",
                                   "\r\n",
                                   "\n",
                                   "\r",
                                   " ",
                                   "\t",
                                   ":",
                                   ";",
                                   "\xFF",
                                   "Content-Length: 5",
                                   "Content-Length: -1",
                                   "Content-Length: 18446744073709551616",
                                   "Transfer-Encoding: chunked",
                                   "Transfer-Encoding: gzip",
                                   "Expect: 100-continue",
                                   "Host: x",
                                   "Connection: close",
                                   "5\r\nabcde\r\n",
                                   "0\r\n\r\n",
                                   "FFFFFF\r\n"};

std::string RandomRequest(std::mt19937& random) {
  constexpr const char* kStarts[] = {"", "GET / HTTP/1.1\r\n", "POST / HTTP/1.1\r\n", kChunked};
  std::string strRequest = kStarts[random() % 4];
  for (size_t nPieces = random() % 8; nPieces > 0; --nPieces) {
    strRequest += kPieces[random() % (sizeof(kPieces) / sizeof(kPieces[0]))];
    if (random() % 2 != 0) strRequest += "\r\n";
  }
  if (random() % 4 != 0) strRequest += "\r\n\r\n";
  return strRequest;
}

TEST(Request, IsTheSameHoweverItsBytesAreCut) {
  std::mt19937 random(20160301);
  size_t nWhole = 0, nRefused = 0;
  for (int i = 0; i < 20000; ++i) {
    const std::string strRequest = RandomRequest(random);
    const std::string strRead = Read(strRequest);
    std::vector<size_t> cuts(random() % 4);
    for (size_t& nCut : cuts) nCut = random() % (strRequest.size() + 1);
    std::sort(cuts.begin(), cuts.end());
    ASSERT_EQ(strRead, Read(strRequest, cuts)) << strRequest;
    nWhole += strRead.find(" HTTP/1.") != std::string::npos ? 1 : 0;
    nRefused += strRead.compare(0, 7, "refused") == 0 ? 1 : 0;
  }
  EXPECT_LT(1000U, nWhole);
  EXPECT_LT(1000U, nRefused);
}

}  // namespace
