// The hash table: its bucket counts, its contract, and its behaviour without memory.
#include "encoding/alg_table.h"

#include <gmock/gmock.h>
#include <limits.h>
#include <stdlib.h>

#include <map>
#include <memory>
#include <random>
#include <vector>

#include "tests/unit/encoding/Memory.h"

namespace {

int Compare(uint32_t uiLeft, uint32_t uiRight) { return static_cast<int>(uiLeft != uiRight); }
uint16_t LowBits(uint32_t uiKey) { return static_cast<uint16_t>(uiKey); }
uint16_t AllAlike(uint32_t) { return 65535; }

}  // namespace

struct stTableDeleter {
  void operator()(alg_table* pTable) const { Table_free(&pTable); }
};
using TablePtr = std::unique_ptr<alg_table, stTableDeleter>;

namespace {

TablePtr NewTable(int nHint = 0, TableHash pfnHash = LowBits) {
  return TablePtr(Table_new(nHint, Compare, pfnHash));
}

std::map<uint32_t, uint32_t> Contents(const alg_table* pTable) {
  const std::unique_ptr<uint32_t, decltype(&free)> array(Table_toArray(pTable, 0), free);
  std::map<uint32_t, uint32_t> contents;
  for (int i = 0; i < Table_length(pTable); ++i)
    contents[array.get()[2 * i]] = array.get()[2 * i + 1];
  return contents;
}

}  // namespace

TEST(Table, TakesItsBucketCountFromThePrimes) {
  const struct {
    int nHint;
    uint32_t uiBuckets;
  } kRows[] = {{0, 509},       {1, 509},       {509, 509},     {510, 509},     {1021, 509},
               {1022, 1021},   {2053, 1021},   {2054, 2053},   {4093, 2053},   {4094, 4093},
               {8191, 4093},   {8192, 8191},   {16381, 8191},  {16382, 16381}, {21791, 16381},
               {32771, 16381}, {32772, 32771}, {65521, 32771}, {65522, 65521}, {INT_MAX, 65521}};
  for (const auto& row : kRows)
    EXPECT_EQ(row.uiBuckets, NewTable(row.nHint)->uiBuckets) << row.nHint;
}

TEST(Table, PutsEveryHashIntoItsBucketModuloTheCount) {
  for (const int nHint : {0, 1022, 2054, 4094, 8192, 21791, 32772, 65522}) {
    const TablePtr table = NewTable(nHint);
    for (uint32_t uiHash = 0; uiHash <= 65535; ++uiHash)
      ASSERT_EQ(1 + uiHash % table->uiBuckets, TableBucket(table.get(), LowBits(uiHash)))
          << table->uiBuckets << " " << uiHash;
  }
}

TEST(Table, StartsEmpty) {
  const TablePtr table = NewTable();
  EXPECT_EQ(0, Table_length(table.get()));
  EXPECT_EQ(0u, Table_get(table.get(), 1));
  EXPECT_TRUE(Contents(table.get()).empty());
}

TEST(Table, PutTellsNewKeysFromReplacedValues) {
  const TablePtr table = NewTable();
  EXPECT_EQ(-1, Table_put(table.get(), 7, 70));
  EXPECT_EQ(70, Table_put(table.get(), 7, 0));
  EXPECT_EQ(0, Table_put(table.get(), 7, 0xFFFFFFFF));
  EXPECT_EQ(0xFFFFFFFFLL, Table_put(table.get(), 7, 71));
  EXPECT_EQ(71u, Table_get(table.get(), 7));
  EXPECT_EQ(1, Table_length(table.get()));
}

TEST(Table, EveryPutIncreasesTheChangeCounter) {
  const TablePtr table = NewTable();
  const uint32_t uiStart = table->uiChanges;
  Table_put(table.get(), 7, 70);
  EXPECT_EQ(uiStart + 1, table->uiChanges);
  Table_put(table.get(), 7, 70);
  EXPECT_EQ(uiStart + 2, table->uiChanges);
  Table_get(table.get(), 7);
  Table_remove(table.get(), 8);
  EXPECT_EQ(uiStart + 2, table->uiChanges);
  Table_remove(table.get(), 7);
  EXPECT_EQ(uiStart + 3, table->uiChanges);
}

TEST(Table, KeepsKeysOfOneBucketApart) {
  const TablePtr table = NewTable();
  for (uint32_t i = 0; i < 5; ++i) Table_put(table.get(), 3 + i * 509, 100 + i);
  Table_put(table.get(), 0x10003, 200);  // the same low bits
  for (uint32_t i = 0; i < 5; ++i) {
    EXPECT_EQ(100 + i, Table_get(table.get(), 3 + i * 509));
    EXPECT_EQ(100 + i, Table_get<LowBits>(table.get(), 3 + i * 509));
  }
  EXPECT_EQ(200u, Table_get(table.get(), 0x10003));
  EXPECT_EQ(200u, Table_get<LowBits>(table.get(), 0x10003));
  EXPECT_EQ(0u, Table_get(table.get(), 0x20003));
  EXPECT_EQ(0u, Table_get<LowBits>(table.get(), 0x20003));
}

