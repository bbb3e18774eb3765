// Gives threads painted stacks, so that their deepest use can be read off afterwards. Linked with
// -Wl,--wrap=pthread_attr_setstacksize it replaces the size of a thread's stack by a stack of that
// size; below it lies a page that cannot be touched.
#pragma once

#include <cstddef>

// The size of the first stack that was asked for, 0 before.
size_t FirstStackSize();

// How many of its bytes were ever written, counted from its upper end.
size_t FirstStackUsed();

// From now on no thread gets a stack.
void RefuseStacks();
