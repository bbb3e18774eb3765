#include "CBB/Util/StrDict.h"

#include <sys/types.h>

#include <cassert>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr int kNullTable = -22;

// The classic ELF hash of a text.
uint32_t ElfHash(const char* pszKey) {
  uint32_t uiHash = 0;
  for (const char* p = pszKey; *p; ++p) {
    uiHash = (uiHash << 4) + static_cast<unsigned char>(*p);
    const uint32_t uiTop = uiHash & 0xF0000000u;
    if (uiTop) uiHash ^= uiTop >> 24;
    uiHash &= ~uiTop;
  }
  return uiHash;
}

void BubbleSort(const char** ppszKeys, size_t nCount) {
  for (size_t nEnd = nCount; nEnd > 1; --nEnd)
    for (size_t i = 1; i < nEnd; ++i)
      if (strcmp(ppszKeys[i - 1], ppszKeys[i]) > 0) std::swap(ppszKeys[i - 1], ppszKeys[i]);
}

}  // namespace

StrDict* StrDict::Create() { return new (std::nothrow) StrDict; }

int StrDict::Free(StrDict* pDict) {
  if (pDict == nullptr) return kNullTable;
  delete pDict;
  return 0;
}

StrDict::~StrDict() {
  for (stEntry* pEntry : m_pBuckets) {
    while (pEntry != nullptr) {
      stEntry* const pNext = pEntry->pNext;
      free(pEntry->pszKey);
      free(pEntry->pszValue);
      delete pEntry;
      pEntry = pNext;
    }
  }
}

size_t StrDict::Bucket(const char* pszKey) { return (ElfHash(pszKey) & 0x7FFFFFFFu) % kBuckets; }

StrDict::stEntry* StrDict::Find(const char* pszKey) const {
  stEntry* pEntry = m_pBuckets[Bucket(pszKey)];
  while (pEntry != nullptr && strcmp(pEntry->pszKey, pszKey) != 0) pEntry = pEntry->pNext;
  return pEntry;
}

int StrDict::Set(const char* pszKey, const char* pszValue) {
  assert(pszKey != nullptr && pszValue != nullptr);
  char* const pszNew = strdup(pszValue);
  if (pszNew == nullptr) return -1;
  if (stEntry* const pEntry = Find(pszKey)) {
    free(pEntry->pszValue);
    pEntry->pszValue = pszNew;
    return 0;
  }
  stEntry*& pHead = m_pBuckets[Bucket(pszKey)];
  char* const pszKeyCopy = strdup(pszKey);
  stEntry* const pEntry =
      pszKeyCopy != nullptr ? new (std::nothrow) stEntry{pHead, pszKeyCopy, pszNew} : nullptr;
  if (pEntry == nullptr) {
    free(pszKeyCopy);
    free(pszNew);
    return -1;
  }
  pHead = pEntry;
  return 0;
}

const char* StrDict::Get(const char* pszKey) const {
  const stEntry* const pEntry = Find(pszKey);
  return pEntry != nullptr ? pEntry->pszValue : nullptr;
}

void StrDict::Print() const {
  for (size_t i = 0; i < kBuckets; ++i)
    for (const stEntry* p = m_pBuckets[i]; p != nullptr; p = p->pNext)
      printf("[%zd]:%s=%s\n", static_cast<ssize_t>(i), p->pszKey, p->pszValue);
}

size_t StrDict::Keys(const char** ppszKeys, size_t nMax, bool bSort) const {
  size_t nCount = 0;
  for (const stEntry* pEntry : m_pBuckets)
    for (; pEntry != nullptr; pEntry = pEntry->pNext, ++nCount)
      if (nCount < nMax) ppszKeys[nCount] = pEntry->pszKey;
  if (bSort) BubbleSort(ppszKeys, nCount < nMax ? nCount : nMax);
  return nCount;
}
