// The replacements for the linker's --wrap: they count, fail on request, or call the real function.
#include "tests/unit/encoding/Memory.h"

extern "C" {
void* __real_malloc(size_t nSize);
void* __real_calloc(size_t nCount, size_t nSize);
void* __real_realloc(void* pOld, size_t nSize);
}

namespace {

size_t g_nBytes;
int g_nFailing;

}  // namespace

size_t AllocatedBytes() { return g_nBytes; }
void FailAllocation(int n) { g_nFailing = n; }

namespace {

bool Fails(size_t nSize) {
  g_nBytes += nSize;
  return g_nFailing != 0 && --g_nFailing == 0;
}

}  // namespace

extern "C" {
void* __wrap_malloc(size_t nSize) { return Fails(nSize) ? nullptr : __real_malloc(nSize); }

void* __wrap_calloc(size_t nCount, size_t nSize) {
  return Fails(nCount * nSize) ? nullptr : __real_calloc(nCount, nSize);
}

void* __wrap_realloc(void* pOld, size_t nSize) {
  return Fails(nSize) ? nullptr : __real_realloc(pOld, nSize);
}
}
