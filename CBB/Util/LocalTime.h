// The time of day where the recorder is.
#pragma once

#include <ctime>

// The current time of the system's clock and zone. A zone that is set while the program runs counts
// from the next second on. Any thread.
tm LocalNow();
