#include "CBB/Http/LentText.h"

#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "CBB/Http/Descriptors.h"

namespace {

// All texts lie in one unnamed file. A place in it is never reused: a socket may still hold its
// pages.
int g_nFile = -1;
off_t g_nEnd = 0;

constexpr off_t kRest = 1 << 30;  // more than the system can have taken behind the last text

int MemoryFile() {
#ifdef SYS_memfd_create
  constexpr unsigned kCloseOnExec = 1;
  return static_cast<int>(syscall(SYS_memfd_create, "webctrl", kCloseOnExec));
#else
  return -1;
#endif
}

off_t WholePages(size_t nSize) {
  const auto nPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  return static_cast<off_t>((nSize + nPage - 1) / nPage * nPage);
}

// The memory that the file takes, in bytes; 0 when the system does not tell, which fits no text.
off_t Taken() {
  constexpr off_t kBlock = 512;
  struct stat st {};
  return fstat(g_nFile, &st) == 0 ? st.st_blocks * kBlock : 0;
}

// Puts a text behind the others. False when memory is short or the system did not take exactly the
// pages of the text: to give back a part of a larger one would change what sockets hold of it.
bool Write(std::string_view text) {
  const off_t nBefore = Taken();
  const ssize_t nWritten = pwrite(g_nFile, text.data(), text.size(), g_nEnd);
  return nWritten == static_cast<ssize_t>(text.size()) &&
         Taken() == nBefore + WholePages(text.size());
}

// What sockets hold of these pages stays as it is.
void GiveBack(off_t nAt, off_t nSize) {
  fallocate(g_nFile, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, nAt, nSize);
}

}  // namespace

void CLentText::Prepare() {
  if (g_nFile < 0) g_nFile = MoveUp(MemoryFile());
}

std::shared_ptr<const CLentText> CLentText::Make(std::string_view text) {
  Prepare();
  if (g_nFile < 0) return nullptr;
  auto pText = std::make_shared<const CLentText>(g_nEnd, text.size());
  if (!Write(text)) {
    GiveBack(g_nEnd, kRest);
    return nullptr;
  }
  g_nEnd += WholePages(text.size());
  return pText;
}

CLentText::~CLentText() { GiveBack(m_nAt, WholePages(m_nSize)); }

ssize_t CLentText::SendTo(int nSock, size_t nAt, size_t nSize) const {
  off_t nFrom = m_nAt + static_cast<off_t>(nAt);
  return sendfile(nSock, g_nFile, &nFrom, nSize);
}
