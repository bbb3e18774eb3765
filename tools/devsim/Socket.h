// A bound UDP socket, closed by its destructor. One thread.
#pragma once

#include <netinet/in.h>

#include <string>
#include <string_view>

class CSocket {
 public:
  CSocket() = default;
  CSocket(const CSocket&) = delete;
  CSocket& operator=(const CSocket&) = delete;
  ~CSocket();

  // Binds to the address; port 0 means any free one. bShared lets another socket use the same port.
  // Returns 0, or -1 with errno.
  int Open(const sockaddr_in& addr, bool bShared = false);

  // Receives a waiting datagram. Returns 0 with its bytes (valid until the next call) and its
  // sender, or -1 when none is waiting.
  int Receive(std::string_view& bytes, sockaddr_in& from);

  // Returns 0, or -1 with errno.
  int Send(std::string_view bytes, const sockaddr_in& to);

  int Fd() const { return m_nFd; }
  const sockaddr_in& Addr() const { return m_addr; }  // with the actual port

 private:
  int m_nFd = -1;
  sockaddr_in m_addr = {};
  char m_szBuf[65536] = {};  // no UDP datagram is longer
};
