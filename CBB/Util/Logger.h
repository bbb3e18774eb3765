// The file log: dated files with a numbered header before each message, a new file every 120000
// lines, old files cleared.
//
// One instance for the process. Every operation holds its mutex, so any thread may call. Directory
// and prefix are the program's own texts, never input.
#pragma once

#include <cstdint>
#include <cstdio>

#include "CBB/Util/Thread.h"

class Logger {
 public:
  // The one instance.
  static Logger& Instance();

  Logger(const Logger&) = delete;
  Logger& operator=(const Logger&) = delete;

  // Opens "<prefix>_<date>_<time>" in the directory (null: "./log/") for appending, in place of a
  // file that is open. Does not create the directory. Prefix at most 63 bytes, directory at most
  // 255. Returns 0; -1 with an error line when a text is too long or the file cannot be opened.
  int init(const char* pszPrefix, const char* pszDir);

  // Appends one line header and the message, which brings its own line end. When no file is open,
  // or a new one cannot be opened, it only prints an error line.
  void log(const char* pszFormat, ...) __attribute__((format(printf, 2, 3)));

  // Removes the oldest files of the prefix so that nKeep stay; creates a missing directory.
  // Returns 0; -1 with an error line when the directory cannot be opened.
  int clearLog(int nKeep);

  // Lines written since the start of the process.
  uint32_t LineCount();

 private:
  static constexpr size_t kDirSize = 256;
  static constexpr size_t kPrefixSize = 64;

  Logger() = default;
  int SetNames(const char* pszPrefix, const char* pszDir);
  const char* Slash() const;  // joins the directory and a file name, once set
  int OpenFile(const char* pszCaller);
  int RotateIfDue();
  int OpenDir(struct dirent*** pppEntries) const;
  void RemoveFile(const char* pszName) const;
  int Clear(int nKeep) const;

  CMutex m_mutex;
  FILE* m_pFile = nullptr;
  uint32_t m_uiLine = 0;
  char m_szDir[kDirSize] = "";  // as given
  char m_szPrefix[kPrefixSize] = "";
};
