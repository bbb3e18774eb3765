#include "CBB/Util/LocalTime.h"

tm LocalNow() {
  const time_t now = time(nullptr);
  tm local{};
  tzset();  // or the zone would stay the one of the first call
  localtime_r(&now, &local);
  return local;
}
