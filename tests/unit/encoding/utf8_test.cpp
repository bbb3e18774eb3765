// UTF-8 to code points and back.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "encoding/unicode_utf-8.h"
#include "tests/unit/encoding/Iconv.h"

namespace {

// The ends of every length of UTF-8.
const struct {
  uint32_t uiCode;
  const char* pszUtf8;
} kEnds[] = {
    {0x01, "\x01"},
    {0x7F, "\x7F"},
    {0x80, "\xC2\x80"},
    {0x7FF, "\xDF\xBF"},
    {0x800, "\xE0\xA0\x80"},
    {0xD800, "\xED\xA0\x80"},  // surrogates are not refused
    {0xDFFF, "\xED\xBF\xBF"},
    {0xFFFF, "\xEF\xBF\xBF"},
    {0x10000, "\xF0\x90\x80\x80"},
    {0x110000, "\xF4\x90\x80\x80"},
    {0x1FFFFF, "\xF7\xBF\xBF\xBF"},
    {0x200000, "\xF8\x88\x80\x80\x80"},
    {0x3FFFFFF, "\xFB\xBF\xBF\xBF\xBF"},
    {0x4000000, "\xFC\x84\x80\x80\x80\x80"},
    {0x7FFFFFFF, "\xFD\xBF\xBF\xBF\xBF\xBF"},
};

// The second byte of a two-byte sequence must be 0x80 to 0x9F.
bool Refused(uint32_t uiCode) {
  return uiCode >= 0x80 && uiCode < 0x800 && (uiCode & 0x3F) >= 0x20;
}

// The value of five bytes: the lead byte's two bits are at 30-31 instead of 24-25.
uint32_t FiveByteValue(uint32_t uiCode) { return (uiCode & 0xFFFFFF) | (uiCode >> 24) << 30; }

std::string Encoded(uint32_t uiCode) {
  char szBytes[6];
  return std::string(szBytes, static_cast<size_t>(enc_unicode_to_utf8_one(uiCode, szBytes, 6)));
}

}  // namespace

TEST(Utf8FromOne, WritesTheEndsOfEveryLength) {
  for (const auto& row : kEnds)
    EXPECT_EQ(row.pszUtf8, Encoded(row.uiCode)) << std::hex << row.uiCode;
  EXPECT_EQ(std::string(1, '\0'), Encoded(0));
}

TEST(Utf8FromOne, RefusesValuesOf32Bits) {
  for (const uint32_t uiCode : {0x80000000u, 0x80000041u, 0xFFFFFFFFu})
    EXPECT_EQ("", Encoded(uiCode)) << std::hex << uiCode;
}

TEST(Utf8FromOne, AgreesWithIconvOnEveryCodePoint) {
  CIconv toUtf8("UTF-8", "WCHAR_T");
  std::string expected;
  int nRefused = 0;
  for (uint32_t uiCode = 0; uiCode <= 0x10FFFF; ++uiCode) {
    if (toUtf8.Convert(Ucs4(uiCode), expected))
      ASSERT_EQ(expected, Encoded(uiCode)) << std::hex << uiCode;
    else
      ++nRefused;
  }
  EXPECT_EQ(0x800, nRefused);  // the surrogates
}

TEST(Utf8One, ReadsTheEndsOfEveryLength) {
  for (const auto& row : kEnds) {
    uint32_t uiCode = 0xDEADBEEF;
    const bool bFive = row.uiCode >= 0x200000 && row.uiCode < 0x4000000;
    const bool bRefused = Refused(row.uiCode);
    EXPECT_EQ(bRefused ? 0 : static_cast<int>(strlen(row.pszUtf8)),
              enc_utf8_to_unicode_one(row.pszUtf8, &uiCode));
    EXPECT_EQ(bRefused ? 0 : bFive ? FiveByteValue(row.uiCode) : row.uiCode, uiCode);
  }
}

TEST(Utf8One, ReadsEveryCodePointThatIconvWrites) {
  CIconv toUtf8("UTF-8", "WCHAR_T");
  std::string bytes;
  for (uint32_t uiCode = 0; uiCode <= 0x10FFFF; ++uiCode) {
    if (!toUtf8.Convert(Ucs4(uiCode), bytes)) continue;
    uint32_t uiRead = 0xDEADBEEF;
    const int nRet = enc_utf8_to_unicode_one(bytes.c_str(), &uiRead);
    ASSERT_EQ(Refused(uiCode) ? 0 : static_cast<int>(bytes.size()), nRet) << std::hex << uiCode;
    ASSERT_EQ(Refused(uiCode) ? 0 : uiCode, uiRead) << std::hex << uiCode;
  }
}

