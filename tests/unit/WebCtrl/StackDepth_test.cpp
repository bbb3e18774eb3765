// How deep the HTTP server thread's stack gets on each request path, with the inputs that need the
// most stack. Every path runs in its own process and network namespace, over real sockets.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "CBB/WebCtrl/Routes.h"
#include "CBB/WebCtrl/WebCtrl.h"
#include "tests/unit/WebCtrl/Device.h"
#include "tests/unit/WebCtrl/HttpConn.h"
#include "tests/unit/WebCtrl/StackPaint.h"
#include "tests/unit/control/NetSpace.h"

namespace {

constexpr size_t kStackSize = 128 * 1024;
constexpr size_t kSpare = 32 * 1024;
constexpr int kDeepest = 32;   // elements
constexpr int kIncludes = 12;  // deeper than the HTTP library follows
constexpr size_t kLarge = 200000;
constexpr char kLast[] = "GET /get_cpu_usage HTTP/1.1\r\n\r\n";
constexpr char kLastAnswered[] = "\"strFD_SSID\": \"new \"";

struct stPath {
  std::string strName;
  std::string strRequest;
  std::string strDeviceReply;
  std::string strAnswer;  // what shows that the path was completed
};

// A message with the deepest nesting allowed. A short one fits the smallest reply, unclosed; a long
// one has every kind of node at its deepest place.
std::string DeepMessage(const char* pszResult, size_t nPadding) {
  std::string strText = std::string("<VariCfgSec Action=\"\" Result=\"") + pszResult + "\">";
  for (int i = 1; i < kDeepest; ++i) strText += "<a>";
  if (nPadding == 0) return strText;
  strText += "<!-- c --><![CDATA[d]]><?u?>&lt;&#x4E2D;" + std::string(nPadding, 'x');
  for (int i = 1; i < kDeepest; ++i) strText += "</a>";
  return strText + "</VariCfgSec>";
}

// Every form variable that an endpoint reads, over-long.
std::string LongForm() {
  std::string strForm = "ucFD_WorkMode=1";
  for (const char* pszName :
       {"strLanguage", "strFD_DeviceNo", "strFD_CurTime", "strFD_Address", "strFD_SSID",
        "strFD_Passwd", "strFD_Apn", "strFD_LocalIp", "strFD_Mac", "strUserName",
        "strFD_AdminPasswd", "strFD_Manufacturer", "strFD_ServerIp", "strFD_DevicePass"}) {
    strForm += std::string("&") + pszName + "=" + std::string(600, 'x');
  }
  std::string strIds = "*";
  for (int i = 0; i < 20; ++i) strIds += "34020000001320000001*";
  return strForm + "&strFD_LensId=" + strIds + "&strFD_AlarmInId=" + strIds + "&strConfirmPasswd=x";
}

std::vector<stPath> Paths() {
  std::vector<stPath> paths;
  const std::string strRefused = DeepMessage("1", 0);
  for (const stRoute& route : kRoutes) {
    const std::string strName(route.Name());
    paths.push_back({strName, Post("/" + strName, LongForm()) + kLast, strRefused, "result"});
  }
  const std::string strWhole = DeepMessage("1", 29000);
  const std::string strImport = Post("/import_CfgFile", "strFD_CfgPara=" + strWhole) + kLast;
  const std::string strHead = " HTTP/1.1\r\nConnection: close\r\n";
  const std::string strAccepted = "{\"result\": 1 }";
  const std::string strFilled = ", \"result\": 1 }";
  const std::vector<stPath> others = {
      {"get_BaseInfo, long", Post("/get_BaseInfo", "") + kLast, DeepMessage("0", 200), strFilled},
      {"get_LocalNetInfo, long", Post("/get_LocalNetInfo", "") + kLast, DeepMessage("0", 1500),
       strFilled},
      {"get_SystemInfo, long", Post("/get_SystemInfo", "") + kLast, DeepMessage("0", 1500),
       "\"result\": 1 }"},
      {"cmp_UserSecurity, login",
       "GET /cmp_UserSecurity?login.html HTTP/1.1\r\n\r\n" + std::string(kLast),
       DeepMessage("0", 1500), strFilled},
      {"set_LangInfo, accepted", Post("/set_LangInfo", "strLanguage=CN") + kLast,
       DeepMessage("0", 29000), strAccepted},
      {"export_CfgFile, 29 KiB", Post("/export_CfgFile", "") + kLast, strWhole, strFilled},
      {"import_CfgFile, 29 KiB", strImport, strWhole, strAccepted},
      {"import_CfgFile, accepted", strImport, DeepMessage("0", 29000), strAccepted},
      {"import_CfgFile, too deep",
       Post("/import_CfgFile", "strFD_CfgPara=<VariCfgSec>" + DeepMessage("0", 0)) + kLast, "",
       kLastAnswered},
      {"static file", "GET /large.txt" + strHead + "\r\n", "", std::string(kLarge, 'l')},
      {"static file, conditional",
       "GET /large.txt" + strHead + "If-Modified-Since: Wed, 01 Jan 2014 00:00:00 GMT\r\n\r\n", "",
       std::string(kLarge, 'l')},
      {"static file, range", "GET /large.txt" + strHead + "Range: bytes=1-70000\r\n\r\n", "",
       std::string(70000, 'l')},
      {"missing file", "GET /" + std::string(7000, 'a') + strHead + "\r\n", "", "Not Found"},
      {"include, nested", "GET /0.shtml" + strHead + "\r\n", "", "SSI #include level is too deep"},
      {"body of 512 KiB", Post("/set_LangInfo", std::string(512 * 1024, 'a')) + kLast, "",
       strAccepted},
      {"chunked body",
       "POST /set_LangInfo HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n3\r\na=b\r\n0\r\n\r\n", "",
       strAccepted},
  };
  paths.insert(paths.end(), others.begin(), others.end());
  return paths;
}

// Pages that include each other and make calls, and a large file.
void FillWebRoot(const std::string& strFolder) {
  for (int i = 0; i < kIncludes; ++i) {
    std::ofstream(strFolder + "/" + std::to_string(i) + ".shtml")
        << "<p><!--#call setting1 --><!--#include file=\"" << i + 1 << ".shtml\" --></p>";
  }
  std::ofstream(strFolder + "/" + std::to_string(kIncludes) + ".shtml") << "bottom";
  std::ofstream(strFolder + "/large.txt") << std::string(kLarge, 'l');
}

int Connect() {
  sockaddr_in addr{};
  addr.sin_family = AF_INET;
  addr.sin_port = htons(80);
  addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  for (int nTry = 0; nTry < 500; ++nTry) {
    const int nSock = socket(AF_INET, SOCK_STREAM, 0);
    if (connect(nSock, reinterpret_cast<sockaddr*>(&addr), sizeof(addr)) == 0) return nSock;
    close(nSock);
    usleep(10000);
  }
  return -1;
}

// Sends the request and reads until the connection ends or the closing request is answered.
std::string Ask(const std::string& strRequest) {
  const int nSock = Connect();
  size_t nSent = 0;
  while (nSent < strRequest.size()) {
    const ssize_t nPart = send(nSock, strRequest.data() + nSent, strRequest.size() - nSent, 0);
    if (nPart <= 0) break;
    nSent += static_cast<size_t>(nPart);
  }
  if (strRequest.find(kLast) == std::string::npos) shutdown(nSock, SHUT_WR);
  std::string strReply;
  std::vector<char> part(65536);
  while (strReply.find(kLastAnswered) == std::string::npos) {
    const ssize_t nPart = recv(nSock, part.data(), part.size(), 0);
    if (nPart <= 0) break;
    strReply.append(part.data(), static_cast<size_t>(nPart));
  }
  close(nSock);
  return strReply;
}

// The child's report: how much of the stack was used, and whether the path was completed.
struct stMeasured {
  size_t nUsed;
  size_t nSize;
  bool bAnswered;
};

// Runs in the child; standard output works as in the daemon but is discarded.
void Measure(const stPath& path, const std::string& strWebRoot, int nPipe) {
  if (freopen("/dev/null", "w", stdout) == nullptr) _exit(1);
  const bool bRan = RunInNetSpace(Eth0::kUp, [&] {
    CDevice device([&](const std::string&) { return path.strDeviceReply; });
    CWebCtrl::Instance().Init("127.0.0.1", device.Port());
    CWebCtrl::Instance().Start(strWebRoot.c_str());
    const bool bAnswered = Ask(path.strRequest).find(path.strAnswer) != std::string::npos;
    const stMeasured measured{FirstStackUsed(), FirstStackSize(), bAnswered};
    if (write(nPipe, &measured, sizeof(measured)) != sizeof(measured)) _exit(1);
  });
  _exit(bRan ? 0 : 2);
}

// Returns the child's exit code, or minus the signal that ended it.
int MeasureInChild(const stPath& path, const std::string& strWebRoot, stMeasured& measured) {
  int nPipe[2];
  EXPECT_EQ(0, pipe(nPipe));
  fflush(stdout);
  const pid_t pid = fork();
  if (pid == 0) Measure(path, strWebRoot, nPipe[1]);
  close(nPipe[1]);
  const ssize_t nRead = read(nPipe[0], &measured, sizeof(measured));
  close(nPipe[0]);
  int nStatus = 0;
  waitpid(pid, &nStatus, 0);
  if (WIFSIGNALED(nStatus)) return -WTERMSIG(nStatus);
  return nRead == sizeof(measured) ? WEXITSTATUS(nStatus) : WEXITSTATUS(nStatus) | 2;
}

TEST(StackDepth, LeavesSpareRoomOnEveryPath) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "instrumented frames are larger";
#endif
  if (!RunInNetSpace(Eth0::kUp, [] {})) GTEST_SKIP() << "no private network namespace";
  char szWebRoot[] = "/tmp/webctrl_stack_XXXXXX";
  ASSERT_NE(nullptr, mkdtemp(szWebRoot));
  FillWebRoot(szWebRoot);
  for (const stPath& path : Paths()) {
    stMeasured measured{};
    EXPECT_EQ(0, MeasureInChild(path, szWebRoot, measured)) << path.strName;
    printf("%-28s %6zu bytes used, %6zu spare\n", path.strName.c_str(), measured.nUsed,
           kStackSize - measured.nUsed);
    EXPECT_EQ(kStackSize, measured.nSize) << path.strName;
    EXPECT_LE(measured.nUsed + kSpare, kStackSize) << path.strName;
    EXPECT_TRUE(measured.bAnswered) << path.strName;
  }
  EXPECT_EQ(0, system((std::string("rm -r ") + szWebRoot).c_str()));
}

TEST(Start, FailsWithoutAThread) {
  CWebCtrl webCtrl;
  RefuseStacks();
  testing::internal::CaptureStdout();
  EXPECT_EQ(-1, webCtrl.Start("/"));
  EXPECT_EQ("CWebCtrl Start err, create rt svc pthread failed [1].\n",
            testing::internal::GetCapturedStdout());
  EXPECT_FALSE(webCtrl.IsStarted());
}

}  // namespace
