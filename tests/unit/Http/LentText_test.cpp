#include "CBB/Http/LentText.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <system_error>

#include "tests/unit/Http/SocketPair.h"

namespace {

TEST(LentText, SendsAnyPart) {
  const std::string strText = std::string(5000, 'a') + std::string(5000, 'b');
  const auto pText = CLentText::Make(strText);
  ASSERT_NE(nullptr, pText);
  EXPECT_EQ(10000U, pText->Size());
  const struct {
    size_t nAt;
    size_t nSize;
  } rows[] = {{0, 10000}, {0, 1}, {4999, 2}, {9999, 1}};
  const CSocketPair pair;
  for (const auto& row : rows) {
    EXPECT_EQ(static_cast<ssize_t>(row.nSize), pText->SendTo(pair.Sender(), row.nAt, row.nSize));
    EXPECT_EQ(strText.substr(row.nAt, row.nSize), pair.Receive(row.nSize)) << row.nAt;
  }
}

// A socket keeps the pages lent to it after the text is gone and others have come.
TEST(LentText, StaysTheSameInTheSocket) {
  const CSocketPair pair;
  auto pText = CLentText::Make(std::string(8192, 'a'));
  ASSERT_NE(nullptr, pText);
  ASSERT_EQ(8192, pText->SendTo(pair.Sender(), 0, 8192));
  pText = nullptr;
  const auto pOther = CLentText::Make(std::string(8192, 'b'));
  ASSERT_NE(nullptr, pOther);
  EXPECT_EQ(std::string(8192, 'a'), pair.Receive(8192));
}

// The file of all texts: the one of its name that the process has open.
int TextFile() {
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code none;
    const std::string strTarget = std::filesystem::read_symlink(entry.path(), none).string();
    if (strTarget.rfind("/memfd:webctrl", 0) == 0) return std::stoi(entry.path().filename());
  }
  return -1;
}

// What it takes of memory.
blkcnt_t Blocks() {
  struct stat st {};
  return fstat(TextFile(), &st) == 0 ? st.st_blocks : -1;
}

TEST(LentText, GivesItsMemoryBackWhenItGoes) {
  CLentText::Prepare();
  const blkcnt_t before = Blocks();
  ASSERT_LE(0, before);
  for (const size_t nSize : {size_t{1} << 20, size_t{4097}}) {
    auto pText = CLentText::Make(std::string(nSize, 'a'));
    EXPECT_LT(before, Blocks()) << nSize;
    pText = nullptr;
    EXPECT_EQ(before, Blocks()) << nSize;
  }
}

// Until it goes, the files that the process writes may only reach this size.
class CSizeLimit {
 public:
  explicit CSizeLimit(off_t nSize) {
    EXPECT_EQ(0, getrlimit(RLIMIT_FSIZE, &m_before));
    const rlimit now{static_cast<rlim_t>(nSize), m_before.rlim_max};
    EXPECT_EQ(0, setrlimit(RLIMIT_FSIZE, &now));
  }
  ~CSizeLimit() {
    EXPECT_EQ(0, setrlimit(RLIMIT_FSIZE, &m_before));
    signal(SIGXFSZ, m_pfnBefore);
  }
  CSizeLimit(const CSizeLimit&) = delete;
  CSizeLimit& operator=(const CSizeLimit&) = delete;

 private:
  void (*m_pfnBefore)(int) = signal(SIGXFSZ, SIG_IGN);
  rlimit m_before{};
};

TEST(LentText, IsNullWhenNotAllOfItCanBeWritten) {
  const auto pBefore = CLentText::Make("x");
  ASSERT_NE(nullptr, pBefore);
  struct stat st {};
  ASSERT_EQ(0, fstat(TextFile(), &st));
  const auto nPage = static_cast<off_t>(sysconf(_SC_PAGESIZE));
  const CSizeLimit limit((st.st_size / nPage + 1) * nPage + 3);
  EXPECT_EQ(nullptr, CLentText::Make("text"));
  EXPECT_NE(nullptr, CLentText::Make("tex"));
}

// As on a system that takes much larger pages, which several texts would have to share.
TEST(LentText, IsNullWhereThePagesAreNotItsOwn) {
  CLentText::Prepare();
  const blkcnt_t before = Blocks();
  struct stat st {};
  ASSERT_EQ(0, fstat(TextFile(), &st));
  const auto nPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  const off_t nEnd = st.st_size + static_cast<off_t>(nPage);
  const std::string strPages(8 * nPage, 'x');
  ASSERT_LT(0, pwrite(TextFile(), strPages.data(), strPages.size(), nEnd));
  ASSERT_LT(before, Blocks());
  EXPECT_EQ(nullptr, CLentText::Make(std::string(4 * nPage, 'a')));
  EXPECT_EQ(before, Blocks());
  const auto pText = CLentText::Make("a");
  EXPECT_NE(nullptr, pText);
}

TEST(LentText, TextsDoNotMeet) {
  const auto pOne = CLentText::Make("one");
  const auto pTwo = CLentText::Make("two");
  const CSocketPair pair;
  pOne->SendTo(pair.Sender(), 0, 3);
  pTwo->SendTo(pair.Sender(), 0, 3);
  EXPECT_EQ("onetwo", pair.Receive(6));
}

}  // namespace
