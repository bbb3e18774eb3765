// The files that the HTTP library opens: regular ones inside the document root and no others,
// wherever a URI, a page's include or a symbolic link leads. They are only ever read.
#include <fcntl.h>
#include <mongoose.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string_view>

#include "CBB/WebCtrl/HttpLoop.h"

namespace {

// A longer path is cut, which does not change where it begins. The thread's stack has 128 KiB.
using PathBuffer = char[1024];

class CFile {
 public:
  CFile(const char* pszPath, int nFlags) : m_nFd(open(pszPath, nFlags | O_CLOEXEC)) {}
  ~CFile() {
    if (m_nFd >= 0) close(m_nFd);
  }
  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;

  bool IsOpen() const { return m_nFd >= 0; }

  bool IsRegular() const {
    struct stat st {};
    return fstat(m_nFd, &st) == 0 && S_ISREG(st.st_mode);
  }

  // Where the file really is; empty when that cannot be told. Valid as long as the buffer.
  std::string_view Path(PathBuffer& szBuf) const {
    char szLink[32];
    snprintf(szLink, sizeof(szLink), "/proc/self/fd/%d", m_nFd);
    const ssize_t nLen = readlink(szLink, szBuf, sizeof(szBuf));
    return {szBuf, nLen > 0 ? static_cast<size_t>(nLen) : 0};
  }

  // A stream that owns the file from now on, or null.
  FILE* ToStream() {
    FILE* const pStream = fdopen(m_nFd, "rb");
    if (pStream != nullptr) m_nFd = -1;
    return pStream;
  }

 private:
  int m_nFd;
};

bool IsInsideRoot(const CFile& file) {
  const CFile root(HttpOptions().document_root, O_PATH | O_DIRECTORY);
  if (!root.IsOpen()) return false;
  PathBuffer szRoot;
  PathBuffer szFile;
  const std::string_view strRoot = root.Path(szRoot);
  const std::string_view strFile = file.Path(szFile);
  return !strRoot.empty() && strFile.size() > strRoot.size() && strFile[strRoot.size()] == '/' &&
         strFile.substr(0, strRoot.size()) == strRoot;
}

}  // namespace

int mg_stat(const char* pszPath, cs_stat_t* pStat) { return stat(pszPath, pStat); }

FILE* mg_fopen(const char* pszPath, const char* /*pszMode*/) {
  // Not waiting for a pipe's writer: it is refused below.
  CFile file(pszPath, O_RDONLY | O_NONBLOCK | O_NOCTTY);
  if (!file.IsOpen()) return nullptr;
  if (!file.IsRegular() || !IsInsideRoot(file)) {
    errno = ENOENT;
    return nullptr;
  }
  return file.ToStream();
}

size_t mg_fread(void* pBuf, size_t nSize, size_t nCount, FILE* pFile) {
  return fread(pBuf, nSize, nCount, pFile);
}

// Nothing is ever written; the library only wants the name.
size_t mg_fwrite(const void* /*pBuf*/, size_t /*nSize*/, size_t /*nCount*/, FILE* /*pFile*/) {
  return 0;
}
