// Opening the files of one folder and no others, wherever symbolic links lead.
#pragma once

#include <sys/stat.h>

#include <climits>
#include <string_view>

// An object belongs to one thread. Nothing here throws.
class COpenInside {
 public:
  // Finds out where the folder really is. In one that is not there, nothing is opened.
  explicit COpenInside(const char* pszFolder);

  // Whether this is the folder that the object was made for, and it was there. Never for a path of
  // more than 127 characters.
  bool IsFor(const char* pszFolder) const;

  // Opens the regular file at pszPath for reading and returns its descriptor, which the caller
  // closes and no other program inherits. Where the file really is must be below the folder; a file
  // that was there less than a second ago passes, as long as it is the same one, unchanged. Else
  // returns -1 with errno: the system's reason, or ENOENT for what must not be opened. Does not
  // wait.
  int Open(const char* pszPath);

 private:
  // A file in one state, which was below the folder in one second of the clock.
  struct stSeen {
    dev_t dev;
    ino_t ino;
    timespec changed;
    time_t second;
  };

  bool MayBeOpened(int nFd);
  bool IsBelow(int nFd) const;

  char m_szGiven[128];
  char m_szReal[PATH_MAX];
  stSeen m_seen[32] = {};  // asking where a file is takes as long as the rest of opening it
};
