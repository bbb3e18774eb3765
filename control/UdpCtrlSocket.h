// The UDP endpoint towards the device application: one object per exchange, bound to a fixed local
// port, which sends to a fixed destination and waits a limited time for one reply.
//
// An object belongs to one thread and owns its socket. Failures print a line and return. By design
// only the sender's port is checked.
#pragma once

#include <netinet/in.h>

#include <cstdint>

// The longest datagram that can be received whole, in bytes.
constexpr int kReplyMax = 30000;

class CUdpCtrlSocket {
 public:
  // Opens the socket at once; a failure is printed and shows as a failed send later. The address is
  // dotted IPv4 text (at most 31 characters); "255.255.255.255" means broadcast when ucBroadcast is
  // set. The socket is bound to usLocalPort (0: any) on the address of the interface (at most 11
  // characters), or on any address when the interface has none. Ports in host order.
  CUdpCtrlSocket(const char* pszDstIp, uint16_t usDstPort, uint16_t usLocalPort,
                 uint8_t ucBroadcast, const char* pszIfName);
  // Closes the socket if one is open.
  virtual ~CUdpCtrlSocket();
  CUdpCtrlSocket(const CUdpCtrlSocket&) = delete;
  CUdpCtrlSocket& operator=(const CUdpCtrlSocket&) = delete;

  // Creates and binds the socket. Returns 0 (also when it is open already), or -1.
  int OpenCtrlSocket();
  // Closes the socket if one is open. Returns 0.
  int CloseCtrlSocket();

  // Discards what has arrived so far, then sends nLen bytes as one datagram. Returns 0, or -1.
  int SendDataToHost(const void* pData, int nLen);

  // Waits up to nTimeoutSec seconds for one datagram from the destination's port. nLen gives the
  // room in pBuf and receives the number of bytes; no terminator is added. Returns 0; -1 for a
  // failure, a sender with another port, or a datagram that is empty or does not fit; -2 when the
  // time is up. The buffer and nLen change only on success.
  int RecvDataFromHost(void* pBuf, int& nLen, int nTimeoutSec);

 private:
  int CreateSocket();
  int BindSocket();
  void FlushStale();
  int FillDestination(sockaddr_in& dst) const;
  int WaitReadable(int nTimeoutSec) const;
  int TakeDatagram(const sockaddr_in& from, const void* pData, int nGot, void* pBuf,
                   int& nLen) const;

  int32_t m_nSock = -1;
  char m_szDstIp[32] = "";
  uint16_t m_usDstPort;
  uint16_t m_usLocalPort;
  uint8_t m_ucBroadcast;
  char m_szIfName[12] = "";
};
