// Replaces what the service uses from the platform and from the libraries below it; the linker then
// omits the archives' own definitions. A restart costs nothing and starts no thread, and the clock
// does not move.
#include "fuzz/ScriptedDevice.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <utility>

#include "CBB/Util/Thread.h"
#include "CBB/WebCtrl/WebCtrl.h"
#include "control/UdpCtrlSocket.h"
#include "fuzz/Input.h"

namespace {

constexpr int kLongestDatagram = 65507;
constexpr int kTimeout = -2;
constexpr time_t kNow = 1700000000;

std::vector<std::string_view> g_replies;
size_t g_nNext = 0;
std::function<void(std::string_view)> g_pfnCheck;
stThread g_thread;

}  // namespace

void SetDeviceScript(std::vector<std::string_view> replies) {
  g_replies = std::move(replies);
  g_nNext = 0;
}

void SetDatagramCheck(std::function<void(std::string_view)> pfnCheck) {
  g_pfnCheck = std::move(pfnCheck);
}

void StartServiceOnce() {
  static const bool s_bStarted = CWebCtrl::Instance().Init("127.0.0.1", 6000) == 0 &&
                                 CWebCtrl::Instance().Start("/nowhere") == 0;
  Require(s_bStarted);
}

CUdpCtrlSocket::CUdpCtrlSocket(const char* pszDstIp, uint16_t usDstPort, uint16_t usLocalPort,
                               uint8_t ucBroadcast, const char* pszIfName)
    : m_usDstPort(usDstPort), m_usLocalPort(usLocalPort), m_ucBroadcast(ucBroadcast) {
  Require(strcmp(pszDstIp, "127.0.0.1") == 0 && m_usDstPort == 6000);
  Require(m_usLocalPort == 4999 && m_ucBroadcast == 1 && strcmp(pszIfName, "eth0") == 0);
}

CUdpCtrlSocket::~CUdpCtrlSocket() = default;

int CUdpCtrlSocket::SendDataToHost(const void* pData, int nLen) {
  Require(nLen >= 0);
  if (nLen > kLongestDatagram) return -1;
  if (g_pfnCheck != nullptr) {
    g_pfnCheck({static_cast<const char*>(pData), static_cast<size_t>(nLen)});
  }
  return 0;
}

int CUdpCtrlSocket::RecvDataFromHost(void* pBuf, int& nLen, int /*nTimeoutSec*/) {
  if (g_nNext >= g_replies.size()) return kTimeout;
  const std::string_view reply = g_replies[g_nNext++];
  if (reply.empty()) return kTimeout;
  const int nGot = static_cast<int>(reply.size());
  if (nGot > nLen || nGot > kReplyMax) return -1;
  memcpy(pBuf, reply.data(), reply.size());
  nLen = nGot;
  return 0;
}

int ThreadCreate(void* (* /*pfnBody*/)(void*), void* /*pArg*/, stThread** ppThread,
                 size_t /*nStackSize*/) {
  *ppThread = &g_thread;
  return 0;
}

void ThreadStop(stThread* pThread) { Require(pThread == &g_thread); }

extern "C" {
unsigned sleep(unsigned uiSeconds) {
  // The fuzzer's own thread must really wait.
  const bool bService = gettid() == getpid();
  const timespec pause{static_cast<time_t>(uiSeconds), 0};
  return bService || nanosleep(&pause, nullptr) == 0 ? 0 : uiSeconds;
}
time_t time(time_t* pTime) noexcept {
  if (pTime != nullptr) *pTime = kNow;
  return kNow;
}
int usleep(useconds_t /*usec*/) { return 0; }
int system(const char* pszCommand) {
  Require(strcmp(pszCommand, "/sbin/ifconfig lo 127.0.0.1") == 0);
  return 0;
}
}
