#include "CBB/WebCtrl/Exchange.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "control/UdpCtrlSocket.h"

int CWebCtrl::GetParaInfoByCmd(const char* pszRequest, char* pReply, int& nCapacity) {
  return ::GetParaInfoByCmd(m_szDeviceIp, m_usDevicePort, pszRequest, pReply, nCapacity);
}

stSetOutcome CWebCtrl::Transact(const char* pszMsg, int nLen, int nTimeoutSec) {
  stSetOutcome outcome{};
  CUdpCtrlSocket sock(m_szDeviceIp, m_usDevicePort, kLocalPort, 1, kInterface);
  outcome.nRet = SetParaInfoByCmd(sock, pszMsg, nLen, outcome.nResult, nTimeoutSec);
  return outcome;
}

stSetOutcome CWebCtrl::TransactSection(const char* pszFormat, ...) {
  // Made as long as it comes out: a message is sent whole, never cut.
  char* pszMsg = nullptr;
  va_list args;
  va_start(args, pszFormat);
  const int nLen = vasprintf(&pszMsg, pszFormat, args);
  va_end(args);
  if (nLen < 0) return {-1, 0};
  const std::unique_ptr<char, decltype(&free)> owner(pszMsg, &free);
  return Transact(pszMsg, nLen, kDeviceTimeoutSec);
}

int CWebCtrl::Conclude(const stSetOutcome& outcome) {
  if (outcome.Accepted()) Restart();
  // Deliberate: a Result other than 0 only suppresses the restart; the browser is told 1 as well.
  return outcome.nRet;
}
