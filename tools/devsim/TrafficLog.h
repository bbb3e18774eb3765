// One line for each datagram, written at once:
//   recv FROM TO LENGTH "bytes"
//   send FROM TO LENGTH "bytes"
// Addresses are IPv4:port; the bytes are escaped by Quote: with a b in front they are a Python
// bytes literal. One thread.
#pragma once

#include <netinet/in.h>

#include <string>
#include <string_view>

class CTrafficLog {
 public:
  CTrafficLog() = default;
  CTrafficLog(const CTrafficLog&) = delete;
  CTrafficLog& operator=(const CTrafficLog&) = delete;
  ~CTrafficLog();

  // Opens the file for appending; "-" is standard output. Returns 0, or -1 with errno.
  int Open(const std::string& strPath);

  // Writes nothing when no log is open.
  void Add(const char* pszVerb, const sockaddr_in& from, const sockaddr_in& to,
           std::string_view bytes);

 private:
  int m_nFd = -1;
};
