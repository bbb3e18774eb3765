#include "CBB/Util/DebugPrint.h"

#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <ctime>

#include "CBB/Util/Print.h"

namespace {

constexpr int kLevelMax = 4;
constexpr int kMessageSize = 1024;

struct stDebugSettings {
  uint8_t ucEnable = 1;
  int nThreshold = 1;
};

stDebugSettings g_stDebug;
timeval g_stStart;
timeval g_stEnd;

void PrintSettings() { printf("Debug[%d]-enable=%d\n", g_stDebug.nThreshold, g_stDebug.ucEnable); }

}  // namespace

void DebugPrint(int nLevel, const char* pszFormat, ...) {
  if (!g_stDebug.ucEnable || g_stDebug.nThreshold > nLevel || g_stDebug.nThreshold > kLevelMax)
    return;
  char szText[kMessageSize];
  va_list args;
  va_start(args, pszFormat);
  int nLen = vsnprintf(szText, sizeof(szText), pszFormat, args);
  va_end(args);
  if (nLen <= 0) return;
  if (nLen >= kMessageSize) nLen = kMessageSize - 1;
  FlushPrinted();  // this message bypasses the held-back output
  // There is nowhere to report a trace that cannot be written.
  if (write(STDOUT_FILENO, szText, static_cast<size_t>(nLen)) < 0) return;
}

void DebugLower() {
  if (g_stDebug.ucEnable && g_stDebug.nThreshold > 0) --g_stDebug.nThreshold;
  PrintSettings();
}

void DebugRaise() {
  if (g_stDebug.ucEnable && g_stDebug.nThreshold <= kLevelMax) ++g_stDebug.nThreshold;
  PrintSettings();
}

void SetDebugLevel(int nLevel) {
  if (static_cast<unsigned>(nLevel) <= kLevelMax) g_stDebug.nThreshold = nLevel;
}

int GetDebugLevel() { return g_stDebug.nThreshold; }

void SetDebugEnable(uint8_t ucEnable) {
  g_stDebug.ucEnable = ucEnable;
  g_stDebug.nThreshold = ucEnable ? 0 : kLevelMax;
}

void DebugHex(int nLevel, const char* pszLabel, const void* pData, int nLen) {
  if (!g_stDebug.ucEnable || g_stDebug.nThreshold > nLevel) return;
  if (pszLabel == nullptr || pData == nullptr || nLen <= 0) return;
  const auto* pBytes = static_cast<const uint8_t*>(pData);
  printf("<HEX:%s>(%d)-[", pszLabel, nLen);
  for (int i = 0; i < nLen; ++i) printf("%02x ", pBytes[i]);
  printf("]\n");
}

void MarkStart() { gettimeofday(&g_stStart, nullptr); }

void MarkEnd() { gettimeofday(&g_stEnd, nullptr); }

void PrintRunTime() { PrintDuration(g_stStart, g_stEnd); }

void PrintDuration(const timeval& start, const timeval& end) {
  int nSec = static_cast<int>(end.tv_sec - start.tv_sec);
  int nUsec = static_cast<int>(end.tv_usec - start.tv_usec);
  if (nSec < 0) {
    printf("DEBUG::time error.\n");
    return;
  }
  // Deliberate: the sign was tested before the borrow, so an end shortly before the start within
  // the same second prints -1 s and the borrowed milliseconds.
  if (nUsec < 0) {
    nUsec += 1000000;
    --nSec;
  }
  printf("DEBUG::run time duration : %ds+%dms\n", nSec, nUsec / 1000);
}

const char* CurTimeText() {
  thread_local char t_szText[64];
  const time_t now = time(nullptr);
  if (ctime_r(&now, t_szText) == nullptr) t_szText[0] = '\0';
  return t_szText;
}
