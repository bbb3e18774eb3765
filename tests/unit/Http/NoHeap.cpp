#include "tests/unit/Http/NoHeap.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

constexpr int kNever = 0;
thread_local int t_nUntilFailure = kNever;
thread_local bool t_bFailed = false;

bool Fails() {
  if (t_nUntilFailure == kNever || --t_nUntilFailure > 0) return false;
  t_nUntilFailure = 1;
  t_bFailed = true;
  errno = ENOMEM;
  return true;
}

}  // namespace

// Linked in place of the C library's functions (--wrap).
extern "C" {
void* __real_malloc(size_t nSize);                 // NOLINT
void* __real_calloc(size_t nCount, size_t nSize);  // NOLINT
void* __real_realloc(void* pBlock, size_t nSize);  // NOLINT
void* __wrap_malloc(size_t nSize) {                // NOLINT
  return Fails() ? nullptr : __real_malloc(nSize);
}
void* __wrap_calloc(size_t nCount, size_t nSize) {  // NOLINT
  return Fails() ? nullptr : __real_calloc(nCount, nSize);
}
void* __wrap_realloc(void* pBlock, size_t nSize) {  // NOLINT
  return nSize != 0 && Fails() ? nullptr : __real_realloc(pBlock, nSize);
}

// It allocates inside the C library.
FILE* __real_fdopen(int nFd, const char* pszMode);   // NOLINT
FILE* __wrap_fdopen(int nFd, const char* pszMode) {  // NOLINT
  return Fails() ? nullptr : __real_fdopen(nFd, pszMode);
}
}

void* operator new(size_t nSize) {
  void* const pBlock = malloc(nSize);
  if (pBlock == nullptr) throw std::bad_alloc();
  return pBlock;
}
void* operator new(size_t nSize, const std::nothrow_t& /*tag*/) noexcept { return malloc(nSize); }
void operator delete(void* pBlock) noexcept { free(pBlock); }
void operator delete(void* pBlock, size_t /*nSize*/) noexcept { free(pBlock); }

void* CNoHeap::Run(const std::function<void*()>& fn) const {
  t_nUntilFailure = m_nFirst;
  void* const pResult = fn();
  t_nUntilFailure = kNever;
  return pResult;
}

bool CNoHeap::Meets(const std::function<void()>& fn) const {
  t_bFailed = false;
  t_nUntilFailure = m_nFirst;
  fn();
  t_nUntilFailure = kNever;
  return t_bFailed;
}
