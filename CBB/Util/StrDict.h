// A dictionary of texts: a chained hash table with 4096 buckets, keyed by text.
//
// It owns copies of its keys and values. Not locked.
#pragma once

#include <cstddef>
#include <cstdint>

class StrDict {
 public:
  // Returns a new empty dictionary, to be given to Free, or null when memory runs out.
  static StrDict* Create();
  // Frees every entry and the table. Returns 0, or -22 for a null table.
  static int Free(StrDict* pDict);

  StrDict(const StrDict&) = delete;
  StrDict& operator=(const StrDict&) = delete;

  // Stores a value under a key, in place of an earlier one. Returns 0, or -1 when memory runs out
  // (an earlier value then stays).
  int Set(const char* pszKey, const char* pszValue);
  // Returns the value of a key, owned by the table until the key is set again; null if there is
  // none.
  const char* Get(const char* pszKey) const;

  // Prints every entry as "[bucket]:" and "key=value", one per line, in table order.
  void Print() const;
  // Lists at most nMax keys, owned by the table; sorted ascending by strcmp if bSort, otherwise in
  // table order. Returns the number of keys in the table, which may be more.
  size_t Keys(const char** ppszKeys, size_t nMax, bool bSort) const;

  // The bucket of a key, 0 to 4095.
  static size_t Bucket(const char* pszKey);

 private:
  struct stEntry {
    stEntry* pNext;
    char* pszKey;
    char* pszValue;
  };
  static constexpr size_t kBuckets = 4096;

  StrDict() = default;
  ~StrDict();
  stEntry* Find(const char* pszKey) const;

  stEntry* m_pBuckets[kBuckets] = {};
};