namespace {

int CompareLowByte(uint32_t uiLeft, uint32_t uiRight) {
  return static_cast<int>((uiLeft & 0xFF) != (uiRight & 0xFF));
}
uint16_t LowByte(uint32_t uiKey) { return uiKey & 0xFF; }

}  // namespace

TEST(Table, AsksTheCompareFunctionWhatIsEqual) {
  const TablePtr table(Table_new(0, CompareLowByte, LowByte));
  EXPECT_EQ(-1, Table_put(table.get(), 0x101, 5));
  EXPECT_EQ(5, Table_put(table.get(), 0x201, 6));
  EXPECT_EQ(6u, Table_get(table.get(), 0x301));
  EXPECT_EQ(6u, Table_get<LowByte>(table.get(), 0x301));
  EXPECT_EQ(6u, Table_remove(table.get(), 0x401));
  EXPECT_EQ(0, Table_length(table.get()));
}

TEST(Table, RemovesFromEveryPlaceOfAChain) {
  for (uint32_t uiGone = 1; uiGone <= 4; ++uiGone) {
    const TablePtr table = NewTable(0, AllAlike);
    for (uint32_t uiKey = 1; uiKey <= 4; ++uiKey) Table_put(table.get(), uiKey, uiKey * 10);
    EXPECT_EQ(uiGone * 10, Table_remove(table.get(), uiGone));
    EXPECT_EQ(0u, Table_remove(table.get(), uiGone));
    EXPECT_EQ(3, Table_length(table.get()));
    for (uint32_t uiKey = 1; uiKey <= 4; ++uiKey)
      EXPECT_EQ(uiKey == uiGone ? 0 : uiKey * 10, Table_get(table.get(), uiKey));
  }
}

TEST(Table, UsesRemovedEntriesAgain) {
  const TablePtr table = NewTable(0, AllAlike);
  for (uint32_t uiKey = 1; uiKey <= 4; ++uiKey) Table_put(table.get(), uiKey, uiKey);
  const size_t nBefore = AllocatedBytes();
  for (uint32_t i = 0; i < 5000; ++i) {
    Table_remove(table.get(), 1 + i % 4);  // the bucket's own entry and chained ones
    Table_put(table.get(), 1 + i % 4, i + 1);
  }
  EXPECT_EQ(nBefore, AllocatedBytes());
  EXPECT_EQ(4, Table_length(table.get()));
}

TEST(Table, UsesRemovedEntriesAgainAfterABucketWasEmptied) {
  constexpr uint32_t kBuckets = 509;
  const TablePtr table = NewTable();
  Table_put(table.get(), 1, 1);
  Table_put(table.get(), 1 + kBuckets, 1);
  const size_t nBefore = AllocatedBytes();
  for (int i = 0; i < 5000; ++i) {
    Table_put(table.get(), 2, 1);
    Table_remove(table.get(), 1 + kBuckets);  // chained
    Table_remove(table.get(), 2);             // alone in its bucket
    Table_put(table.get(), 1 + kBuckets, 1);
  }
  EXPECT_EQ(nBefore, AllocatedBytes());
  EXPECT_EQ((std::map<uint32_t, uint32_t>{{1, 1}, {1 + kBuckets, 1}}), Contents(table.get()));
}

TEST(Table, MapVisitsEveryEntryAndMayChangeItsValue) {
  const TablePtr table = NewTable();
  for (uint32_t uiKey = 1; uiKey <= 2000; ++uiKey) Table_put(table.get(), uiKey, uiKey);
  int nVisits = 0;
  Table_map(
      table.get(),
      [](uint32_t uiKey, uint32_t* pValue, void* pArg) {
        *pValue += uiKey;
        ++*static_cast<int*>(pArg);
      },
      &nVisits);
  EXPECT_EQ(2000, nVisits);
  for (uint32_t uiKey = 1; uiKey <= 2000; ++uiKey)
    EXPECT_EQ(2 * uiKey, Table_get(table.get(), uiKey));
}

TEST(Table, ArrayEndsWithTheGivenNumber) {
  const TablePtr table = NewTable();
  Table_put(table.get(), 7, 70);
  const std::unique_ptr<uint32_t, decltype(&free)> array(Table_toArray(table.get(), 99), free);
  EXPECT_THAT(std::vector<uint32_t>(array.get(), array.get() + 3),
              testing::ElementsAre(7u, 70u, 99u));
}

TEST(Table, FreeClearsTheCallersPointer) {
  alg_table* pTable = Table_new(0, Compare, LowBits);
  Table_free(&pTable);
  EXPECT_EQ(nullptr, pTable);
}