TEST(Utf8One, PutsTheLeadBitsOfFiveBytesAtTheTop) {
  const struct {
    const char* pszUtf8;
    uint32_t uiCode;
  } kRows[] = {{"\xF8\x80\x80\x80\x80", 0x00000000},
               {"\xF8\xBF\xBF\xBF\xBF", 0x00FFFFFF},
               {"\xF9\x80\x80\x80\x80", 0x40000000},
               {"\xFA\x80\x80\x80\x81", 0x80000001},
               {"\xFB\xBF\xBF\xBF\xBF", 0xC0FFFFFF}};
  for (const auto& row : kRows) {
    uint32_t uiCode = 0xDEADBEEF;
    EXPECT_EQ(5, enc_utf8_to_unicode_one(row.pszUtf8, &uiCode));
    EXPECT_EQ(row.uiCode, uiCode);
  }
}

TEST(Utf8One, DoesNotMindOverlongForms) {
  const struct {
    const char* pszUtf8;
    uint32_t uiCode;
  } kRows[] = {{"\xC0\x80", 0},
               {"\xC1\x81", 'A'},
               {"\xE0\x81\x81", 'A'},
               {"\xF0\x80\x81\x81", 'A'},
               {"\xF8\x80\x80\x81\x81", 'A'},
               {"\xFC\x80\x80\x80\x81\x81", 'A'}};
  for (const auto& row : kRows) {
    uint32_t uiCode = 0xDEADBEEF;
    EXPECT_EQ(static_cast<int>(strlen(row.pszUtf8)), enc_utf8_to_unicode_one(row.pszUtf8, &uiCode));
    EXPECT_EQ(row.uiCode, uiCode);
  }
}

TEST(Utf8One, JudgesEveryPairOfFirstBytes) {
  for (int nLead = 0; nLead <= 0xFF; ++nLead) {
    const int nLen = nLead < 0x80   ? 1
                     : nLead < 0xC0 ? 0
                     : nLead < 0xE0 ? 2
                     : nLead < 0xF0 ? 3
                     : nLead < 0xF8 ? 4
                     : nLead < 0xFC ? 5
                     : nLead < 0xFE ? 6
                                    : 0;
    for (int nSecond = 0; nSecond <= 0xFF; ++nSecond) {
      const char szBytes[] = {
          static_cast<char>(nLead), static_cast<char>(nSecond), '\x80', '\x80', '\x80', '\x80'};
      const bool bContinues = nSecond >= 0x80 && nSecond <= (nLen == 2 ? 0x9F : 0xBF);
      uint32_t uiCode = 0xDEADBEEF;
      ASSERT_EQ(nLen < 2 || bContinues ? nLen : 0, enc_utf8_to_unicode_one(szBytes, &uiCode))
          << std::hex << nLead << " " << nSecond;
      ASSERT_NE(0xDEADBEEF, uiCode);
    }
  }
}

// A buffer of exactly the bytes that may be read, so that a memory checker detects a read past it.
TEST(Utf8One, StopsReadingAtTheFirstByteThatDoesNotContinue) {
  for (const auto& row : kEnds) {
    const std::string whole = row.pszUtf8;
    for (size_t nGood = 1; nGood < whole.size(); ++nGood) {
      for (const char chBad : {'\0', '\x7F', '\xC0', '\xFF'}) {
        std::vector<char> bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(nGood));
        bytes.push_back(chBad);
        bytes.shrink_to_fit();
        uint32_t uiCode = 0xDEADBEEF;
        EXPECT_EQ(0, enc_utf8_to_unicode_one(bytes.data(), &uiCode));
        EXPECT_EQ(0u, uiCode);
      }
    }
  }
}

struct stDecoded {
  int nRet;
  std::vector<uint32_t> codes;
};

namespace {

stDecoded FromUtf8(const std::string& text, int nCapacity = 100) {
  std::vector<uint32_t> output(static_cast<size_t>(nCapacity) + 1, 0xDEADBEEF);
  int nCodes = nCapacity;
  const int nRet = enc_utf8_to_unicode_str(text.c_str(), output.data(), &nCodes);
  EXPECT_EQ(0xDEADBEEF, output[static_cast<size_t>(nCapacity)]);
  output.resize(static_cast<size_t>(nCodes));
  return {nRet, output};
}

}  // namespace

TEST(Utf8String, ConvertsCharacters) {
  const struct {
    const char* pszText;
    int nRet;
    std::vector<uint32_t> codes;
  } kRows[] = {
      {"", 1, {}},
      {"a", 1, {'a'}},
      {"\xE4\xB8\xAD", 1, {0x4E2D}},
      {"\xC2\x80", 1, {0x80}},
      {"\xC3\xA9", 0, {}},  // U+00E9
      {"a\xE4\xB8\xAD\xC3\xA9z", 0, {'a', 0x4E2D}},
      {"a\xE4\xB8", 0, {'a'}},  // cut by the terminator
      {"a\x80", 0, {'a'}},
      {"\xF0\x9F\x9A\x8C!", 1, {0x1F68C, '!'}},
  };
  for (const auto& row : kRows) {
    const stDecoded decoded = FromUtf8(row.pszText);
    EXPECT_EQ(row.nRet, decoded.nRet) << testing::PrintToString(row.pszText);
    EXPECT_EQ(row.codes, decoded.codes) << testing::PrintToString(row.pszText);
  }
}

