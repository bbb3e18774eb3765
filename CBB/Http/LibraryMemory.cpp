#include "CBB/Http/LibraryMemory.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace {

// The library's protocol record of a connection, one per open connection, fits a block.
constexpr size_t kBlockSize = 128;
constexpr size_t kBlocks = 160;

struct alignas(max_align_t) stBlock {
  char bytes[kBlockSize];
};

stBlock g_reserve[kBlocks];
std::atomic_flag g_taken[kBlocks];
std::atomic<bool> g_bShort{false};

bool IsReserve(const void* pBlock) {
  const auto nAt = reinterpret_cast<uintptr_t>(pBlock);
  const auto nBegin = reinterpret_cast<uintptr_t>(g_reserve);
  return nAt >= nBegin && nAt < nBegin + sizeof(g_reserve);
}

// A zeroed block from the reserve, or null when a block is too small or none is left.
void* TakeReserve(size_t nSize) {
  NoteMemoryShortage();
  if (nSize > kBlockSize) return nullptr;
  for (size_t i = 0; i < kBlocks; ++i) {
    if (!g_taken[i].test_and_set()) return memset(g_reserve[i].bytes, 0, kBlockSize);
  }
  return nullptr;
}

}  // namespace

void* ReserveMalloc(size_t nSize) {
  void* const pBlock = malloc(nSize);
  return pBlock != nullptr ? pBlock : TakeReserve(nSize);
}

void* ReserveCalloc(size_t nCount, size_t nSize) {
  void* const pBlock = calloc(nCount, nSize);
  return pBlock != nullptr ? pBlock : TakeReserve(nCount * nSize);
}

// Only receive and send buffers grow, and they never come from the reserve.
void* ReserveRealloc(void* pBlock, size_t nSize) {
  void* const pGrown = realloc(pBlock, nSize);
  if (pGrown == nullptr && nSize != 0) NoteMemoryShortage();
  return pGrown;
}

void ReserveFree(void* pBlock) {
  if (!IsReserve(pBlock)) {
    free(pBlock);
    return;
  }
  g_taken[static_cast<stBlock*>(pBlock) - g_reserve].clear();
}

void NoteMemoryShortage() { g_bShort = true; }

bool IsMemoryShort() { return g_bShort; }

bool TakeMemoryShortage() { return g_bShort.exchange(false); }

// By default the C library keeps freed memory: once a large block has been freed, later ones of its
// size come from the thread's heap and stay there.
void PrepareMemory() {
#ifdef __GLIBC__
  constexpr int kLargeBlock = 128 << 10;
  mallopt(M_MMAP_THRESHOLD, kLargeBlock);
  mallopt(M_ARENA_MAX, 1);
#endif
}

void ReturnMemory() {
#ifdef __GLIBC__
  malloc_trim(0);
#endif
}
