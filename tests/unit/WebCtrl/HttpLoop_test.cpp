#include "CBB/WebCtrl/HttpLoop.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "CBB/WebCtrl/HttpOptions.h"
#include "CBB/WebCtrl/WebCtrl.h"
#include "tests/unit/Http/Loopback.h"
#include "tests/unit/WebCtrl/Device.h"
#include "tests/unit/WebCtrl/HttpConn.h"
#include "tests/unit/control/NetSpace.h"

// The loop's failure paths leave the manager behind; nothing else may leak.
extern "C" const char* __lsan_default_suppressions() { return "leak:RunHttpLoop\n"; }

namespace {

constexpr char kNeedsNetSpace[] = "no private network namespace";
constexpr char kGet[] = "GET /get_cpu_usage HTTP/1.1\r\n\r\n";

size_t CountReplies(const std::string& strSent) {
  size_t nReplies = 0;
  for (std::string strRest = strSent; !strRest.empty(); ++nReplies) {
    strRest = TakeReply(strRest).strRest;
  }
  return nReplies;
}

std::string PostHead(const std::string& strHeaders) {
  return "POST /get_cpu_usage HTTP/1.1\r\n" + strHeaders + "\r\n";
}

TEST(HttpEvent, AnswersWholeRequestsAndNoOthers) {
  const struct {
    std::string strBytes;
    size_t nReplies;
  } rows[] = {
      {kGet, 1},
      {std::string(kGet) + kGet, 2},
      {PostHead("Content-Length: 3\r\n") + "a=1", 1},
      {PostHead("Content-Length: 3\r\n") + "a=1" + kGet, 2},
      {PostHead("Content-Length: 0\r\n"), 1},
      {PostHead("Content-Length: 4\r\n") + "a=1", 0},
      {PostHead("Transfer-Encoding: chunked\r\n") + "3\r\na=1\r\n0\r\n\r\n", 1},
      {PostHead("Transfer-Encoding: chunked\r\n") + "3\r\na=1\r\n", 0},
      {"GET /get_cpu_usage HTTP/1.1\r\n", 0},
  };
  CTestServer server(&HttpEvent);
  for (const auto& row : rows) {
    EXPECT_EQ(row.nReplies, CountReplies(Exchange(server, row.strBytes))) << row.strBytes;
  }
}

TEST(HttpEvent, KeepsTheNextRequestOutOfTheBody) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    CDevice device([](const std::string&) { return R"(<VariCfgSec Action="" Result="1"/>)"; });
    CWebCtrl::Instance().SetDevice("127.0.0.1", device.Port());
    CTestServer server(&HttpEvent);
    EXPECT_EQ(2U, CountReplies(Exchange(server, Post("/set_LangInfo", "strLanguage=CN") + kGet)));
    EXPECT_EQ(std::vector<std::string>{R"(<VariCfgSec Action="DEVICE_SET"><stDisplay)"
                                       R"( strLanguage="CN" /></VariCfgSec>)"},
              device.Requests());
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

TEST(HttpEvent, PrintsTheTwoSettingsOfIncludeCalls) {
  const struct {
    const char* pszParameter;
    const char* pszPrinted;
  } rows[] = {{"setting1", "value1"}, {"setting2", "value2"}, {"setting3", ""},
              {"SETTING1", ""},       {"setting1 ", ""},      {"", ""}};
  for (const auto& row : rows) {
    CHttpConn conn;
    std::string strParameter = row.pszParameter;
    HttpEvent(conn.Get(), 105, strParameter.data());
    EXPECT_EQ(row.pszPrinted, conn.Sent()) << row.pszParameter;
  }
}

TEST(HttpEvent, IgnoresEveryOtherEvent) {
  CHttpConn conn;
  char szData[] = "setting1";
  for (int nEvent = 0; nEvent < 200; ++nEvent) {
    if (nEvent != 100 && nEvent != 105) HttpEvent(conn.Get(), nEvent, szData);
  }
  EXPECT_EQ("", conn.Sent());
  EXPECT_EQ(0U, conn.Get()->flags);
}

std::string ErrorsOfLoop(const char* pszWebRoot) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(-1, RunHttpLoop(pszWebRoot));
  return testing::internal::GetCapturedStderr();
}

TEST(RunHttpLoop, EndsWhenTheWebRootIsMissing) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    EXPECT_EQ("Cannot find web_root directory, exiting\n", ErrorsOfLoop("/no/such/folder"));
    EXPECT_STREQ("/no/such/folder", HttpOptions().document_root);
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

TEST(RunHttpLoop, EndsWhenThePortIsTaken) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    const int nSock = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(80);
    EXPECT_EQ(0, bind(nSock, reinterpret_cast<sockaddr*>(&addr), sizeof(addr)));
    EXPECT_EQ(0, listen(nSock, 1));
    EXPECT_EQ("Cannot bind to 80\n", ErrorsOfLoop("/"));
    close(nSock);
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

}  // namespace
