// alg_table: the functions that need not be fast. An entry removed from a chain is kept for the
// next put; the block of entries only grows.
#include "encoding/alg_table.h"

#include <stdlib.h>

#include <algorithm>

#include "encoding/Assert.h"

namespace {

constexpr uint32_t kPrimes[] = {509, 509, 1021, 2053, 4093, 8191, 16381, 32771, 65521, 2147483647};
constexpr uint32_t kFirstRoomMax = 65536;  // a hint is not a promise: do not trust a huge one

inline uint32_t BucketOf(const alg_table* pTable, uint32_t uiKey) {
  return TableBucket(pTable, pTable->pfnHash(uiKey));
}

// The entry with the key, 0 when there is none. *pPrevious: the entry before it, 0 for a bucket.
uint32_t Find(const alg_table* pTable, uint32_t uiKey, uint32_t* pPrevious) {
  *pPrevious = 0;
  uint32_t uiEntry = BucketOf(pTable, uiKey);
  if (pTable->pEntries[uiEntry].uiKey == 0) return 0;
  while (uiEntry != 0) {
    const stTableEntry& entry = pTable->pEntries[uiEntry];
    if (entry.uiKey == uiKey || pTable->pfnCmp(uiKey, entry.uiKey) == 0) break;
    *pPrevious = uiEntry;
    uiEntry = entry.uiNext;
  }
  return uiEntry;
}

}  // namespace

alg_table* Table_new(int nHint, TableCompare pfnCmp, TableHash pfnHash) {
  ENC_ASSERT(nHint >= 0, "hint >= 0");
  ENC_ASSERT(pfnCmp != nullptr && pfnHash != nullptr, "cmp && hash");
  const uint32_t uiHint = static_cast<uint32_t>(nHint);
  int nPrime = 1;
  while (kPrimes[nPrime] < uiHint) ++nPrime;

  alg_table* pTable = static_cast<alg_table*>(calloc(1, sizeof(alg_table)));
  if (pTable == nullptr) return nullptr;
  pTable->uiBuckets = kPrimes[nPrime - 1];
  pTable->uiReciprocal = static_cast<uint32_t>((1ULL << 32) / pTable->uiBuckets + 1);
  pTable->pfnCmp = pfnCmp;
  pTable->pfnHash = pfnHash;
  pTable->uiUsed = 1 + pTable->uiBuckets;
  pTable->uiRoom = 1 + std::max(pTable->uiBuckets, std::min(uiHint, kFirstRoomMax));
  pTable->pEntries = static_cast<stTableEntry*>(calloc(pTable->uiRoom, sizeof(stTableEntry)));
  if (pTable->pEntries == nullptr) Table_free(&pTable);
  return pTable;
}

void Table_free(alg_table** ppTable) {
  ENC_ASSERT(ppTable != nullptr && *ppTable != nullptr, "table && *table");
  free((*ppTable)->pEntries);
  free(*ppTable);
  *ppTable = nullptr;
}

int Table_length(const alg_table* pTable) {
  ENC_ASSERT(pTable != nullptr, "table");
  return pTable->nLength;
}

uint32_t Table_get(const alg_table* pTable, uint32_t uiKey) {
  ENC_ASSERT(pTable != nullptr, "table");
  ENC_ASSERT(uiKey, "key");
  uint32_t uiPrevious;
  return pTable->pEntries[Find(pTable, uiKey, &uiPrevious)].uiValue;
}

namespace {

// The index of an unused chained entry, 0 without memory. The block may move.
uint32_t TakeEntry(alg_table* pTable) {
  if (const uint32_t uiEntry = pTable->uiFree) {
    pTable->uiFree = pTable->pEntries[uiEntry].uiNext;
    return uiEntry;
  }
  if (pTable->uiUsed == pTable->uiRoom) {
    const size_t nRoom = static_cast<size_t>(pTable->uiRoom) * 2;
    void* pGrown = realloc(pTable->pEntries, nRoom * sizeof(stTableEntry));
    if (pGrown == nullptr) return 0;
    pTable->pEntries = static_cast<stTableEntry*>(pGrown);
    pTable->uiRoom = static_cast<uint32_t>(nRoom);
  }
  return pTable->uiUsed++;
}

}  // namespace

