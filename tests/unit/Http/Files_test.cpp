#include "CBB/Http/Files.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/unit/Http/Clock.h"
#include "tests/unit/Http/Loopback.h"
#include "tests/unit/Http/WebRoot.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr char kPage[] = "a page";
constexpr char kSecret[] = "a secret";

class FilesTest : public testing::Test {
 protected:
  FilesTest() : m_server(&CWebRoot::Serve) {
    Write("root/page.css", kPage);
    Write("root/sub/index.html", kPage);
    Write("root2/secret.css", kSecret);
    Write("outside/secret.css", kSecret);
    Write("outside/index.html", kSecret);
  }
  // Files read for one test are of no use to the next.
  ~FilesTest() override { NextSecond(); }
  FilesTest(const FilesTest&) = delete;
  FilesTest& operator=(const FilesTest&) = delete;

  std::string Path(const std::string& strName) const { return m_root.Path(strName); }
  void Write(const std::string& strName, const std::string& strText) const {
    m_root.Write(strName, strText);
  }
  void Link(const std::string& strTarget, const std::string& strName) const {
    m_root.Link(strTarget, strName);
  }
  std::string Ask(const std::string& strMethod, const std::string& strUri,
                  const std::string& strFields = "") {
    return Exchange(m_server, strMethod + " " + strUri + " HTTP/1.1\r\n" + strFields + "\r\n");
  }
  std::string Fetch(const std::string& strUri, const std::string& strFields = "") {
    return Ask("GET", strUri, strFields);
  }

  CWebRoot m_root;
  CTestServer m_server;
};

TEST_F(FilesTest, FollowsLinksThatStayInside) {
  Link("page.css", "root/near.css");
  Link(Path("root/page.css"), "root/far.css");
  Link("../page.css", "root/sub/up.css");
  Link("sub", "root/folder");
  for (const char* pszUri : {"/page.css", "/near.css", "/far.css", "/sub/up.css", "/folder/"}) {
    EXPECT_THAT(Fetch(pszUri), EndsWith(std::string("\r\n\r\n") + kPage)) << pszUri;
  }
}

TEST_F(FilesTest, RefusesLinksThatLeadOutside) {
  Link("../outside/secret.css", "root/relative.css");
  Link(Path("outside/secret.css"), "root/absolute.css");
  Link(Path("root2/secret.css"), "root/lookalike.css");
  Link("absolute.css", "root/chain.css");
  Link("../outside", "root/folder");
  Link("/proc/self", "root/proc");
  for (const char* pszUri :
       {"/relative.css", "/absolute.css", "/lookalike.css", "/chain.css", "/folder/secret.css",
        "/folder/", "/folder/index.html", "/proc/status", "/folder/../root2/"}) {
    const std::string strSent = Fetch(pszUri);
    EXPECT_THAT(strSent, StartsWith("HTTP/1.1 404 ")) << pszUri;
    EXPECT_THAT(strSent, Not(HasSubstr(kSecret))) << pszUri;
  }
}

TEST_F(FilesTest, IncludesNothingFromOutside) {
  Write("root/in.shtml", "[<!--#include file=\"page.css\" -->]");
  Write("root/up.shtml", "[<!--#include file=\"../outside/secret.css\" -->]");
  Write("root/abs.shtml", "[<!--#include abspath=\"" + Path("outside/secret.css") + "\" -->]");
  EXPECT_THAT(Fetch("/in.shtml"), HasSubstr(kPage));
  EXPECT_THAT(Fetch("/up.shtml"), Not(HasSubstr(kSecret)));
  EXPECT_THAT(Fetch("/abs.shtml"), Not(HasSubstr(kSecret)));
}

TEST_F(FilesTest, OpensRegularFilesOnly) {
  ASSERT_EQ(0, mkfifo(Path("root/pipe.css").c_str(), 0600));
  EXPECT_THAT(Fetch("/pipe.css"), StartsWith("HTTP/1.1 404 "));
  Link("/dev/zero", "root/zero.css");
  EXPECT_THAT(Fetch("/zero.css"), StartsWith("HTTP/1.1 404 "));
}

TEST_F(FilesTest, TakesARootThatIsALink) {
  Link("root", "link");
  m_root.ServeFrom("link");
  EXPECT_THAT(Fetch("/page.css"), EndsWith(kPage));
  Link("../outside/secret.css", "root/relative.css");
  EXPECT_THAT(Fetch("/relative.css"), StartsWith("HTTP/1.1 404 "));
}

TEST_F(FilesTest, ServesNothingOnceTheRootIsGone) {
  std::filesystem::remove_all(Path("root"));
  EXPECT_THAT(Fetch("/page.css"), StartsWith("HTTP/1.1 404 "));
}

