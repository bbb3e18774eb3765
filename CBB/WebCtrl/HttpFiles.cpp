// The files that the HTTP library opens: regular ones inside the document root and no others,
// wherever a URI, a page's include or a symbolic link leads. They are only ever read. HTTP server
// thread only; nothing here throws, as the library's frames lie between.
#include <mongoose.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "CBB/Util/OpenInside.h"
#include "CBB/Util/ReserveMemory.h"
#include "CBB/WebCtrl/HttpLoop.h"

namespace {

// What the library was last told of a file: it asks three times for each one that it serves.
struct {
  char szPath[MG_MAX_PATH];
  cs_stat_t stat;
} g_known;

// Pages are read by the character, all else in pieces, for which a buffer is one copy more.
bool IsPage(const char* pszPath) { return strcasestr(pszPath, ".shtm") != nullptr; }

}  // namespace

void ForgetFiles() { g_known.szPath[0] = '\0'; }

int mg_stat(const char* pszPath, cs_stat_t* pStat) {
  if (*pszPath == '\0' || strcmp(pszPath, g_known.szPath) != 0) {
    ForgetFiles();
    if (const int nRet = stat(pszPath, &g_known.stat)) return nRet;
    if (strlen(pszPath) < sizeof(g_known.szPath)) strcpy(g_known.szPath, pszPath);
  }
  *pStat = g_known.stat;
  return 0;
}

FILE* mg_fopen(const char* pszPath, const char* /*pszMode*/) {
  static COpenInside s_files;
  const int nFd = s_files.Open(HttpOptions().document_root, pszPath);
  if (nFd < 0) return nullptr;
  FILE* const pStream = fdopen(nFd, "rb");
  if (pStream == nullptr) {
    close(nFd);
    NoteMemoryShortage();  // or the page around it would go out without it
  } else if (!IsPage(pszPath)) {
    setvbuf(pStream, nullptr, _IONBF, 0);
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
