// The plain traces "FUN:%s, LINE:%d.\n" of handlers and device operations, on standard output.
#pragma once

#include <string>

#include "CBB/Util/Print.h"

// Prints one trace line with the calling function's name and line; used at entry and exit.
inline void TraceFun(const char* pszFun = __builtin_FUNCTION(), int nLine = __builtin_LINE()) {
  Print({"FUN:", pszFun, ", LINE:", std::to_string(nLine), ".\n"});
}
