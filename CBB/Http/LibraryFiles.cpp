#include "CBB/Http/LibraryFiles.h"

#include <fcntl.h>
#include <mongoose.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "CBB/Http/LibraryMemory.h"
#include "CBB/Http/OpenInside.h"

namespace {

const char* g_pszFolder = "";
COpenInside g_inside;

// What the library was last told about a file: it asks three times for each file.
struct {
  char szPath[MG_MAX_PATH];
  cs_stat_t stat;
} g_known;

struct {
  char szPath[MG_MAX_PATH];
  stOpened opened;
} g_first;

void NoteFirst(const char* pszPath, int nFd) {
  if (g_first.szPath[0] != '\0' || strlen(pszPath) >= sizeof(g_first.szPath)) return;
  strcpy(g_first.szPath, pszPath);
  fstat(nFd, &g_first.opened.stat);
}

// An include that cannot be opened leaves its place empty; the library would print the path.
int OpenInclude() { return open("/dev/null", O_RDONLY | O_CLOEXEC); }

}  // namespace

void BeginFiles(const char* pszFolder) {
  g_pszFolder = pszFolder;
  g_known.szPath[0] = '\0';
  g_first.szPath[0] = '\0';
  g_first.opened = {g_first.szPath, {}};
}

const stOpened& OpenedFile() { return g_first.opened; }

int OpenForReading(const char* pszPath) { return g_inside.Open(g_pszFolder, pszPath); }

bool IsPage(const char* pszPath) {
  const char* const pszEnd = strrchr(pszPath, '.');
  return pszEnd != nullptr &&
         (strcasecmp(pszEnd, ".shtml") == 0 || strcasecmp(pszEnd, ".shtm") == 0);
}

int mg_stat(const char* pszPath, cs_stat_t* pStat) {
  if (*pszPath == '\0' || strcmp(pszPath, g_known.szPath) != 0) {
    g_known.szPath[0] = '\0';
    if (const int nRet = stat(pszPath, &g_known.stat)) return nRet;
    if (strlen(pszPath) < sizeof(g_known.szPath)) strcpy(g_known.szPath, pszPath);
  }
  *pStat = g_known.stat;
  return 0;
}

FILE* mg_fopen(const char* pszPath, const char* /*pszMode*/) {
  const bool bInclude = g_first.szPath[0] != '\0';
  int nFd = OpenForReading(pszPath);
  if (nFd < 0 && bInclude) nFd = OpenInclude();
  if (nFd < 0) return nullptr;
  NoteFirst(pszPath, nFd);
  FILE* const pStream = fdopen(nFd, "rb");
  if (pStream == nullptr) {
    close(nFd);
    NoteMemoryShortage();  // otherwise the page would be sent without it
  } else if (!IsPage(pszPath)) {
    setvbuf(pStream, nullptr, _IONBF, 0);  // read in pieces: a buffer would be one more copy
  }
  return pStream;
}

// Only pages with includes and the files that they include are read for the library. A file that is
// the whole reply is sent in another way.
size_t mg_fread(void* pBuf, size_t nSize, size_t nCount, FILE* pFile) {
  return IsPage(g_first.szPath) ? fread(pBuf, nSize, nCount, pFile) : 0;
}

// Nothing is ever written; the library only wants the name.
size_t mg_fwrite(const void* /*pBuf*/, size_t /*nSize*/, size_t /*nCount*/, FILE* /*pFile*/) {
  return 0;
}
