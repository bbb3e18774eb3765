#include "CBB/WebCtrl/WebCtrl.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "CBB/Util/BeforeWait.h"
#include "CBB/Util/DebugPrint.h"
#include "CBB/Util/Logger.h"
#include "CBB/Util/Print.h"
#include "CBB/Util/TextCopy.h"
#include "CBB/Util/Thread.h"
#include "CBB/WebCtrl/HttpLoop.h"

namespace {

constexpr int kLogLine = 144;  // the line number that the start message has always carried
constexpr unsigned kRestartPauseSec = 2;

}  // namespace

CWebCtrl& CWebCtrl::Instance() {
  // Never destroyed: the server thread may outlive the end of main.
  static CWebCtrl* const pInstance = new CWebCtrl;
  return *pInstance;
}

CWebCtrl::~CWebCtrl() { CWebCtrl::Stop(); }

int CWebCtrl::Init(const char* pszDeviceIp, int nDevicePort) {
  printf("CWebCtrl::Init, ip:%s, port:%d.\n", pszDeviceIp, nDevicePort);
  SetDevice(pszDeviceIp, nDevicePort);
  CopyText(m_szSavedDeviceIp, sizeof(m_szSavedDeviceIp), pszDeviceIp);
  return 0;
}

void CWebCtrl::SetDevice(const char* pszDeviceIp, int nDevicePort) {
  CopyText(m_szDeviceIp, sizeof(m_szDeviceIp), pszDeviceIp);
  m_usDevicePort = static_cast<uint16_t>(nDevicePort);
}

int CWebCtrl::Start(const char* pszWebRoot) {
  if (m_ucStarted != 0) {
    printf("CWebCtrl::Start, is already started.\n");
    return 0;
  }
  FlushPrinted();
  // A desktop machine may lack the tool, but its loopback interface is up anyway.
  [[maybe_unused]] const int nIgnored = system("/sbin/ifconfig lo 127.0.0.1");
  m_ucStarted = 1;
  CopyText(m_szWebRoot, sizeof(m_szWebRoot), pszWebRoot);
  const int nRet = ThreadCreate(&CWebCtrl::DetectSvcEntry, this, &m_pThread, 0);
  if (nRet != 0) {
    printf("CWebCtrl Start err, create rt svc pthread failed [%ld].\n", static_cast<long>(nRet));
    m_ucStarted = 0;
    return -1;
  }
  return 0;
}

int CWebCtrl::Stop() {
  m_ucStarted = 0;
  if (m_pThread != nullptr) {
    ThreadStop(m_pThread);
    m_pThread = nullptr;
  }
  return 0;
}

int CWebCtrl::Restart() {
  Stop();
  memcpy(m_szDeviceIp, m_szSavedDeviceIp, sizeof(m_szDeviceIp));
  BeforeWait();
  sleep(kRestartPauseSec);
  Start(m_szWebRoot);
  return 0;
}

void* CWebCtrl::DetectSvcEntry(void* pSelf) {
  // Deliberate: a cancel stays pending forever. A restart called by a handler cancels and joins its
  // own thread, and that thread must go on serving.
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
  static_cast<CWebCtrl*>(pSelf)->DetectSvc();
  return nullptr;
}

void CWebCtrl::DetectSvc() {
  const unsigned long ulThread = pthread_self();
  // Deliberate: the logger is not initialised, and says so here.
  Logger::Instance().log("<@%s, L%d>CWebCtrl::DetectSvc, tid=%lu\n", __func__, kLogLine, ulThread);
  DebugPrint(4, "\033[35m\033[1m[LOG  ]<@%s, L%d>:CWebCtrl::DetectSvc, tid=%lu\n\033[0m", __func__,
             kLogLine, ulThread);
  RunHttpLoop(m_szWebRoot);
  m_ucStarted = 0;
}
