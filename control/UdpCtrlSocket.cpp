#include "control/UdpCtrlSocket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cassert>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "CBB/Util/BeforeWait.h"
#include "CBB/Util/NetTool.h"
#include "CBB/Util/Print.h"

namespace {

constexpr char kBroadcastIp[] = "255.255.255.255";
constexpr char kBroadcastIf[] = "eth0";
constexpr int kSendBufSize = 307200;
// Far more datagrams than a receive buffer holds. A sender that is faster than the discarding must
// not block the thread forever.
constexpr int kFlushMax = 65536;
constexpr int kPromptMs = 2;

// The address as diagnostics show it: a 32-bit number in memory order.
unsigned AddrNumber(const sockaddr_in& addr) { return addr.sin_addr.s_addr; }

// Whether an answer comes so soon that BeforeWait is not worth calling.
bool HasAnswered(int nSock) {
  pollfd look{nSock, POLLIN, 0};
  return poll(&look, 1, kPromptMs) != 0;
}

}  // namespace

CUdpCtrlSocket::CUdpCtrlSocket(const char* pszDstIp, uint16_t usDstPort, uint16_t usLocalPort,
                               uint8_t ucBroadcast, const char* pszIfName)
    : m_usDstPort(usDstPort), m_usLocalPort(usLocalPort), m_ucBroadcast(ucBroadcast) {
  assert(pszDstIp != nullptr && pszIfName != nullptr);
  strncpy(m_szDstIp, pszDstIp, sizeof(m_szDstIp) - 1);
  strncpy(m_szIfName, pszIfName, sizeof(m_szIfName) - 1);
  OpenCtrlSocket();
}

CUdpCtrlSocket::~CUdpCtrlSocket() { CloseCtrlSocket(); }

int CUdpCtrlSocket::OpenCtrlSocket() {
  if (m_nSock >= 0) {
    printf("CUdpCtrlSocket::OpenCtrlSocket already created socket:%d.\n", m_nSock);
    return 0;
  }
  if (CreateSocket() || BindSocket()) return -1;
  const int nOn = 1;
  if (setsockopt(m_nSock, SOL_SOCKET, SO_BROADCAST, &nOn, sizeof(nOn)) < 0) {
    printf("CUdpCtrlSocket::OpenCtrlSocket, setsockopt broadcast Failed, Error:%s\n",
           strerror(errno));
    return -1;
  }
  fcntl(m_nSock, F_SETFL, fcntl(m_nSock, F_GETFL) & ~O_NONBLOCK);
  return 0;
}

int CUdpCtrlSocket::CreateSocket() {
  m_nSock = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  // A descriptor that does not fit into select's set is of no use.
  if (m_nSock >= FD_SETSIZE) {
    CloseCtrlSocket();
    errno = EMFILE;
  }
  if (m_nSock >= 0) return 0;
  printf("CUdpCtrlSocket::OpenCtrlSocket, Create Ctrl Socket Failed.Error:%s\n", strerror(errno));
  return -1;
}

int CUdpCtrlSocket::BindSocket() {
  const int nReuse = 2;
  setsockopt(m_nSock, SOL_SOCKET, SO_REUSEADDR, &nReuse, sizeof(nReuse));
  setsockopt(m_nSock, SOL_SOCKET, SO_SNDBUF, &kSendBufSize, sizeof(kSendBufSize));
  sockaddr_in local{};
  local.sin_family = AF_INET;
  local.sin_port = htons(m_usLocalPort);
  uint32_t uiAddr = INADDR_ANY;
  GetIfAddr(m_szIfName, uiAddr);
  local.sin_addr.s_addr = uiAddr;
  if (bind(m_nSock, reinterpret_cast<sockaddr*>(&local), sizeof(local)) == 0) return 0;
  // Deliberate: the line names the server's socket.
  printf("CUdpCtrlSocketSvr::OpenSvrSocket, Server Bind Failed. Error:%s\n", strerror(errno));
  CloseCtrlSocket();
  return -1;
}

int CUdpCtrlSocket::CloseCtrlSocket() {
  if (m_nSock >= 0) close(m_nSock);
  m_nSock = -1;
  return 0;
}

// Discards what is waiting in the socket, so that a late reply to an earlier request is not
// mistaken for the reply to the next.
void CUdpCtrlSocket::FlushStale() {
  if (m_nSock < 0) return;
  for (int i = 0; i < kFlushMax; ++i) {
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(m_nSock, &readable);
    timeval noWait{};
    const int nReady = select(FD_SETSIZE, &readable, nullptr, nullptr, &noWait);
    if (nReady == 0 || (nReady < 0 && errno != EINTR)) return;
    char cDiscarded;
    if (nReady > 0) recv(m_nSock, &cDiscarded, 1, MSG_DONTWAIT);
  }
}

