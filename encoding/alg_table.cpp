// alg_table: the functions that need not be fast. An entry that is removed from a chain is kept for
// the next put; the block of entries only grows.
#include "encoding/alg_table.h"

#include <stdlib.h>

#include <algorithm>

#include "encoding/Assert.h"

static constexpr uint32_t kPrimes[] = {509,  509,   1021,  2053,  4093,
                                       8191, 16381, 32771, 65521, 2147483647};
static constexpr uint32_t kFirstRoomMax = 65536;  // a hint is no promise: do not believe a huge one

static inline uint32_t BucketOf(const alg_table* table, uint32_t key) {
  return TableBucket(table, table->pfnHash(key));
}

// The entry with the key, 0 when there is none. *pPrevious: the entry before it, 0 for a bucket.
static uint32_t Find(const alg_table* table, uint32_t key, uint32_t* pPrevious) {
  *pPrevious = 0;
  uint32_t uiEntry = BucketOf(table, key);
  if (table->pEntries[uiEntry].uiKey == 0) return 0;
  while (uiEntry != 0) {
    const stTableEntry& entry = table->pEntries[uiEntry];
    if (entry.uiKey == key || table->pfnCmp(key, entry.uiKey) == 0) break;
    *pPrevious = uiEntry;
    uiEntry = entry.uiNext;
  }
  return uiEntry;
}

alg_table* Table_new(int hint, TableCompare cmp, TableHash hash) {
  ENC_ASSERT(hint >= 0, "hint >= 0");
  ENC_ASSERT(cmp && hash, "cmp && hash");
  const uint32_t uiHint = static_cast<uint32_t>(hint);
  int nPrime = 1;
  while (kPrimes[nPrime] < uiHint) ++nPrime;

  alg_table* table = static_cast<alg_table*>(calloc(1, sizeof(alg_table)));
  if (!table) return nullptr;
  table->uiBuckets = kPrimes[nPrime - 1];
  table->uiReciprocal = static_cast<uint32_t>((1ULL << 32) / table->uiBuckets + 1);
  table->pfnCmp = cmp;
  table->pfnHash = hash;
  table->uiUsed = 1 + table->uiBuckets;
  table->uiRoom = 1 + std::max(table->uiBuckets, std::min(uiHint, kFirstRoomMax));
  table->pEntries = static_cast<stTableEntry*>(calloc(table->uiRoom, sizeof(stTableEntry)));
  if (!table->pEntries) Table_free(&table);
  return table;
}

void Table_free(alg_table** table) {
  ENC_ASSERT(table && *table, "table && *table");
  free((*table)->pEntries);
  free(*table);
  *table = nullptr;
}

int Table_length(const alg_table* table) {
  ENC_ASSERT(table, "table");
  return table->nLength;
}

uint32_t Table_get(const alg_table* table, uint32_t key) {
  ENC_ASSERT(table, "table");
  ENC_ASSERT(key, "key");
  uint32_t uiPrevious;
  return table->pEntries[Find(table, key, &uiPrevious)].uiValue;
}

// The index of an unused chained entry, 0 without memory. The block may move.
static uint32_t TakeEntry(alg_table* table) {
  if (const uint32_t uiEntry = table->uiFree) {
    table->uiFree = table->pEntries[uiEntry].uiNext;
    return uiEntry;
  }
  if (table->uiUsed == table->uiRoom) {
    const size_t nRoom = static_cast<size_t>(table->uiRoom) * 2;
    void* pGrown = realloc(table->pEntries, nRoom * sizeof(stTableEntry));
    if (!pGrown) return 0;
    table->pEntries = static_cast<stTableEntry*>(pGrown);
    table->uiRoom = static_cast<uint32_t>(nRoom);
  }
  return table->uiUsed++;
}

int64_t Table_put(alg_table* table, uint32_t key, uint32_t value) {
  ENC_ASSERT(table, "table");
  ENC_ASSERT(key, "key");
  uint32_t uiLast;
  if (const uint32_t uiFound = Find(table, key, &uiLast)) {
    const int64_t llPrevious = table->pEntries[uiFound].uiValue;
    table->pEntries[uiFound].uiValue = value;
    ++table->uiChanges;
    return llPrevious;
  }
  uint32_t uiEntry = BucketOf(table, key);
  if (uiLast != 0) {
    uiEntry = TakeEntry(table);
    if (uiEntry == 0) return -2;
    table->pEntries[uiLast].uiNext = uiEntry;
  }
  table->pEntries[uiEntry] = {key, value, 0};
  ++table->nLength;
  ++table->uiChanges;
  return -1;
}

uint32_t Table_remove(alg_table* table, uint32_t key) {
  ENC_ASSERT(table, "table");
  ENC_ASSERT(key, "key");
  uint32_t uiPrevious;
  uint32_t uiEntry = Find(table, key, &uiPrevious);
  if (uiEntry == 0) return 0;
  const uint32_t uiValue = table->pEntries[uiEntry].uiValue;
  if (uiPrevious == 0) {  // a bucket: the next of the chain moves up into it
    const uint32_t uiNext = table->pEntries[uiEntry].uiNext;
    table->pEntries[uiEntry] = table->pEntries[uiNext];
    uiEntry = uiNext;
  } else {
    table->pEntries[uiPrevious].uiNext = table->pEntries[uiEntry].uiNext;
  }
  if (uiEntry != 0) {
    table->pEntries[uiEntry].uiNext = table->uiFree;
    table->uiFree = uiEntry;
  }
  --table->nLength;
  ++table->uiChanges;
  return uiValue;
}

// Calls visit(entry) for every entry, in the order of the buckets.
template <class F>
static void ForEach(const alg_table* table, F visit) {
  for (uint32_t i = 1; i <= table->uiBuckets; ++i) {
    if (table->pEntries[i].uiKey == 0) continue;
    for (uint32_t j = i; j != 0; j = table->pEntries[j].uiNext) visit(table->pEntries[j]);
  }
}

void Table_map(alg_table* table, TableVisit apply, void* pArg) {
  ENC_ASSERT(table, "table");
  ENC_ASSERT(apply, "apply");
  const uint32_t uiBefore = table->uiChanges;
  ForEach(table, [=](stTableEntry& entry) {
    apply(entry.uiKey, &entry.uiValue, pArg);
    ENC_ASSERT(table->uiChanges == uiBefore, "table->uiChanges == uiBefore");
  });
}

uint32_t* Table_toArray(const alg_table* table, uint32_t end) {
  ENC_ASSERT(table, "table");
  const size_t nNumbers = static_cast<size_t>(table->nLength) * 2 + 1;
  uint32_t* pArray = static_cast<uint32_t*>(malloc(nNumbers * sizeof(uint32_t)));
  if (!pArray) return nullptr;
  uint32_t* pOut = pArray;
  ForEach(table, [&pOut](const stTableEntry& entry) {
    *pOut++ = entry.uiKey;
    *pOut++ = entry.uiValue;
  });
  *pOut = end;
  return pArray;
}
