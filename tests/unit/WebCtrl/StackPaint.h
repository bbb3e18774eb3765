// Gives threads painted stacks, so that their deepest use can be read afterwards. Linked with
// -Wl,--wrap=pthread_attr_setstacksize it replaces a requested stack size by a painted stack of
// that size, with a guard page below it.
#pragma once

#include <cstddef>

// The size of the first stack requested; 0 before that.
size_t FirstStackSize();

// How many of its bytes have been written, counted from its upper end.
size_t FirstStackUsed();

// From now on no thread gets a stack.
void RefuseStacks();
