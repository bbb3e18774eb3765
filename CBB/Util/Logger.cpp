#include "CBB/Util/Logger.h"

#include <dirent.h>

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <utility>

#include "CBB/Util/DebugPrint.h"
#include "CBB/Util/LocalTime.h"

namespace {

constexpr int kErrorLevel = 3;
constexpr uint32_t kLinesPerFile = 120000;
constexpr int kFilesKept = 30;
constexpr size_t kPathSize = 640;                    // a directory and the longest file name
constexpr size_t kCommandSize = 4 * kPathSize + 16;  // quoting turns one byte into at most four

// An error line: red, with the class, the function and the source line before the message.
__attribute__((format(printf, 3, 4))) void PrintError(const char* pszCaller, int nLine,
                                                      const char* pszFormat, ...) {
  char szMessage[768];
  va_list args;
  va_start(args, pszFormat);
  vsnprintf(szMessage, sizeof(szMessage), pszFormat, args);
  va_end(args);
  DebugPrint(kErrorLevel, "\033[31m\033[1m[%-16s]<ERROR@%s, L%d>:%s\n\033[0m", "Logger", pszCaller,
             nLine, szMessage);
}

// Writes "verb path" as a shell command. A path of harmless characters is not quoted; any other is,
// so that no file name becomes a command of its own.
void ShellCommand(char (&szCommand)[kCommandSize], const char* pszVerb, const char* pszPath) {
  static constexpr char kHarmless[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-/";
  if (!pszPath[strspn(pszPath, kHarmless)]) {
    snprintf(szCommand, sizeof(szCommand), "%s %s", pszVerb, pszPath);
    return;
  }
  size_t nLen = static_cast<size_t>(snprintf(szCommand, sizeof(szCommand), "%s '", pszVerb));
  for (const char* p = pszPath; *p; ++p)
    nLen += static_cast<size_t>(
        snprintf(szCommand + nLen, sizeof(szCommand) - nLen, *p == '\'' ? "'\\'%c" : "%c", *p));
  snprintf(szCommand + nLen, sizeof(szCommand) - nLen, "'");
}

// The command's exit status does not matter: what it failed to do shows later.
void RunShell(const char* pszCommand) {
  if (system(pszCommand) != 0) return;
}

int CompareNames(const dirent** ppLeft, const dirent** ppRight) {
  return strcmp((*ppLeft)->d_name, (*ppRight)->d_name);
}

}  // namespace

Logger& Logger::Instance() {
  static Logger s_logger;
  return s_logger;
}

int Logger::init(const char* pszPrefix, const char* pszDir) {
  const AutoLock lock(m_mutex);
  if (SetNames(pszPrefix, pszDir)) return -1;
  return OpenFile("init");
}

int Logger::SetNames(const char* pszPrefix, const char* pszDir) {
  if (pszDir == nullptr || !*pszDir) pszDir = "./log/";
  // A truncated path would name another directory, whose files would be cleared: refuse.
  if (strlen(pszDir) >= sizeof(m_szDir) || strlen(pszPrefix) >= sizeof(m_szPrefix)) {
    PrintError("init", __LINE__, "Can't open log file:%s%s.", pszDir, pszPrefix);
    return -1;
  }
  snprintf(m_szDir, sizeof(m_szDir), "%s", pszDir);
  snprintf(m_szPrefix, sizeof(m_szPrefix), "%s", pszPrefix);
  return 0;
}

const char* Logger::Slash() const { return m_szDir[strlen(m_szDir) - 1] == '/' ? "" : "/"; }

int Logger::OpenFile(const char* pszCaller) {
  if (m_pFile != nullptr) fclose(m_pFile);
  const tm now = LocalNow();
  char szPath[kPathSize];
  snprintf(szPath, sizeof(szPath), "%s%s%s_%d%02d%02d_%02d%02d%02d", m_szDir, Slash(), m_szPrefix,
           now.tm_year + 1900, now.tm_mon + 1, now.tm_mday, now.tm_hour, now.tm_min, now.tm_sec);
  m_pFile = fopen(szPath, "a+");
  if (m_pFile != nullptr) return 0;
  PrintError(pszCaller, __LINE__, "Can't open log file:%s.", szPath);
  return -1;
}

int Logger::RotateIfDue() {
  // Deliberate: line 0 rotates too, so the first message after init gets a file of its own.
  if (m_uiLine % kLinesPerFile) return 0;
  fclose(m_pFile);
  m_pFile = nullptr;
  Clear(kFilesKept);
  return OpenFile("log");
}

void Logger::log(const char* pszFormat, ...) {
  const AutoLock lock(m_mutex);
  if (m_pFile == nullptr) {
    PrintError("log", __LINE__, "CLogger not init.");
    return;
  }
  if (RotateIfDue()) return;
  const tm now = LocalNow();
  fprintf(m_pFile, "<L%u> [%d-%02d-%02d %02d:%02d:%02d]:", m_uiLine, now.tm_year + 1900,
          now.tm_mon + 1, now.tm_mday, now.tm_hour, now.tm_min, now.tm_sec);
  va_list args;
  va_start(args, pszFormat);
  vfprintf(m_pFile, pszFormat, args);
  va_end(args);
  fflush(m_pFile);
  ++m_uiLine;
}

int Logger::clearLog(int nKeep) {
  const AutoLock lock(m_mutex);
  return Clear(nKeep);
}

// Lists the log directory, sorted by name; creates it when it is missing. Returns the number of
// entries, or -1.
int Logger::OpenDir(dirent*** pppEntries) const {
  int nCount = scandir(m_szDir, pppEntries, nullptr, CompareNames);
  if (nCount >= 0) return nCount;
  const char* pszStep = "open";
  if (errno == ENOENT && m_szDir[0]) {
    char szCommand[kCommandSize];
    ShellCommand(szCommand, "mkdir", m_szDir);
    RunShell(szCommand);
    nCount = scandir(m_szDir, pppEntries, nullptr, CompareNames);
    pszStep = "reopen";
  }
  if (nCount < 0)
    PrintError("clearLog", __LINE__, "%s dir:[%s] error:%s.", pszStep, m_szDir, strerror(errno));
  return nCount;
}

void Logger::RemoveFile(const char* pszName) const {
  char szPath[kPathSize];
  char szCommand[kCommandSize];
  snprintf(szPath, sizeof(szPath), "%s%s%s", m_szDir, Slash(), pszName);
  ShellCommand(szCommand, "rm -rf", szPath);
  RunShell(szCommand);
  DebugPrint(1, "\033[32m\033[1mLogger::clearLog, [%s]\n\033[0m", szCommand);
}

int Logger::Clear(int nKeep) const {
  dirent** ppEntries = nullptr;
  const int nCount = OpenDir(&ppEntries);
  if (nCount < 0) return -1;
  const size_t nPrefixLen = strlen(m_szPrefix);
  int nOurs = 0;
  // Other programs' names are dropped; ours move to the front and stay sorted.
  for (int i = 0; i < nCount; ++i) {
    const char* const pszName = ppEntries[i]->d_name;
    if (strcmp(pszName, ".") && strcmp(pszName, "..") && !strncmp(pszName, m_szPrefix, nPrefixLen))
      std::swap(ppEntries[nOurs++], ppEntries[i]);
  }
  const int nRemove = nOurs - (nKeep > 0 ? nKeep : 0);
  for (int i = 0; i < nRemove; ++i) RemoveFile(ppEntries[i]->d_name);
  for (int i = 0; i < nCount; ++i) free(ppEntries[i]);
  free(ppEntries);
  return 0;
}

uint32_t Logger::LineCount() {
  const AutoLock lock(m_mutex);
  return m_uiLine;
}
