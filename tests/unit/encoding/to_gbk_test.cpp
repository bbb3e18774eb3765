// Code points to GBK, and the reverse table that this uses.
#include <gmock/gmock.h>

#include <random>
#include <string>
#include <vector>

#include "encoding/gbk_table.h"
#include "encoding/unicode_utf-8.h"
#include "tests/unit/encoding/Iconv.h"

namespace {

const uint16_t kUntouched = 0xBEEF;

std::string EncodedOne(uint32_t uiCode) {
  uint16_t usGbk = kUntouched;
  const int nRet = enc_unicode_to_GBK_one(uiCode, &usGbk);
  if (nRet == 1) return std::string(1, static_cast<char>(usGbk));
  if (nRet == 2) return {static_cast<char>(usGbk >> 8), static_cast<char>(usGbk & 0xFF)};
  EXPECT_EQ(0, nRet);
  EXPECT_EQ(kUntouched, usGbk);
  return "";
}

// iconv writes the euro sign as the single byte 0x80, which is not a character here, and drops the
// language tags without an error.
bool DiffersFromIconv(uint32_t uiCode) {
  return uiCode == 0x20AC || (uiCode >= 0xE0000 && uiCode <= 0xE007F);
}

}  // namespace

TEST(ToGbkOne, AgreesWithIconvOnEveryCodePoint) {
  CIconv toGbk("CP936", "WCHAR_T");
  std::string expected;
  int nTwoByte = 0;
  for (uint32_t uiCode = 0; uiCode <= 0x10FFFF; ++uiCode) {
    const std::string gbk = EncodedOne(uiCode);
    nTwoByte += static_cast<int>(gbk.size() == 2);
    if (!toGbk.Convert(Ucs4(uiCode), expected) || DiffersFromIconv(uiCode)) expected.clear();
    ASSERT_EQ(expected, gbk) << std::hex << uiCode;
  }
  EXPECT_EQ(kGbkAssigned, nTwoByte);
}

TEST(ToGbkOne, ConvertsCharacters) {
  const struct {
    uint32_t uiCode;
    const char* pszGbk;
  } kRows[] = {{0x4E02, "\x81\x40"}, {0x4E2D, "\xD6\xD0"}, {0x3000, "\xA1\xA1"},
               {0xFA29, "\xFE\x4F"}, {0x01, "\x01"},       {0x7F, "\x7F"},
               {0x80, ""},           {0xC0, ""},           {0x20AC, ""},
               {0x14E2D, ""},        {0x80004E2D, ""},     {0xFFFFFFFF, ""}};
  for (const auto& row : kRows) EXPECT_EQ(row.pszGbk, EncodedOne(row.uiCode)) << row.uiCode;
}

TEST(ToGbkOne, GivesBackEveryAssignedCode) {
  for (const stGbkCode& code : kGbkTable) {
    if (code.usUcs2 == kGbkUnassigned) continue;
    uint16_t usGbk = 0;
    ASSERT_EQ(2, enc_unicode_to_GBK_one(code.usUcs2, &usGbk));
    ASSERT_EQ(code.usGbk, usGbk);
  }
}

struct stEncoded {
  int nRet;
  std::string bytes;
};

namespace {

stEncoded ToGbk(std::vector<uint32_t> codes, int nCapacity = 100) {
  codes.push_back(0);
  std::vector<char> output(static_cast<size_t>(nCapacity) + 1, '#');
  int nBytes = nCapacity;
  const int nRet = enc_unicode_to_GBK_str(codes.data(), output.data(), &nBytes);
  EXPECT_EQ('#', output.back());
  return {nRet, std::string(output.data(), static_cast<size_t>(nBytes))};
}

}  // namespace

TEST(ToGbkString, ConvertsCharacters) {
  const struct {
    std::vector<uint32_t> codes;
    int nRet;
    const char* pszGbk;
  } kRows[] = {
      {{}, 1, ""},         {{'a'}, 1, "a"},
      {{0x01}, 1, "\x01"}, {{'a', 0x4E2D, 'z'}, 1, "a\xD6\xD0z"},
      {{0xC0}, 0, ""},     {{'a', 0x4E2D, 0xC0, 'z'}, 0, "a\xD6\xD0"},
  };
  for (const auto& row : kRows) {
    const stEncoded encoded = ToGbk(row.codes);
    EXPECT_EQ(row.nRet, encoded.nRet) << testing::PrintToString(row.pszGbk);
    EXPECT_EQ(row.pszGbk, encoded.bytes);
  }
}

TEST(ToGbkString, StopsOnceFewerThanTwoBytesRemain) {
  const std::vector<uint32_t> codes = {'a', 0x4E2D, 'b', 'c', 0x4E02, 0x3000, 'd', 'e', 'f'};
  for (int nCapacity = 2; nCapacity <= 16; ++nCapacity) {
    std::string expected;
    size_t nCodes = 0;
    for (; nCodes < codes.size() && nCapacity - static_cast<int>(expected.size()) >= 2; ++nCodes)
      expected += EncodedOne(codes[nCodes]);
    const stEncoded encoded = ToGbk(codes, nCapacity);
    EXPECT_EQ(nCodes < codes.size() ? 2 : 1, encoded.nRet) << nCapacity;
    EXPECT_EQ(expected, encoded.bytes) << nCapacity;
  }
  EXPECT_EQ(1, ToGbk(codes, 13).nRet);
}

namespace {

std::string RandomGbk(std::mt19937& random) {
  std::string text;
  for (int i = static_cast<int>(random() % 400); i > 0; --i) {
    const stGbkCode& code = kGbkTable[random() % kGbkCodes];
    if (random() % 2 == 0) {
      text += static_cast<char>(1 + random() % 0x7F);
    } else if (code.usUcs2 >= 0x800) {  // most two-byte UTF-8 is refused
      text += static_cast<char>(code.usGbk >> 8);
      text += static_cast<char>(code.usGbk & 0xFF);
    }
  }
  return text;
}

}  // namespace

TEST(RoundTrip, GivesBackRandomGbkDocuments) {
  std::mt19937 random(5);
  CIconv toUtf8("UTF-8", "CP936");
  for (int i = 0; i < 2000; ++i) {
    const std::string gbk = RandomGbk(random);
    std::vector<uint32_t> codes(1000);
    std::vector<char> utf8(2000), back(1000);
    int nCodes = 999, nUtf8 = 1999, nBack = 999;
    ASSERT_EQ(1, enc_GBK_to_unicode_str(gbk.c_str(), codes.data(), &nCodes));
    ASSERT_EQ(1, enc_unicode_to_utf8_str(codes.data(), utf8.data(), &nUtf8));
    std::string expected;
    ASSERT_TRUE(toUtf8.Convert(gbk, expected));
    ASSERT_EQ(expected, std::string(utf8.data(), static_cast<size_t>(nUtf8)));
    std::fill(codes.begin(), codes.end(), 0);
    nCodes = 999;
    ASSERT_EQ(1, enc_utf8_to_unicode_str(utf8.data(), codes.data(), &nCodes));
    ASSERT_EQ(1, enc_unicode_to_GBK_str(codes.data(), back.data(), &nBack));
    ASSERT_EQ(gbk, std::string(back.data(), static_cast<size_t>(nBack)));
  }
}
