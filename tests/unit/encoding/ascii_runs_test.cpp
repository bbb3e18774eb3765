// ASCII is converted in blocks: a long run must end and stop correctly anywhere.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "encoding/unicode_utf-8.h"

namespace {

constexpr size_t kRun = 100;  // some blocks and a rest

struct stForms {
  std::string strGbk, strUtf8;
  std::vector<uint32_t> codes;
};

// A run with one Chinese character before its character nAt.
stForms RunWithCharacterAt(size_t nAt) {
  std::string strRun;
  for (size_t i = 0; i < kRun; ++i) strRun += static_cast<char>(' ' + i % 95);
  const auto behind = [nAt](auto text, const auto& character) {
    text.insert(text.begin() + static_cast<ptrdiff_t>(nAt), character.begin(), character.end());
    return text;
  };
  return {behind(strRun, std::string("\xD6\xD0")), behind(strRun, std::string("\xE4\xB8\xAD")),
          behind(std::vector<uint32_t>(strRun.begin(), strRun.end()), std::vector{0x4E2DU})};
}

using ToCodes = int(const char* pInput, uint32_t* pOutput, int* nMembOut);
using FromCodes = int(const uint32_t* pInput, char* pOutput, int* nMembOut);

void ExpectCodes(ToCodes* pfnConvert, const std::string& strText,
                 const std::vector<uint32_t>& codes, size_t nRoom) {
  std::vector<uint32_t> output(nRoom + 1, 0xEEEEEEEE);
  int nMemb = static_cast<int>(nRoom);
  const size_t nFit = std::min(nRoom, codes.size());
  EXPECT_EQ(nFit < codes.size() ? 2 : 1, pfnConvert(strText.c_str(), output.data(), &nMemb));
  ASSERT_EQ(static_cast<int>(nFit), nMemb);
  EXPECT_TRUE(std::equal(codes.begin(), codes.begin() + nMemb, output.begin()));
  EXPECT_EQ(0xEEEEEEEEU, output.back());
}

// nMax: the bytes that must be left before any character is written.
void ExpectText(FromCodes* pfnConvert, std::vector<uint32_t> codes, const std::string& strText,
                size_t nMax, size_t nRoom) {
  codes.push_back(0);
  std::string strOutput(nRoom + 1, '\xEE');
  int nMemb = static_cast<int>(nRoom);
  const int nRet = pfnConvert(codes.data(), strOutput.data(), &nMemb);
  const size_t nWritten = static_cast<size_t>(nMemb);
  ASSERT_LE(nWritten, strText.size());
  EXPECT_EQ(strText.substr(0, nWritten), strOutput.substr(0, nWritten));
  EXPECT_EQ('\xEE', strOutput.back());
  EXPECT_EQ(nWritten < strText.size() ? 2 : 1, nRet);
  if (nRet == 2) {
    EXPECT_GT(nWritten + nMax, nRoom);
  }
}

TEST(AsciiRuns, EndAtAnyCharacter) {
  for (size_t nAt = 0; nAt <= kRun; ++nAt) {
    SCOPED_TRACE(nAt);
    const stForms forms = RunWithCharacterAt(nAt);
    const size_t nRoom = forms.strUtf8.size() + 6;
    ExpectCodes(enc_GBK_to_unicode_str, forms.strGbk, forms.codes, nRoom);
    ExpectCodes(enc_utf8_to_unicode_str, forms.strUtf8, forms.codes, nRoom);
    ExpectText(enc_unicode_to_GBK_str, forms.codes, forms.strGbk, 2, nRoom);
    ExpectText(enc_unicode_to_utf8_str, forms.codes, forms.strUtf8, 6, nRoom);
  }
}

TEST(AsciiRuns, StopAtAnyCapacity) {
  const stForms forms = RunWithCharacterAt(40);
  for (size_t nRoom = 6; nRoom <= forms.strUtf8.size() + 6; ++nRoom) {
    SCOPED_TRACE(nRoom);
    ExpectCodes(enc_GBK_to_unicode_str, forms.strGbk, forms.codes, nRoom);
    ExpectCodes(enc_utf8_to_unicode_str, forms.strUtf8, forms.codes, nRoom);
    ExpectText(enc_unicode_to_GBK_str, forms.codes, forms.strGbk, 2, nRoom);
    ExpectText(enc_unicode_to_utf8_str, forms.codes, forms.strUtf8, 6, nRoom);
  }
}

}  // namespace
