#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "CBB/WebCtrl/HttpLoop.h"
#include "CBB/WebCtrl/HttpOptions.h"
#include "CBB/WebCtrl/Routes.h"
#include "CBB/WebCtrl/WebCtrl.h"
#include "tests/unit/Http/Loopback.h"
#include "tests/unit/Http/ParsedRequest.h"
#include "tests/unit/WebCtrl/Device.h"
#include "tests/unit/WebCtrl/HttpConn.h"
#include "tests/unit/control/NetSpace.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr char kNeedsNetSpace[] = "no private network namespace";
constexpr char kStart[] = "--------------------------DoHttpRequeset, start.\n";
constexpr char kFile[] = "------------others-------mg_serve_http.\n";

// What one request prints and sends.
struct stOutcome {
  std::string strPrinted;
  std::string strSent;
};

stOutcome Route(CWebCtrl& webCtrl, const std::string& strRequest) {
  CHttpConn conn;
  CParsedRequest request(strRequest);
  testing::internal::CaptureStdout();
  webCtrl.DoHttpRequeset(conn.Get(), request.Get());
  return {testing::internal::GetCapturedStdout(), conn.Sent()};
}

// A folder with one file in it.
class CTempFile {
 public:
  CTempFile(const std::string& strName, const std::string& strText) {
    EXPECT_NE(nullptr, mkdtemp(m_szFolder));
    m_strPath = m_szFolder + ("/" + strName);
    std::ofstream(m_strPath) << strText;
  }
  ~CTempFile() {
    unlink(m_strPath.c_str());
    rmdir(m_szFolder);
  }
  CTempFile(const CTempFile&) = delete;
  CTempFile& operator=(const CTempFile&) = delete;

  const char* Folder() const { return m_szFolder; }

 private:
  char m_szFolder[32] = "/tmp/webctrl_router_XXXXXX";
  std::string m_strPath;
};

// The first line that a handler prints.
std::string EntryLine(const std::string& strName) {
  if (strName == "get_cpu_usage") return "-------------------handle_get_cpu_usage.\n";
  return "FUN:" + strName + ", LINE:";
}

TEST(DoHttpRequeset, RoutesEveryUriToItsHandler) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    // Refuses every set, so that none restarts the service.
    CDevice device([](const std::string&) { return R"(<VariCfgSec Action="" Result="1"><s/>)"; });
    CWebCtrl webCtrl;
    webCtrl.SetDevice("127.0.0.1", device.Port());
    for (const stRoute& route : kRoutes) {
      const std::string strName(route.Name());
      const stOutcome outcome = Route(
          webCtrl, Post("/" + strName + "?time=1", "strLanguage=CN&strFD_CfgPara=<VariCfgSec/>"));
      EXPECT_THAT(outcome.strPrinted, StartsWith(kStart + EntryLine(strName)));
      EXPECT_THAT(outcome.strPrinted, Not(HasSubstr(kFile)));
      EXPECT_THAT(TakeReply(outcome.strSent).Body(),
                  testing::ContainsRegex("\"result\": [0-9]+ }$"))
          << strName;
    }
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

// The plain traces in the output, except those whose line numbers are fixed.
std::vector<std::string> TraceLines(const std::string& strPrinted) {
  std::vector<std::string> lines;
  std::istringstream text(strPrinted);
  for (std::string strLine; std::getline(text, strLine);) {
    const bool bFixed = strLine.rfind("FUN:GetParaInfoByCmd", 0) == 0;
    if (strLine.rfind("FUN:", 0) == 0 && !bFixed) lines.push_back(strLine);
  }
  return lines;
}

TEST(DoHttpRequeset, TracesEveryEntryAndExitWithALineOfItsOwn) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    for (const char* pszReply : {R"(<VariCfgSec Action="" Result="1"><s/>)", "no reply of ours"}) {
      CDevice device([&](const std::string&) { return pszReply; });
      CWebCtrl webCtrl;
      webCtrl.SetDevice("127.0.0.1", device.Port());
      for (const stRoute& route : kRoutes) {
        const std::string strName(route.Name());
        const auto lines = TraceLines(
            Route(webCtrl, Post("/" + strName, "strLanguage=CN&strFD_CfgPara=<VariCfgSec/>"))
                .strPrinted);
        EXPECT_GE(lines.size(), strName == "get_cpu_usage" ? 0U : 2U) << strName;
        const std::set<std::string> distinct(lines.begin(), lines.end());
        EXPECT_EQ(lines.size(), distinct.size()) << testing::PrintToString(lines);
      }
    }
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

