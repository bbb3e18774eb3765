#include "tests/unit/Util/NoMemory.h"

#include <atomic>
#include <cstddef>
#include <new>

namespace {

std::atomic<bool> g_bNoMemory{false};

}  // namespace

CNoMemory::CNoMemory() { g_bNoMemory = true; }

CNoMemory::~CNoMemory() { g_bNoMemory = false; }

// These replace the library's.
void* operator new(std::size_t nSize, const std::nothrow_t&) noexcept {
  if (g_bNoMemory) return nullptr;
  try {
    return ::operator new(nSize);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void* operator new[](std::size_t nSize, const std::nothrow_t&) noexcept {
  if (g_bNoMemory) return nullptr;
  try {
    return ::operator new[](nSize);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
