// Two ends of one connection: one sends, the other receives.
#pragma once

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <string>

class CSocketPair {
 public:
  // nFlags: SOCK_NONBLOCK when neither end may wait.
  explicit CSocketPair(int nFlags = 0) {
    EXPECT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | nFlags, 0, m_ends));
  }
  ~CSocketPair() {
    for (const int nEnd : m_ends) close(nEnd);
  }
  CSocketPair(const CSocketPair&) = delete;
  CSocketPair& operator=(const CSocketPair&) = delete;

  int Sender() const { return m_ends[0]; }

  // That many bytes, or what there is when it may not wait.
  std::string Receive(size_t nSize) const {
    std::string strText(nSize, '\0');
    const ssize_t nGot = recv(m_ends[1], strText.data(), nSize, MSG_WAITALL);
    return strText.substr(0, static_cast<size_t>(std::max<ssize_t>(nGot, 0)));
  }

 private:
  int m_ends[2] = {-1, -1};
};
