// The arithmetic of the password lock: pure, with the current time as an argument.
#pragma once

#include <cstdint>

struct stLockOfPassword;

// What the pages are told about the lock.
struct stLockState {
  int nErrorCount;
  uint32_t uiTime;  // seconds since the lock; the raw lock time once it has run out
  bool bLockOver;   // five wrong entries, and the hour of lock-out has passed
};

// Evaluates the device's record at uiNow (seconds since the epoch, on the service's clock).
stLockState EvaluateLock(const stLockOfPassword& rec, uint32_t uiNow);
