#include "bench/speed/exchange.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <tinyxml.h>
#include <unistd.h>

#include <cstring>

namespace {

constexpr uint16_t kLocalPort = 4999;
constexpr uint16_t kDevicePort = 6000;
constexpr time_t kTimeoutSec = 5;

char g_szReply[30000 + 8];  // the parser may step over the terminator

in_addr InterfaceAddress() {
  ifreq request{};
  strcpy(request.ifr_name, "eth0");
  const int nSock = socket(AF_INET, SOCK_STREAM, 0);
  ioctl(nSock, SIOCGIFADDR, &request);
  close(nSock);
  sockaddr_in address{};
  memcpy(&address, &request.ifr_addr, sizeof(address));
  return address.sin_addr;
}

int OpenSocket() {
  const int nSock = socket(AF_INET, SOCK_DGRAM, 0);
  const int nReuse = 2;
  setsockopt(nSock, SOL_SOCKET, SO_REUSEADDR, &nReuse, sizeof(nReuse));
  const int nSize = 307200;
  setsockopt(nSock, SOL_SOCKET, SO_SNDBUF, &nSize, sizeof(nSize));
  sockaddr_in local{};
  local.sin_family = AF_INET;
  local.sin_port = htons(kLocalPort);
  local.sin_addr = InterfaceAddress();
  bind(nSock, reinterpret_cast<sockaddr*>(&local), sizeof(local));
  const int nOn = 1;
  setsockopt(nSock, SOL_SOCKET, SO_BROADCAST, &nOn, sizeof(nOn));
  fcntl(nSock, F_SETFL, fcntl(nSock, F_GETFL) & ~O_NONBLOCK);
  return nSock;
}

int Readable(int nSock, int nCount, timeval timeout) {
  fd_set readable;
  FD_ZERO(&readable);
  FD_SET(nSock, &readable);
  return select(nCount, &readable, nullptr, nullptr, &timeout);
}

}  // namespace

bool ExchangeAndParse(const std::string& strRequest) {
  const int nSock = OpenSocket();
  Readable(nSock, FD_SETSIZE, {0, 0});
  sockaddr_in device{};
  device.sin_family = AF_INET;
  device.sin_port = htons(kDevicePort);
  device.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  sendto(nSock, strRequest.data(), strRequest.size(), 0, reinterpret_cast<sockaddr*>(&device),
         sizeof(device));
  ssize_t nGot = -1;
  if (Readable(nSock, nSock + 1, {kTimeoutSec, 0}) == 1) {
    nGot = recvfrom(nSock, g_szReply, sizeof(g_szReply) - 8, MSG_DONTWAIT, nullptr, nullptr);
  }
  close(nSock);
  if (nGot < 1) return false;
  memset(g_szReply + nGot, 0, 8);
  TiXmlDocument doc;
  doc.SetTabSize(0);
  doc.Parse(g_szReply, nullptr, TIXML_ENCODING_UNKNOWN);
  return doc.FirstChildElement() != nullptr;
}
