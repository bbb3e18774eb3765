#include "config/TextValue.h"

#include <arpa/inet.h>

#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "CBB/Util/TextCopy.h"

float TextToFloat(const char* pszText) {
  const double dValue = atof(pszText);
  // Converting a number outside the float's range is undefined.
  if (dValue > FLT_MAX) return INFINITY;
  if (dValue < -FLT_MAX) return -INFINITY;
  return static_cast<float>(dValue);
}

uint32_t TextToTimeOfDay(const char* pszText) {
  char szText[23];
  CopyText(szText, sizeof(szText), pszText);
  tm time{};
  if (strptime(szText, "%H:%M:%S", &time) == nullptr) return 0;
  return static_cast<uint32_t>(time.tm_hour * 3600 + time.tm_min * 60 + time.tm_sec);
}

int ConvertAddressValue(const char* pszText, uint32_t& uiValue) {
  if (IsIpAddrStr(pszText)) {
    uiValue = inet_addr(pszText);
    return 0;
  }
  if (IsHexStr(pszText)) {
    return HexStrToUInt(pszText + 2, static_cast<int>(strlen(pszText)) - 2, uiValue);
  }
  if (IsDecStr(pszText)) uiValue = static_cast<uint32_t>(TextToInt(pszText));
  return 0;
}
