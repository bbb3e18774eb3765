#include "CBB/WebCtrl/Exchange.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "control/UdpCtrlSocket.h"

int CWebCtrl::GetParaInfoByCmd(const char* pszRequest, char* pReply, int& nCapacity) {
  return ::GetParaInfoByCmd(m_szDeviceIp, m_usDevicePort, pszRequest, pReply, nCapacity);
}

CSetExchange::CSetExchange(CWebCtrl& service)
    : m_service(service),
      m_sock(service.DeviceIp(), service.DevicePort(), kLocalPort, 1, kInterface) {}

int CSetExchange::Send(const char* pszFormat, ...) {
  // Allocated at its full length: a message is sent whole, never cut.
  char* pszMsg = nullptr;
  va_list args;
  va_start(args, pszFormat);
  const int nLen = vasprintf(&pszMsg, pszFormat, args);
  va_end(args);
  if (nLen < 0) return -1;
  const std::unique_ptr<char, decltype(&free)> owner(pszMsg, &free);
  return SendText(pszMsg, nLen, kDeviceTimeoutSec);
}

int CSetExchange::SendText(const char* pszMsg, int nLen, int nTimeoutSec) {
  int nResult = 0;
  const int nRet = SetParaInfoByCmd(m_sock, pszMsg, nLen, nResult, nTimeoutSec);
  // Deliberate: a Result other than 0 only suppresses the restart; the browser gets 1 all the same.
  m_bAccepted = nRet == 0 && nResult == 0;
  if (m_bAccepted) m_service.Restart();
  return nRet;
}
