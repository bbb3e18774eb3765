#include "CBB/Util/ReserveMemory.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "CBB/WebCtrl/HttpLoop.h"
#include "tests/unit/WebCtrl/HttpConn.h"
#include "tests/unit/WebCtrl/NoHeap.h"

namespace {

constexpr size_t kSmall = 128;
constexpr size_t kReserve = 160;

class ReserveMemoryTest : public testing::Test {
 protected:
  ReserveMemoryTest() { TakeMemoryShortage(); }
  ~ReserveMemoryTest() override { TakeMemoryShortage(); }
  ReserveMemoryTest(const ReserveMemoryTest&) = delete;
  ReserveMemoryTest& operator=(const ReserveMemoryTest&) = delete;
};

bool IsZero(const void* pBlock, size_t nSize) {
  const auto* pBytes = static_cast<const char*>(pBlock);
  return std::all_of(pBytes, pBytes + nSize, [](char c) { return c == 0; });
}

TEST_F(ReserveMemoryTest, IsOrdinaryMemoryWhileThereIsSome) {
  void* pBlock = ReserveMalloc(8);
  pBlock = ReserveRealloc(pBlock, 100000);
  EXPECT_NE(nullptr, pBlock);
  ReserveFree(pBlock);
  pBlock = ReserveCalloc(100, 100);
  EXPECT_TRUE(IsZero(pBlock, 10000));
  ReserveFree(pBlock);
  ReserveFree(nullptr);
  EXPECT_FALSE(IsMemoryShort());
}

TEST_F(ReserveMemoryTest, NotesAShortageUntilItIsTaken) {
  EXPECT_EQ(nullptr, CNoHeap().Run([] { return ReserveMalloc(kSmall + 1); }));
  EXPECT_TRUE(IsMemoryShort());
  EXPECT_TRUE(IsMemoryShort());
  EXPECT_TRUE(TakeMemoryShortage());
  EXPECT_FALSE(IsMemoryShort());
  EXPECT_EQ(nullptr, CNoHeap().Run([] { return ReserveRealloc(nullptr, 1); }));
  EXPECT_TRUE(TakeMemoryShortage());
  EXPECT_EQ(nullptr, CNoHeap().Run([] { return ReserveCalloc(2, kSmall); }));
  EXPECT_TRUE(TakeMemoryShortage());
  NoteMemoryShortage();
  EXPECT_TRUE(TakeMemoryShortage());
}

TEST_F(ReserveMemoryTest, EmptyingABufferIsNoShortage) {
  EXPECT_EQ(nullptr, ReserveRealloc(ReserveMalloc(10), 0));
  EXPECT_FALSE(IsMemoryShort());
}

TEST_F(ReserveMemoryTest, GivesZeroedBlocksOfTheReserveAgainAndAgain) {
  for (int nRound = 0; nRound < 3; ++nRound) {
    std::vector<void*> blocks(kReserve);
    CNoHeap().Run([&blocks] {
      for (size_t i = 0; i < blocks.size(); ++i) {
        blocks[i] = i % 2 == 0 ? ReserveMalloc(kSmall) : ReserveCalloc(kSmall / 8, 8);
      }
      return blocks.data();
    });
    EXPECT_EQ(nullptr, CNoHeap().Run([] { return ReserveMalloc(1); }));
    EXPECT_EQ(kReserve, std::set<void*>(blocks.begin(), blocks.end()).size());
    for (void* pBlock : blocks) {
      ASSERT_NE(nullptr, pBlock);
      EXPECT_TRUE(IsZero(pBlock, kSmall));
      memset(pBlock, 0xee, kSmall);
      ReserveFree(pBlock);
    }
  }
}

// Whichever allocation fails, what is sent is a whole reply or nothing.
TEST_F(ReserveMemoryTest, RequestIsAnsweredWholeOrNotAtAll) {
  const std::string strRequest = "GET /get_cpu_usage HTTP/1.1\r\n\r\n";
  int nUnanswered = 0;
  for (int nFailing = 1;; ++nFailing) {
    CHttpConn conn;
    conn.Arrive(strRequest);
    const bool bMet = CNoHeap(nFailing).Meets([&conn] { conn.Deliver(); });
    if (!conn.IsClosing()) {
      EXPECT_EQ("", TakeReply(conn.Sent()).strRest);
      EXPECT_EQ(2U, TakeReply(conn.Sent()).chunks.size());
    }
    nUnanswered += conn.IsClosing() ? 1 : 0;
    EXPECT_EQ(conn.IsClosing(), TakeMemoryShortage()) << nFailing;
    if (!bMet) break;
  }
  EXPECT_GT(nUnanswered, 3);
}

TEST(ConnectionLimit, IsWhatTheDescriptorsLeave) {
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  const struct {
    rlim_t nDescriptors;
    int nConnections;
  } rows[] = {{1, 1},   {16, 1},    {17, 1},    {18, 1},    {20, 2},
              {64, 24}, {271, 127}, {272, 128}, {1024, 128}};
  for (const auto& row : rows) {
    rlimit limit = before;
    limit.rlim_cur = row.nDescriptors;
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &limit));
    EXPECT_EQ(row.nConnections, ConnectionLimit()) << row.nDescriptors;
  }
  setrlimit(RLIMIT_NOFILE, &before);
}

}  // namespace
