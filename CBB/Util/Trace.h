// The plain traces "FUN:%s, LINE:%d.\n" of handlers and device operations, on standard output.
#pragma once

#include <string>

#include "CBB/Util/Print.h"

// Prints one trace line with the calling function's name and line.
inline void TraceFun(const char* pszFun = __builtin_FUNCTION(), int nLine = __builtin_LINE()) {
  Print({"FUN:", pszFun, ", LINE:", std::to_string(nLine), ".\n"});
}

// Prints the trace line when it is made and again when it goes: entry and exit of a function.
class CFunTrace {
 public:
  explicit CFunTrace(const char* pszFun = __builtin_FUNCTION(), int nLine = __builtin_LINE())
      : m_pszFun(pszFun), m_nLine(nLine) {
    TraceFun(m_pszFun, m_nLine);
  }
  ~CFunTrace() { TraceFun(m_pszFun, m_nLine); }
  CFunTrace(const CFunTrace&) = delete;
  CFunTrace& operator=(const CFunTrace&) = delete;

 private:
  const char* m_pszFun;
  int m_nLine;
};
