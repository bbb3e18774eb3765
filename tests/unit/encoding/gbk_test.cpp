// GBK to code points.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "encoding/unicode_utf-8.h"
#include "tests/unit/encoding/Iconv.h"

using testing::ElementsAre;

struct stDecoded {
  int nRet;
  std::vector<uint32_t> codes;
};

namespace {

// Through the string function; the code point after the capacity must not change.
stDecoded FromGbk(const std::string& text, int nCapacity = 100) {
  std::vector<uint32_t> output(static_cast<size_t>(nCapacity) + 1, 0xDEADBEEF);
  int nCodes = nCapacity;
  const int nRet = enc_GBK_to_unicode_str(text.c_str(), output.data(), &nCodes);
  EXPECT_EQ(0xDEADBEEF, output[static_cast<size_t>(nCapacity)]);
  output.resize(static_cast<size_t>(nCodes));
  return {nRet, output};
}

}  // namespace

TEST(GbkOne, ConvertsEveryTwoByteInputLikeIconv) {
  CIconv toUcs4("WCHAR_T", "CP936");
  for (uint32_t uiCode = 0; uiCode <= 0xFFFF; ++uiCode) {
    const std::string bytes{static_cast<char>(uiCode >> 8), static_cast<char>(uiCode & 0xFF)};
    uint32_t uiUcs = 0xDEADBEEF;
    const int nRet = enc_GBK_to_unicode_one(static_cast<uint16_t>(uiCode), &uiUcs);
    std::string ucs4;
    if (uiCode < 0x8000) {
      ASSERT_TRUE(toUcs4.Convert(bytes.substr(0, 1), ucs4));
      ASSERT_EQ(1, nRet) << std::hex << uiCode;
      ASSERT_EQ(CodePoints(ucs4)[0], uiUcs) << std::hex << uiCode;
    } else if (uiCode < 0x8140 || uiCode > 0xFE4F) {
      ASSERT_EQ(0, nRet) << std::hex << uiCode;
      ASSERT_EQ(0xDEADBEEF, uiUcs) << std::hex << uiCode;
    } else {
      ASSERT_EQ(2, nRet) << std::hex << uiCode;
      // Codes that iconv refuses are unassigned, which is not an error here.
      const uint32_t uiExpected = toUcs4.Convert(bytes, ucs4) ? CodePoints(ucs4)[0] : 1;
      ASSERT_EQ(uiExpected, uiUcs) << std::hex << uiCode;
    }
  }
}

TEST(GbkString, ConvertsCharacters) {
  const struct {
    const char* pszText;
    int nRet;
    std::vector<uint32_t> codes;
  } kRows[] = {
      {"", 1, {}},
      {"A", 1, {'A'}},
      {"\xD6\xD0", 1, {0x4E2D}},
      {"\x81\x40", 1, {0x4E02}},
      {"\xA1\xA1", 1, {0x3000}},
      {"\xFE\x4F", 1, {0xFA29}},
      {"a\xD6\xD0z", 1, {'a', 0x4E2D, 'z'}},
      {"\x81\x7F", 1, {1}},  // unassigned
      {"\x81\xFF", 1, {1}},  // unassigned
      {"\xB0\x20", 1, {1}},  // a trail byte below 0x40
      {"\x80\x41", 0, {}},   // below the table
      {"\x81\x3F", 0, {}},   // just below it
      {"\xFE\x50", 0, {}},   // just above it
      {"\xFF\x41", 0, {}},   // above it
      {"ab\xFF\x41z", 0, {'a', 'b'}},
      {"\xD6\xD0\x80z", 0, {0x4E2D}},
      {"a\x81", 0, {'a'}},     // paired with the terminator: 0x8100, below the table
      {"a\xB0", 1, {'a', 1}},  // 0xB000, unassigned
      {"a\xFF", 0, {'a'}},     // 0xFF00, above the table
  };
  for (const auto& row : kRows) {
    const stDecoded decoded = FromGbk(row.pszText);
    EXPECT_EQ(row.nRet, decoded.nRet) << testing::PrintToString(row.pszText);
    EXPECT_EQ(row.codes, decoded.codes) << testing::PrintToString(row.pszText);
  }
}

TEST(GbkString, StopsAtEveryCapacity) {
  const std::string text = "0123456789abcdef<\xD6\xD0\xB9\xFA name=\"\xB3\xB5\xC1\xBE\">0123456789";
  const stDecoded whole = FromGbk(text);
  ASSERT_EQ(1, whole.nRet);
  const int nWhole = static_cast<int>(whole.codes.size());
  for (int nCapacity = 1; nCapacity <= nWhole + 9; ++nCapacity) {
    const stDecoded decoded = FromGbk(text, nCapacity);
    const int nCodes = std::min(nCapacity, nWhole);
    EXPECT_EQ(nCapacity < nWhole ? 2 : 1, decoded.nRet) << nCapacity;
    EXPECT_EQ(std::vector<uint32_t>(whole.codes.begin(), whole.codes.begin() + nCodes),
              decoded.codes)
        << nCapacity;
  }
}

TEST(GbkString, IsFullBeforeItLooksAtTheNextCharacter) {
  EXPECT_EQ(2, FromGbk("ab\x80", 2).nRet);
  EXPECT_EQ(0, FromGbk("ab\x80", 3).nRet);
}

TEST(GbkArray, ConvertsTheGivenLengthOnly) {
  const char szText[] = "a\0\xD6\xD0z";
  const struct {
    int nLen;
    std::vector<uint32_t> codes;
  } kRows[] = {{-1, {}},
               {0, {}},
               {1, {'a'}},
               {2, {'a', 0}},
               {3, {'a', 0, 0x4E2D}},  // half a character: paired with the byte after the input
               {4, {'a', 0, 0x4E2D}},
               {5, {'a', 0, 0x4E2D, 'z'}}};
  for (const auto& row : kRows) {
    uint32_t codes[8] = {};
    int nCodes = 8;
    EXPECT_EQ(1, enc_GBK_to_unicode(szText, row.nLen, codes, &nCodes)) << row.nLen;
    EXPECT_EQ(row.codes, std::vector<uint32_t>(codes, codes + nCodes)) << row.nLen;
  }
}
