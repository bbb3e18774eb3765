// The utility functions on texts, compared with plain models: the tests and converters for numbers
// and addresses, item names, and the replacement of platform addresses. The input is the text.
#include <algorithm>
#include <cctype>
#include <climits>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "CBB/Util/OtherFun.h"
#include "CBB/Util/TextCopy.h"
#include "CBB/WebCtrl/MaskSvrAddr.h"
#include "config/AttrTable.h"
#include "config/TextValue.h"
#include "fuzz/Input.h"

namespace {

bool AllOf(std::string_view text, int (*pfnIs)(int)) {
  return std::all_of(text.begin(), text.end(),
                     [pfnIs](char c) { return pfnIs(static_cast<unsigned char>(c)) != 0; });
}

bool IsAddress(std::string_view text) {
  const auto groups = Split(text, '.');
  if (groups.size() != 4) return false;
  for (size_t i = 0; i < groups.size(); ++i) {
    if (!AllOf(groups[i], isdigit)) return false;
    const size_t nZeros = std::min(groups[i].find_first_not_of('0'), groups[i].size());
    const std::string strNumber(groups[i].substr(nZeros));
    if (i < 3 && (strNumber.size() > 3 || (!strNumber.empty() && std::stoi(strNumber) > 255)))
      return false;
  }
  return true;
}

void CheckTests(const char* pszText) {
  const std::string_view text = pszText;
  Require(IsIpAddrStr(pszText) == (IsAddress(text) ? 1 : 0));
  const bool bMinus = !text.empty() && text.front() == '-';
  Require(IsDecStr(pszText) == (AllOf(text.substr(bMinus ? 1 : 0), isdigit) ? 1 : 0));
  const bool bHex = text.size() > 2 && text[0] == '0' && (text[1] | 0x20) == 'x';
  Require(IsHexStr(pszText) == (bHex && AllOf(text.substr(2), isxdigit) ? 1 : 0));
}

// Digit by digit, so that only the last eight count.
void CheckHexNumber(std::string_view text) {
  uint32_t uiExpected = 0;
  for (const char c : text)
    uiExpected = uiExpected * 16 + static_cast<uint32_t>(std::stoi(std::string(1, c), nullptr, 16));
  const auto pCopy = ExactCopy(text, false);
  uint32_t uiValue = 1;
  Require(HexStrToUInt(pCopy.get(), static_cast<int>(text.size()), uiValue) == 0);
  Require(uiValue == uiExpected);
}

void CheckHex(std::string_view text) {
  const auto pCopy = ExactCopy(text, false);
  const int nHexLen = static_cast<int>(text.size());
  const size_t nBytes = (text.size() + 1) / 2;
  uint32_t uiValue = 0;
  const bool bHex = AllOf(text, isxdigit);
  Require((HexStrToUInt(pCopy.get(), nHexLen, uiValue) == 0) == bHex);
  if (bHex) CheckHexNumber(text);
  for (const size_t nRoom : {nBytes, nBytes + 3, nBytes > 0 ? nBytes - 1 : 0}) {
    const std::vector<uint8_t> untouched(nRoom, 0x5A);
    std::vector<uint8_t> out = untouched;
    int nOut = static_cast<int>(nRoom);
    const int nRet = HexStrToBytes(pCopy.get(), nHexLen, out.data(), nOut);
    Require((nRet == 0) == (bHex && nRoom >= nBytes));
    Require(nRet == 0 ? nOut == static_cast<int>(nBytes)
                      : nOut == static_cast<int>(nRoom) && out == untouched);
    std::string strBack;
    for (int i = 0; nRet == 0 && i < nOut; ++i) {
      char szByte[3];
      snprintf(szByte, sizeof(szByte), "%02x", out[static_cast<size_t>(i)]);
      strBack += szByte;
    }
    Require(nRet != 0 || strncasecmp(strBack.c_str(), std::string(text).c_str(), text.size()) == 0);
  }
}

// The number at the start, saturated at 64 bits and cut to 32.
int ModelInt(std::string_view text) {
  while (!text.empty() && isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
  const bool bMinus = !text.empty() && text.front() == '-';
  if (!text.empty() && (bMinus || text.front() == '+')) text.remove_prefix(1);
  uint64_t ullValue = 0;
  const uint64_t ullMost = static_cast<uint64_t>(LLONG_MAX) + (bMinus ? 1 : 0);
  for (; !text.empty() && isdigit(static_cast<unsigned char>(text.front()));
       text.remove_prefix(1)) {
    const auto ullDigit = static_cast<uint64_t>(text.front() - '0');
    ullValue = ullValue > (ullMost - ullDigit) / 10 ? ullMost : ullValue * 10 + ullDigit;
  }
  return static_cast<int>(static_cast<uint32_t>(bMinus ? 0 - ullValue : ullValue));
}

void CheckNumbers(const char* pszText) {
  Require(TextToInt(pszText) == ModelInt(pszText));
  Require(TextToTimeOfDay(pszText) <= 86401);
  const float fValue = TextToFloat(pszText);
  const std::string_view text = pszText;
  const bool bPlain = !text.empty() && text.size() < 6 && AllOf(text, isdigit);
  Require(!bPlain || std::lround(fValue) == ModelInt(text));
}

void CheckAddressValue(const char* pszText) {
  constexpr uint32_t kUntouched = 0x5A5A5A5A;
  uint32_t uiValue = kUntouched;
  Require(ConvertAddressValue(pszText, uiValue) == 0);
  const bool bKnown = IsIpAddrStr(pszText) != 0 || IsHexStr(pszText) != 0 || IsDecStr(pszText) != 0;
  Require(bKnown || uiValue == kUntouched);
  if (!IsIpAddrStr(pszText) && !IsHexStr(pszText) && bKnown)
    Require(static_cast<int>(uiValue) == ModelInt(pszText));
}

void CheckItemIndex(const char* pszText) {
  const int nStrict = ItemIndex(pszText, Suffix::kExactlyTwo);
  const int nLoose = ItemIndex(pszText, Suffix::kAtLeastTwo);
  Require(nLoose >= -1 && nLoose <= 9 && (nStrict == nLoose || nStrict == -1));
  const std::string_view text = pszText;
  const size_t nMark = text.find('_');
  const bool bDigit = nMark != std::string_view::npos && nMark + 1 < text.size() &&
                      text[nMark + 1] >= '0' && text[nMark + 1] <= '9';
  Require(nLoose == (bDigit ? text[nMark + 1] - '0' : -1));
  Require((nStrict >= 0) == (bDigit && nMark + 2 == text.size()));
}

// Text that is not an address of the table stays the same; an address comes back in the other
// direction.
void CheckMasking(const char* pszText) {
  const size_t nRoom = std::max<size_t>(16, strlen(pszText) + 1);
  for (const int nDirection : {kMask, kUnmask}) {
    const auto pOnce = ExactCopy(std::string(nRoom, '\0'), false);
    const auto pTwice = ExactCopy(std::string(nRoom, '\0'), false);
    Require(MaskSvrAddr(nDirection, pszText, pOnce.get()) == 0);
    Require(MaskSvrAddr(1 - nDirection, pOnce.get(), pTwice.get()) == 0);
    Require(strcmp(pOnce.get(), pszText) == 0 || strcmp(pTwice.get(), pszText) == 0);
  }
}

void CheckCopy(const char* pszText) {
  for (const size_t nSize : {1U, 8U, 32U}) {
    const auto pField = ExactCopy(std::string(nSize, '\x5A'), false);
    CopyText(pField.get(), nSize, pszText);
    std::string strExpected = std::string(pszText).substr(0, nSize - 1);
    strExpected.resize(nSize, '\0');
    Require(memcmp(pField.get(), strExpected.data(), nSize) == 0);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  const std::string_view input = AsText(pData, nSize);
  const auto pCopy = ExactCopy(input, true);
  CheckHex(input);
  CheckTests(pCopy.get());
  CheckNumbers(pCopy.get());
  CheckAddressValue(pCopy.get());
  CheckItemIndex(pCopy.get());
  CheckMasking(pCopy.get());
  CheckCopy(pCopy.get());
  return 0;
}
