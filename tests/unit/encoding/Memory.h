// The allocations of the code under test, counted and made to fail. The linker turns every call of
// calloc, malloc and realloc in this executable into one of Memory.cpp.
#pragma once

#include <stddef.h>

// Bytes asked for since the start of the process.
size_t AllocatedBytes();

// The n-th allocation from now on (1: the next) returns null; 0 lets all succeed.
void FailAllocation(int n);
