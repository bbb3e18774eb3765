// What ENC_ASSERT calls on failure.
#include "encoding/Assert.h"

#include <stdio.h>
#include <stdlib.h>

void EncAssertFailed(const char* pszText, const char* pszFile, int nLine, const char* pszFunction) {
  fprintf(stderr, "%s:%d: %s: Assertion `%s' failed.\n", pszFile, nLine, pszFunction, pszText);
  fflush(stdout);
  abort();
}
