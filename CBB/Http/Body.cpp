#include "CBB/Http/Body.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {

constexpr size_t kMostAtOnce = 128U << 10;

}  // namespace

CBody::CBody(std::shared_ptr<const std::string> pText, size_t nAt, size_t nSize)
    : m_pText(std::move(pText)), m_nAt(nAt), m_nLeft(nSize) {}

CBody::CBody(std::shared_ptr<const CLentText> pLent, size_t nAt, size_t nSize)
    : m_pLent(std::move(pLent)), m_nAt(nAt), m_nLeft(nSize) {}

CBody::CBody(int nFd, off_t nAt, off_t nSize, timespec changed)
    : m_nFd(nFd),
      m_changed(changed),
      m_nAt(static_cast<size_t>(nAt)),
      m_nLeft(static_cast<size_t>(nSize)) {}

CBody::~CBody() {
  if (m_nFd >= 0) close(m_nFd);
}

void CBody::Swap(CBody& other) {
  std::swap(m_pText, other.m_pText);
  std::swap(m_pLent, other.m_pLent);
  std::swap(m_nFd, other.m_nFd);
  std::swap(m_changed, other.m_changed);
  std::swap(m_nAt, other.m_nAt);
  std::swap(m_nLeft, other.m_nLeft);
}

void CBody::Skip(size_t nSize) {
  m_nAt += nSize;
  m_nLeft -= nSize;
}

bool CBody::IsUnchanged() const {
  struct stat st {};
  return fstat(m_nFd, &st) == 0 && st.st_ctim.tv_sec == m_changed.tv_sec &&
         st.st_ctim.tv_nsec == m_changed.tv_nsec;
}

size_t CBody::Held() const {
  if (m_pLent.use_count() == 1) return m_pLent->Size();
  return m_pText.use_count() == 1 ? m_pText->size() : 0;
}

ssize_t CBody::SendTo(int nSock) {
  const ssize_t nSent =
      m_pLent != nullptr ? m_pLent->SendTo(nSock, m_nAt, m_nLeft) : SendCopy(nSock);
  if (nSent < 0) return errno == EAGAIN || errno == EINTR ? 0 : -1;
  if (nSent == 0) return -1;  // the file should be longer
  Skip(static_cast<size_t>(nSent));
  return nSent;
}

// Copied: pages that sendfile lends to the socket would go on changing with the file. 0 when the
// file has changed.
ssize_t CBody::SendCopy(int nSock) {
  static char s_buffer[kMostAtOnce];
  const size_t nWanted = std::min(m_nLeft, kMostAtOnce);
  const ssize_t nGot = pread(m_nFd, s_buffer, nWanted, static_cast<off_t>(m_nAt));
  if (nGot <= 0 || !IsUnchanged()) return 0;
  return send(nSock, s_buffer, static_cast<size_t>(nGot), MSG_NOSIGNAL);
}
