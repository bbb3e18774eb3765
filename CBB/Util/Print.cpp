#include "CBB/Util/Print.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

void Print(std::initializer_list<std::string_view> texts) {
  char szLine[1024];
  size_t nLen = 0;
  for (const std::string_view text : texts) {
    const size_t nTaken = std::min(text.size(), sizeof(szLine) - nLen);
    memcpy(szLine + nLen, text.data(), nTaken);
    nLen += nTaken;
  }
  fwrite(szLine, 1, nLen, stdout);
}

void FlushPrinted() { fflush(stdout); }
