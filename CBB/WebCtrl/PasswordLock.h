// The arithmetic of the password lock. Pure; the current time is an argument.
#pragma once

#include <cstdint>

struct stLockOfPassword;

// What the pages get to see of the lock.
struct stLockState {
  int nErrorCount;
  uint32_t uiTime;  // seconds since the lock; the raw lock time once it has expired
  bool bLockOver;   // there were there were five wrong entries, and the hour of lock-out has passed
};

// Evaluates the device's record at uiNow (seconds since the epoch, on the service's clock).
stLockState EvaluateLock(const stLockOfPassword& rec, uint32_t uiNow);
