// Counts the allocations of the code under test and makes them fail. The linker redirects every
// call of calloc, malloc and realloc in this executable to Memory.cpp.
#pragma once

#include <stddef.h>

// Bytes requested since the start of the process.
size_t AllocatedBytes();

// Makes the n-th allocation from now on (1: the next) return null; 0 lets all succeed.
void FailAllocation(int n);
