#include "CBB/Util/StrDict.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/unit/Util/NoMemory.h"
#include "tests/unit/Util/Printed.h"

namespace {

struct CFreeDict {
  void operator()(StrDict* pDict) const { StrDict::Free(pDict); }
};
using CDictPtr = std::unique_ptr<StrDict, CFreeDict>;

// Two keys of one bucket: 1 more in the first byte equals 16 more in the second.
constexpr char kTwinA[] = "a@";
constexpr char kTwinB[] = "b0";

TEST(StrDict, StartsEmpty) {
  const CDictPtr pDict(StrDict::Create());
  ASSERT_TRUE(pDict);
  EXPECT_EQ(0u, pDict->Keys(nullptr, 0, true));
  EXPECT_EQ(nullptr, pDict->Get("any"));
  EXPECT_EQ("", Printed([&] { pDict->Print(); }));
}

TEST(StrDict, FreeTellsANullTable) {
  EXPECT_EQ(-22, StrDict::Free(nullptr));
  EXPECT_EQ(0, StrDict::Free(StrDict::Create()));
}

TEST(StrDict, HashesByTheElfRule) {
  EXPECT_EQ(0u, StrDict::Bucket(""));
  EXPECT_EQ(0x61u, StrDict::Bucket("a"));
  EXPECT_EQ(0x783u, StrDict::Bucket("abc"));
  // Long enough for the top four bits to be folded back.
  EXPECT_EQ(0x7ABu, StrDict::Bucket("abcdefghijk"));
}

TEST(StrDict, KeepsKeysOfOneBucketApart) {
  ASSERT_EQ(StrDict::Bucket(kTwinA), StrDict::Bucket(kTwinB));
  const CDictPtr pDict(StrDict::Create());
  EXPECT_EQ(0, pDict->Set(kTwinA, "1"));
  EXPECT_EQ(0, pDict->Set(kTwinB, "2"));
  EXPECT_STREQ("1", pDict->Get(kTwinA));
  EXPECT_STREQ("2", pDict->Get(kTwinB));
  EXPECT_EQ(0, pDict->Set(kTwinA, "3"));
  EXPECT_STREQ("3", pDict->Get(kTwinA));
  EXPECT_EQ(2u, pDict->Keys(nullptr, 0, false));
}

TEST(StrDict, OwnsCopies) {
  const CDictPtr pDict(StrDict::Create());
  char szKey[] = "key";
  char szValue[] = "value";
  pDict->Set(szKey, szValue);
  szKey[0] = szValue[0] = '?';
  EXPECT_STREQ("value", pDict->Get("key"));
}

TEST(StrDict, ReportsMissingMemory) {
  const CDictPtr pDict(StrDict::Create());
  EXPECT_EQ(0, pDict->Set("old", "1"));
  const CNoMemory noMemory;
  EXPECT_EQ(nullptr, StrDict::Create());
  EXPECT_EQ(-1, pDict->Set("new", "2"));
  EXPECT_EQ(nullptr, pDict->Get("new"));
  EXPECT_STREQ("1", pDict->Get("old"));
}

TEST(StrDict, SortsKeysByStrcmp) {
  const CDictPtr pDict(StrDict::Create());
  for (const char* pszKey : {"b", "a10", "B", "a", "", "a2"}) pDict->Set(pszKey, "");
  const char* ppszKeys[8] = {};
  ASSERT_EQ(6u, pDict->Keys(ppszKeys, 8, true));
  const std::vector<std::string> keys(ppszKeys, ppszKeys + 6);
  EXPECT_EQ((std::vector<std::string>{"", "B", "a", "a10", "a2", "b"}), keys);
}

TEST(StrDict, ListsNoMoreKeysThanThereIsRoomFor) {
  const CDictPtr pDict(StrDict::Create());
  for (const char* pszKey : {"a", "b", "c"}) pDict->Set(pszKey, "");
  const char* ppszKeys[3] = {nullptr, nullptr, nullptr};
  EXPECT_EQ(3u, pDict->Keys(ppszKeys, 2, true));
  EXPECT_STREQ("a", ppszKeys[0]);
  EXPECT_STREQ("b", ppszKeys[1]);
  EXPECT_EQ(nullptr, ppszKeys[2]);
}

TEST(StrDict, PrintsEntriesBehindTheirBucket) {
  const CDictPtr pDict(StrDict::Create());
  pDict->Set("b", "two");
  pDict->Set("a", "one");
  pDict->Set("", "none");
  EXPECT_EQ("[0]:=none\n[97]:a=one\n[98]:b=two\n", Printed([&] { pDict->Print(); }));
}

}  // namespace
