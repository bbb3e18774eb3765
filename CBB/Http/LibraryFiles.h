// The files that the HTTP library opens: only regular ones inside the document root, wherever a
// URI, a page's include or a symbolic link leads. They are opened for reading only. The library
// calls mg_stat, mg_fopen, mg_fread and mg_fwrite for them. HTTP server thread only; nothing here
// throws, because the library's C frames are on the stack.
#pragma once

#include <sys/stat.h>

// The first file that was opened for a request.
struct stOpened {
  const char* pszPath;  // owned by the library; empty when none was opened
  struct stat stat;
};

// Begins a request, which sees the file system afresh; within one request the library's repeated
// questions about a file get the same answer. pszFolder is the document root and must outlive the
// request.
void BeginFiles(const char* pszFolder);

// What has been opened since then. Valid until the next BeginFiles.
const stOpened& OpenedFile();

// Opens a file for reading under the same rules as the library and returns its descriptor, or -1.
int OpenForReading(const char* pszPath);

// Whether a file is a page with includes, which the library reads itself.
bool IsPage(const char* pszPath);
