#include "CBB/Http/LentText.h"

#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "CBB/Http/Descriptors.h"

namespace {

// All texts lie in one unnamed file. A place in it is never reused: a socket may still hold its
// pages.
int g_nFile = -1;
off_t g_nEnd = 0;

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

}  // namespace

void CLentText::Prepare() {
  if (g_nFile < 0) g_nFile = MoveUp(MemoryFile());
}

std::shared_ptr<const CLentText> CLentText::Make(std::string_view text) {
  Prepare();
  if (g_nFile < 0) return nullptr;
  auto pText = std::make_shared<const CLentText>(g_nEnd, text.size());
  const ssize_t nWritten = pwrite(g_nFile, text.data(), text.size(), g_nEnd);
  g_nEnd += WholePages(text.size());
  return nWritten == static_cast<ssize_t>(text.size()) ? pText : nullptr;
}

CLentText::~CLentText() {
  fallocate(g_nFile, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, m_nAt, WholePages(m_nSize));
}

ssize_t CLentText::SendTo(int nSock, size_t nAt, size_t nSize) const {
  off_t nFrom = m_nAt + static_cast<off_t>(nAt);
  return sendfile(nSock, g_nFile, &nFrom, nSize);
}