// The value of a field of a reply.
std::string Field(const std::string& strReply, const std::string& strName) {
  const size_t nName = strReply.find("\r\n" + strName + ": ");
  if (nName == std::string::npos) return {};
  const size_t nValue = nName + strName.size() + 4;
  return strReply.substr(nValue, strReply.find("\r\n", nValue) - nValue);
}

TEST_F(FilesTest, LooksAtAFileAnewInEverySecond) {
  const std::string strKnown = "If-None-Match: " + Field(Fetch("/page.css"), "Etag") + "\r\n";
  EXPECT_THAT(Fetch("/page.css", strKnown), StartsWith("HTTP/1.1 304 Not Modified\r\n"));
  Write("root/page.css", "a longer page");
  NextSecond();
  EXPECT_THAT(Fetch("/page.css", strKnown), EndsWith("\r\n\r\na longer page"));
  std::filesystem::remove(Path("root/page.css"));
  NextSecond();
  EXPECT_THAT(Fetch("/page.css", strKnown), StartsWith("HTTP/1.1 404 Not Found\r\n"));
}

TEST_F(FilesTest, AnswersFromMemoryUnderThePlainNameOnly) {
  const std::vector<std::string> uris = {"/page.css", "//page.css", "/./page.css", "/%70age.css"};
  for (const std::string& strUri : uris) EXPECT_THAT(Fetch(strUri), EndsWith(kPage)) << strUri;
  Write("root/page.css", "another page");
  for (const std::string& strUri : uris) {
    EXPECT_THAT(Fetch(strUri), EndsWith(strUri == "/page.css" ? kPage : "another page")) << strUri;
  }
}

TEST_F(FilesTest, AnswersByMethod) {
  const struct {
    const char* pszMethod;
    const char* pszFields;
    const char* pszStart;
    const char* pszEnd;
  } rows[] = {
      {"GET", "", "HTTP/1.1 200 OK\r\n", "\r\n\r\na page"},
      {"HEAD", "", "HTTP/1.1 200 OK\r\n", "\r\n\r\n"},
      {"POST", "Content-Length: 0\r\n", "HTTP/1.1 200 OK\r\n", "\r\n\r\na page"},
      {"OPTIONS", "", "HTTP/1.1 204 No Content\r\n",
       "\r\nAllow: GET, HEAD, POST, OPTIONS\r\nConnection: keep-alive\r\n\r\n"},
      {"DELETE", "", "HTTP/1.1 501 Not Implemented\r\n", "\r\n\r\nNot Implemented"},
      {"PUT", "Content-Length: 0\r\n", "HTTP/1.1 501 Not Implemented\r\n",
       "\r\n\r\nNot Implemented"},
  };
  for (const auto& row : rows) {
    const std::string strSent = Ask(row.pszMethod, "/page.css", row.pszFields);
    EXPECT_THAT(strSent, StartsWith(row.pszStart)) << row.pszMethod;
    EXPECT_THAT(strSent, EndsWith(row.pszEnd)) << row.pszMethod;
  }
}

TEST_F(FilesTest, HeadOfAFileIsThatOfGet) {
  for (const char* pszUri : {"/page.css", "/nothing.css", "/sub", "/sub/"}) {
    const std::string strGet = Fetch(pszUri);
    EXPECT_EQ(strGet.substr(0, strGet.find("\r\n\r\n") + 4), Ask("HEAD", pszUri)) << pszUri;
  }
}

TEST_F(FilesTest, TellsBrowsersHowLongToKeepAFile) {
  std::filesystem::create_directory(Path("root/assets"));
  Write("root/assets/a1b2c3.js", "x");
  Write("root/page.shtml", "x");
  const struct {
    const char* pszUri;
    const char* pszCaching;
    const char* pszType;
  } rows[] = {
      {"/page.css", "no-cache", "text/css; charset=utf-8"},
      {"/sub/", "no-cache", "text/html; charset=utf-8"},
      {"/page.shtml", "no-cache", "text/html; charset=utf-8"},
      {"/assets/a1b2c3.js", "max-age=31536000, immutable", "text/javascript; charset=utf-8"},
  };
  for (const auto& row : rows) {
    const std::string strSent = Fetch(row.pszUri);
    EXPECT_EQ(row.pszCaching, Field(strSent, "Cache-Control")) << row.pszUri;
    EXPECT_EQ(row.pszType, Field(strSent, "Content-Type")) << row.pszUri;
    EXPECT_EQ("nosniff", Field(strSent, "X-Content-Type-Options")) << row.pszUri;
  }
}

TEST_F(FilesTest, SendsAPackedFormToWhoTakesIt) {
  Write("root/page.css.gz", "packed");
  const std::string strPlain = Fetch("/page.css");
  EXPECT_THAT(strPlain, EndsWith(kPage));
  EXPECT_EQ("Accept-Encoding", Field(strPlain, "Vary"));
  const std::string strPacked = Fetch("/page.css", "Accept-Encoding: gzip\r\n");
  EXPECT_THAT(strPacked, EndsWith("\r\n\r\npacked"));
  EXPECT_EQ("gzip", Field(strPacked, "Content-Encoding"));
  EXPECT_EQ("Accept-Encoding", Field(strPacked, "Vary"));
  EXPECT_EQ("text/css; charset=utf-8", Field(strPacked, "Content-Type"));
  EXPECT_NE(Field(strPlain, "Etag"), Field(strPacked, "Etag"));
}