// What a request for a file prints and sends; such a reply needs a connection of a server.
stOutcome RouteThroughServer(const std::string& strRequest) {
  CTestServer server(&HttpEvent);
  testing::internal::CaptureStdout();
  const std::string strSent = Exchange(server, strRequest);
  return {testing::internal::GetCapturedStdout(), strSent};
}

TEST(DoHttpRequeset, ServesOtherUrisAsFiles) {
  HttpOptions().document_root = "/no/such/folder";
  for (const char* pszUri :
       {"/", "/GET_LANGINFO", "/get_Langinfo", "/get_LangInfo/", "/get_LangInfoX", "/get_LangInf",
        "//get_LangInfo", "/get%5fLangInfo", "/get_cpu_usag", "/a/get_LangInfo"}) {
    const stOutcome outcome =
        RouteThroughServer(std::string("GET ") + pszUri + " HTTP/1.1\r\n\r\n");
    EXPECT_EQ(std::string(kStart) + kFile, outcome.strPrinted) << pszUri;
    EXPECT_THAT(outcome.strSent, StartsWith("HTTP/1.1 404 Not Found\r\n")) << pszUri;
  }
}

TEST(DoHttpRequeset, SendsTheFileBelowTheDocumentRoot) {
  const CTempFile file("page.css", "body { color: red }");
  HttpOptions().document_root = file.Folder();
  const stOutcome outcome = RouteThroughServer("GET /page.css HTTP/1.1\r\n\r\n");
  EXPECT_EQ(std::string(kStart) + kFile, outcome.strPrinted);
  EXPECT_THAT(outcome.strSent, StartsWith("HTTP/1.1 200 OK\r\n"));
  EXPECT_THAT(outcome.strSent, EndsWith("\r\n\r\nbody { color: red }"));
}

std::string ServedPage(const std::string& strText) {
  const CTempFile file("page.shtml", strText);
  HttpOptions().document_root = file.Folder();
  CTestServer server(&HttpEvent);
  const std::string strSent = Exchange(server, "GET /page.shtml HTTP/1.1\r\n\r\n");
  return strSent.substr(std::min(strSent.find("\r\n\r\n"), strSent.size() - 4) + 4);
}

TEST(DoHttpRequeset, FillsTheSettingsIntoPagesWithCalls) {
  EXPECT_EQ("<p>value1|value2|</p>",
            ServedPage("<p><!--#call setting1 -->|<!--#call setting2 -->|<!--#call other --></p>"));
}

TEST(DoHttpRequeset, LeavesARefusedRequestUnanswered) {
  CWebCtrl webCtrl;
  webCtrl.Sessions().AddSession("0123456789abcdef0123456789abcdef", INT32_MAX);
  const struct {
    const char* pszUri;
    bool bPasses;
  } rows[] = {{"/get_cpu_usage?time=1&SessionID=0123456789abcdef0123456789abcdef", true},
              {"/page.css?time=1&SessionID=1123456789abcdef0123456789abcdef", false},
              {"/page.css?time=1", false},
              // The gate comes before the table.
              {"/get_cpu_usage?page.css&time=1", false}};
  for (const auto& row : rows) {
    const stOutcome outcome =
        Route(webCtrl, std::string("GET ") + row.pszUri + " HTTP/1.1\r\n\r\n");
    if (row.bPasses) {
      EXPECT_EQ(kStart + EntryLine("get_cpu_usage"), outcome.strPrinted) << row.pszUri;
      EXPECT_NE("", outcome.strSent) << row.pszUri;
    } else {
      EXPECT_EQ(std::string(kStart) + "\033[31m\033[1mDoHttpRequeset error!\n\033[0m",
                outcome.strPrinted)
          << row.pszUri;
      EXPECT_EQ("", outcome.strSent) << row.pszUri;
    }
  }
}

TEST(DoHttpRequeset, AnswersTheCpuUsageWithTheGeneratorsNextNumber) {
  CWebCtrl webCtrl;
  for (unsigned uiSeed = 0; uiSeed < 100; ++uiSeed) {
    srand(uiSeed);
    const int nExpected = static_cast<int>(rand() / 2147483647.0 * 100.0);
    srand(uiSeed);
    const stOutcome outcome = Route(webCtrl, "GET /get_cpu_usage HTTP/1.1\r\n\r\n");
    const stReply reply = TakeReply(outcome.strSent);
    EXPECT_EQ((std::vector<std::string>{"{ \"strFD_SSID\": \"new \"",
                                        ", \"result\": " + std::to_string(nExpected) + " }"}),
              reply.chunks);
    EXPECT_EQ("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n", reply.strHead);
    EXPECT_EQ("", reply.strRest);
  }
}

}  // namespace
