// alg_table: a hash table from 32-bit keys to 32-bit values, chained in buckets.
// All entries lie in one growing block and are linked by index. Each bucket is itself the first
// entry of its chain, so most lookups read one place; the other entries follow the buckets. The
// caller owns the table and frees it. Not locked: one thread, or only readers. Null pointers and
// keys of 0 are the caller's mistakes and abort with an assertion.
#pragma once

#include <stdint.h>

#include "encoding/Assert.h"

// Returns 0 when the keys are equal, anything else when not. A key always equals itself: identical
// keys are found without asking.
using TableCompare = int (*)(uint32_t uiLeft, uint32_t uiRight);
// Any value; keys that compare equal must have the same one. 16 bits are enough for every possible
// bucket count and make a hash's bucket cheap to find.
using TableHash = uint16_t (*)(uint32_t uiKey);
// Called by Table_map for every entry; may change *pValue, may not put or remove.
using TableVisit = void (*)(uint32_t uiKey, uint32_t* pValue, void* pArg);

struct stTableEntry {
  uint32_t uiKey;  // 0 in an empty bucket
  uint32_t uiValue;
  uint32_t uiNext;  // index of the next entry of the chain, 0 at its end
};

// The members may be read; only the functions below write them.
struct alg_table {
  uint32_t uiBuckets;     // their count, a prime
  uint32_t uiReciprocal;  // 2^32 / uiBuckets, rounded up
  TableCompare pfnCmp;
  TableHash pfnHash;
  stTableEntry* pEntries;  // 0 stays empty, 1 to uiBuckets are the buckets, then the chained ones
  uint32_t uiUsed;         // entries used so far, all three kinds together
  uint32_t uiRoom;         // entries allocated
  uint32_t uiFree;         // chain of chained entries that were removed
  int nLength;             // keys in the table
  uint32_t uiChanges;      // counts every put and every remove that found its key
};

// A new empty table for about nHint entries (0 and up; more may be put). It has 509 buckets for a
// hint below 510, otherwise the prime before the first one of 509, 1021, 2053, 4093, 8191, 16381,
// 32771, 65521, 2147483647 that is not below the hint. Null without memory.
alg_table* Table_new(int nHint, TableCompare pfnCmp, TableHash pfnHash);

// Frees *ppTable with all its entries and sets it to null.
void Table_free(alg_table** ppTable);

// The number of entries.
int Table_length(const alg_table* pTable);

// The value of the key, 0 when the table has none.
uint32_t Table_get(const alg_table* pTable, uint32_t uiKey);

// The same for a caller that knows the table's hash function when it is compiled and looks up in a
// tight loop: Table_get<Hash>(table, key).
template <TableHash kHash>
inline uint32_t Table_get(const alg_table* pTable, uint32_t uiKey);

// Gives the key a value. -1: the key is new; 0 and up: the value that was replaced;
// -2: no memory, the table is as before.
int64_t Table_put(alg_table* pTable, uint32_t uiKey, uint32_t uiValue);

// Removes the key. Returns its value, 0 when the table has none.
uint32_t Table_remove(alg_table* pTable, uint32_t uiKey);

// Calls pfnApply(key, &value, pArg) for every entry, in no order to rely on.
void Table_map(alg_table* pTable, TableVisit pfnApply, void* pArg);

// All pairs as an array key, value, key, value, ..., uiEnd, of 2 * length + 1 numbers. The caller
// releases it with free(). Null without memory.
uint32_t* Table_toArray(const alg_table* pTable, uint32_t uiEnd);

// The bucket of a hash, that is 1 + hash modulo bucket count, without a division. The quotient is
// exact because hash and bucket count both have 16 bits.
inline uint32_t TableBucket(const alg_table* pTable, uint16_t usHash) {
  const uint64_t ullProduct = static_cast<uint64_t>(usHash) * pTable->uiReciprocal;
  return 1 + usHash - static_cast<uint32_t>(ullProduct >> 32) * pTable->uiBuckets;
}

// Whether the bucket or the entry after it has the key cannot be predicted, and a misprediction
// costs more than the lookup. So the choice must be computed (a conditional move) rather than
// branched on.
template <TableHash kHash>
inline uint32_t Table_get(const alg_table* pTable, uint32_t uiKey) {
  ENC_ASSERT(pTable != nullptr, "table");
  ENC_ASSERT(uiKey, "key");
  const uint32_t uiBucket = TableBucket(pTable, kHash(uiKey));
  const stTableEntry& first = pTable->pEntries[uiBucket];
  const uint32_t uiIfFirst = 0u - (first.uiKey == uiKey);  // all bits or none
  const uint32_t uiEntry = first.uiNext ^ ((first.uiNext ^ uiBucket) & uiIfFirst);
  const stTableEntry& entry = pTable->pEntries[uiEntry];
  return entry.uiKey == uiKey ? entry.uiValue : Table_get(pTable, uiKey);
}