int CUdpCtrlSocket::FillDestination(sockaddr_in& dst) const {
  dst.sin_family = AF_INET;
  dst.sin_port = htons(m_usDstPort);
  if (!m_ucBroadcast || strcmp(m_szDstIp, kBroadcastIp) != 0) {
    dst.sin_addr.s_addr = inet_addr(m_szDstIp);
    return 0;
  }
  uint32_t uiAddr = 0;
  // Deliberate: always this interface, not the one to which the socket is bound.
  if (GetIfBrdAddr(kBroadcastIf, uiAddr)) {
    printf("CUdpCtrlSocket::SendDataToHost, get IfBrdAddr failed.\n");
    return -1;
  }
  printf("CUdpCtrlSocket::SendDataToHost, get IfBrdAddr ok, brdaddr:0x%x.\n", uiAddr);
  dst.sin_addr.s_addr = uiAddr;
  return 0;
}

int CUdpCtrlSocket::SendDataToHost(const void* pData, int nLen) {
  assert(pData != nullptr && nLen >= 0);
  FlushStale();
  sockaddr_in dst{};
  if (FillDestination(dst)) return -1;
  if (sendto(m_nSock, pData, static_cast<size_t>(nLen), 0, reinterpret_cast<sockaddr*>(&dst),
             sizeof(dst)) >= 0)
    return 0;
  // Deliberate: the line names another function.
  printf("CUdpCtrlSocket::SendData2Wifi, send data to [0x%x:%d][len:%d], failed, err:%s.\n",
         AddrNumber(dst), m_usDstPort, nLen, strerror(errno));
  return -1;
}

// Returns 0 when a datagram is waiting, -1 for a failure, -2 when the time is up.
int CUdpCtrlSocket::WaitReadable(int nTimeoutSec) const {
  int nReady = -1;
  fd_set readable;
  FD_ZERO(&readable);
  if (m_nSock >= 0) {
    FD_SET(m_nSock, &readable);
    if (!HasAnswered(m_nSock)) BeforeWait();
    timeval timeout{nTimeoutSec, 0};
    nReady = select(m_nSock + 1, &readable, nullptr, nullptr, &timeout);
  }
  if (nReady < 0) {
    printf("CUdpCtrlSocket::RecvDataFromHost , get net ctrl select failed!\n");
    return -1;
  }
  if (nReady == 0) return -2;
  return FD_ISSET(m_nSock, &readable) ? 0 : -1;
}

int CUdpCtrlSocket::RecvDataFromHost(void* pBuf, int& nLen, int nTimeoutSec) {
  assert(pBuf != nullptr);
  if (const int nRet = WaitReadable(nTimeoutSec)) return nRet;
  // On the heap: the thread's stack is only 128 KiB.
  const std::unique_ptr<uint8_t[]> pWork(new (std::nothrow) uint8_t[kReplyMax]);
  if (pWork == nullptr) return -1;
  sockaddr_in from{};
  socklen_t nFromLen = sizeof(from);
  // Non-blocking: select announces a datagram with a bad checksum, but recvfrom does not deliver
  // it.
  const ssize_t nGot = recvfrom(m_nSock, pWork.get(), kReplyMax, MSG_DONTWAIT,
                                reinterpret_cast<sockaddr*>(&from), &nFromLen);
  if (nGot < 1) return -1;
  return TakeDatagram(from, pWork.get(), static_cast<int>(nGot), pBuf, nLen);
}

// Passes a received datagram to the caller if sender and length are right.
int CUdpCtrlSocket::TakeDatagram(const sockaddr_in& from, const void* pData, int nGot, void* pBuf,
                                 int& nLen) const {
  const std::string strFrom = AddressText(from.sin_addr.s_addr);
  const int nFromPort = ntohs(from.sin_port);
  // Deliberate: only the port is checked; the address is only shown.
  if (nFromPort != m_usDstPort) {
    printf(
        "CUdpCtrlSocket::RecvDataFromHost, failed, get data peer net info not match[%s  VS %s], "
        "port[%d VS %d].\n",
        m_szDstIp, strFrom.c_str(), m_usDstPort, nFromPort);
    return -1;
  }
  if (nGot > nLen) {
    printf(
        "CUdpCtrlSocket::RecvDataFromHost,  get data from[%s  VS %s], port[%d VS %d], "
        "too long len[%d VS %d].\n",
        m_szDstIp, strFrom.c_str(), m_usDstPort, nFromPort, nGot, nLen);
    return -1;
  }
  memcpy(pBuf, pData, static_cast<size_t>(nGot));
  nLen = nGot;
  Print({"CUdpCtrlSocket::RecvDataFromHost,  get data from[", m_szDstIp, "  VS ", strFrom,
         "], port[", std::to_string(m_usDstPort), " VS ", std::to_string(nFromPort), "],len[",
         std::to_string(nLen), "].\n"});
  return 0;
}
