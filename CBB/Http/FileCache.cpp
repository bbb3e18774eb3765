#include "CBB/Http/FileCache.h"

#include <unistd.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <utility>

#include "CBB/Http/Conditions.h"
#include "CBB/Http/Descriptors.h"
#include "CBB/Http/LibraryFiles.h"
#include "CBB/Http/MediaTypes.h"

namespace {

constexpr size_t kMaxFiles = 256;  // files kept
constexpr int kMostTries = 3;      // attempts to read a file that keeps changing

bool IsSame(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino && one.st_size == other.st_size &&
         one.st_ctim.tv_sec == other.st_ctim.tv_sec && one.st_ctim.tv_nsec == other.st_ctim.tv_nsec;
}

// FNV-1a in 32 bits.
uint32_t Hash(std::string_view text) {
  uint32_t uiHash = 2166136261U;
  for (const char c : text) uiHash = (uiHash ^ static_cast<unsigned char>(c)) * 16777619U;
  return uiHash;
}

// Like the HTTP library's tags, plus the form and what the library ignores: two versions of a page
// often have the same length, and the same date if a package sets it.
std::string MakeTag(const stForm& form, const char* pszForm) {
  const struct stat& stat = form.stat;
  const uint32_t uiVersion =
      form.pText != nullptr ? Hash(*form.pText)
                            : static_cast<uint32_t>(stat.st_ctim.tv_nsec ^ stat.st_ctim.tv_sec);
  char szTag[80];
  snprintf(szTag, sizeof(szTag), "\"%lx.%" PRId64 ".%08" PRIx32 "%s\"",
           static_cast<unsigned long>(stat.st_mtime), static_cast<int64_t>(stat.st_size), uiVersion,
           pszForm);
  return szTag;
}

std::string MakeDate(time_t time) {
  char szDate[kHttpDateSize];
  FormatHttpDate(time, szDate);
  return szDate;
}

// Reads a whole file; false when it has become shorter.
bool ReadAll(int nFd, std::string& strText) {
  for (size_t nAt = 0; nAt < strText.size();) {
    const ssize_t nGot = pread(nFd, &strText[nAt], strText.size() - nAt, static_cast<off_t>(nAt));
    if (nGot <= 0) return false;
    nAt += static_cast<size_t>(nGot);
  }
  return true;
}

// Reads one form of one version: the file is the same before and after reading.
bool ReadForm(int nFd, const char* pszForm, stForm& form) {
  for (int i = 0; i < kMostTries; ++i) {
    if (fstat(nFd, &form.stat) != 0) return false;
    form.strModified = MakeDate(form.stat.st_mtime);
    form.pText = nullptr;
    form.strTag = MakeTag(form, pszForm);
    if (form.stat.st_size > static_cast<off_t>(kMaxCachedFile)) return true;
    auto pText = std::make_shared<std::string>(static_cast<size_t>(form.stat.st_size), '\0');
    struct stat after {};
    if (!ReadAll(nFd, *pText) || fstat(nFd, &after) != 0 || !IsSame(form.stat, after)) continue;
    form.pText = std::move(pText);
    form.strTag = MakeTag(form, pszForm);
    return true;
  }
  return false;
}

std::string PackedPath(const stFile& file) { return file.strPath + ".gz"; }

bool IsNotOlder(const struct stat& packed, const struct stat& plain) {
  return packed.st_mtime >= plain.st_mtime;
}

// A packed form is kept whole or not used.
void AddPacked(stFile& file) {
  const COwnedFd fd(OpenForReading(PackedPath(file).c_str()));
  if (fd.Get() < 0) return;
  file.bHasPacked = ReadForm(fd.Get(), "-gz", file.packed) && file.packed.IsKept() &&
                    IsNotOlder(file.packed.stat, file.plain.stat);
  if (!file.bHasPacked) file.packed.pText = nullptr;
}

void LendForm(stForm& form) {
  if (form.Bytes() < kLentFrom) return;
  form.pLent = CLentText::Make(*form.pText);
  if (form.pLent != nullptr) form.pText = nullptr;
}

// A file that makes room for no other.
bool Stays(const stFile& file) {
  return file.IsLent() || file.plain.IsBeingSent() || file.packed.IsBeingSent();
}

bool GoesBefore(const stFile& one, const stFile& other) {
  return Stays(one) != Stays(other) ? Stays(other) : one.nUse < other.nUse;
}

// Whether a form is unchanged since the last check; bThere: whether it existed then.
bool IsUnchanged(const std::string& strPath, const stForm& form, bool bThere) {
  const COwnedFd fd(OpenForReading(strPath.c_str()));
  struct stat now {};
  if (fd.Get() < 0) return !bThere;
  return fstat(fd.Get(), &now) == 0 && IsSame(now, form.stat);
}

}  // namespace

size_t stForm::Bytes() const {
  if (pLent != nullptr) return pLent->Size();
  return pText != nullptr ? pText->size() : 0;
}

std::shared_ptr<const stFile> CFileCache::Find(std::string_view uri) {
  const auto found = std::find_if(m_files.begin(), m_files.end(),
                                  [&](const auto& pFile) { return pFile->strUri == uri; });
  if (found == m_files.end()) return nullptr;
  stFile& file = **found;
  file.nUse = ++m_nUses;
  const time_t now = time(nullptr);
  if (file.second == now) return *found;
  const bool bPacked = file.packed.stat.st_ino != 0;
  if (IsUnchanged(file.strPath, file.plain, true) &&
      IsUnchanged(PackedPath(file), file.packed, bPacked)) {
    file.second = now;
    return *found;
  }
  Remove(static_cast<size_t>(found - m_files.begin()));
  return nullptr;
}

std::shared_ptr<const stFile> CFileCache::Add(std::string strUri, std::string strPath, int nFd) {
  const auto pFile = std::make_shared<stFile>();
  pFile->second = time(nullptr);
  pFile->strUri = std::move(strUri);
  pFile->strPath = std::move(strPath);
  pFile->strType = MediaType(pFile->strPath);
  if (!ReadForm(nFd, "", pFile->plain)) return nullptr;
  AddPacked(*pFile);
  pFile->nUse = ++m_nUses;
  if (pFile->strUri.empty() || !pFile->plain.IsKept()) return pFile;
  m_files.push_back(pFile);
  m_nBytes += pFile->Bytes();
  while (m_nBytes > kMaxCacheBytes || m_files.size() > kMaxFiles) {
    const auto oldest =
        std::min_element(m_files.begin(), m_files.end(),
                         [](const auto& a, const auto& b) { return GoesBefore(*a, *b); });
    Remove(static_cast<size_t>(oldest - m_files.begin()));
  }
  if (m_files.back() == pFile) Lend(*pFile);
  return pFile;
}

void CFileCache::Lend(stFile& file) const {
  size_t nLent = 0;
  for (const auto& pFile : m_files) nLent += pFile->IsLent() ? pFile->Bytes() : 0;
  if (nLent + file.Bytes() > kMaxLentBytes) return;
  LendForm(file.plain);
  LendForm(file.packed);
}

void CFileCache::Remove(size_t nAt) {
  m_nBytes -= m_files[nAt]->Bytes();
  m_files.erase(m_files.begin() + static_cast<std::ptrdiff_t>(nAt));
}
