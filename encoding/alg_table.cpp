// alg_table: buckets hold indices into one block of entries, so a lookup touches one bucket and the
// entries of a short chain, and nothing moves but the block when it grows.
#include "encoding/alg_table.h"

#include <stdlib.h>

#include "encoding/Assert.h"

static constexpr uint32_t kPrimes[] = {509,  509,   1021,  2053,  4093,
                                       8191, 16381, 32771, 65521, 2147483647};
static constexpr uint32_t kFirstRoomMin = 16;
static constexpr uint32_t kFirstRoomMax = 65536;  // a hint is no promise: do not believe a huge one

// hash modulo bucket count without a division: the estimated quotient is at most one too small.
static inline uint32_t* BucketOf(const alg_table* table, uint32_t key) {
  const uint32_t uiHash = table->pfnHash(key);
  const uint64_t ullProduct = static_cast<uint64_t>(uiHash) * table->uiReciprocal;
  uint32_t uiRest = uiHash - static_cast<uint32_t>(ullProduct >> 32) * table->uiBuckets;
  if (uiRest >= table->uiBuckets) uiRest -= table->uiBuckets;
  return &table->pBuckets[uiRest];
}

// The link (bucket or an entry's uiNext) that leads to the key, or the one that ends its chain.
static inline uint32_t* LinkTo(const alg_table* table, uint32_t key) {
  uint32_t* pLink = BucketOf(table, key);
  while (*pLink != 0) {
    stTableEntry& entry = table->pEntries[*pLink];
    if (entry.uiKey == key || table->pfnCmp(key, entry.uiKey) == 0) break;
    pLink = &entry.uiNext;
  }
  return pLink;
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
  table->uiReciprocal = static_cast<uint32_t>((1ULL << 32) / table->uiBuckets);
  table->pfnCmp = cmp;
  table->pfnHash = hash;
  table->uiUsed = 1;
  table->uiRoom = 1 + (uiHint < kFirstRoomMin   ? kFirstRoomMin
                       : uiHint > kFirstRoomMax ? kFirstRoomMax
                                                : uiHint);
  table->pBuckets = static_cast<uint32_t*>(calloc(table->uiBuckets, sizeof(uint32_t)));
  table->pEntries = static_cast<stTableEntry*>(malloc(table->uiRoom * sizeof(stTableEntry)));
  if (!table->pBuckets || !table->pEntries) Table_free(&table);
  return table;
}

void Table_free(alg_table** table) {
  ENC_ASSERT(table && *table, "table && *table");
  free((*table)->pEntries);
  free((*table)->pBuckets);
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
  const uint32_t uiEntry = *LinkTo(table, key);
  return uiEntry == 0 ? 0 : table->pEntries[uiEntry].uiValue;
}

// The index of an unused entry, 0 without memory. The block may move.
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
  if (const uint32_t uiFound = *LinkTo(table, key)) {
    const int64_t llPrevious = table->pEntries[uiFound].uiValue;
    table->pEntries[uiFound].uiValue = value;
    ++table->uiChanges;
    return llPrevious;
  }
  const uint32_t uiEntry = TakeEntry(table);
  if (uiEntry == 0) return -2;
  uint32_t* pBucket = BucketOf(table, key);
  table->pEntries[uiEntry] = {key, value, *pBucket};
  *pBucket = uiEntry;
  ++table->nLength;
  ++table->uiChanges;
  return -1;
}

uint32_t Table_remove(alg_table* table, uint32_t key) {
  ENC_ASSERT(table, "table");
  ENC_ASSERT(key, "key");
  uint32_t* pLink = LinkTo(table, key);
  const uint32_t uiEntry = *pLink;
  if (uiEntry == 0) return 0;
  stTableEntry& entry = table->pEntries[uiEntry];
  *pLink = entry.uiNext;
  entry.uiNext = table->uiFree;
  table->uiFree = uiEntry;
  --table->nLength;
  ++table->uiChanges;
  return entry.uiValue;
}

void Table_map(alg_table* table, TableVisit apply, void* pArg) {
  ENC_ASSERT(table, "table");
  ENC_ASSERT(apply, "apply");
  const uint32_t uiBefore = table->uiChanges;
  for (uint32_t i = 0; i < table->uiBuckets; ++i) {
    uint32_t uiEntry = table->pBuckets[i];
    while (uiEntry != 0) {
      apply(table->pEntries[uiEntry].uiKey, &table->pEntries[uiEntry].uiValue, pArg);
      ENC_ASSERT(table->uiChanges == uiBefore, "table->uiChanges == uiBefore");
      uiEntry = table->pEntries[uiEntry].uiNext;
    }
  }
}

uint32_t* Table_toArray(const alg_table* table, uint32_t end) {
  ENC_ASSERT(table, "table");
  const size_t nNumbers = static_cast<size_t>(table->nLength) * 2 + 1;
  uint32_t* pArray = static_cast<uint32_t*>(malloc(nNumbers * sizeof(uint32_t)));
  if (!pArray) return nullptr;
  size_t n = 0;
  for (uint32_t i = 0; i < table->uiBuckets; ++i) {
    for (uint32_t j = table->pBuckets[i]; j != 0; j = table->pEntries[j].uiNext) {
      pArray[n++] = table->pEntries[j].uiKey;
      pArray[n++] = table->pEntries[j].uiValue;
    }
  }
  pArray[n] = end;
  return pArray;
}
