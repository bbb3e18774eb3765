// The files that the HTTP library opens: regular ones inside the document root and no others,
// wherever a URI, a page's include or a symbolic link leads. They are only ever read. The library
// calls mg_stat, mg_fopen, mg_fread and mg_fwrite for them. HTTP server thread only; nothing here
// throws, as the library's frames lie between.
#pragma once

#include <sys/stat.h>

// The first file that was opened for a request.
struct stOpened {
  const char* pszPath;  // the library's; empty when none was opened
  struct stat stat;
};

// The next request looks at the file system anew: within one request the library's repeated
// questions about a file have one answer. pszFolder is the document root, and must outlive the
// request.
void BeginFiles(const char* pszFolder);

// What was opened since. Valid until the next BeginFiles.
const stOpened& OpenedFile();

// Opens a file for reading, if the library could, and returns its descriptor, else -1.
int OpenForReading(const char* pszPath);

// Whether a file is a page with includes, which the library reads itself.
bool IsPage(const char* pszPath);
