#include "CBB/Http/OpenInside.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/unit/Http/Clock.h"
#include "tests/unit/Http/WebRoot.h"

namespace {

class OpenInsideTest : public testing::Test {
 protected:
  OpenInsideTest() {
    EXPECT_NE(nullptr, mkdtemp(m_szTop));
    std::filesystem::create_directories(Path("in/sub"));
    std::filesystem::create_directory(Path("in2"));
    for (const char* pszName : {"in/file", "in/sub/file", "in2/file", "file"}) {
      std::ofstream(Path(pszName)) << pszName;
    }
  }
  ~OpenInsideTest() override { std::filesystem::remove_all(m_szTop); }
  OpenInsideTest(const OpenInsideTest&) = delete;
  OpenInsideTest& operator=(const OpenInsideTest&) = delete;

  std::string Path(const std::string& strName) const { return m_szTop + ("/" + strName); }

  // The content of the file, or the errno for which it is not opened.
  std::string Read(const std::string& strName) {
    const int nFd = m_files.Open(Path("in").c_str(), Path(strName).c_str());
    if (nFd < 0) return std::to_string(errno);
    char szText[32] = "";
    EXPECT_LT(0, read(nFd, szText, sizeof(szText) - 1));
    EXPECT_NE(0, fcntl(nFd, F_GETFD) & FD_CLOEXEC);
    close(nFd);
    return szText;
  }

  char m_szTop[32] = "/tmp/OpenInsideXXXXXX";
  COpenInside m_files;
};

TEST_F(OpenInsideTest, OpensWhatIsReallyBelowTheFolder) {
  std::filesystem::create_symlink("in/sub", Path("link"));
  EXPECT_EQ("in/file", Read("in/file"));
  EXPECT_EQ("in/sub/file", Read("in/sub/file"));
  EXPECT_EQ("in/file", Read("in2/../in/file"));
  EXPECT_EQ("in/sub/file", Read("link/file"));
}

TEST_F(OpenInsideTest, RefusesWhatIsReallyOutside) {
  std::filesystem::create_symlink("../file", Path("in/link"));
  std::filesystem::create_symlink(Path("in2"), Path("in/folder"));
  const std::string strRefused = std::to_string(ENOENT);
  for (const char* pszName : {"file", "in/../file", "in2/file", "in/link", "in/folder/file"}) {
    EXPECT_EQ(strRefused, Read(pszName)) << pszName;
  }
}

TEST_F(OpenInsideTest, RefusesWhatIsNoRegularFile) {
  ASSERT_EQ(0, mkfifo(Path("in/pipe").c_str(), 0600));
  std::filesystem::create_symlink("/dev/zero", Path("in/device"));
  const std::string strRefused = std::to_string(ENOENT);
  for (const char* pszName : {"in", "in/sub", "in/pipe", "in/device", "in/nothing"}) {
    EXPECT_EQ(strRefused, Read(pszName)) << pszName;
  }
}

TEST_F(OpenInsideTest, GivesTheSystemsReason) {
  EXPECT_EQ(std::to_string(ENOTDIR), Read("in/file/name"));
  EXPECT_EQ(std::to_string(ENAMETOOLONG), Read("in/" + std::string(300, 'x')));
}

TEST_F(OpenInsideTest, OpensNothingBelowAFolderThatIsNotThere) {
  for (const std::string& strFolder : {std::string(), Path("nothing"), std::string(5000, 'x')}) {
    COpenInside none;
    EXPECT_EQ(-1, none.Open(strFolder.c_str(), Path("in/file").c_str()));
    EXPECT_EQ(ENOENT, errno);
  }
}

TEST_F(OpenInsideTest, KeepsTwoFoldersApart) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ("in/file", Read("in/file"));
    EXPECT_EQ(-1, m_files.Open(Path("in2").c_str(), Path("in/file").c_str()));
    const int nFd = m_files.Open(Path("in2").c_str(), Path("in2/file").c_str());
    EXPECT_LE(0, nFd);
    close(nFd);
    EXPECT_EQ(std::to_string(ENOENT), Read("in2/file"));
  }
}

TEST_F(OpenInsideTest, FollowsAFolderThatIsALink) {
  const std::string strLink = Path("link");
  std::filesystem::create_symlink("in", strLink);
  const auto isOpened = [&](const char* pszPath) {
    const int nFd = m_files.Open(strLink.c_str(), Path(pszPath).c_str());
    if (nFd >= 0) close(nFd);
    return nFd >= 0;
  };
  EXPECT_TRUE(isOpened("link/file"));
  EXPECT_FALSE(isOpened("in2/file"));
  std::filesystem::remove(strLink);
  std::filesystem::create_symlink("in2", strLink);
  NextSecond();
  EXPECT_TRUE(isOpened("link/file"));
  EXPECT_FALSE(isOpened("in/file"));
}

TEST_F(OpenInsideTest, NoticesAtOnceThatAFileMovesOut) {
  EXPECT_EQ("in/file", Read("in/file"));
  AwaitNextTimeStamp();
  std::filesystem::rename(Path("in/file"), Path("moved"));
  std::filesystem::create_symlink("../moved", Path("in/file"));
  EXPECT_EQ(std::to_string(ENOENT), Read("in/file"));
  EXPECT_EQ(std::to_string(ENOENT), Read("moved"));
}

TEST_F(OpenInsideTest, NoticesAtOnceThatANameLeadsToAnotherFile) {
  EXPECT_EQ("in/sub/file", Read("in/sub/file"));
  std::filesystem::rename(Path("in/sub"), Path("in/old"));
  std::filesystem::create_symlink("../in2", Path("in/sub"));
  EXPECT_EQ(std::to_string(ENOENT), Read("in/sub/file"));
  EXPECT_EQ("in/sub/file", Read("in/old/file"));
}

TEST_F(OpenInsideTest, NoticesSoonThatAFileMovesOutWithItsFolder) {
  EXPECT_EQ("in/sub/file", Read("in/sub/file"));
  std::filesystem::rename(Path("in/sub"), Path("moved"));
  std::filesystem::create_symlink("../moved", Path("in/sub"));
  NextSecond();
  EXPECT_EQ(std::to_string(ENOENT), Read("in/sub/file"));
}

TEST_F(OpenInsideTest, LeavesNoDescriptorOpenForWhatItRefuses) {
  const size_t nBefore = OpenDescriptors();
  Read("in");
  Read("file");
  EXPECT_EQ(nBefore, OpenDescriptors());
}

}  // namespace
