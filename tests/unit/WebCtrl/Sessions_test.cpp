#include "CBB/WebCtrl/Sessions.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

namespace {

constexpr int kPass = 0;
constexpr int kRefuse = -1;
constexpr int32_t kNow = 1700000000;

// Identifiers that differ from each other in every character.
std::string Id(char c) { return std::string(32, c); }

std::string StyleRequest(const std::string& strId, const char* pszSheet = "page.css") {
  return std::string("GET /") + pszSheet + "?time=1 HTTP/1.1\r\nCookie: SessionID=" + strId +
         "\r\n\r\n";
}

int Check(CSessions& sessions, const std::string& strRequest, int32_t nNow = kNow) {
  // An exact copy: a sanitizer detects a read past its end.
  const auto pCopy = std::make_unique<char[]>(strRequest.size());
  memcpy(pCopy.get(), strRequest.data(), strRequest.size());
  return sessions.CheckSession({pCopy.get(), strRequest.size()}, nNow);
}

TEST(CheckSession, LooksOnlyAtStyleSheetsWithATime) {
  const struct {
    const char* pszRequest;
    int nExpected;
  } rows[] = {
      {"", kPass},
      {"GET / HTTP/1.1\r\n\r\n", kPass},
      {"GET /other.css?time=1 HTTP/1.1\r\n\r\n", kPass},
      {"GET /other.css?time=1&SessionID=x HTTP/1.1\r\n\r\n", kPass},
      {"GET /page.css HTTP/1.1\r\n\r\n", kPass},
      {"GET /PAGE.CSS?time=1 HTTP/1.1\r\n\r\n", kPass},
      {"GET /page.css?TIME=1 HTTP/1.1\r\n\r\n", kPass},
      {"GET /page.css?time=1 HTTP/1.1\r\n\r\n", kRefuse},
      {"GET /sets.css?time=1 HTTP/1.1\r\n\r\n", kRefuse},
      {"GET /page.css?time=1&sessionid=x HTTP/1.1\r\n\r\n", kRefuse},
      // The words count wherever they are.
      {"GET /a HTTP/1.1\r\nReferer: /page.css\r\nX: time\r\n\r\n", kRefuse},
      {"POST /a HTTP/1.1\r\n\r\nsets.css time", kRefuse},
  };
  for (const auto& row : rows) {
    CSessions sessions;
    EXPECT_EQ(row.nExpected, Check(sessions, row.pszRequest)) << row.pszRequest;
    sessions.AddSession(Id('a').c_str(), kNow);
    EXPECT_EQ(row.nExpected, Check(sessions, row.pszRequest)) << row.pszRequest;
  }
}

TEST(CheckSession, PassesAnyIdentifierWhileThereIsNoSession) {
  CSessions sessions;
  EXPECT_EQ(kPass, Check(sessions, StyleRequest(Id('a'))));
  EXPECT_EQ(kPass, Check(sessions, StyleRequest("")));
  EXPECT_EQ(kPass, Check(sessions, "page.css time SessionID"));
}

TEST(CheckSession, WantsAKnownIdentifierOnceThereIsASession) {
  CSessions sessions;
  sessions.AddSession("0123456789abcdef0123456789abcdef", kNow);
  const struct {
    const char* pszText;
    int nExpected;
  } rows[] = {
      {"SessionID=0123456789abcdef0123456789abcdef", kPass},
      {"SessionID:0123456789abcdef0123456789abcdef", kPass},    // any one separator
      {"SessionID=0123456789abcdef0123456789abcdefXY", kPass},  // only 32 characters count
      {"SessionID=0123456789ABCDEF0123456789ABCDEF", kRefuse},
      {"SessionID= 0123456789abcdef0123456789abcdef", kRefuse},
      {"SessionID=1123456789abcdef0123456789abcdef", kRefuse},
      {"SessionID=0123456789abcdef0123456789abcdee", kRefuse},
      {"SessionID=0123456789abcdef0123456789abcde", kRefuse},  // cut short by the text's end
      {"SessionID=0", kRefuse},
      {"SessionID=", kRefuse},
      {"SessionID", kRefuse},
      {"SessionI", kRefuse},
      // The first key counts.
      {"SessionID=x SessionID=0123456789abcdef0123456789abcdef", kRefuse},
  };
  for (const auto& row : rows) {
    const std::string strRequest = std::string("GET /page.css?time=1 ") + row.pszText;
    EXPECT_EQ(row.nExpected, Check(sessions, strRequest)) << row.pszText;
    EXPECT_EQ(1U, sessions.Count());
  }
}

TEST(CheckSession, FindsAnIdentifierBehindZeroBytes) {
  CSessions sessions;
  sessions.AddSession(Id('a').c_str(), kNow);
  const std::string strZero(1, '\0');
  EXPECT_EQ(kPass, Check(sessions, strZero + StyleRequest(Id('a'))));
  EXPECT_EQ(kRefuse, Check(sessions, strZero + StyleRequest(Id('b'))));
  EXPECT_EQ(kRefuse, Check(sessions, StyleRequest(std::string(16, 'a') + strZero)));
}

TEST(CheckSession, RenewsUpTo1800SecondsAndRemovesBeyond) {
  CSessions sessions;
  sessions.AddSession(Id('a').c_str(), kNow);
  const std::string strRequest = StyleRequest(Id('a'), "sets.css");
  EXPECT_EQ(kPass, Check(sessions, strRequest, kNow + 1800));
  EXPECT_EQ(kPass, Check(sessions, strRequest, kNow + 3600));
  EXPECT_EQ(kRefuse, Check(sessions, strRequest, kNow + 3600 + 1801));
  EXPECT_EQ(0U, sessions.Count());
  sessions.AddSession(Id('b').c_str(), kNow);
  EXPECT_EQ(kRefuse, Check(sessions, strRequest, kNow));
}

TEST(CheckSession, TakesAClockSetBackForAFreshSession) {
  CSessions sessions;
  sessions.AddSession(Id('a').c_str(), INT32_MAX);
  EXPECT_EQ(kPass, Check(sessions, StyleRequest(Id('a')), INT32_MIN));
  EXPECT_EQ(kRefuse, Check(sessions, StyleRequest(Id('a')), INT32_MAX));
}

TEST(CheckSession, RemovesOnlyTheOldestOfEqualIdentifiers) {
  CSessions sessions;
  sessions.AddSession(Id('a').c_str(), kNow);
  sessions.AddSession(Id('a').c_str(), kNow + 1000);
  EXPECT_EQ(2U, sessions.Count());
  EXPECT_EQ(kRefuse, Check(sessions, StyleRequest(Id('a')), kNow + 1801));
  EXPECT_EQ(1U, sessions.Count());
  EXPECT_EQ(kPass, Check(sessions, StyleRequest(Id('a')), kNow + 2800));
}

TEST(CheckSession, RenewsOnlyTheOldestOfEqualIdentifiers) {
  CSessions sessions;
  sessions.AddSession(Id('a').c_str(), kNow);
  sessions.AddSession(Id('a').c_str(), kNow);
  EXPECT_EQ(kPass, Check(sessions, StyleRequest(Id('a')), kNow + 1000));
  EXPECT_EQ(kRefuse, Check(sessions, StyleRequest(Id('a')), kNow + 1000 + 1801));
  EXPECT_EQ(1U, sessions.Count());
  EXPECT_EQ(kRefuse, Check(sessions, StyleRequest(Id('a')), kNow + 1801));
  EXPECT_EQ(0U, sessions.Count());
}

TEST(AddSession, KeepsTheNewestFive) {
  CSessions sessions;
  for (char c = 'a'; c <= 'f'; ++c) {
    sessions.AddSession(Id(c).c_str(), kNow);
    EXPECT_EQ(std::min<uint32_t>(static_cast<uint32_t>(c - 'a') + 1, 5), sessions.Count());
  }
  EXPECT_EQ(kRefuse, Check(sessions, StyleRequest(Id('a'))));
  for (char c = 'b'; c <= 'f'; ++c) EXPECT_EQ(kPass, Check(sessions, StyleRequest(Id(c)))) << c;
}

// A renewed session keeps its place in the order of logins.
TEST(AddSession, PushesTheOldestLoginOutEvenIfJustRenewed) {
  CSessions sessions;
  for (char c = 'a'; c <= 'e'; ++c) sessions.AddSession(Id(c).c_str(), kNow);
  EXPECT_EQ(kPass, Check(sessions, StyleRequest(Id('a')), kNow + 5));
  sessions.AddSession(Id('f').c_str(), kNow + 5);
  EXPECT_EQ(kRefuse, Check(sessions, StyleRequest(Id('a')), kNow + 5));
  EXPECT_EQ(kPass, Check(sessions, StyleRequest(Id('b')), kNow + 5));
}

TEST(AddSession, Keeps32Characters) {
  CSessions sessions;
  sessions.AddSession((Id('a') + Id('b') + Id('c')).c_str(), kNow);
  EXPECT_EQ(kPass, Check(sessions, StyleRequest(Id('a') + Id('x'))));
}

}  // namespace
