#include "tools/devsim/Text.h"

#include <arpa/inet.h>

#include <fstream>
#include <sstream>

std::string AddrText(const sockaddr_in& addr) {
  char szAddr[INET_ADDRSTRLEN] = "";
  inet_ntop(AF_INET, &addr.sin_addr, szAddr, sizeof(szAddr));
  return std::string(szAddr) + ":" + std::to_string(ntohs(addr.sin_port));
}

int MakeAddr(const std::string& strAddr, uint16_t usPort, sockaddr_in& addr) {
  addr = {};
  addr.sin_family = AF_INET;
  addr.sin_port = htons(usPort);
  return inet_pton(AF_INET, strAddr.c_str(), &addr.sin_addr) == 1 ? 0 : -1;
}

int ReadNumber(std::string_view text, long nMax, long& nValue) {
  nValue = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return -1;
    nValue = nValue * 10 + (c - '0');
    if (nValue > nMax) return -1;
  }
  return text.empty() ? -1 : 0;
}

std::string Quote(std::string_view bytes) {
  static const char kHex[] = "0123456789abcdef";
  std::string strText = "\"";
  for (char c : bytes) {
    const auto uc = static_cast<unsigned char>(c);
    if (uc >= 0x20 && uc < 0x7f) {
      if (c == '"' || c == '\\') strText += '\\';
      strText += c;
    } else {
      strText += "\\x";
      strText += kHex[uc >> 4];
      strText += kHex[uc & 15];
    }
  }
  return strText + "\"";
}

int ReadFile(const std::string& strPath, std::string& strBytes) {
  std::ifstream file(strPath, std::ios::binary);
  std::ostringstream bytes;
  if (!file || !(bytes << file.rdbuf())) return -1;
  strBytes = bytes.str();
  return 0;
}
