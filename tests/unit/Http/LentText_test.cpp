#include "CBB/Http/LentText.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace {

// Two ends of one connection.
class CPair {
 public:
  CPair() { EXPECT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, m_ends)); }
  ~CPair() {
    for (const int nEnd : m_ends) close(nEnd);
  }
  CPair(const CPair&) = delete;
  CPair& operator=(const CPair&) = delete;

  int Sender() const { return m_ends[0]; }
  std::string Receive(size_t nSize) const {
    std::string strText(nSize, '\0');
    EXPECT_EQ(static_cast<ssize_t>(nSize), recv(m_ends[1], strText.data(), nSize, MSG_WAITALL));
    return strText;
  }

 private:
  int m_ends[2] = {-1, -1};
};

TEST(LentText, SendsAnyPart) {
  const std::string strText = std::string(5000, 'a') + std::string(5000, 'b');
  const auto pText = CLentText::Make(strText);
  ASSERT_NE(nullptr, pText);
  EXPECT_EQ(10000U, pText->Size());
  const struct {
    size_t nAt;
    size_t nSize;
  } rows[] = {{0, 10000}, {0, 1}, {4999, 2}, {9999, 1}};
  const CPair pair;
  for (const auto& row : rows) {
    EXPECT_EQ(static_cast<ssize_t>(row.nSize), pText->SendTo(pair.Sender(), row.nAt, row.nSize));
    EXPECT_EQ(strText.substr(row.nAt, row.nSize), pair.Receive(row.nSize)) << row.nAt;
  }
}

// A socket keeps the pages lent to it after the text is gone and others have come.
TEST(LentText, StaysTheSameInTheSocket) {
  const CPair pair;
  auto pText = CLentText::Make(std::string(8192, 'a'));
  ASSERT_NE(nullptr, pText);
  ASSERT_EQ(8192, pText->SendTo(pair.Sender(), 0, 8192));
  pText = nullptr;
  const auto pOther = CLentText::Make(std::string(8192, 'b'));
  ASSERT_NE(nullptr, pOther);
  EXPECT_EQ(std::string(8192, 'a'), pair.Receive(8192));
}

// What the file of all texts takes of memory: it is the one of its name that the process has open.
blkcnt_t Blocks() {
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code none;
    const std::string strTarget = std::filesystem::read_symlink(entry.path(), none).string();
    struct stat st {};
    if (strTarget.rfind("/memfd:webctrl", 0) == 0 && stat(entry.path().c_str(), &st) == 0)
      return st.st_blocks;
  }
  return -1;
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

TEST(LentText, TextsDoNotMeet) {
  const auto pOne = CLentText::Make("one");
  const auto pTwo = CLentText::Make("two");
  const CPair pair;
  pOne->SendTo(pair.Sender(), 0, 3);
  pTwo->SendTo(pair.Sender(), 0, 3);
  EXPECT_EQ("onetwo", pair.Receive(6));
}

}  // namespace
