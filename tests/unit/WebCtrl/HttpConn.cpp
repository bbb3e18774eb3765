#include "tests/unit/WebCtrl/HttpConn.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

std::string Post(const std::string& strUri, const std::string& strForm) {
  return "POST " + strUri + " HTTP/1.1\r\nContent-Length: " + std::to_string(strForm.size()) +
         "\r\n\r\n" + strForm;
}

std::string stReply::Body() const {
  std::string strBody;
  for (const std::string& strChunk : chunks) strBody += strChunk;
  return strBody;
}

stReply TakeReply(const std::string& strSent) {
  stReply reply;
  size_t nAt = strSent.find("\r\n\r\n");
  EXPECT_NE(std::string::npos, nAt) << strSent;
  if (nAt == std::string::npos) return reply;
  nAt += 4;
  reply.strHead = strSent.substr(0, nAt);
  for (;;) {
    const size_t nLine = strSent.find("\r\n", nAt);
    EXPECT_NE(std::string::npos, nLine) << strSent;
    if (nLine == std::string::npos) return reply;
    const size_t nLen = strtoul(strSent.c_str() + nAt, nullptr, 16);
    EXPECT_EQ("\r\n", strSent.substr(nLine + 2 + nLen, 2)) << strSent;
    nAt = nLine + 2 + nLen + 2;
    if (nLen == 0) break;
    reply.chunks.push_back(strSent.substr(nLine + 2, nLen));
  }
  reply.strRest = strSent.substr(std::min(nAt, strSent.size()));
  return reply;
}
