#include "tests/unit/control/FakeDevice.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cstring>
#include <utility>

namespace {

int BoundSocket(const sockaddr_in& addr) {
  const int nSock = socket(AF_INET, SOCK_DGRAM, 0);
  EXPECT_GE(nSock, 0);
  EXPECT_EQ(0, bind(nSock, reinterpret_cast<const sockaddr*>(&addr), sizeof(addr)))
      << strerror(errno);
  return nSock;
}

void SendTo(int nSock, const sockaddr_in& peer, const std::string& strData) {
  EXPECT_EQ(static_cast<ssize_t>(strData.size()),
            sendto(nSock, strData.data(), strData.size(), 0,
                   reinterpret_cast<const sockaddr*>(&peer), sizeof(peer)))
      << strerror(errno);
}

}  // namespace

sockaddr_in SockAddr(const char* pszIp, uint16_t usPort) {
  sockaddr_in addr{};
  addr.sin_family = AF_INET;
  addr.sin_port = htons(usPort);
  addr.sin_addr.s_addr = inet_addr(pszIp);
  return addr;
}

CFakeDevice::CFakeDevice(uint16_t usPort, bool bAnyAddr)
    : m_nSock(BoundSocket(SockAddr(bAnyAddr ? "0.0.0.0" : "127.0.0.1", usPort))) {
  sockaddr_in addr{};
  socklen_t nLen = sizeof(addr);
  EXPECT_EQ(0, getsockname(m_nSock, reinterpret_cast<sockaddr*>(&addr), &nLen));
  m_usPort = ntohs(addr.sin_port);
  const timeval patience{10, 0};
  const int nOn = 1;
  EXPECT_EQ(0, setsockopt(m_nSock, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience)));
  EXPECT_EQ(0, setsockopt(m_nSock, IPPROTO_IP, IP_PKTINFO, &nOn, sizeof(nOn)));
}

CFakeDevice::~CFakeDevice() {
  if (m_thread.joinable()) m_thread.join();
  close(m_nSock);
}

std::string CFakeDevice::Receive() {
  std::string strData(65536, '\0');
  alignas(cmsghdr) char control[256];
  iovec part{strData.data(), strData.size()};
  msghdr msg{};
  msg.msg_name = &m_peer;
  msg.msg_namelen = sizeof(m_peer);
  msg.msg_iov = &part;
  msg.msg_iovlen = 1;
  msg.msg_control = control;
  msg.msg_controllen = sizeof(control);
  const ssize_t nGot = recvmsg(m_nSock, &msg, 0);
  strData.resize(nGot > 0 ? static_cast<size_t>(nGot) : 0);
  cmsghdr* const pInfo = nGot >= 0 ? CMSG_FIRSTHDR(&msg) : nullptr;
  if (pInfo != nullptr && pInfo->cmsg_type == IP_PKTINFO) {
    in_pktinfo info;
    memcpy(&info, CMSG_DATA(pInfo), sizeof(info));
    m_requestDst = info.ipi_addr;
  }
  return strData;
}

void CFakeDevice::Send(const std::string& strData) const { SendTo(m_nSock, m_peer, strData); }

void CFakeDevice::SendFrom(const char* pszIp, uint16_t usPort, const std::string& strData) const {
  const int nSock = BoundSocket(SockAddr(pszIp, usPort));
  SendTo(nSock, m_peer, strData);
  close(nSock);
}

void CFakeDevice::AnswerWith(std::vector<std::string> replies) {
  if (m_thread.joinable()) m_thread.join();
  m_thread = std::thread([this, replies = std::move(replies)] {
    m_strRequest = Receive();
    for (const std::string& strReply : replies) Send(strReply);
  });
}

std::string CFakeDevice::Request() {
  m_thread.join();
  return m_strRequest;
}
