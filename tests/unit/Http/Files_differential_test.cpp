// Compares the edge's answers with those of mg_serve_http to the same requests: they are the same
// except for the fields that the edge adds, and for the answers that today's HTTP defines
// differently.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tests/unit/Http/Loopback.h"
#include "tests/unit/Http/WebRoot.h"
#include "tests/unit/Http/bare_library.h"

namespace {

bool IsWhole(const std::string& strReply) {
  const size_t nHead = strReply.find("\r\n\r\n"), nLength = strReply.find("Content-Length: ");
  return nHead != std::string::npos && nLength < nHead &&
         strReply.size() - nHead - 4 >= strtoul(&strReply[nLength + 16], nullptr, 10);
}

constexpr char kHead[] = "HEAD";

class FilesDifferentialTest : public testing::Test {
 protected:
  FilesDifferentialTest() : m_server(&CWebRoot::Serve) {
    for (const char* pszEnd : {"html", "htm", "css", "js", "json", "svg", "txt", "png", "jpg",
                               "gif", "ico", "xml", "pdf", "zip", "unknown"})
      m_root.Write(std::string("root/file.") + pszEnd, std::string("text of ") + pszEnd);
    m_root.Write("root/nothing.css", "");
    m_root.Write("root/kept.bin", std::string(200000, 'k'));
    m_root.Write("root/large.bin", std::string(700000, 'l'));
    m_root.Write("root/sub/index.html", "an index");
    m_root.Write("root/page.shtml", "[<!--#include file=\"file.css\" -->]");
  }
  ~FilesDifferentialTest() override { BareClose(); }
  FilesDifferentialTest(const FilesDifferentialTest&) = delete;
  FilesDifferentialTest& operator=(const FilesDifferentialTest&) = delete;

  // What the bare library sends, up to the end of the reply or of the connection.
  std::string AskBare(const std::string& strRequest) const {
    const int nSock = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(m_nBarePort));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(0, connect(nSock, reinterpret_cast<sockaddr*>(&address), sizeof(address)));
    send(nSock, strRequest.data(), strRequest.size(), 0);
    std::string strSent;
    static char s_buffer[65536];
    for (ssize_t nGot = -1; nGot != 0 && !IsWhole(strSent);) {
      BarePoll();
      nGot = recv(nSock, s_buffer, sizeof(s_buffer), MSG_DONTWAIT);
      if (nGot > 0) strSent.append(s_buffer, static_cast<size_t>(nGot));
    }
    close(nSock);
    return strSent;
  }

  CWebRoot m_root;
  CTestServer m_server;
  const std::string m_strRoot = m_root.Path("root");
  const int m_nBarePort = BareOpen(m_strRoot.c_str());
};

std::string Request(const std::string& strMethod, const std::string& strUri,
                    const std::string& strFields = "") {
  return strMethod + " " + strUri + " HTTP/1.1\r\nHost: a\r\nConnection: close\r\n" + strFields +
         "\r\n";
}

// Removes the bytes from nAt up to nEnd, if both are there.
void Erase(std::string& strText, size_t nAt, size_t nEnd) {
  if (nAt != std::string::npos && nEnd != std::string::npos) strText.erase(nAt, nEnd - nAt);
}

// A reply without the edge's additions, and without values that depend on the time.
std::string Common(std::string strReply) {
  constexpr struct {
    std::string_view text;
    const char* pszInstead;
  } kRows[] = {
      {"\r\nCache-Control: no-cache", ""},
      {"\r\nX-Content-Type-Options: nosniff", ""},
      {"; charset=utf-8", ""},
      {"\nContent-Type: application/x-javascript\r", "\nscript\r"},
      {"\nContent-Type: text/javascript\r", "\nscript\r"},
  };
  const size_t nHead = strReply.find("\r\n\r\n");
  std::string strHead = strReply.substr(0, nHead);
  for (const auto& row : kRows) {
    const size_t nAt = strHead.find(row.text);
    if (nAt != std::string::npos) strHead.replace(nAt, row.text.size(), row.pszInstead);
  }
  const size_t nDate = strHead.find("\nDate: ");
  Erase(strHead, nDate, strHead.find('\r', nDate));
  // The edge's tag has a third part.
  const size_t nTag = strHead.find("\nEtag: ");
  const size_t nSecond = strHead.find('.', strHead.find('.', nTag) + 1);
  if (nTag != std::string::npos && nSecond < strHead.find('\r', nTag))
    Erase(strHead, nSecond, nSecond + 9);
  return strHead + strReply.substr(std::min(nHead, strReply.size()));
}

TEST_F(FilesDifferentialTest, GivesTheLibrarysBytesForFiles) {
  for (const char* pszMethod : {"GET", kHead}) {
    for (const char* pszUri :
         {"/file.html",       "/file.htm",        "/file.css",  "/file.js",  "/file.json",
          "/file.svg",        "/file.txt",        "/file.png",  "/file.jpg", "/file.gif",
          "/file.ico",        "/file.xml",        "/file.pdf",  "/file.zip", "/file.unknown",
          "/nothing.css",     "/kept.bin",        "/large.bin", "/sub/",     "/%66ile.css",
          "/sub/../file.css", "/file.css?query=1"}) {
      const std::string strRequest = Request(pszMethod, pszUri);
      std::string strBare = Common(AskBare(strRequest));
      // The library sends the body after a HEAD as well.
      if (pszMethod == kHead) strBare.resize(strBare.find("\r\n\r\n") + 4);
      for (int i = 0; i < 2; ++i) {  // read, then from memory
        EXPECT_TRUE(strBare == Common(Exchange(m_server, strRequest)))
            << strRequest << Common(Exchange(m_server, strRequest)).substr(0, 500) << "\n"
            << strBare.substr(0, 500);
      }
    }
  }
}

TEST_F(FilesDifferentialTest, GivesTheLibrarysStatusForTheRest) {
  const struct {
    const char* pszUri;
    const char* pszFields;
  } rows[] = {
      {"/missing.css", ""},
      {"/sub", ""},
      {"/", ""},
      {"/file.css/", ""},
      {"/page.shtml", ""},
      {"/file.css", "Range: bytes=2-5\r\n"},
      {"/file.css", "Range: bytes=5-\r\n"},
      {"/file.css", "Range: bytes=90-99\r\n"},
      {"/file.css", "If-Modified-Since: Fri, 01 Jan 2027 00:00:00 GMT\r\n"},
      {"/file.css", "If-Modified-Since: Sat, 01 Jan 2000 00:00:00 GMT\r\n"},
  };
  for (const auto& row : rows) {
    const std::string strRequest = Request("GET", row.pszUri, row.pszFields);
    const std::string strOwn = Exchange(m_server, strRequest), strBare = AskBare(strRequest);
    EXPECT_EQ(strBare.substr(0, 12), strOwn.substr(0, 12)) << strRequest << strOwn;
    if (strBare.compare(9, 1, "2") != 0) continue;
    EXPECT_EQ(strBare.substr(strBare.find("\r\n\r\n")), strOwn.substr(strOwn.find("\r\n\r\n")))
        << strRequest;
  }
}

}  // namespace
