#include "CBB/Http/Refusals.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string Sent(int nStatus, bool bKeepOpen, bool bBody, std::string_view fields = {}) {
  mg_connection conn{};
  SendStatus(&conn, nStatus, bKeepOpen, bBody, fields);
  const std::string strSent(conn.send_mbuf.buf, conn.send_mbuf.len);
  mbuf_free(&conn.send_mbuf);
  return strSent;
}

TEST(SendStatus, SendsAWholeReply) {
  const std::string strServer = "\r\nServer: Mongoose/" MG_VERSION "\r\n";
  const std::string strHead = "Content-Type: text/plain\r\nContent-Length: 11\r\n\r\n";
  EXPECT_EQ(
      "HTTP/1.1 400 Bad Request" + strServer + "Connection: close\r\n" + strHead + "Bad Request",
      Sent(400, false, true));
  EXPECT_EQ("HTTP/1.1 400 Bad Request" + strServer + "A: b\r\nConnection: keep-alive\r\n" + strHead,
            Sent(400, true, false, "A: b\r\n"));
}

TEST(SendStatus, SendsNoBodyWhereTheStatusHasNone) {
  for (const int nStatus : {204, 304}) {
    const std::string strSent = Sent(nStatus, true, true);
    EXPECT_EQ(std::string::npos, strSent.find("Content-")) << nStatus;
    EXPECT_EQ("Connection: keep-alive\r\n\r\n", strSent.substr(strSent.size() - 26)) << nStatus;
  }
}

TEST(ReasonPhrase, IsTheOneOfTheStatus) {
  EXPECT_STREQ("Not Modified", ReasonPhrase(304));
  EXPECT_STREQ("Not Implemented", ReasonPhrase(501));
  EXPECT_STREQ("HTTP Version Not Supported", ReasonPhrase(505));
  EXPECT_STREQ("Unknown", ReasonPhrase(299));
}

}  // namespace
