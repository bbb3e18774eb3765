// A device application on a loopback address and its own port, for one exchange at a time.
//
// It answers from its own thread, so that the reply comes after the request, as in reality.
#pragma once

#include <netinet/in.h>

#include <cstdint>
#include <string>
#include <thread>
#include <vector>

class CFakeDevice {
 public:
  // Binds 127.0.0.1 and usPort (0: a free one), or any address when bAnyAddr.
  explicit CFakeDevice(uint16_t usPort = 0, bool bAnyAddr = false);
  ~CFakeDevice();
  CFakeDevice(const CFakeDevice&) = delete;
  CFakeDevice& operator=(const CFakeDevice&) = delete;

  uint16_t Port() const { return m_usPort; }

  // Waits for one request and returns it; remembers where it came from and what it was sent to.
  // Empty when none comes within ten seconds.
  std::string Receive();
  const sockaddr_in& Peer() const { return m_peer; }
  in_addr RequestDst() const { return m_requestDst; }
  // Sends a datagram to the last peer from this socket, or from another address or port.
  void Send(const std::string& strData) const;
  void SendFrom(const char* pszIp, uint16_t usPort, const std::string& strData) const;

  // Starts a thread that waits for one request and answers it with the given datagrams.
  void AnswerWith(std::vector<std::string> replies);
  // Waits for that thread; returns the request that it received.
  std::string Request();

 private:
  int m_nSock;
  uint16_t m_usPort = 0;
  sockaddr_in m_peer{};
  in_addr m_requestDst{};
  std::thread m_thread;
  std::string m_strRequest;
};

// The loopback (or other) address and port in the form for socket calls.
sockaddr_in SockAddr(const char* pszIp, uint16_t usPort);
