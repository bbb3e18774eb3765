#include "CBB/WebCtrl/WebCtrl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "control/VariCfgSec.h"
#include "tests/unit/WebCtrl/Device.h"
#include "tests/unit/control/NetSpace.h"

namespace {

std::vector<std::string> g_commands;  // that the service passed to the shell

constexpr char kNeedsNetSpace[] = "no private network namespace";

template <class F>
std::string Printed(F fn) {
  testing::internal::CaptureStdout();
  fn();
  return testing::internal::GetCapturedStdout();
}

// The device's address and port in a query's trace.
std::string QueriedDevice(CWebCtrl& webCtrl) {
  stDisplay rec{};
  const std::string strPrinted = Printed([&] { webCtrl.getLangInfoFromNet(rec); });
  const size_t nAt = strPrinted.find("dst.ip:");
  const size_t nEnd = strPrinted.find(".\n", nAt);
  return nAt != std::string::npos ? strPrinted.substr(nAt, nEnd - nAt) : strPrinted;
}

std::string Shown(const std::string& strIp, int nPort) {
  return "dst.ip:" + strIp + ", dst:port:" + std::to_string(nPort);
}

// Counts the virtual calls of Restart instead of running a server.
class CCountingCtrl : public CWebCtrl {
 public:
  int Start(const char* pszWebRoot) override {
    m_calls += std::string("Start(") + pszWebRoot + ")";
    return -1;
  }
  int Stop() override {
    m_calls += "Stop ";
    return 0;
  }
  std::string m_calls;
};

// Whether the port of the exchanges is in use.
bool IsExchangeOpen() {
  const int nSock = socket(AF_INET, SOCK_DGRAM, 0);
  sockaddr_in addr{};
  addr.sin_family = AF_INET;
  addr.sin_port = htons(kLocalPort);
  const bool bTaken = bind(nSock, reinterpret_cast<sockaddr*>(&addr), sizeof(addr)) != 0;
  close(nSock);
  return bTaken;
}

// Checks the exchange when a restart is requested, instead of restarting.
class CWatchingCtrl : public CWebCtrl {
 public:
  int Restart() override {
    m_open.push_back(IsExchangeOpen());
    return 0;
  }
  std::vector<bool> m_open;
};

TEST(CWebCtrl, IsOneObjectFor6000AtFirst) {
  EXPECT_EQ(&CWebCtrl::Instance(), &CWebCtrl::Instance());
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    CWebCtrl webCtrl;
    EXPECT_FALSE(webCtrl.IsStarted());
    EXPECT_STREQ("", webCtrl.WebRoot());
    EXPECT_EQ(0U, webCtrl.Sessions().Count());
    EXPECT_EQ(Shown("", 6000), QueriedDevice(webCtrl));
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

TEST(CWebCtrl, InitPrintsAndKeeps31CharactersAnd16Bits) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    CWebCtrl webCtrl;
    // The address ends at the blank, so the device is reached.
    const std::string strIp = "127.0.0.1 " + std::string(40, 'x');
    CDevice device([](const std::string&) { return "<x/>"; });
    const int nPort = 0x30000 + device.Port();
    EXPECT_EQ("CWebCtrl::Init, ip:" + strIp + ", port:" + std::to_string(nPort) + ".\n",
              Printed([&] { EXPECT_EQ(0, webCtrl.Init(strIp.c_str(), nPort)); }));
    EXPECT_EQ(Shown(strIp.substr(0, 31), device.Port()), QueriedDevice(webCtrl));
    EXPECT_EQ(1U, device.Requests().size());
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

TEST(CWebCtrl, RestartGoesThroughItsSlotsBackToTheAddressOfInit) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    CCountingCtrl webCtrl;
    CDevice device([](const std::string&) { return "<x/>"; });
    webCtrl.Init("127.0.0.1", 1);
    webCtrl.SetDevice("127.0.0.2", device.Port());
    EXPECT_EQ(0, webCtrl.Restart());
    EXPECT_EQ("Stop Start()", webCtrl.m_calls);
    // Only the address is restored.
    EXPECT_EQ(Shown("127.0.0.1", device.Port()), QueriedDevice(webCtrl));
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

stWifi AccessPoint() {
  stWifi rec{};
  rec.ucFD_WorkMode = 2;
  return rec;
}

const struct {
  const char* pszName;
  int (*pfnSet)(CWebCtrl& webCtrl);
} kSenders[] = {
    {"Lang", [](CWebCtrl& ctrl) { return ctrl.setLangInfoToNet("CN"); }},
    {"Base", [](CWebCtrl& ctrl) { return ctrl.setBaseInfoToNet({}, ""); }},
    {"DeviceNo", [](CWebCtrl& ctrl) { return ctrl.setDeviceNoToNet({}); }},
    {"UserSecurity 0", [](CWebCtrl& ctrl) { return ctrl.setUserSecurityToNet({}, 0); }},
    {"UserSecurity 2", [](CWebCtrl& ctrl) { return ctrl.setUserSecurityToNet({}, 2); }},
    {"Lock", [](CWebCtrl& ctrl) { return ctrl.setLockOfPasswordToNet(0, 0); }},
    {"Mirror", [](CWebCtrl& ctrl) { return ctrl.setMirrorInfoToNet({}); }},
    {"MainStream", [](CWebCtrl& ctrl) { return ctrl.setMainStreamInfoToNet({}); }},
    {"SubStream", [](CWebCtrl& ctrl) { return ctrl.setSubStreamInfoToNet({}); }},
    {"NetWMode", [](CWebCtrl& ctrl) { return ctrl.setNetWModeInfoToNet({}); }},
    {"VCms, address", [](CWebCtrl& ctrl) { return ctrl.setVCmsInfoToNet({}); }},
    {"VCms, domain",
     [](CWebCtrl& ctrl) {
       return ctrl.setVCmsInfoToNet({1, 0, "", 0});
     }},
    {"Wifi, station", [](CWebCtrl& ctrl) { return ctrl.setWifiInfoToNet({}); }},
    {"Wifi, point", [](CWebCtrl& ctrl) { return ctrl.setWifiInfoToNet(AccessPoint()); }},
    {"GNet", [](CWebCtrl& ctrl) { return ctrl.setGNetInfoToNet({}); }},
    {"GB28181", [](CWebCtrl& ctrl) { return ctrl.setGB28181InfoToNet({}); }},
    {"LocalNet", [](CWebCtrl& ctrl) { return ctrl.setLocalNetInfoToNet({}); }},
    {"Import", [](CWebCtrl& ctrl) { return ctrl.import_CfgFileFromNet("<x/>"); }},
};

// The device's answers in turn; the socket of the exchange closes after everything else in a set.
void ExpectClosedLast(const char* pszName, int (*pfnSet)(CWebCtrl&),
                      const std::vector<std::string>& results) {
  size_t nAnswered = 0;
  CDevice device([&](const std::string&) {
    return R"(<VariCfgSec Action="DEVICE_SET" Result=")" + results[nAnswered++] + "\"/>";
  });
  CWatchingCtrl webCtrl;
  webCtrl.SetDevice("127.0.0.1", device.Port());
  Printed([&] { EXPECT_EQ(0, pfnSet(webCtrl)) << pszName; });
  EXPECT_EQ(std::vector<bool>{true}, webCtrl.m_open) << pszName;
  EXPECT_EQ(results.size(), device.Requests().size()) << pszName;
  EXPECT_FALSE(IsExchangeOpen()) << pszName;
}

TEST(CWebCtrl, EverySetKeepsItsSocketUntilTheServiceHasRestarted) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    for (const auto& sender : kSenders) ExpectClosedLast(sender.pszName, sender.pfnSet, {"0"});
    ExpectClosedLast("the point's values",
                     [](CWebCtrl& ctrl) { return ctrl.setWifiInfoToNet(AccessPoint()); },
                     {"1", "0"});
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

// After the device's address has changed, only the new one is queried.
TEST(CWebCtrl, LaterExchangesGoToALaterAddress) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    const auto chinese = [](const std::string&) {
      return R"(<VariCfgSec Action=""><stDisplay strLanguage="CN"/></VariCfgSec>)";
    };
    CDevice first(chinese);
    CDevice second(chinese);
    CWebCtrl webCtrl;
    webCtrl.Init("127.0.0.1", first.Port());
    for (CDevice* const pDevice : {&first, &second, &first}) {
      const size_t nBefore = pDevice->Requests().size();
      webCtrl.SetDevice("127.0.0.1", pDevice->Port());
      stDisplay rec{};
      EXPECT_EQ(0, webCtrl.getLangInfoFromNet(rec));
      EXPECT_STREQ("CN", rec.strLanguage);
      EXPECT_EQ(nBefore + 1, pDevice->Requests().size());
    }
    EXPECT_EQ(2U, first.Requests().size());
    EXPECT_EQ(1U, second.Requests().size());
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

TEST(CWebCtrl, SecondStartOnlySaysSo) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    g_commands.clear();
    // Its server thread serves until the process ends.
    CWebCtrl& webCtrl = CWebCtrl::Instance();
    EXPECT_EQ(0, webCtrl.Start("/"));
    EXPECT_TRUE(webCtrl.IsStarted());
    const std::string strPrinted = Printed([&] { EXPECT_EQ(0, webCtrl.Start("/other")); });
    // The server thread may print its own lines meanwhile.
    EXPECT_THAT(strPrinted, testing::HasSubstr("CWebCtrl::Start, is already started.\n"));
    EXPECT_STREQ("/", webCtrl.WebRoot());
    EXPECT_TRUE(webCtrl.IsStarted());
    EXPECT_THAT(g_commands, testing::ElementsAre("/sbin/ifconfig lo 127.0.0.1"));
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

// The server thread ends by itself: first there is no such folder, then the port is in use.
TEST(CWebCtrl, KeepsTheFirst127CharactersOfTheWebRootAndStartsAgainAfterAFailure) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    CWebCtrl webCtrl;
    const std::string strRoot = "/" + std::string(200, 'r');
    const struct {
      const char* pszRoot;
      std::string strKept;
      const char* pszError;
    } rows[] = {
        {strRoot.c_str(), strRoot.substr(0, 127), "Cannot find web_root directory, exiting\n"},
        {"/", "/", "Cannot bind to 80\n"}};
    for (const auto& row : rows) {
      testing::internal::CaptureStderr();
      EXPECT_EQ(0, webCtrl.Start(row.pszRoot));
      EXPECT_EQ(row.strKept, webCtrl.WebRoot());
      while (webCtrl.IsStarted()) std::this_thread::yield();
      EXPECT_EQ(0, webCtrl.Stop());
      EXPECT_FALSE(webCtrl.IsStarted());
      EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::EndsWith(row.pszError));
    }
    EXPECT_EQ(0, webCtrl.Stop()) << "without a thread";
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

}  // namespace

// Linked in place of system (--wrap). The commands of the tests' network are really run.
extern "C" int __real_system(const char* pszCommand);
extern "C" int __wrap_system(const char* pszCommand);
int __wrap_system(const char* pszCommand) {
  if (strncmp(pszCommand, "/sbin/", 6) != 0) return __real_system(pszCommand);
  g_commands.emplace_back(pszCommand);
  return 0;
}
