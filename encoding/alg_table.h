// alg_table: a hash table from 32-bit keys to 32-bit values, chained in buckets.
// The entries of all chains lie in one growing block and are linked by index: 12 bytes an entry, no
// allocation each. The caller owns the table and frees it. Not locked: one thread, or only readers.
// Null pointers and keys of 0 are the caller's mistakes and abort with an assertion.
#ifndef ENCODING_ALG_TABLE_H_
#define ENCODING_ALG_TABLE_H_

#include <stdint.h>

// Returns 0 when the keys are equal, anything else when not. A key always equals itself: identical
// keys are found without asking.
using TableCompare = int (*)(uint32_t uiLeft, uint32_t uiRight);
// Any value; keys that compare equal must have the same one.
using TableHash = uint32_t (*)(uint32_t uiKey);
// Called by Table_map for every entry; may change *pValue, may not put or remove.
using TableVisit = void (*)(uint32_t uiKey, uint32_t* pValue, void* pArg);

struct stTableEntry {
  uint32_t uiKey;
  uint32_t uiValue;
  uint32_t uiNext;  // index of the next entry of the chain, 0 at its end
};

// Read the members if you like; only the functions below write them.
struct alg_table {
  uint32_t uiBuckets;     // their count, a prime
  uint32_t uiReciprocal;  // 2^32 / uiBuckets, rounded down
  TableCompare pfnCmp;
  TableHash pfnHash;
  int nLength;             // entries in the chains
  uint32_t uiChanges;      // counts every put and every successful remove
  uint32_t* pBuckets;      // index of each chain's first entry, 0 for an empty one
  stTableEntry* pEntries;  // entry 0 is never used
  uint32_t uiUsed;         // entries handed out so far, entry 0 included
  uint32_t uiRoom;         // entries allocated
  uint32_t uiFree;         // chain of removed entries
};

// A new empty table for about `hint` entries (0 and up; more may be put). It has 509 buckets for a
// hint below 510, else the prime before the first one of 509, 1021, 2053, 4093, 8191, 16381, 32771,
// 65521, 2147483647 that is not below the hint. Null without memory.
alg_table* Table_new(int hint, TableCompare cmp, TableHash hash);

// Frees *table with all its entries and sets it to null.
void Table_free(alg_table** table);

// The number of entries.
int Table_length(const alg_table* table);

// The value of the key, 0 when the table has none.
uint32_t Table_get(const alg_table* table, uint32_t key);

// Gives the key a value. -1: the key is new; 0 and up: the value that was replaced;
// -2: no memory, the table is as before.
int64_t Table_put(alg_table* table, uint32_t key, uint32_t value);

// Takes the key out. Returns its value, 0 when the table has none.
uint32_t Table_remove(alg_table* table, uint32_t key);

// Calls apply(key, &value, pArg) for every entry, in no order to rely on.
void Table_map(alg_table* table, TableVisit apply, void* pArg);

// All pairs as an array key, value, key, value, ..., end of 2 * length + 1 numbers. The caller
// releases it with free(). Null without memory.
uint32_t* Table_toArray(const alg_table* table, uint32_t end);

#endif  // ENCODING_ALG_TABLE_H_
