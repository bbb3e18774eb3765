#include "tests/unit/WebCtrl/Device.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

CDevice::CDevice(std::function<std::string(const std::string&)> pfnAnswer)
    : m_pfnAnswer(std::move(pfnAnswer)), m_nSock(socket(AF_INET, SOCK_DGRAM, 0)) {
  sockaddr_in addr{};
  addr.sin_family = AF_INET;
  addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto* const pAddr = reinterpret_cast<sockaddr*>(&addr);
  socklen_t nLen = sizeof(addr);
  EXPECT_EQ(0, bind(m_nSock, pAddr, nLen));
  EXPECT_EQ(0, getsockname(m_nSock, pAddr, &nLen));
  m_usPort = ntohs(addr.sin_port);
  m_thread = std::thread(&CDevice::Play, this);
}

CDevice::~CDevice() {
  m_bEnd = true;
  sockaddr_in addr{};
  addr.sin_family = AF_INET;
  addr.sin_port = htons(m_usPort);
  addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  // Wakes the thread.
  sendto(m_nSock, "", 0, 0, reinterpret_cast<sockaddr*>(&addr), sizeof(addr));
  m_thread.join();
  close(m_nSock);
}

std::vector<std::string> CDevice::Requests() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_requests;
}

void CDevice::Play() {
  std::string strBuffer(65536, '\0');
  for (;;) {
    sockaddr_in peer{};
    socklen_t nPeerLen = sizeof(peer);
    auto* const pPeer = reinterpret_cast<sockaddr*>(&peer);
    const ssize_t nGot = recvfrom(m_nSock, strBuffer.data(), strBuffer.size(), 0, pPeer, &nPeerLen);
    if (m_bEnd || nGot < 0) return;
    const std::string strRequest = strBuffer.substr(0, static_cast<size_t>(nGot));
    {
      const std::lock_guard<std::mutex> lock(m_mutex);
      m_requests.push_back(strRequest);
    }
    const std::string strReply = m_pfnAnswer(strRequest);
    if (!strReply.empty()) sendto(m_nSock, strReply.data(), strReply.size(), 0, pPeer, nPeerLen);
  }
}
