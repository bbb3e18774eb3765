#include "CBB/WebCtrl/MaskSvrAddr.h"

#include <cstring>
#include <string>

#include WEBCTRL_ADDRESS_TABLE

namespace {

constexpr size_t Length(const char* pszText) { return std::char_traits<char>::length(pszText); }

// Every placeholder has 14 characters and the same prefix; only the number after the last dot
// differs.
constexpr bool IsPlaceholder(const char* pszText) {
  if (Length(pszText) != 14) return false;
  size_t nPrefix = 14;
  while (nPrefix > 0 && pszText[nPrefix - 1] != '.') --nPrefix;
  for (size_t i = 0; i < nPrefix; ++i) {
    if (pszText[i] != kAddressTable[0][1][i]) return false;
  }
  return nPrefix > 0;
}

static_assert(Length(kAddressTable[0][0]) == 13 && Length(kAddressTable[1][0]) == 13,
              "the platform addresses of pairs 1 and 2 have 13 characters");
static_assert(Length(kAddressTable[2][0]) == 12 && Length(kAddressTable[3][0]) == 12,
              "the platform addresses of pairs 3 and 4 have 12 characters");
static_assert(IsPlaceholder(kAddressTable[0][1]) && IsPlaceholder(kAddressTable[1][1]) &&
                  IsPlaceholder(kAddressTable[2][1]) && IsPlaceholder(kAddressTable[3][1]),
              "the placeholders have 14 characters and differ only in the last number");

}  // namespace

int MaskSvrAddr(int nDirection, const char* pszSrc, char* pszDst) {
  const size_t nFrom = nDirection != 0 ? 0 : 1;
  const char* pszFound = pszSrc;
  for (const auto& pair : kAddressTable) {
    if (strcmp(pszSrc, pair[nFrom]) == 0) {
      pszFound = pair[1 - nFrom];
      break;
    }
  }
  memcpy(pszDst, pszFound, strlen(pszFound) + 1);
  return 0;
}
