#include "CBB/Util/NetTool.h"

#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cassert>
#include <cstring>
#include <string>

#include "CBB/Util/Thread.h"

namespace {

CMutex g_mutexIfAddr;

// Makes one of the ioctl requests that return an address. The socket of the given type is only a
// handle for it; nothing is ever connected.
int AskInterface(const char* pszIfName, unsigned long ulRequest, int nType, uint32_t& uiAddr) {
  const int nSock = socket(AF_INET, nType | SOCK_CLOEXEC, 0);
  if (nSock < 0) return -1;
  ifreq req{};
  strncpy(req.ifr_name, pszIfName, sizeof(req.ifr_name) - 1);
  const int nRet = ioctl(nSock, ulRequest, &req);
  close(nSock);
  if (nRet < 0) return -1;
  sockaddr_in addr;
  memcpy(&addr, &req.ifr_addr, sizeof(addr));
  uiAddr = addr.sin_addr.s_addr;
  return 0;
}

}  // namespace

int GetIfAddr(const char* pszIfName, uint32_t& uiAddr) {
  if (pszIfName == nullptr) return -2;
  const AutoLock lock(g_mutexIfAddr);
  return AskInterface(pszIfName, SIOCGIFADDR, SOCK_STREAM, uiAddr);
}

int GetIfBrdAddr(const char* pszIfName, uint32_t& uiAddr) {
  assert(pszIfName != nullptr);
  return AskInterface(pszIfName, SIOCGIFBRDADDR, SOCK_DGRAM, uiAddr);
}

std::string AddressText(uint32_t uiAddr) {
  unsigned char bytes[sizeof(uiAddr)];
  memcpy(bytes, &uiAddr, sizeof(bytes));
  std::string strText = std::to_string(bytes[0]);
  for (const int i : {1, 2, 3}) strText.append(".").append(std::to_string(bytes[i]));
  return strText;
}
