#include "CBB/Http/Body.h"

#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {

constexpr size_t kMostAtOnce = 256U << 10;

}  // namespace

CBody::CBody(std::shared_ptr<const std::string> pText, size_t nAt, size_t nSize)
    : m_pText(std::move(pText)), m_nAt(nAt), m_nLeft(nSize) {}

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

ssize_t CBody::SendTo(int nSock) {
  if (!IsUnchanged()) return -1;
  auto nFrom = static_cast<off_t>(m_nAt);
  const ssize_t nSent = sendfile(nSock, m_nFd, &nFrom, std::min(m_nLeft, kMostAtOnce));
  if (nSent < 0) return errno == EAGAIN || errno == EINTR ? 0 : -1;
  if (nSent == 0) return -1;  // it has become shorter
  Skip(static_cast<size_t>(nSent));
  return nSent;
}
