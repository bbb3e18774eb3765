#include "tests/unit/Http/Clock.h"

#include <ctime>

extern "C" time_t __real_time(time_t* pNow);
extern "C" time_t __wrap_time(time_t* pNow);

namespace {

time_t& Second() {
  static time_t s_now = __real_time(nullptr);
  return s_now;
}

}  // namespace

void NextSecond() { ++Second(); }

// Linked in place of time (--wrap).
extern "C" time_t __wrap_time(time_t* pNow) {
  if (pNow != nullptr) *pNow = Second();
  return Second();
}
