#include "tests/unit/Http/Guarded.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t kPage = 4096;

}  // namespace

CGuarded::CGuarded(size_t nMost) : m_nData((nMost + kPage - 1) / kPage * kPage) {
  void* const pPages =
      mmap(nullptr, m_nData + kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  EXPECT_NE(MAP_FAILED, pPages);
  m_pPages = static_cast<char*>(pPages);
  EXPECT_EQ(0, mprotect(m_pPages + m_nData, kPage, PROT_NONE));
}

CGuarded::~CGuarded() { munmap(m_pPages, m_nData + kPage); }

// The bytes before the text get a new value each time, so that nobody can rely on them.
char* CGuarded::Put(std::string_view bytes) {
  char* const pBegin = m_pPages + m_nData - bytes.size();
  memset(m_pPages, '?', m_nData - bytes.size());
  std::copy(bytes.begin(), bytes.end(), pBegin);
  return pBegin;
}
