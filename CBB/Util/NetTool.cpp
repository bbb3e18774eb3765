#include "CBB/Util/NetTool.h"

#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

#include "CBB/Util/Thread.h"

namespace {

CMutex g_mutexIfAddr;

}  // namespace

int GetIfAddr(const char* pszIfName, uint32_t& uiAddr) {
  if (!pszIfName) return -2;
  const AutoLock lock(g_mutexIfAddr);
  // Only a handle for the request; nothing is ever connected.
  const int nSock = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (nSock < 0) return -1;
  ifreq req{};
  strncpy(req.ifr_name, pszIfName, sizeof(req.ifr_name) - 1);
  const int nRet = ioctl(nSock, SIOCGIFADDR, &req);
  close(nSock);
  if (nRet < 0) return -1;
  sockaddr_in addr;
  memcpy(&addr, &req.ifr_addr, sizeof(addr));
  uiAddr = addr.sin_addr.s_addr;
  return 0;
}
