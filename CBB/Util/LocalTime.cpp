#include "CBB/Util/LocalTime.h"

tm LocalNow() {
  thread_local time_t s_zoneAt = -1;
  const time_t now = time(nullptr);
  // Without this the zone would stay that of the first call. Looking it up takes longer than the
  // rest.
  if (now != s_zoneAt) tzset();
  s_zoneAt = now;
  tm local{};
  localtime_r(&now, &local);
  return local;
}
