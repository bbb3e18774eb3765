// How long the service would wait for the device and in a restart. The waits are recorded but
// skipped.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/select.h>

#include <string>
#include <vector>

#include "CBB/WebCtrl/WebCtrl.h"
#include "tests/unit/control/NetSpace.h"

namespace {

constexpr char kNeedsNetSpace[] = "no private network namespace";

// Seconds, for this thread only; null where waits are real.
thread_local std::vector<long>* t_pWaits = nullptr;

class CNotedWaits {
 public:
  CNotedWaits() { t_pWaits = &m_waits; }
  ~CNotedWaits() { t_pWaits = nullptr; }
  std::vector<long> m_waits;
};

// The seconds that a function waits for a device that never answers.
template <class F>
std::vector<long> Waits(F fn) {
  CNotedWaits noted;
  CWebCtrl webCtrl;
  webCtrl.SetDevice("127.0.0.1", 9);
  testing::internal::CaptureStdout();
  EXPECT_NE(0, fn(webCtrl));
  testing::internal::GetCapturedStdout();
  return noted.m_waits;
}

TEST(Waits, AreFiveSecondsForADeviceThatDoesNotAnswer) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    using testing::ElementsAre;
    EXPECT_THAT(Waits([](CWebCtrl& ctrl) { return ctrl.setDeviceNoToNet({}); }), ElementsAre(5));
    EXPECT_THAT(Waits([](CWebCtrl& ctrl) { return ctrl.setUserSecurityToNet({}, 2); }),
                ElementsAre(5));
    EXPECT_THAT(Waits([](CWebCtrl& ctrl) {
                  stWifi rec{};
                  rec.ucFD_WorkMode = 2;
                  return ctrl.setWifiInfoToNet(rec);
                }),
                ElementsAre(5, 5));
    EXPECT_THAT(Waits([](CWebCtrl& ctrl) {
                  stVersion rec{};
                  return ctrl.getVersionInfoFromNet(rec);
                }),
                ElementsAre(5));
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

TEST(Waits, AreTenSecondsForAnImport) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    EXPECT_THAT(Waits([](CWebCtrl& ctrl) { return ctrl.import_CfgFileFromNet("<x/>"); }),
                testing::ElementsAre(10));
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

// Records between which steps of a restart it waits.
class CNotingCtrl : public CWebCtrl {
 public:
  int Start(const char*) override {
    t_pWaits->push_back(-2);
    return 0;
  }
  int Stop() override {
    if (t_pWaits != nullptr) t_pWaits->push_back(-1);
    return 0;
  }
};

TEST(Waits, AreTwoSecondsBetweenTheStopAndTheStartOfARestart) {
  CNotingCtrl webCtrl;
  CNotedWaits noted;
  EXPECT_EQ(0, webCtrl.Restart());
  EXPECT_THAT(noted.m_waits, testing::ElementsAre(-1, 2, -2));
}

}  // namespace

// Linked in place of sleep and select (--wrap).
extern "C" unsigned __real_sleep(unsigned uiSeconds);
extern "C" unsigned __wrap_sleep(unsigned uiSeconds);
unsigned __wrap_sleep(unsigned uiSeconds) {
  if (t_pWaits == nullptr) return __real_sleep(uiSeconds);
  t_pWaits->push_back(static_cast<long>(uiSeconds));
  return 0;
}

extern "C" int __real_select(int nCount, fd_set* pRead, fd_set* pWrite, fd_set* pExcept,
                             timeval* pTimeout);
extern "C" int __wrap_select(int nCount, fd_set* pRead, fd_set* pWrite, fd_set* pExcept,
                             timeval* pTimeout);
int __wrap_select(int nCount, fd_set* pRead, fd_set* pWrite, fd_set* pExcept, timeval* pTimeout) {
  const bool bWaits = pTimeout == nullptr || pTimeout->tv_sec > 0 || pTimeout->tv_usec > 0;
  if (t_pWaits == nullptr || !bWaits) {
    return __real_select(nCount, pRead, pWrite, pExcept, pTimeout);
  }
  t_pWaits->push_back(pTimeout != nullptr ? pTimeout->tv_sec : -3);
  return 0;
}
