#include "CBB/Http/OpenInside.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

#include "CBB/Util/TextCopy.h"

int COpenInside::Open(const char* pszFolder, const char* pszPath) {
  // Does not wait for a pipe's writer: a pipe is refused below.
  const int nFd = open(pszPath, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (nFd < 0) return -1;
  LookAtFolder(pszFolder);
  if (MayBeOpened(nFd)) return nFd;
  close(nFd);
  errno = ENOENT;
  return -1;
}

void COpenInside::LookAtFolder(const char* pszFolder) {
  const time_t now = time(nullptr);
  if (now == m_second && strcmp(m_szGiven, pszFolder) == 0) return;
  m_second = now;
  CopyText(m_szGiven, sizeof(m_szGiven), pszFolder);
  if (realpath(m_szGiven, m_szReal) == nullptr) m_szReal[0] = '\0';
  for (stSeen& seen : m_seen) seen = {};
}

bool COpenInside::MayBeOpened(int nFd) {
  struct stat st {};
  if (fstat(nFd, &st) != 0 || !S_ISREG(st.st_mode)) return false;
  stSeen& seen = m_seen[st.st_ino % std::size(m_seen)];
  if (seen.ino == st.st_ino && seen.dev == st.st_dev && seen.changed.tv_sec == st.st_ctim.tv_sec &&
      seen.changed.tv_nsec == st.st_ctim.tv_nsec)
    return true;
  if (!IsBelow(nFd)) return false;
  seen = {st.st_dev, st.st_ino, st.st_ctim};
  return true;
}

bool COpenInside::IsBelow(int nFd) const {
  char szLink[32];
  snprintf(szLink, sizeof(szLink), "/proc/self/fd/%d", nFd);
  char szFile[1024];  // a longer path is cut, which does not change where it begins
  const ssize_t nLen = readlink(szLink, szFile, sizeof(szFile));
  const std::string_view file(szFile, nLen > 0 ? static_cast<size_t>(nLen) : 0);
  const std::string_view folder(m_szReal);
  return !folder.empty() && file.size() > folder.size() && file[folder.size()] == '/' &&
         file.substr(0, folder.size()) == folder;
}
