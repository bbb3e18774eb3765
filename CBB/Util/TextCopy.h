// The bounded copy into a fixed-width text field.
#pragma once

#include <cstddef>
#include <cstring>

// Copies at most nSize - 1 characters of the terminated pszSrc and fills the rest of the nSize
// bytes with zeros, so that the field is always terminated. The two may be the same text. nSize is
// at least 1. Any thread.
inline void CopyText(char* pszDst, size_t nSize, const char* pszSrc) {
  const size_t nLen = strnlen(pszSrc, nSize - 1);
  memmove(pszDst, pszSrc, nLen);
  memset(pszDst + nLen, 0, nSize - nLen);
}