TEST(Utf8String, StopsAtEveryCapacity) {
  const std::string text = "0123456789abcdef<\xE4\xB8\xAD\xE5\x9B\xBD a=\"\xF0\x9F\x9A\x8C\">01234";
  const stDecoded whole = FromUtf8(text);
  ASSERT_EQ(1, whole.nRet);
  const int nWhole = static_cast<int>(whole.codes.size());
  for (int nCapacity = 1; nCapacity <= nWhole + 9; ++nCapacity) {
    const stDecoded decoded = FromUtf8(text, nCapacity);
    const int nCodes = std::min(nCapacity, nWhole);
    EXPECT_EQ(nCapacity < nWhole ? 2 : 1, decoded.nRet) << nCapacity;
    EXPECT_EQ(std::vector<uint32_t>(whole.codes.begin(), whole.codes.begin() + nCodes),
              decoded.codes)
        << nCapacity;
  }
}

TEST(Utf8Array, ConvertsTheGivenLengthOnly) {
  const char szText[] = "a\0\xE4\xB8\xADz";
  const struct {
    int nLen;
    std::vector<uint32_t> codes;
  } kRows[] = {{-1, {}},
               {0, {}},
               {1, {'a'}},
               {2, {'a', 0}},
               {3, {'a', 0, 0x4E2D}},  // a sequence may end after the input
               {5, {'a', 0, 0x4E2D}},
               {6, {'a', 0, 0x4E2D, 'z'}}};
  for (const auto& row : kRows) {
    uint32_t codes[8] = {};
    int nCodes = 8;
    EXPECT_EQ(1, enc_utf8_to_unicode(szText, row.nLen, codes, &nCodes)) << row.nLen;
    EXPECT_EQ(row.codes, std::vector<uint32_t>(codes, codes + nCodes)) << row.nLen;
  }
}

struct stEncoded {
  int nRet;
  std::string bytes;
};

namespace {

stEncoded ToUtf8(std::vector<uint32_t> codes, int nCapacity = 100) {
  codes.push_back(0);
  std::vector<char> output(static_cast<size_t>(nCapacity) + 1, '#');
  int nBytes = nCapacity;
  const int nRet = enc_unicode_to_utf8_str(codes.data(), output.data(), &nBytes);
  EXPECT_EQ('#', output.back());
  return {nRet, std::string(output.data(), static_cast<size_t>(nBytes))};
}

}  // namespace

TEST(Utf8FromString, ConvertsCharacters) {
  const struct {
    std::vector<uint32_t> codes;
    int nRet;
    const char* pszUtf8;
  } kRows[] = {
      {{}, 1, ""},
      {{'a'}, 1, "a"},
      {{0x80, 0x4E2D}, 1, "\xC2\x80\xE4\xB8\xAD"},
      {{0x7FFFFFFF, 'a'}, 1, "\xFD\xBF\xBF\xBF\xBF\xBF\x61"},
      {{'a', 0x80000000, 'b'}, 0, "a"},
      {{0x80000000}, 0, ""},
  };
  for (const auto& row : kRows) {
    const stEncoded encoded = ToUtf8(row.codes);
    EXPECT_EQ(row.nRet, encoded.nRet) << row.pszUtf8;
    EXPECT_EQ(row.pszUtf8, encoded.bytes);
  }
}

TEST(Utf8FromString, ConvertsOneCharacterIntoSixBytes) {
  for (const uint32_t uiCode : {uint32_t{'a'}, 0x80u, 0x4E2Du, 0x7FFFFFFFu}) {
    EXPECT_EQ(1, ToUtf8({uiCode}, 6).nRet);
    const stEncoded encoded = ToUtf8({uiCode, 'z'}, 6);
    EXPECT_EQ(2, encoded.nRet);
    EXPECT_EQ(Encoded(uiCode), encoded.bytes);
  }
}

TEST(Utf8FromString, StopsOnceFewerThanSixBytesRemain) {
  const std::vector<uint32_t> codes = {'a',    0x4E2D, 'b',  0x80,       0x1F68C, 'c',    'd',
                                       0x4E2D, 'e',    0x7F, 0x7FFFFFFF, 0x4E2D,  0x3000, 'f'};
  for (int nCapacity = 6; nCapacity <= 50; ++nCapacity) {
    std::string expected;
    size_t nCodes = 0;
    for (; nCodes < codes.size() && nCapacity - static_cast<int>(expected.size()) >= 6; ++nCodes)
      expected += Encoded(codes[nCodes]);
    const stEncoded encoded = ToUtf8(codes, nCapacity);
    EXPECT_EQ(nCodes < codes.size() ? 2 : 1, encoded.nRet) << nCapacity;
    EXPECT_EQ(expected, encoded.bytes) << nCapacity;
  }
  EXPECT_EQ(1, ToUtf8(codes, 50).nRet);
}
