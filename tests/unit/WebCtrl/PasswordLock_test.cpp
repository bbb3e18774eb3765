#include "CBB/WebCtrl/PasswordLock.h"

#include <gtest/gtest.h>

#include "config/Records.h"

namespace {

constexpr uint32_t kLockTime = 1700000000;
// The service's clock at the time of the lock.
constexpr uint32_t kLocked = kLockTime + 28800;

TEST(EvaluateLock, TellsTheCountUntilFiveErrorsAreAnHourOld) {
  const struct {
    uint8_t ucErrors;
    uint32_t uiNow;
    uint32_t uiLockTime;
    int nErrors;
    uint32_t uiTime;
    bool bLockOver;
  } rows[] = {
      {5, kLocked, kLockTime, 5, 0, false},
      {5, kLocked + 3599, kLockTime, 5, 3599, false},
      {5, kLocked + 3600, kLockTime, 0, kLockTime, true},
      {5, kLocked + 100000, kLockTime, 0, kLockTime, true},
      {255, kLocked + 3599, kLockTime, 255, 3599, false},
      {255, kLocked + 3600, kLockTime, 0, kLockTime, true},
      {4, kLocked, kLockTime, 4, 0, false},
      {4, kLocked + 3600, kLockTime, 4, 3600, false},
      {0, kLocked + 100000, kLockTime, 0, 100000, false},
      // A lock time ahead of the clock makes the difference wrap: the hour is over.
      {5, kLocked - 1, kLockTime, 0, kLockTime, true},
      {4, kLocked - 1, kLockTime, 4, 0xFFFFFFFFU, false},
      {5, 0, 0, 0, 0, true},
      {0, 0, 0, 0, 0xFFFFFFFFU - 28799, false},
      {5, 28800 + 3599, 0, 5, 3599, false},
      {5, 28800, 0xFFFFFFFFU, 5, 1, false},
      {5, 28800 + 3598, 0xFFFFFFFFU, 5, 3599, false},
      {5, 28800 + 3599, 0xFFFFFFFFU, 0, 0xFFFFFFFFU, true},
  };
  for (const auto& row : rows) {
    stLockOfPassword rec{};
    rec.ucFD_ErrorCount = row.ucErrors;
    rec.uiFD_LockTime = row.uiLockTime;
    const stLockState state = EvaluateLock(rec, row.uiNow);
    EXPECT_EQ(row.nErrors, state.nErrorCount) << row.uiNow << " " << row.uiLockTime;
    EXPECT_EQ(row.uiTime, state.uiTime) << row.uiNow << " " << row.uiLockTime;
    EXPECT_EQ(row.bLockOver, state.bLockOver) << row.uiNow << " " << row.uiLockTime;
  }
}

}  // namespace
