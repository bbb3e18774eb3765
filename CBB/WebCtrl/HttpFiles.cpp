// The files that the HTTP library opens: regular ones inside the document root and no others,
// wherever a URI, a page's include or a symbolic link leads. They are only ever read. HTTP server
// thread only; nothing here throws, as the library's frames lie between.
#include <fcntl.h>
#include <mongoose.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "CBB/Util/TextCopy.h"
#include "CBB/WebCtrl/HttpLoop.h"

namespace {

// Where the document root really is, found out once for each root; empty when it is not there.
std::string_view RealRoot() {
  static char szGiven[128];
  static char szReal[PATH_MAX];
  const char* pszRoot = HttpOptions().document_root;
  if (szReal[0] == '\0' || strcmp(szGiven, pszRoot) != 0) {
    CopyText(szGiven, sizeof(szGiven), pszRoot);
    if (realpath(pszRoot, szReal) == nullptr) szReal[0] = '\0';
  }
  return szReal;
}

bool IsInsideRoot(int nFd) {
  char szLink[32];
  snprintf(szLink, sizeof(szLink), "/proc/self/fd/%d", nFd);
  char szFile[1024];  // a longer path is cut, which does not change where it begins
  const ssize_t nLen = readlink(szLink, szFile, sizeof(szFile));
  const std::string_view file(szFile, nLen > 0 ? static_cast<size_t>(nLen) : 0);
  const std::string_view root = RealRoot();
  return !root.empty() && file.size() > root.size() && file[root.size()] == '/' &&
         file.substr(0, root.size()) == root;
}

bool IsRegular(int nFd) {
  struct stat st {};
  return fstat(nFd, &st) == 0 && S_ISREG(st.st_mode);
}

}  // namespace

int mg_stat(const char* pszPath, cs_stat_t* pStat) { return stat(pszPath, pStat); }

FILE* mg_fopen(const char* pszPath, const char* /*pszMode*/) {
  // Not waiting for a pipe's writer: it is refused below.
  const int nFd = open(pszPath, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (nFd < 0) return nullptr;
  FILE* const pStream = IsRegular(nFd) && IsInsideRoot(nFd) ? fdopen(nFd, "rb") : nullptr;
  if (pStream == nullptr) {
    close(nFd);
    errno = ENOENT;
  }
  return pStream;
}

size_t mg_fread(void* pBuf, size_t nSize, size_t nCount, FILE* pFile) {
  return fread(pBuf, nSize, nCount, pFile);
}

// Nothing is ever written; the library only wants the name.
size_t mg_fwrite(const void* /*pBuf*/, size_t /*nSize*/, size_t /*nCount*/, FILE* /*pFile*/) {
  return 0;
}
