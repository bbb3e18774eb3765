#include "CBB/Http/Body.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>
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

bool CBody::IsUnchanged() const {
  struct stat st {};
  return fstat(m_nFd, &st) == 0 && st.st_ctim.tv_sec == m_changed.tv_sec &&
         st.st_ctim.tv_nsec == m_changed.tv_nsec;
}

size_t CBody::Held() const {
  if (m_pLent.use_count() == 1) return m_pLent->Size();
  return m_pText.use_count() == 1 ? m_pText->size() : 0;
}

ssize_t CBody::SendAfter(std::string_view head, int nSock) {
  const ssize_t nSent = SendBoth(head, nSock);
  if (nSent < 0) return errno == EAGAIN || errno == EINTR ? 0 : -1;
  if (nSent == 0) return -1;  // the file should be longer
  const size_t nText =
      static_cast<size_t>(nSent) - std::min(static_cast<size_t>(nSent), head.size());
  m_nAt += nText;
  m_nLeft -= nText;
  return nSent;
}

ssize_t CBody::SendBoth(std::string_view head, int nSock) const {
  if (m_pText != nullptr) return SendText(head, nSock);
  if (!head.empty()) {
    const int nMore = m_nLeft > 0 ? MSG_MORE : 0;
    return send(nSock, head.data(), std::min(head.size(), kMostAtOnce), MSG_NOSIGNAL | nMore);
  }
  return m_pLent != nullptr ? m_pLent->SendTo(nSock, m_nAt, m_nLeft) : SendCopy(nSock);
}

// Head and text in one call.
ssize_t CBody::SendText(std::string_view head, int nSock) const {
  iovec parts[2] = {{const_cast<char*>(head.data()), head.size()},
                    {const_cast<char*>(m_pText->data() + m_nAt), m_nLeft}};
  msghdr message{};
  message.msg_iov = parts;
  message.msg_iovlen = 2;
  return sendmsg(nSock, &message, MSG_NOSIGNAL);
}

// Copied: pages that sendfile lends to the socket would go on changing with the file. 0 when the
// file has changed.
ssize_t CBody::SendCopy(int nSock) const {
  static char s_buffer[kMostAtOnce];
  const size_t nWanted = std::min(m_nLeft, kMostAtOnce);
  const ssize_t nGot = pread(m_nFd, s_buffer, nWanted, static_cast<off_t>(m_nAt));
  if (nGot <= 0 || !IsUnchanged()) return 0;
  return send(nSock, s_buffer, static_cast<size_t>(nGot), MSG_NOSIGNAL);
}
