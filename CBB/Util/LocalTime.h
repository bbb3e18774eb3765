// The recorder's local time.
#pragma once

#include <ctime>

// The current time by the system's clock and zone. A change of the zone takes effect within a
// second. Any thread.
tm LocalNow();
