// Requests that no browser sends, split as a network may deliver them.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "CBB/WebCtrl/HttpLoop.h"
#include "CBB/WebCtrl/HttpOptions.h"
#include "tests/unit/Http/Loopback.h"

namespace {

// Pieces that the request parser must handle, good and bad.
constexpr const char* kPieces[] = {"GET ",
                                   "POST ",
                                   "OPTIONS ",
                                   "HEAD ",
                                   "/get_cpu_usage",
                                   "/page.css",
                                   "/a/../b",
                                   "/%2e%2e/%00",
                                   "/page.shtml",
                                   "?time=1&SessionID=",
                                   "?",
                                   " HTTP/1.1",
                                   " HTTP/1.0",
                                   "\r\n",
                                   "\r\n\r\n",
                                   "\n",
                                   "Content-Length: 5",
                                   "Content-Length: -1",
                                   "Content-Length: -60",
                                   "Content-Length: 0",
                                   "Content-Length: 18446744073709551615",
                                   "Content-LengthX: 3",
                                   "Transfer-Encoding: chunked",
                                   "Host: x",
                                   "Range: bytes=0-",
                                   "Range: bytes=-",
                                   "If-Modified-Since: Wed, 01",
                                   "Connection: close",
                                   "If-None-Match: \"x\"",
                                   "Authorization: Digest username=\"",
                                   "Expect: 100-continue",
                                   "5\r\nabcde",
                                   "0\r\n\r\n",
                                   "FFFFFF\r\n",
                                   "a=1&b=%zz",
                                   ":",
                                   " ",
                                   "%",
                                   "\"",
                                   "\xFF",
                                   "0123456789abcdef"};

std::string RandomRequest(std::mt19937& random) {
  std::string strRequest = random() % 4 != 0 ? "GET /get_cpu_usage HTTP/1.1\r\n" : "";
  for (size_t nPieces = random() % 12; nPieces > 0; --nPieces) {
    strRequest += kPieces[random() % (sizeof(kPieces) / sizeof(kPieces[0]))];
    if (random() % 2 != 0) strRequest += "\r\n";
  }
  if (random() % 4 != 0) strRequest += "\r\n\r\n";
  if (random() % 8 == 0 && !strRequest.empty()) {
    strRequest[random() % strRequest.size()] = static_cast<char>(random());
  }
  return strRequest;
}

std::string Deliver(CTestServer& server, std::string_view bytes, std::mt19937& random) {
  CTestClient client(server);
  while (!bytes.empty()) {
    const size_t nPart = random() % 3 != 0 ? bytes.size() : 1 + random() % bytes.size();
    client.SendAll(bytes.substr(0, nPart));
    server.Poll();
    bytes.remove_prefix(nPart);
  }
  client.End();
  return client.AwaitEnd();
}

TEST(HostileRequest, EndsWithWholeRepliesOrNone) {
  HttpOptions().document_root = "/no/such/folder";
  std::mt19937 random(20160301);
  CTestServer server(&HttpEvent);
  testing::internal::CaptureStdout();
  for (int i = 0; i < 2000; ++i) {
    const std::string strRequest = RandomRequest(random);
    const std::string strSent = Deliver(server, strRequest, random);
    EXPECT_TRUE(strSent.empty() || strSent.compare(0, 9, "HTTP/1.1 ") == 0) << strRequest;
    EXPECT_LT(strSent.size(), 4096U) << strRequest;
  }
  testing::internal::GetCapturedStdout();
}

}  // namespace