int64_t Table_put(alg_table* pTable, uint32_t uiKey, uint32_t uiValue) {
  ENC_ASSERT(pTable != nullptr, "table");
  ENC_ASSERT(uiKey, "key");
  uint32_t uiLast;
  if (const uint32_t uiFound = Find(pTable, uiKey, &uiLast)) {
    const int64_t llPrevious = pTable->pEntries[uiFound].uiValue;
    pTable->pEntries[uiFound].uiValue = uiValue;
    ++pTable->uiChanges;
    return llPrevious;
  }
  uint32_t uiEntry = BucketOf(pTable, uiKey);
  if (uiLast != 0) {
    uiEntry = TakeEntry(pTable);
    if (uiEntry == 0) return -2;
    pTable->pEntries[uiLast].uiNext = uiEntry;
  }
  pTable->pEntries[uiEntry] = {uiKey, uiValue, 0};
  ++pTable->nLength;
  ++pTable->uiChanges;
  return -1;
}

uint32_t Table_remove(alg_table* pTable, uint32_t uiKey) {
  ENC_ASSERT(pTable != nullptr, "table");
  ENC_ASSERT(uiKey, "key");
  uint32_t uiPrevious;
  uint32_t uiEntry = Find(pTable, uiKey, &uiPrevious);
  if (uiEntry == 0) return 0;
  const uint32_t uiValue = pTable->pEntries[uiEntry].uiValue;
  if (uiPrevious == 0) {  // a bucket: the next entry of the chain moves into it
    const uint32_t uiNext = pTable->pEntries[uiEntry].uiNext;
    pTable->pEntries[uiEntry] = pTable->pEntries[uiNext];
    uiEntry = uiNext;
  } else {
    pTable->pEntries[uiPrevious].uiNext = pTable->pEntries[uiEntry].uiNext;
  }
  if (uiEntry != 0) {
    pTable->pEntries[uiEntry].uiNext = pTable->uiFree;
    pTable->uiFree = uiEntry;
  }
  --pTable->nLength;
  ++pTable->uiChanges;
  return uiValue;
}

namespace {

// Calls visit(entry) for every entry, in the order of the buckets.
template <class F>
void ForEach(const alg_table* pTable, F visit) {
  for (uint32_t i = 1; i <= pTable->uiBuckets; ++i) {
    if (pTable->pEntries[i].uiKey == 0) continue;
    for (uint32_t j = i; j != 0; j = pTable->pEntries[j].uiNext) visit(pTable->pEntries[j]);
  }
}

}  // namespace

void Table_map(alg_table* pTable, TableVisit pfnApply, void* pArg) {
  ENC_ASSERT(pTable != nullptr, "table");
  ENC_ASSERT(pfnApply != nullptr, "apply");
  const uint32_t uiBefore = pTable->uiChanges;
  ForEach(pTable, [=](stTableEntry& entry) {
    pfnApply(entry.uiKey, &entry.uiValue, pArg);
    ENC_ASSERT(pTable->uiChanges == uiBefore, "table->uiChanges == uiBefore");
  });
}

uint32_t* Table_toArray(const alg_table* pTable, uint32_t uiEnd) {
  ENC_ASSERT(pTable != nullptr, "table");
  const size_t nNumbers = static_cast<size_t>(pTable->nLength) * 2 + 1;
  uint32_t* pArray = static_cast<uint32_t*>(malloc(nNumbers * sizeof(uint32_t)));
  if (pArray == nullptr) return nullptr;
  uint32_t* pOut = pArray;
  ForEach(pTable, [&pOut](const stTableEntry& entry) {
    *pOut++ = entry.uiKey;
    *pOut++ = entry.uiValue;
  });
  *pOut = uiEnd;
  return pArray;
}
