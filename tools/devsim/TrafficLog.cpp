#include "tools/devsim/TrafficLog.h"

#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include "tools/devsim/Text.h"

CTrafficLog::~CTrafficLog() {
  if (m_nFd > STDERR_FILENO) close(m_nFd);
}

int CTrafficLog::Open(const std::string& strPath) {
  m_nFd = strPath == "-" ? STDOUT_FILENO
                         : open(strPath.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  return m_nFd < 0 ? -1 : 0;
}

void CTrafficLog::Add(const char* pszVerb, const sockaddr_in& from, const sockaddr_in& to,
                      std::string_view bytes) {
  if (m_nFd < 0) return;
  const std::string strLine = std::string(pszVerb) + " " + AddrText(from) + " " + AddrText(to) +
                              " " + std::to_string(bytes.size()) + " " + Quote(bytes) + "\n";
  if (write(m_nFd, strLine.data(), strLine.size()) < 0) perror("devsim: log");
}
