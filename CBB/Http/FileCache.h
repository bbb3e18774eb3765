// The files of the document root as they are sent: read once, and again when they have changed. A
// file that was checked in the same second counts as unchanged. HTTP server thread only.
#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "CBB/Http/LentText.h"

// Limits for the texts of all files together, and of one file. Names and fields, about 1 KiB for
// each of at most 256 files, come on top of that.
constexpr size_t kMaxCacheBytes = 1U << 20;
constexpr size_t kMaxCachedFile = 256U << 10;

// From this size on it is cheaper to lend pages to a socket than to copy the text. A socket may
// hold them long after the text has gone, and nobody can count them. So a lent file never makes
// room for another one, and all lent files together have a limit.
constexpr size_t kLentFrom = 16U << 10;
constexpr size_t kMaxLentBytes = 512U << 10;

// One form of a file, plain or packed.
struct stForm {
  struct stat stat {};
  std::string strTag;       // entity tag, with its quotation marks
  std::string strModified;  // as HTTP writes it
  // The content in one of two forms; neither when it is too large to keep.
  std::shared_ptr<const std::string> pText;
  std::shared_ptr<const CLentText> pLent;
  // The fields that were sent after the date with all of the content and with 304, on connections
  // that stay open; empty as long as none were.
  mutable std::string strWholeFields;
  mutable std::string strSameFields;

  bool IsKept() const { return pText != nullptr || pLent != nullptr; }
  bool IsBeingSent() const { return pText.use_count() > 1; }
  size_t Bytes() const;  // of what is kept
};

struct stFile {
  std::string strUri;  // as requested
  std::string strPath;
  std::string strType;  // media type, with its charset
  stForm plain;
  bool bHasPacked = false;  // a .gz form lies beside it and is not older
  stForm packed;
  time_t second = 0;  // of the last check
  uint64_t nUse = 0;

  size_t Bytes() const { return plain.Bytes() + packed.Bytes(); }
  bool IsLent() const { return plain.pLent != nullptr || packed.pLent != nullptr; }
};

class CFileCache {
 public:
  // The file for a URI that was added before, valid in this second; null when it is missing, has
  // changed or may not be opened.
  std::shared_ptr<const stFile> Find(std::string_view uri);

  // Reads the file at strPath, open as nFd (which stays the caller's), with its packed form. Keeps
  // it under strUri when it is small enough, dropping the least recently used files to make room:
  // none that is lent, and none that is being sent, because its text would no longer be counted.
  // An empty strUri is not kept. Returns null when the file keeps changing while it is read.
  std::shared_ptr<const stFile> Add(std::string strUri, std::string strPath, int nFd);

  // The size of the texts kept, in bytes.
  size_t Bytes() const { return m_nBytes; }

 private:
  void Lend(stFile& file) const;
  void Remove(size_t nAt);

  std::vector<std::shared_ptr<stFile>> m_files;
  size_t m_nBytes = 0;
  uint64_t m_nUses = 0;
};
