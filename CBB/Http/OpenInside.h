// Opens files inside one folder only, wherever symbolic links lead.
#pragma once

#include <sys/stat.h>

#include <climits>
#include <ctime>

// An object belongs to one thread. Nothing here throws.
class COpenInside {
 public:
  // Opens the regular file at pszPath for reading and returns its descriptor, which the caller
  // closes and no other program inherits. The file's real path must be below the real path of
  // pszFolder. Both are checked again every second; within a second an unchanged file passes
  // without a check. Otherwise returns -1 with errno: the system's reason, or ENOENT for what must
  // not be opened. Does not block.
  int Open(const char* pszFolder, const char* pszPath);

 private:
  // A file in one state. Finding its real path takes as long as the rest of opening it.
  struct stSeen {
    dev_t dev;
    ino_t ino;
    timespec changed;
  };

  void LookAtFolder(const char* pszFolder);
  bool MayBeOpened(int nFd);
  bool IsBelow(int nFd) const;

  char m_szGiven[PATH_MAX] = "";
  char m_szReal[PATH_MAX] = "";  // empty: missing, so nothing is below it
  time_t m_second = 0;           // of the last check of the folder
  stSeen m_seen[32] = {};        // below it, in that second
};
