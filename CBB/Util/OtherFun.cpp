#include "CBB/Util/OtherFun.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr int kDotCount = 3;
constexpr unsigned kGroupMax = 255;
constexpr int kDigitsOfUInt = 8;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The value of a hexadecimal digit, -1 for any other character.
int DigitValue(char c) {
  static constexpr char kDigits[] = "0123456789abcdefABCDEF";
  const char* pszFound = c ? strchr(kDigits, c) : nullptr;
  if (pszFound == nullptr) return -1;
  const int nIndex = static_cast<int>(pszFound - kDigits);
  return nIndex < 16 ? nIndex : nIndex - 6;
}

}  // namespace

int IsIpAddrStr(const char* pszText) {
  if (pszText == nullptr || !*pszText) return 0;
  int nDots = 0;
  unsigned uiGroup = 0;
  for (const char* p = pszText; *p; ++p) {
    if (IsDigit(*p)) {
      // Above the limit the exact value does not matter, as long as it does not wrap.
      if (uiGroup <= kGroupMax) uiGroup = uiGroup * 10 + static_cast<unsigned>(*p - '0');
    } else if (*p == '.') {
      if (uiGroup > kGroupMax) return 0;
      uiGroup = 0;
      ++nDots;
    } else {
      return 0;
    }
  }
  // Deliberate: the last group is not limited and groups may be empty.
  return static_cast<int>(nDots == kDotCount);
}

int IsHexStr(const char* pszText) {
  if (pszText == nullptr || pszText[0] != '0' || (pszText[1] != 'x' && pszText[1] != 'X')) return 0;
  const char* p = pszText + 2;
  if (!*p) return 0;
  while (*p)
    if (DigitValue(*p++) < 0) return 0;
  return 1;
}

int IsDecStr(const char* pszText) {
  if (pszText == nullptr) return 0;
  const char* p = pszText;
  if (*p == '-') ++p;
  // Deliberate: a text without digits passes too.
  while (*p)
    if (!IsDigit(*p++)) return 0;
  return 1;
}

int TextToInt(const char* pszText) {
  return static_cast<int>(static_cast<uint32_t>(strtoll(pszText, nullptr, 10)));
}

int HexStrToUInt(const char* pszHex, int nCount, uint32_t& uiValue) {
  uiValue = 0;
  for (int i = 0; i < nCount; ++i) {
    const int nDigit = DigitValue(pszHex[i]);
    if (nDigit < 0) return -1;
    const int nBehind = nCount - 1 - i;
    // A digit followed by eight or more others is worth a multiple of 2^32.
    if (nBehind < kDigitsOfUInt) uiValue += static_cast<uint32_t>(nDigit) << (4 * nBehind);
  }
  return 0;
}

int HexStrToBytes(const char* pszHex, int nHexLen, uint8_t* pOut, int& nOutLen) {
  if (nHexLen < 0 || nOutLen < nHexLen / 2 + nHexLen % 2) return -1;
  for (int i = 0; i < nHexLen; ++i)
    if (DigitValue(pszHex[i]) < 0) return -1;
  nOutLen = 0;
  for (int i = 0; i < nHexLen; i += 2) {
    const int nLow = i + 1 < nHexLen ? DigitValue(pszHex[i + 1]) : 0;
    pOut[nOutLen++] = static_cast<uint8_t>(DigitValue(pszHex[i]) * 16 + nLow);
  }
  return 0;
}
