#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mongoose.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "CBB/WebCtrl/HttpLoop.h"
#include "tests/unit/WebCtrl/HttpConn.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr char kPage[] = "a page";
constexpr char kSecret[] = "a secret";

// A folder with the document root "root", its lookalike "root2", and "outside".
class HttpFilesTest : public testing::Test {
 protected:
  HttpFilesTest() {
    EXPECT_NE(nullptr, mkdtemp(m_szTop));
    m_strRoot = Path("root");
    for (const char* pszFolder : {"root", "root/sub", "root2", "outside"}) {
      std::filesystem::create_directory(Path(pszFolder));
    }
    Write("root/page.css", kPage);
    Write("root/sub/index.html", kPage);
    Write("root2/secret.css", kSecret);
    Write("outside/secret.css", kSecret);
    Write("outside/index.html", kSecret);
    HttpOptions().document_root = m_strRoot.c_str();
  }
  ~HttpFilesTest() override {
    HttpOptions().document_root = "/no/such/folder";
    std::filesystem::remove_all(m_szTop);
  }
  HttpFilesTest(const HttpFilesTest&) = delete;
  HttpFilesTest& operator=(const HttpFilesTest&) = delete;

  std::string Path(const std::string& strName) const { return m_szTop + ("/" + strName); }
  void Write(const std::string& strName, const std::string& strText) const {
    std::ofstream(Path(strName)) << strText;
  }
  void Link(const std::string& strTarget, const std::string& strName) const {
    std::filesystem::create_symlink(strTarget, Path(strName));
  }
  static std::string Fetch(const std::string& strUri, const std::string& strFields = "") {
    CHttpConn conn;
    conn.Receive("GET " + strUri + " HTTP/1.1\r\n" + strFields + "\r\n");
    return conn.Sent();
  }

  char m_szTop[32] = "/tmp/HttpFilesXXXXXX";
  std::string m_strRoot;
};

TEST_F(HttpFilesTest, FollowsLinksThatStayInside) {
  Link("page.css", "root/near.css");
  Link(Path("root/page.css"), "root/far.css");
  Link("../page.css", "root/sub/up.css");
  Link("sub", "root/folder");
  for (const char* pszUri : {"/page.css", "/near.css", "/far.css", "/sub/up.css", "/folder/"}) {
    EXPECT_THAT(Fetch(pszUri), EndsWith(std::string("\r\n\r\n") + kPage)) << pszUri;
  }
}

TEST_F(HttpFilesTest, RefusesLinksThatLeadOutside) {
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

TEST_F(HttpFilesTest, IncludesNothingFromOutside) {
  Write("root/in.shtml", "[<!--#include file=\"page.css\" -->]");
  Write("root/up.shtml", "[<!--#include file=\"../outside/secret.css\" -->]");
  Write("root/abs.shtml", "[<!--#include abspath=\"" + Path("outside/secret.css") + "\" -->]");
  EXPECT_THAT(Fetch("/in.shtml"), HasSubstr(kPage));
  EXPECT_THAT(Fetch("/up.shtml"), Not(HasSubstr(kSecret)));
  EXPECT_THAT(Fetch("/abs.shtml"), Not(HasSubstr(kSecret)));
}

TEST_F(HttpFilesTest, OpensRegularFilesOnly) {
  ASSERT_EQ(0, mkfifo(Path("root/pipe.css").c_str(), 0600));
  EXPECT_THAT(Fetch("/pipe.css"), StartsWith("HTTP/1.1 404 "));
  Link("/dev/zero", "root/zero.css");
  EXPECT_THAT(Fetch("/zero.css"), StartsWith("HTTP/1.1 404 "));
}

TEST_F(HttpFilesTest, TakesARootThatIsALink) {
  Link("root", "link");
  const std::string strLink = Path("link");
  HttpOptions().document_root = strLink.c_str();
  EXPECT_THAT(Fetch("/page.css"), EndsWith(kPage));
  Link("../outside/secret.css", "root/relative.css");
  EXPECT_THAT(Fetch("/relative.css"), StartsWith("HTTP/1.1 404 "));
}

TEST_F(HttpFilesTest, ServesNothingOnceTheRootIsGone) {
  std::filesystem::remove_all(m_strRoot);
  EXPECT_THAT(Fetch("/page.css"), StartsWith("HTTP/1.1 404 "));
}

TEST_F(HttpFilesTest, LooksAtAFileAnewForEveryRequest) {
  const std::string strSent = Fetch("/page.css");
  const size_t nTag = strSent.find("Etag: ");
  ASSERT_NE(std::string::npos, nTag);
  const std::string strKnown =
      "If-None-Match: " + strSent.substr(nTag + 6, strSent.find("\r\n", nTag) - nTag - 6) + "\r\n";
  EXPECT_THAT(Fetch("/page.css", strKnown), StartsWith("HTTP/1.1 304 "));
  Write("root/page.css", "a longer page");
  EXPECT_THAT(Fetch("/page.css", strKnown), EndsWith("\r\n\r\na longer page"));
  std::filesystem::remove(Path("root/page.css"));
  EXPECT_THAT(Fetch("/page.css", strKnown), StartsWith("HTTP/1.1 404 "));
}

TEST_F(HttpFilesTest, KeepsWhatItWasToldOfAFileUntilTheNextRequest) {
  const std::string strPath = Path("root/page.css");
  cs_stat_t told{};
  ASSERT_EQ(0, mg_stat(strPath.c_str(), &told));
  std::filesystem::remove(strPath);
  EXPECT_EQ(0, mg_stat(strPath.c_str(), &told));
  EXPECT_EQ(static_cast<off_t>(strlen(kPage)), told.st_size);
  Fetch("/nothing.css");
  EXPECT_EQ(-1, mg_stat(strPath.c_str(), &told));
  EXPECT_EQ(-1, mg_stat("", &told));
}

TEST_F(HttpFilesTest, LeavesNoDescriptorOpen) {
  const int nNext = open("/dev/null", O_RDONLY);
  close(nNext);
  Link("../outside/secret.css", "root/relative.css");
  for (const char* pszUri : {"/page.css", "/relative.css", "/sub/", "/nothing.css"}) Fetch(pszUri);
  const int nLater = open("/dev/null", O_RDONLY);
  close(nLater);
  EXPECT_EQ(nNext, nLater);
}

// The second request waits until the first file is sent, and is delivered when the client goes.
TEST_F(HttpFilesTest, LeavesNoFileOpenForAClientThatGoes) {
  Write("root/large.css", std::string(20000, 'x'));
  const int nNext = open("/dev/null", O_RDONLY);
  close(nNext);
  {
    CHttpConn conn;
    conn.Receive("GET /large.css HTTP/1.1\r\n\r\nGET /large.css HTTP/1.1\r\n\r\n");
    conn.Break();
  }
  const int nLater = open("/dev/null", O_RDONLY);
  close(nLater);
  EXPECT_EQ(nNext, nLater);
}

TEST_F(HttpFilesTest, WritesNothing) {
  const std::string strPath = Path("root/page.css");
  FILE* const pFile = mg_fopen(strPath.c_str(), "w+b");
  ASSERT_NE(nullptr, pFile);
  EXPECT_EQ(0U, mg_fwrite("x", 1, 1, pFile));
  fclose(pFile);
  EXPECT_EQ(std::string(kPage).size(), std::filesystem::file_size(strPath));
}

}  // namespace
