// Where kinds of characters alternate, the conversions handle bursts of them without branches. The
// result is always that of converting one character after another.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "encoding/unicode_utf-8.h"

namespace {

using Random = std::mt19937;

// Code points of each length and at the ends of each; nOther of 1000 are neither ASCII nor common.
std::vector<uint32_t> RandomCodes(Random& random, unsigned uiOther) {
  constexpr uint32_t kCommon[] = {0x4E2D, 0x4E00, 0x9FA5, 0x3000, 0x8D1D, 0xFFE5};
  constexpr uint32_t kOther[] = {0x80,    0xA7,     0x7FF,    0x800,     0xD800,     0xFFFF,
                                 0x10000, 0x1FFFFF, 0x200000, 0x4000000, 0x7FFFFFFF, 0x80000000};
  std::vector<uint32_t> codes;
  for (size_t n = 40 + random() % 400; n > 0; --n) {
    if (random() % 1000 < uiOther) {
      codes.push_back(kOther[random() % std::size(kOther)]);
    } else if (random() % 2 != 0) {
      codes.push_back(kCommon[random() % std::size(kCommon)]);
    } else {
      codes.push_back(static_cast<uint32_t>(1 + random() % 0x7F));
    }
  }
  return codes;
}

// The outcome of a conversion: its result and its counts.
template <class T>
struct stOutcome {
  int nRet;
  std::vector<T> output;
};
using Bytes = stOutcome<char>;
using Codes = stOutcome<uint32_t>;

template <class T>
void ExpectSame(const stOutcome<T>& should, const stOutcome<T>& is) {
  ASSERT_EQ(should.nRet, is.nRet);
  ASSERT_EQ(should.output, is.output);
}

template <class T, class In>
stOutcome<T> Whole(int (*pfnConvert)(const In*, T*, int*), const In* pInput, int nRoom) {
  std::vector<T> output(static_cast<size_t>(nRoom), static_cast<T>(0xEE));
  const int nRet = pfnConvert(pInput, output.data(), &nRoom);
  const auto behind = output.begin() + nRoom;
  EXPECT_EQ(output.end(),
            std::find_if(behind, output.end(), [](T c) { return c != static_cast<T>(0xEE); }))
      << "written behind what is counted";
  output.resize(static_cast<size_t>(nRoom));
  return {nRet, output};
}

// One code point after another; nMax bytes of room are required for each.
template <class F>
Bytes OneByOne(const std::vector<uint32_t>& codes, size_t nRoom, size_t nMax, F fnOne) {
  Bytes bytes{1, {}};
  for (const uint32_t uiCode : codes) {
    if (nRoom - bytes.output.size() < nMax) return {2, bytes.output};
    const std::string strOne = fnOne(uiCode);
    if (strOne.empty()) return {0, bytes.output};
    bytes.output.insert(bytes.output.end(), strOne.begin(), strOne.end());
  }
  return bytes;
}

std::string OneUtf8(uint32_t uiCode) {
  char szOut[6];
  const int nLen = enc_unicode_to_utf8_one(uiCode, szOut, sizeof(szOut));
  return {szOut, static_cast<size_t>(nLen)};
}

std::string OneGbk(uint32_t uiCode) {
  uint16_t usGbk = 0;
  const int nLen = enc_unicode_to_GBK_one(uiCode, &usGbk);
  const char szOut[] = {static_cast<char>(usGbk >> 8), static_cast<char>(usGbk)};
  return {szOut + (2 - nLen), static_cast<size_t>(nLen)};
}

// fnOne returns the bytes that it consumed, 0 for none.
template <class F>
Codes OneByOne(const std::string& strText, size_t nRoom, F fnOne) {
  Codes codes{1, {}};
  for (size_t nAt = 0; nAt < strText.size();) {
    if (codes.output.size() == nRoom) return {2, codes.output};
    uint32_t uiCode = 0;
    const int nTaken = fnOne(strText.c_str() + nAt, &uiCode);
    if (nTaken == 0) return {0, codes.output};
    codes.output.push_back(uiCode);
    nAt += static_cast<size_t>(nTaken);
  }
  return codes;
}

int TakeGbk(const char* pText, uint32_t* pCode) {
  const auto uiLead = static_cast<unsigned char>(pText[0]);
  const auto uiTrail = static_cast<unsigned char>(uiLead < 0x80 ? 0 : pText[1]);
  return enc_GBK_to_unicode_one(static_cast<uint16_t>(uiLead << 8 | uiTrail), pCode);
}

// Every second text unchanged, the others with one byte changed.
std::string Spoilt(std::string strText, Random& random) {
  if (random() % 2 != 0 && !strText.empty()) {
    strText[random() % strText.size()] = static_cast<char>(1 + random() % 255);
  }
  return strText;
}

class TurnsTest : public testing::TestWithParam<unsigned> {};

TEST_P(TurnsTest, GiveWhatOneCharacterAfterAnotherGives) {
  Random random(GetParam());
  for (int i = 0; i < 3000; ++i) {
    std::vector<uint32_t> codes = RandomCodes(random, GetParam());
    const size_t nRoom = 6 + random() % (4 * codes.size());
    const int nCapacity = static_cast<int>(nRoom);
    const Bytes utf8 = OneByOne(codes, nRoom, 6, OneUtf8), gbk = OneByOne(codes, nRoom, 2, OneGbk);
    codes.push_back(0);
    ExpectSame(utf8, Whole(enc_unicode_to_utf8_str, codes.data(), nCapacity));
    ExpectSame(gbk, Whole(enc_unicode_to_GBK_str, codes.data(), nCapacity));
    const std::string strUtf8 = Spoilt({utf8.output.begin(), utf8.output.end()}, random);
    const std::string strGbk = Spoilt({gbk.output.begin(), gbk.output.end()}, random);
    const size_t nCodes = 1 + random() % codes.size();
    ExpectSame(OneByOne(strUtf8, nCodes, enc_utf8_to_unicode_one),
               Whole(enc_utf8_to_unicode_str, strUtf8.c_str(), static_cast<int>(nCodes)));
    ExpectSame(OneByOne(strGbk, nCodes, TakeGbk),
               Whole(enc_GBK_to_unicode_str, strGbk.c_str(), static_cast<int>(nCodes)));
    if (HasFatalFailure()) return;
  }
}

INSTANTIATE_TEST_SUITE_P(OthersOf1000, TurnsTest, testing::Values(0, 3, 30, 300));

}  // namespace
