// Hostile text through every conversion, as GBK and as UTF-8, into outputs of every size. For every
// text, no output overflows, each result code is true, iconv agrees where it has an answer, and
// what was converted comes back the same.
#include <stdint.h>
#include <stdlib.h>

#include <algorithm>
#include <string>
#include <vector>

#include "encoding/gbk_table.h"
#include "encoding/unicode_utf-8.h"
#include "tests/unit/encoding/Iconv.h"

namespace {

using Codes = std::vector<uint32_t>;

struct stCodes {
  int nRet;
  Codes codes;  // without a terminator
};

struct stBytes {
  int nRet;
  std::string text;
};

void Require(bool bHolds) {
  if (!bHolds) abort();
}

// The outputs have exactly the size passed to the functions, so that AddressSanitizer detects an
// overflow.
stCodes Decode(int (*pfnDecode)(const char*, uint32_t*, int*), const std::string& text,
               int nCapacity) {
  Codes codes(static_cast<size_t>(nCapacity));
  int nCodes = nCapacity;
  const int nRet = pfnDecode(text.c_str(), codes.data(), &nCodes);
  Require(nRet >= 0 && nRet <= 2 && nCodes >= 0 && nCodes <= nCapacity);
  Require(nRet != 2 || nCodes == nCapacity);
  codes.resize(static_cast<size_t>(nCodes));
  return {nRet, codes};
}

stBytes Encode(int (*pfnEncode)(const uint32_t*, char*, int*), Codes codes, int nCapacity) {
  codes.push_back(0);
  std::vector<char> bytes(static_cast<size_t>(nCapacity));
  int nBytes = nCapacity;
  const int nRet = pfnEncode(codes.data(), bytes.data(), &nBytes);
  Require(nRet >= 0 && nRet <= 2 && nBytes >= 0 && nBytes <= nCapacity);
  return {nRet, std::string(bytes.data(), static_cast<size_t>(nBytes))};
}

int RoomFor(const Codes& codes) { return static_cast<int>(codes.size()) * 6 + 6; }

uint32_t ByteAt(const std::string& text, size_t n) {
  return n < text.size() ? static_cast<unsigned char>(text[n]) : 0;  // the terminator after it
}

// Whether it is a two-byte UTF-8 form whose second byte is not 0x80 to 0x9F, which is refused.
bool IsRefused(uint32_t uiCode) {
  return uiCode >= 0x80 && uiCode < 0x800 && (uiCode & 0x3F) >= 0x20;
}

// What a code point decodes to: five bytes carry the lead byte's two bits at 30-31, not at 24-25.
uint32_t AsDecoded(uint32_t uiCode) {
  const bool bFiveBytes = uiCode >= 0x200000 && uiCode < 0x4000000;
  return bFiveBytes ? (uiCode & 0xFFFFFF) | uiCode >> 24 << 30 : uiCode;
}

// Walks the GBK text and its code points in parallel. `plain` receives the text with the single
// byte 0x01 for every unassigned code. Returns where the walk ends.
size_t WalkGbk(const std::string& text, const Codes& codes, std::string& plain) {
  CIconv toUcs4("WCHAR_T", "CP936");
  std::string ucs4;
  size_t n = 0;
  for (const uint32_t uiCode : codes) {
    const size_t nTaken = ByteAt(text, n) < 0x80 ? 1 : 2;
    std::string bytes = text.substr(n, nTaken);
    if (nTaken == 2 && uiCode == kGbkUnassigned) {
      Require(!toUcs4.Convert(bytes, ucs4));
      bytes = "\x01";
    }
    plain += bytes;
    n += nTaken;
  }
  return n;
}

void CheckStop(const std::string& text, size_t nEnd, int nRet) {
  if (nRet == 1) Require(nEnd >= text.size() && nEnd <= text.size() + 1);
  if (nRet == 2) Require(nEnd < text.size());
  if (nRet != 0) return;
  const uint32_t uiPair = ByteAt(text, nEnd) << 8 | ByteAt(text, nEnd + 1);
  Require(uiPair >= 0x8000 && (uiPair < kGbkFirst || uiPair > kGbkLast));
}

void CheckUtf8(const Codes& codes, const std::string& gbk) {
  static CIconv s_toUtf8("UTF-8", "CP936");
  const stBytes utf8 = Encode(enc_unicode_to_utf8_str, codes, RoomFor(codes));
  std::string expected;
  Require(s_toUtf8.Convert(gbk, expected));
  Require(utf8.nRet == 1 && utf8.text == expected);
  const stCodes back = Decode(enc_utf8_to_unicode_str, utf8.text, RoomFor(codes));
  const auto refused = std::find_if(codes.begin(), codes.end(), IsRefused);
  Require(back.nRet == (refused == codes.end() ? 1 : 0));
  Require(back.codes == Codes(codes.begin(), refused));
}

void CheckGbk(const std::string& text, int nCodes, int nBytes) {
  const stCodes decoded = Decode(enc_GBK_to_unicode_str, text, nCodes);
  std::string plain;
  CheckStop(text, WalkGbk(text, decoded.codes, plain), decoded.nRet);
  CheckUtf8(decoded.codes, plain);
  const stBytes whole = Encode(enc_unicode_to_GBK_str, decoded.codes, RoomFor(decoded.codes));
  Require(whole.nRet == 1 && whole.text == plain);
  const stBytes part = Encode(enc_unicode_to_GBK_str, decoded.codes, nBytes);
  Require(part.nRet != 0 && plain.compare(0, part.text.size(), part.text) == 0);
  Require(part.nRet == 1 ? part.text == plain : nBytes - static_cast<int>(part.text.size()) < 2);
}

void CheckUtf8Text(const std::string& text, int nCodes, int nBytes) {
  static CIconv s_toUcs4("WCHAR_T", "UTF-8");
  stCodes decoded = Decode(enc_utf8_to_unicode_str, text, nCodes);
  std::string ucs4;
  if (s_toUcs4.Convert(text, ucs4)) {
    Codes expected = CodePoints(ucs4);
    std::transform(expected.begin(), expected.end(), expected.begin(), AsDecoded);
    const auto refused = std::find_if(expected.begin(), expected.end(), IsRefused);
    const size_t nGood = static_cast<size_t>(refused - expected.begin());
    Require(decoded.codes.size() == std::min(nGood, static_cast<size_t>(nCodes)));
    Require(std::equal(decoded.codes.begin(), decoded.codes.end(), expected.begin()));
  }
  // An overlong form of 0 ends the code points as a string.
  Codes& codes = decoded.codes;
  codes.erase(std::find(codes.begin(), codes.end(), 0u), codes.end());
  Encode(enc_unicode_to_utf8_str, codes, nBytes);
  const stBytes gbk = Encode(enc_unicode_to_GBK_str, codes, nBytes);
  const stCodes back = Decode(enc_GBK_to_unicode_str, gbk.text, RoomFor(codes));
  Require(back.nRet == 1 && back.codes.size() <= codes.size());
  Require(std::equal(back.codes.begin(), back.codes.end(), codes.begin()));
  Require(gbk.nRet != 1 || back.codes.size() == codes.size());
}

}  // namespace

// The first two bytes set the capacity for code points and for bytes.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  if (nSize < 2) return 0;
  const int nCodes = 1 + pData[0] * 4, nBytes = 6 + pData[1] * 4;
  const std::string raw(reinterpret_cast<const char*>(pData + 2), nSize - 2);
  const std::string text = raw.c_str();  // up to the first 0, as the functions see it
  CheckGbk(text, nCodes, nBytes);
  CheckUtf8Text(text, nCodes, nBytes);
  return 0;
}
