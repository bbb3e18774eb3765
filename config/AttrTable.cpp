#include "config/AttrTable.h"

#include <cctype>

int ItemIndex(const char* pszName, Suffix rule) {
  const char* pszSuffix = strchr(pszName, '_');
  if (pszSuffix == nullptr || !isdigit(static_cast<unsigned char>(pszSuffix[1]))) return -1;
  if (rule == Suffix::kExactlyTwo && pszSuffix[2]) return -1;
  return pszSuffix[1] - '0';
}
