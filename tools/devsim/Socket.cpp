#include "tools/devsim/Socket.h"

#include <sys/socket.h>
#include <unistd.h>

CSocket::~CSocket() {
  if (m_nFd >= 0) close(m_nFd);
}

int CSocket::Open(const sockaddr_in& addr, bool bShared) {
  m_nFd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (m_nFd < 0) return -1;
  const int nShared = static_cast<int>(bShared);
  setsockopt(m_nFd, SOL_SOCKET, SO_REUSEADDR, &nShared, sizeof(nShared));
  if (bind(m_nFd, reinterpret_cast<const sockaddr*>(&addr), sizeof(addr)) != 0) return -1;
  socklen_t nLen = sizeof(m_addr);
  return getsockname(m_nFd, reinterpret_cast<sockaddr*>(&m_addr), &nLen);
}

int CSocket::Receive(std::string_view& bytes, sockaddr_in& from) {
  socklen_t nFrom = sizeof(from);
  const ssize_t nLen =
      recvfrom(m_nFd, m_szBuf, sizeof(m_szBuf), 0, reinterpret_cast<sockaddr*>(&from), &nFrom);
  if (nLen < 0) return -1;
  bytes = std::string_view(m_szBuf, static_cast<size_t>(nLen));
  return 0;
}

int CSocket::Send(std::string_view bytes, const sockaddr_in& to) {
  const ssize_t nLen = sendto(m_nFd, bytes.data(), bytes.size(), 0,
                              reinterpret_cast<const sockaddr*>(&to), sizeof(to));
  return nLen < 0 ? -1 : 0;
}
