#include "CBB/Http/HeadRules.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <string>
#include <vector>

namespace {

// A head as a parser would have found it: lines end in CR LF or LF; the texts in the request line
// are between its blanks.
class CHead {
 public:
  explicit CHead(const std::string& strText) : m_strText(strText) {
    const std::string_view text = m_strText;
    m_head.text = text;
    m_head.method = text.substr(0, text.find(' '));
    const size_t nTarget = text.find_first_not_of(' ', m_head.method.size());
    m_head.target = text.substr(nTarget, text.find_first_of(" \r", nTarget) - nTarget);
    m_head.nMinor = text.find("HTTP/1.0") == std::string_view::npos ? 1 : 0;
    std::string_view rest = text.substr(text.find('\n') + 1);
    while (rest.find('\n') != std::string_view::npos) {
      AddLine(rest.substr(0, rest.find('\n')));
      rest.remove_prefix(rest.find('\n') + 1);
    }
    m_head.pFields = m_fields.data();
    m_head.nFields = m_fields.size();
  }

  const stHead& Get() const { return m_head; }

 private:
  void AddLine(std::string_view line) {
    const size_t nColon = line.find(':');
    if (nColon == std::string_view::npos) return;
    const std::string_view name = line.substr(0, nColon);
    std::string_view value = line.substr(nColon + 1);
    const size_t nFirst = value.find_first_not_of(" \t\r");
    value = nFirst == std::string_view::npos ? "" : value.substr(nFirst);
    value = value.substr(0, value.find_last_not_of(" \t\r") + 1);
    m_fields.push_back({name, value});
    if (IsSameName(name, "Content-Length")) {
      m_head.bHasLength = true;
      m_head.nLength = std::stoull(std::string(value));
    }
    const bool bCoding = IsSameName(name, "Transfer-Encoding");
    if (bCoding) m_head.bChunked = value.size() >= 7 && value.substr(value.size() - 7) == "chunked";
  }