// The fields of the usual replies are made once for each version of a file.
TEST_F(FilesTest, SendsTheSameReplyWhateverWasSentBefore) {
  const char* const pszFields[] = {"",
                                   "Connection: close\r\n",
                                   "If-None-Match: *\r\n",
                                   "If-None-Match: *\r\nConnection: close\r\n",
                                   "Range: bytes=1-2\r\n",
                                   "Range: bytes=99-\r\n",
                                   "Accept-Encoding: gzip\r\n",
                                   "Accept-Encoding: gzip\r\nIf-None-Match: *\r\n"};
  const auto time = std::filesystem::last_write_time(Path("root/page.css"));
  std::vector<std::string> firsts;
  for (const char* pszOne : pszFields) {
    const std::string strName = "root/first" + std::to_string(firsts.size()) + ".css";
    Write(strName, kPage);
    Write(strName + ".gz", "packed");
    std::filesystem::last_write_time(Path(strName), time);
    std::filesystem::last_write_time(Path(strName + ".gz"), time);
    firsts.push_back(Fetch(strName.substr(4), pszOne));
  }
  std::filesystem::rename(Path("root/first0.css.gz"), Path("root/page.css.gz"));
  for (const char* pszBefore : pszFields) {
    for (size_t i = 0; i < firsts.size(); ++i) {
      Fetch("/page.css", pszBefore);
      EXPECT_EQ(firsts[i], Fetch("/page.css", pszFields[i])) << pszBefore << pszFields[i];
    }
  }
}

TEST_F(FilesTest, ShowsNoPathInThePlaceOfAnInclude) {
  const std::string strLoop = "<!--#include file=\"loop.shtml\" -->";
  const struct {
    std::string strText;
    const char* pszShown;
  } rows[] = {
      {"[<!--#include file=\"nothing.css\" -->]", "[]"},
      {"[<!--#include file=\"../outside/secret.css\" -->]", "[]"},
      {strLoop, "SSI #include level is too deep"},
      {"[<!--#include file=\"" + std::string(9000, 'n') + "\" -->]", "SSI tag is too large"},
  };
  for (const auto& row : rows) {
    Write("root/loop.shtml", row.strText);
    const std::string strSent = Fetch("/loop.shtml");
    EXPECT_THAT(strSent, HasSubstr(row.pszShown)) << row.strText;
    EXPECT_THAT(strSent, Not(HasSubstr("WebRoot"))) << row.strText;
  }
}

// A tag and a path have the same limit, so that no tag overruns a path.
TEST_F(FilesTest, BoundsTheTagsOfIncludes) {
  for (const size_t nLength : {100, 985, 1050, 2000, 9000}) {
    for (const char* pszKind : {"virtual=", "abspath=", "file=", ""}) {
      Write("root/page.shtml",
            std::string("[<!--#include ") + pszKind + '"' + std::string(nLength, 'n') + "\" -->]");
      EXPECT_THAT(Fetch("/page.shtml"),
                  nLength < 1000 ? HasSubstr("\r\n\r\n[") : HasSubstr("SSI tag is too large"))
          << nLength << pszKind;
    }
  }
}

TEST_F(FilesTest, LeavesNoDescriptorOpen) {
  Link("../outside/secret.css", "root/relative.css");
  Write("root/large.css", std::string(300000, 'x'));
  Write("root/page.shtml", "[<!--#include file=\"page.css\" -->]");
  const size_t nBefore = OpenDescriptors();
  for (const char* pszUri :
       {"/page.css", "/relative.css", "/sub/", "/sub", "/nothing.css", "/large.css", "/page.shtml"})
    Fetch(pszUri);
  m_server.PollUntil([&] { return m_server.Connections() == 0; });
  EXPECT_EQ(nBefore, OpenDescriptors());
}

TEST_F(FilesTest, LeavesNoFileOpenForAClientThatGoes) {
  Write("root/large.css", std::string(8U << 20, 'x'));
  const size_t nBefore = OpenDescriptors();
  {
    CTestClient client(m_server, 4096);
    client.Send("GET /large.css HTTP/1.1\r\n\r\nGET /large.css HTTP/1.1\r\n\r\n");
    client.Await(1);
    EXPECT_EQ(nBefore + 3, OpenDescriptors());
  }
  m_server.PollUntil([&] { return m_server.Connections() == 0; });
  EXPECT_EQ(nBefore, OpenDescriptors());
}

}  // namespace
