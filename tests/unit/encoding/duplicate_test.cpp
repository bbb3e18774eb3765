// The reverse table refuses a forward table with a value twice. This executable has such a forward
// table, which replaces the library's.
#include <gtest/gtest.h>

#include "encoding/gbk_table.h"
#include "encoding/unicode_utf-8.h"

extern const stGbkCode kGbkTable[kGbkCodes] = {
    {0x8140, 0x4E02}, {0x8141, kGbkUnassigned}, {0x8142, 0x4E02}, {0x8143, 0x4E05}};

TEST(ReverseTable, IsNotFilledPastADuplicate) {
  uint16_t usGbk = 0;
  EXPECT_EQ(0, enc_unicode_to_GBK_one(0x4E02, &usGbk));
  // Deliberate: what was entered before stays in use.
  EXPECT_EQ(2, enc_unicode_to_GBK_one(0x4E02, &usGbk));
  EXPECT_EQ(0x8142, usGbk);
  EXPECT_EQ(0, enc_unicode_to_GBK_one(0x4E05, &usGbk));
  EXPECT_EQ(0, enc_unicode_to_GBK_one(kGbkUnassigned + 0x100u, &usGbk));
}
