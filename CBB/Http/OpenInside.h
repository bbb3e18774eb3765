// Opening the files of one folder and no others, wherever symbolic links lead.
#pragma once

#include <sys/stat.h>

#include <climits>
#include <ctime>

// An object belongs to one thread. Nothing here throws.
class COpenInside {
 public:
  // Opens the regular file at pszPath for reading and returns its descriptor, which the caller
  // closes and no other program inherits. The place where the file really is must be below the one
  // where pszFolder really is. Both are looked at anew in every second of the clock; a file that
  // was there passes for the rest of one, as long as it is the same one, unchanged. Else returns -1
  // with errno: the system's reason, or ENOENT for what must not be opened. Does not wait.
  int Open(const char* pszFolder, const char* pszPath);

 private:
  // A file in one state. Asking where it is takes as long as the rest of opening it.
  struct stSeen {
    dev_t dev;
    ino_t ino;
    timespec changed;
  };

  void LookAtFolder(const char* pszFolder);
  bool MayBeOpened(int nFd);
  bool IsBelow(int nFd) const;

  char m_szGiven[PATH_MAX] = "";
  char m_szReal[PATH_MAX] = "";  // empty: not there, so nothing is below it
  time_t m_second = 0;           // of the last look at the folder
  stSeen m_seen[32] = {};        // below it, in that second
};
