#include "tests/unit/Http/Loopback.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <linux/sockios.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kTooLong = std::chrono::seconds(20);
// The descriptors that a server reserves for other uses.
constexpr int kOtherDescriptors = 12;

// The server determines its room for clients when it binds.
void BindWithPlaces(CServer& server, int nPlaces) {
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  rlimit limit = before;
  if (nPlaces > 0) limit.rlim_cur = static_cast<rlim_t>(kOtherDescriptors + nPlaces);
  setrlimit(RLIMIT_NOFILE, &limit);
  EXPECT_EQ(0, server.Bind("127.0.0.1:0"));
  setrlimit(RLIMIT_NOFILE, &before);
}

}  // namespace

CTestServer::CTestServer(mg_event_handler_t pfnHandler, int nPlaces) : m_server(pfnHandler) {
  BindWithPlaces(m_server, nPlaces);
}

CTestServer::~CTestServer() { m_server.Close(); }

void CTestServer::PollUntil(const std::function<bool()>& pfnDone) {
  const auto end = Clock::now() + kTooLong;
  while (!pfnDone()) {
    ASSERT_LT(Clock::now(), end);
    m_server.Poll(1);
  }
}

CTestClient::CTestClient(CTestServer& server, int nRoom)
    : m_server(server), m_nSock(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  if (nRoom > 0) setsockopt(m_nSock, SOL_SOCKET, SO_RCVBUF, &nRoom, sizeof(nRoom));
  const int nOn = 1;
  setsockopt(m_nSock, IPPROTO_TCP, TCP_NODELAY, &nOn, sizeof(nOn));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(server.Port()));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  EXPECT_EQ(0, connect(m_nSock, reinterpret_cast<sockaddr*>(&address), sizeof(address)));
  server.Poll();
}

CTestClient::~CTestClient() {
  if (m_nSock >= 0) close(m_nSock);
}

bool CTestClient::HasArrived() const {
  int nWaiting = 0;
  return ioctl(m_nSock, SIOCOUTQ, &nWaiting) != 0 || nWaiting == 0;
}

void CTestClient::Send(std::string_view bytes) {
  EXPECT_EQ(static_cast<ssize_t>(bytes.size()),
            send(m_nSock, bytes.data(), bytes.size(), MSG_NOSIGNAL));
  while (!HasArrived()) continue;
}

void CTestClient::SendUrgent(char cByte) {
  EXPECT_EQ(1, send(m_nSock, &cByte, 1, MSG_NOSIGNAL | MSG_OOB));
  while (!HasArrived()) continue;
}

void CTestClient::SendAll(std::string_view bytes) {
  m_server.PollUntil([&] {
    const ssize_t nSent = send(m_nSock, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (nSent > 0) bytes.remove_prefix(static_cast<size_t>(nSent));
    const bool bBroken = nSent < 0 && errno != EAGAIN;
    return bBroken || bytes.empty();
  });
}

void CTestClient::End() { shutdown(m_nSock, SHUT_WR); }

void CTestClient::Reset() {
  const linger now = {1, 0};
  setsockopt(m_nSock, SOL_SOCKET, SO_LINGER, &now, sizeof(now));
  close(m_nSock);
  m_nSock = -1;
}

const std::string& CTestClient::Received() {
  static std::vector<char> s_part(1U << 20);
  while (!m_bOver) {
    const ssize_t nGot = recv(m_nSock, s_part.data(), s_part.size(), MSG_DONTWAIT);
    if (nGot < 0 && errno == EAGAIN) break;
    m_bOver = nGot <= 0;
    m_bBroken = nGot < 0;
    if (nGot > 0) m_strReceived.append(s_part.data(), static_cast<size_t>(nGot));
  }
  return m_strReceived;
}

const std::string& CTestClient::Await(size_t nBytes) {
  m_server.PollUntil([&] { return Received().size() >= nBytes || m_bOver; });
  return m_strReceived;
}

const std::string& CTestClient::AwaitEnd() {
  m_server.PollUntil([&] { return IsOver(); });
  return m_strReceived;
}

bool CTestClient::IsOver() {
  Received();
  return m_bOver;
}

bool CTestClient::IsBroken() {
  Received();
  return m_bBroken;
}

std::string Exchange(CTestServer& server, std::string_view bytes) {
  CTestClient client(server);
  client.SendAll(bytes);
  client.End();
  return client.AwaitEnd();
}
