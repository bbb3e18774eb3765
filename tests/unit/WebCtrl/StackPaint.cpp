#include "tests/unit/WebCtrl/StackPaint.h"

#include <pthread.h>
#include <sys/mman.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

namespace {

constexpr uint8_t kPaint = 0xA5;
constexpr size_t kGuard = 4096;

uint8_t* g_pFirst = nullptr;
size_t g_nFirst = 0;
bool g_bRefuse = false;

}  // namespace

size_t FirstStackSize() { return g_nFirst; }

size_t FirstStackUsed() {
  size_t nUntouched = 0;
  while (nUntouched < g_nFirst && g_pFirst[nUntouched] == kPaint) ++nUntouched;
  return g_nFirst - nUntouched;
}

void RefuseStacks() { g_bRefuse = true; }

extern "C" int __wrap_pthread_attr_setstacksize(pthread_attr_t* pAttr, size_t nSize);

int __wrap_pthread_attr_setstacksize(pthread_attr_t* pAttr, size_t nSize) {
  if (g_bRefuse) return EINVAL;
  void* const pPages =
      mmap(nullptr, kGuard + nSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (pPages == MAP_FAILED) return ENOMEM;
  mprotect(pPages, kGuard, PROT_NONE);
  uint8_t* const pStack = static_cast<uint8_t*>(pPages) + kGuard;
  memset(pStack, kPaint, nSize);
  if (g_pFirst == nullptr) {
    g_pFirst = pStack;
    g_nFirst = nSize;
  }
  return pthread_attr_setstack(pAttr, pStack, nSize);
}
