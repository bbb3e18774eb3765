// Which fields stand in the head of a file, in which order.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "tests/unit/Http/Clock.h"
#include "tests/unit/Http/Loopback.h"
#include "tests/unit/Http/WebRoot.h"

namespace {

// The lines of a head, those that change with time or version without their values, and the body.
std::string Outline(const std::string& strReply) {
  const size_t nHead = strReply.find("\r\n\r\n");
  std::istringstream lines(strReply.substr(0, nHead));
  std::string strOutline, strLine;
  while (std::getline(lines, strLine)) {
    if (strLine.back() == '\r') strLine.pop_back();
    for (const std::string strName : {"Server", "Date", "Last-Modified", "Etag"}) {
      if (strLine.compare(0, strName.size() + 2, strName + ": ") == 0) strLine = strName;
    }
    strOutline += strLine + "\n";
  }
  return strOutline + "\n" + strReply.substr(nHead + 4);
}

TEST(FilesHeads, HaveTheFieldsOfTheirStatus) {
  const std::string strFirst = "Server\nDate\nLast-Modified\n",
                    strType = "Accept-Ranges: bytes\nContent-Type: text/css; charset=utf-8\n",
                    strStays = "Connection: keep-alive\n", strVary = "Vary: Accept-Encoding\n",
                    strPage = "Cache-Control: no-cache\nX-Content-Type-Options: nosniff\n\n";
  const struct {
    const char* pszUri;
    const char* pszFields;
    std::string strOutline;
  } rows[] = {
      {"/plain.css", "",
       "HTTP/1.1 200 OK\n" + strFirst + strType + strStays + "Content-Length: 6\nEtag\n" + strPage +
           "a page"},
      {"/plain.css", "Connection: close\r\n",
       "HTTP/1.1 200 OK\n" + strFirst + strType + "Connection: close\nContent-Length: 6\nEtag\n" +
           strPage + "a page"},
      {"/plain.css", "If-None-Match: *\r\n",
       "HTTP/1.1 304 Not Modified\n" + strFirst + strStays + "Etag\n" + strPage},
      {"/plain.css", "Range: bytes=1-3\r\n",
       "HTTP/1.1 206 Partial Content\n" + strFirst + strType + strStays +
           "Content-Length: 3\nContent-Range: bytes 1-3/6\nEtag\n" + strPage + " pa"},
      {"/plain.css", "Range: bytes=6-\r\n",
       "HTTP/1.1 416 Range Not Satisfiable\n" + strFirst + strType + strStays +
           "Content-Length: 0\nContent-Range: bytes */6\nEtag\n" + strPage},
      {"/both.css", "",
       "HTTP/1.1 200 OK\n" + strFirst + strType + strStays + "Content-Length: 6\nEtag\n" + strVary +
           strPage + "a page"},
      {"/both.css", "Accept-Encoding: gzip\r\n",
       "HTTP/1.1 200 OK\n" + strFirst + strType + strStays +
           "Content-Length: 3\nEtag\nContent-Encoding: gzip\n" + strVary + strPage + "gz!"},
      {"/both.css", "Accept-Encoding: gzip\r\nIf-None-Match: *\r\n",
       "HTTP/1.1 304 Not Modified\n" + strFirst + strStays + "Etag\n" + strVary + strPage},
  };
  CWebRoot root;
  CTestServer server(&CWebRoot::Serve);
  root.Write("root/plain.css", "a page");
  root.Write("root/both.css", "a page");
  root.Write("root/both.css.gz", "gz!");
  for (const auto& row : rows) {
    const std::string strRequest =
        std::string("GET ") + row.pszUri + " HTTP/1.1\r\n" + row.pszFields + "\r\n";
    EXPECT_EQ(row.strOutline, Outline(Exchange(server, strRequest))) << strRequest;
  }
  NextSecond();
}

}  // namespace