// Few keys, so that puts, replacements and removals happen at every place of a chain.
TEST(Table, BehavesLikeAMapUnderRandomOperations) {
  std::mt19937 random(4);
  for (const TableHash pfnHash : {TableHash(LowBits), TableHash(AllAlike)}) {
    const TablePtr table = NewTable(0, pfnHash);
    std::map<uint32_t, uint32_t> model;
    const uint32_t uiKeys = pfnHash == LowBits ? 3000 : 40;
    for (int i = 0; i < 50000; ++i) {
      const uint32_t uiKey = 1 + static_cast<uint32_t>(random()) % uiKeys;
      const auto it = model.find(uiKey);
      const bool bHas = it != model.end();
      if (random() % 3 == 0) {
        ASSERT_EQ(bHas ? it->second : 0, Table_remove(table.get(), uiKey));
        model.erase(uiKey);
      } else {
        const uint32_t uiValue = static_cast<uint32_t>(random());
        ASSERT_EQ(bHas ? int64_t{it->second} : -1, Table_put(table.get(), uiKey, uiValue));
        model[uiKey] = uiValue;
      }
      ASSERT_EQ(static_cast<int>(model.size()), Table_length(table.get()));
    }
    EXPECT_EQ(model, Contents(table.get()));
  }
}

TEST(Table, NewReturnsNullWithoutMemory) {
  for (const int nAllocation : {1, 2}) {
    FailAllocation(nAllocation);
    EXPECT_EQ(nullptr, Table_new(0, Compare, LowBits)) << nAllocation;
    FailAllocation(0);
  }
}

TEST(Table, PutWithoutMemoryLeavesTheTableAsItWas) {
  const TablePtr table = NewTable(0, AllAlike);
  Table_put(table.get(), 1, 10);  // the bucket; the next one needs the block to grow
  const uint32_t uiChanges = table->uiChanges;
  FailAllocation(1);
  EXPECT_EQ(-2, Table_put(table.get(), 2, 20));
  FailAllocation(0);
  EXPECT_EQ(uiChanges, table->uiChanges);
  EXPECT_EQ((std::map<uint32_t, uint32_t>{{1, 10}}), Contents(table.get()));
  EXPECT_EQ(-1, Table_put(table.get(), 2, 20));
  EXPECT_EQ(20u, Table_get(table.get(), 2));
}

TEST(Table, ArrayIsNullWithoutMemory) {
  const TablePtr table = NewTable();
  FailAllocation(1);
  EXPECT_EQ(nullptr, Table_toArray(table.get(), 0));
  FailAllocation(0);
}

TEST(TableDeathTest, AbortsOnTheCallersMistakes) {
  const TablePtr table = NewTable();
  alg_table* pTable = table.get();
  alg_table* pNull = nullptr;
  const auto Ignore = [](uint32_t, uint32_t*, void*) {};
  const auto Text = [](const char* pszText) {
    return testing::HasSubstr(std::string("Assertion `") + pszText + "' failed.");
  };
  EXPECT_DEATH(Table_new(-1, Compare, LowBits), Text("hint >= 0"));
  EXPECT_DEATH(Table_new(0, nullptr, LowBits), Text("cmp && hash"));
  EXPECT_DEATH(Table_new(0, Compare, nullptr), Text("cmp && hash"));
  EXPECT_DEATH(Table_get(pNull, 1), Text("table"));
  EXPECT_DEATH(Table_get(pTable, 0), Text("key"));
  EXPECT_DEATH(Table_get<LowBits>(pNull, 1), Text("table"));
  EXPECT_DEATH(Table_get<LowBits>(pTable, 0), Text("key"));
  EXPECT_DEATH(Table_put(pNull, 1, 1), Text("table"));
  EXPECT_DEATH(Table_put(pTable, 0, 1), Text("key"));
  EXPECT_DEATH(Table_remove(pNull, 1), Text("table"));
  EXPECT_DEATH(Table_remove(pTable, 0), Text("key"));
  EXPECT_DEATH(Table_length(pNull), Text("table"));
  EXPECT_DEATH(Table_map(pNull, Ignore, nullptr), Text("table"));
  EXPECT_DEATH(Table_map(pTable, nullptr, nullptr), Text("apply"));
  EXPECT_DEATH(Table_toArray(pNull, 0), Text("table"));
  EXPECT_DEATH(Table_free(&pNull), Text("table && *table"));
  EXPECT_DEATH(Table_free(nullptr), Text("table && *table"));
}

TEST(TableDeathTest, AbortsWhenAVisitChangesTheTable) {
  const TablePtr table = NewTable();
  Table_put(table.get(), 1, 10);
  const auto Put = [](uint32_t uiKey, uint32_t*, void* pArg) {
    Table_put(static_cast<alg_table*>(pArg), uiKey + 1, 1);
  };
  EXPECT_DEATH(Table_map(table.get(), Put, table.get()),
               testing::HasSubstr("Assertion `table->uiChanges == uiBefore' failed."));
}
