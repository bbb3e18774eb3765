// Compares the committed forward table with the C library's code page 936.
#include "encoding/gbk_table.h"

#include <gtest/gtest.h>
#include <stdio.h>

#include <fstream>
#include <set>
#include <string>

#include "tests/unit/encoding/Iconv.h"

TEST(GbkTable, HoldsEveryCodeInOrder) {
  ASSERT_EQ(32016, kGbkCodes);
  for (int i = 0; i < kGbkCodes; ++i) ASSERT_EQ(kGbkFirst + i, kGbkTable[i].usGbk);
}

TEST(GbkTable, AgreesWithIconv) {
  CIconv toUcs2("UCS-2BE", "CP936");
  for (const stGbkCode& code : kGbkTable) {
    const std::string gbk{static_cast<char>(code.usGbk >> 8), static_cast<char>(code.usGbk & 0xFF)};
    std::string ucs2(2, '\0');
    uint32_t uiExpected = kGbkUnassigned;
    if (toUcs2.Convert(gbk, ucs2))
      uiExpected = static_cast<uint32_t>(static_cast<unsigned char>(ucs2[0]) << 8 |
                                         static_cast<unsigned char>(ucs2[1]));
    ASSERT_EQ(uiExpected, code.usUcs2) << std::hex << code.usGbk;
  }
}

TEST(GbkTable, HasNoValueTwice) {
  std::set<uint16_t> values;
  int nUnassigned = 0;
  for (const stGbkCode& code : kGbkTable) {
    if (code.usUcs2 == kGbkUnassigned)
      ++nUnassigned;
    else
      EXPECT_TRUE(values.insert(code.usUcs2).second) << std::hex << code.usGbk;
  }
  EXPECT_EQ(21791u, values.size());
  EXPECT_EQ(10225, nUnassigned);
}

namespace {

// The kernel's access rights for the memory at an address, "r--p" and the like.
std::string RightsOf(const void* pAddress) {
  std::ifstream maps("/proc/self/maps");
  std::string line;
  while (std::getline(maps, line)) {
    void *pFrom = nullptr, *pTo = nullptr;
    char szRights[5] = "";
    if (sscanf(line.c_str(), "%p-%p %4s", &pFrom, &pTo, szRights) == 3 && pAddress >= pFrom &&
        pAddress < pTo)
      return szRights;
  }
  return "";
}

}  // namespace

TEST(GbkTable, LiesInReadOnlyMemory) {
  for (const stGbkCode* pEntry : {&kGbkTable[0], &kGbkTable[kGbkCodes - 1]}) {
    const std::string rights = RightsOf(pEntry);
    ASSERT_EQ(4u, rights.size());
    EXPECT_EQ('r', rights[0]);
    EXPECT_EQ('-', rights[1]);
  }
}
