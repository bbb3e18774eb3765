// A library for LD_PRELOAD that counts a program's use of the heap in the file named by
// HEAPCOUNT_FILE, where another process can read it at any time. Four 64-bit numbers: blocks
// allocated, blocks freed, bytes requested, and blocks moved. Without the variable it counts in
// private memory.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>

extern "C" {
// The C library's own functions, which those below wrap.
void* __libc_malloc(size_t nSize);
void* __libc_calloc(size_t nCount, size_t nSize);
void* __libc_realloc(void* pBlock, size_t nSize);
void __libc_free(void* pBlock);
}

namespace {

struct stCounts {
  std::atomic<uint64_t> ulTaken;
  std::atomic<uint64_t> ulReturned;
  std::atomic<uint64_t> ulBytes;
  std::atomic<uint64_t> ulMoved;
};

stCounts g_own;
std::atomic<stCounts*> g_pCounts{&g_own};

__attribute__((constructor)) void OpenCounts() {
  const char* pszPath = getenv("HEAPCOUNT_FILE");
  if (pszPath == nullptr) return;
  const int nFd = open(pszPath, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (nFd < 0) return;
  if (ftruncate(nFd, sizeof(stCounts)) == 0) {
    void* p = mmap(nullptr, sizeof(stCounts), PROT_READ | PROT_WRITE, MAP_SHARED, nFd, 0);
    if (p != MAP_FAILED) g_pCounts = static_cast<stCounts*>(p);
  }
  close(nFd);
  // Programs that it starts do not count in this file.
  unsetenv("HEAPCOUNT_FILE");
}

void* Taken(void* pBlock, size_t nSize) {
  if (pBlock != nullptr) {
    ++g_pCounts.load()->ulTaken;
    g_pCounts.load()->ulBytes += nSize;
  }
  return pBlock;
}

}  // namespace

extern "C" {

void* malloc(size_t nSize) { return Taken(__libc_malloc(nSize), nSize); }

void* calloc(size_t nCount, size_t nSize) {
  return Taken(__libc_calloc(nCount, nSize), nCount * nSize);
}

void* realloc(void* pBlock, size_t nSize) {
  if (pBlock == nullptr) return malloc(nSize);
  void* const pNew = __libc_realloc(pBlock, nSize);
  if (pNew != nullptr) {
    ++g_pCounts.load()->ulMoved;
    g_pCounts.load()->ulBytes += nSize;
  } else if (nSize == 0) {
    ++g_pCounts.load()->ulReturned;
  }
  return pNew;
}

void free(void* pBlock) {
  if (pBlock != nullptr) ++g_pCounts.load()->ulReturned;
  __libc_free(pBlock);
}
}