  std::string m_strText;
  std::vector<stFieldLine> m_fields;
  stHead m_head;
};

TEST(JudgeHead, RefusesWhatMayNotBeCarriedOut) {
  const struct {
    const char* pszLine;
    const char* pszFields;
    int nStatus;
  } rows[] = {
      {"GET / HTTP/1.1", "", 0},
      {"GET / HTTP/1.0", "", 0},
      {"GET /a?b=c HTTP/1.1", "Host: recorder:8080\r\nA:\r\n", 0},
      {"DELETE /a HTTP/1.1", "", 0},
      {"GET /a HTTP/1.1", "Content-Length: 5\r\n", 0},
      // Request lines.
      {"GET  / HTTP/1.1", "", 400},
      {"GET /  HTTP/1.1", "", 400},
      {"GET / HTTP/1.1 ", "", 400},
      {"GET / RTSP/1.1", "", 400},
      {"CONNECT recorder:80 HTTP/1.1", "", 501},
      {"PRI * HTTP/1.1", "", 501},
      {"SOURCE /a HTTP/1.1", "", 501},
      // Targets.
      {"OPTIONS * HTTP/1.1", "", 0},
      {"GET * HTTP/1.1", "", 400},
      {"OPTIONS *a HTTP/1.1", "", 400},
      {"GET http://recorder/a HTTP/1.1", "", 0},
      {"GET HTTPS://recorder?a HTTP/1.1", "", 0},
      {"GET http://recorder HTTP/1.1", "", 0},
      {"GET http:///a HTTP/1.1", "", 400},
      {"GET http://me@recorder/ HTTP/1.1", "", 400},
      {"GET http://recorder/me@home HTTP/1.1", "", 0},
      {"GET ftp://recorder/ HTTP/1.1", "", 400},
      {"GET recorder:80 HTTP/1.1", "", 400},
      {"GET a HTTP/1.1", "", 400},
      {"GET /a#b HTTP/1.1", "", 400},
      // Lines.
      {"GET / HTTP/1.1", "A: b\n", 400},
      {"GET / HTTP/1.1", "A: b\r\n c\r\n", 400},
      {"GET / HTTP/1.1", "A: b\r\n\tc\r\n", 400},
      {"GET / HTTP/1.1", " A: b\r\n", 400},
      {"GET / HTTP/1.1", ": b\r\n", 400},
      // Hosts.
      {"GET / HTTP/1.1", "Host:\r\n", 0},
      {"GET / HTTP/1.1", "Host: [::1]:80\r\n", 0},
      {"GET / HTTP/1.1", "Host: a\r\nHost: a\r\n", 400},
      {"GET / HTTP/1.1", "Host: a\r\nhOST: b\r\n", 400},
      {"GET / HTTP/1.1", "Host: a b\r\n", 400},
      {"GET / HTTP/1.1", "Host: a\tb\r\n", 400},
      {"GET / HTTP/1.1", "Host: a/b\r\n", 400},
      {"GET / HTTP/1.1", "Host: me@a\r\n", 400},
      {"GET / HTTP/1.1", "Host: a?b\r\n", 400},
      {"GET / HTTP/1.1", "Host: a, b\r\n", 400},
      // Bodies.
      {"POST / HTTP/1.1", "", 411},
      {"PUT / HTTP/1.1", "", 411},
      {"PATCH / HTTP/1.1", "", 0},
      {"POST / HTTP/1.1", "Content-Length: 0\r\n", 0},
      {"POST / HTTP/1.1", "Content-Length: 1048576\r\n", 0},
      {"POST / HTTP/1.1", "Content-Length: 1048577\r\n", 413},
      {"POST / HTTP/1.1", "Content-Length: 18446744073709551615\r\n", 413},
      // Codings.
      {"POST / HTTP/1.1", "Transfer-Encoding: chunked\r\n", 0},
      {"GET / HTTP/1.1", "transfer-encoding: chunked\r\n", 0},
      {"POST / HTTP/1.0", "Transfer-Encoding: chunked\r\n", 400},
      {"POST / HTTP/1.1", "Transfer-Encoding: chunked\r\nContent-Length: 1\r\n", 400},
      {"POST / HTTP/1.1", "Transfer-Encoding: chunked, chunked\r\n", 400},
      {"POST / HTTP/1.1", "Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n", 400},
      {"POST / HTTP/1.1", "Transfer-Encoding: , chunked\r\n", 400},
      {"POST / HTTP/1.1", "Transfer-Encoding:\r\n", 400},
      {"POST / HTTP/1.1", "Transfer-Encoding: gzip, chunked\r\n", 501},
      {"POST / HTTP/1.1", "Transfer-Encoding: chunked, gzip\r\n", 501},
      {"POST / HTTP/1.1", "Transfer-Encoding: identity\r\n", 501},
      {"POST / HTTP/1.1", "Transfer-Encoding: xchunked\r\n", 501},
      // Expectations.
      {"GET / HTTP/1.1", "Expect: 100-Continue\r\n", 0},
      {"GET / HTTP/1.1", "Expect: more\r\n", 417},
      {"GET / HTTP/1.1", "Expect: 100-continue\r\nExpect: more\r\n", 417},
      {"GET / HTTP/1.0", "Expect: more\r\n", 0},
      {"POST / HTTP/1.1", "Expect: more\r\n", 411},
      {"GET / HTTP/1.1", "Expect: more\r\nHost: a\r\nHost: b\r\n", 400},
  };
  for (const auto& row : rows) {
    const std::string strText = std::string(row.pszLine) + "\r\n" + row.pszFields + "\r\n";
    EXPECT_EQ(row.nStatus, JudgeHead(CHead(strText).Get())) << strText;
  }
}

TEST(JudgeHead, TakesTheBytesThatAHostMayHave) {
  for (int nByte = '!'; nByte <= 0xFF; ++nByte) {
    const bool bTaken = nByte < 0x80 && (isalnum(nByte) || strchr("-._~%!$&'()*+,;=:[]", nByte));
    const std::string strHost = std::string("a") + static_cast<char>(nByte) + "b";
    const CHead head("GET / HTTP/1.1\r\nHost: " + strHost + "\r\n\r\n");
    EXPECT_EQ(bTaken ? 0 : 400, JudgeHead(head.Get())) << nByte;
  }
}

// The fields and the parser's plan must agree.
TEST(JudgeHead, RefusesABodyThatTheParserTakesForAnother) {
  const CHead chunks("POST / HTTP/1.1\r\nContent-Length: 1\r\n\r\n");
  stHead head = chunks.Get();
  head.bChunked = true;
  EXPECT_EQ(400, JudgeHead(head));
  const CHead coded("POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n");
  head = coded.Get();
  head.bChunked = false;
  EXPECT_EQ(400, JudgeHead(head));
}

TEST(JudgeUnknownMethod, TellsItFromTheFirstBytesThatDecide) {
  const struct {
    const char* pszLine;
    size_t nDeciding;  // bytes; 0: not tried byte by byte
    int nStatus;
  } rows[] = {
      {"", 0, 0},
      {"FOO /a HTTP/1.1\r", 0, 0},
      {"FOO /a HTTP/1.1\r\n", 17, 501},
      {"FOO /a HTTP/1.0\r\n", 17, 501},
      {"FOO /a HTTP/1.1\r\nGET /", 17, 501},
      {"get /a HTTP/1.1\r\n", 17, 501},
      {"F!-~ * HTTP/1.1\r\n", 17, 501},
      {"FOO /a HTTP/2.0\r\n", 17, 505},
      {"FOO /a HTTP/0.9\r\n", 17, 400},
      {"FOO /a HTTP/1.1\n", 16, 400},
      {"FOO /a HTTP/1.1\rX", 17, 400},
      {"FOO /a HTTP/1.1 \r\n", 16, 400},
      {"FOO /a HTTP/1.10\r\n", 16, 400},
      {"FOO /a HTTP/x.1\r\n", 13, 400},
      {"FOO /a HTTQ/1.1\r\n", 11, 400},
      {"FOO /a http/1.1\r\n", 8, 400},
      {"FOO /a\r\n", 7, 400},
      {"FOO /a\t", 7, 400},
      {"FOO /\x7F", 6, 400},
      {"FOO  /a HTTP/1.1\r\n", 5, 400},
      {"FOO\t/a", 4, 400},
      {"FOO\r\n", 4, 400},
      {"F(O /a", 2, 400},
      {" FOO /a", 1, 400},
      {"\x16\x03\x01", 1, 400},
      {"\xFFOO", 1, 400},
  };
  for (const auto& row : rows) {
    const std::string_view line = row.pszLine;
    for (size_t n = 0; n <= line.size(); ++n) {
      const bool bDecides = row.nDeciding > 0 && n >= row.nDeciding;
      EXPECT_EQ(bDecides ? row.nStatus : 0, JudgeUnknownMethod(line.substr(0, n)))
          << line << ", " << n << " bytes";
    }
  }
}

TEST(KeepsOpen, FollowsTheConnectionLinesOrTheVersion) {
  const struct {
    const char* pszVersion;
    const char* pszFields;
    bool bKeeps;
  } rows[] = {
      {"HTTP/1.1", "", true},
      {"HTTP/1.0", "", false},
      {"HTTP/1.1", "Connection: close\r\n", false},
      {"HTTP/1.1", "Connection: \tCLOSE \t\r\n", false},
      {"HTTP/1.1", "Connection: a, close\r\n", false},
      {"HTTP/1.1", "Connection: a ,\tclose,b\r\n", false},
      {"HTTP/1.1", "Connection: keep-alive\r\nConnection: close\r\n", false},
      {"HTTP/1.1", "Connection: closed\r\n", true},
      {"HTTP/1.1", "Connection: not close\r\n", true},
      {"HTTP/1.1", "X-Connection: close\r\n", true},
      {"HTTP/1.1", "Proxy-Connection: close\r\n", true},
      {"HTTP/1.0", "Connection: Keep-Alive\r\n", true},
      {"HTTP/1.0", "Connection: a, keep-alive\r\n", true},
      {"HTTP/1.0", "Connection: keep-alive, close\r\n", false},
      {"HTTP/1.0", "Proxy-Connection: keep-alive\r\n", false},
      {"HTTP/1.0", "Keep-Alive: timeout=5\r\n", false},
  };
  for (const auto& row : rows) {
    const std::string strText =
        std::string("GET / ") + row.pszVersion + "\r\n" + row.pszFields + "\r\n";
    EXPECT_EQ(row.bKeeps, KeepsOpen(CHead(strText).Get())) << strText;
  }
}

TEST(AreLinesWhole, TakesOnlyLinesThatEndInCrLf) {
  const struct {
    const char* pszText;
    bool bWhole;
  } rows[] = {{"", true},
              {"a", true},
              {"\r\n", true},
              {"a\r\nb\r\n", true},
              {"a\r\n\r\n", true},
              {"\n", false},
              {"a\n", false},
              {"a\r\nb\n", false},
              {"a\r\n\n", false},
              {"a\r\n b\r\n", false},
              {"a\r\n\tb\r\n", false},
              {"a\r\n:b\r\n", false}};
  for (const auto& row : rows) EXPECT_EQ(row.bWhole, AreLinesWhole(row.pszText)) << row.pszText;
}

TEST(HasListElement, ComparesWholeElements) {
  const struct {
    const char* pszList;
    bool bHas;
  } rows[] = {{"gzip", true},     {"GZip", true},    {"a,gzip", true},   {"a, gzip , b", true},
              {"\tgzip\t", true}, {",,gzip", true},  {"", false},        {",", false},
              {"gzipped", false}, {"a gzip", false}, {"gzip;q=0", false}};
  for (const auto& row : rows)
    EXPECT_EQ(row.bHas, HasListElement(row.pszList, "gzip")) << row.pszList;
}

TEST(IsSameName, LooksAtAllLettersWhateverTheirCase) {
  const struct {
    const char* pszOne;
    const char* pszOther;
    bool bSame;
  } rows[] = {{"", "", true},
              {"Host", "hOST", true},
              {"Host", "Hos", false},
              {"Host", "Hosts", false},
              {"A-B", "a_b", false}};
  for (const auto& row : rows) {
    EXPECT_EQ(row.bSame, IsSameName(row.pszOne, row.pszOther)) << row.pszOne << row.pszOther;
  }
}

TEST(PathBegin, IsBehindSchemeAndHost) {
  const struct {
    const char* pszTarget;
    size_t nBegin;
  } rows[] = {{"", 0},           {"/", 0},
              {"/a://b/c", 0},   {"*", 0},
              {"http://h/a", 8}, {"http://h:80", 11},
              {"http://h?a", 8}, {"https://h//a", 9},
              {"a", 0}};
  for (const auto& row : rows) EXPECT_EQ(row.nBegin, PathBegin(row.pszTarget)) << row.pszTarget;
}

}  // namespace
