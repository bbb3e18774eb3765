// The test program's seconds: time() stands still until a test lets it go on.
#pragma once

// From now on time() tells another second than before: files are looked at again then.
void NextSecond();
