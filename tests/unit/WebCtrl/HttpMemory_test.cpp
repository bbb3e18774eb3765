#include "CBB/WebCtrl/HttpMemory.h"

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

class HttpMemoryTest : public testing::Test {
 protected:
  HttpMemoryTest() { TakeMemoryShortage(); }
  ~HttpMemoryTest() override { TakeMemoryShortage(); }
  HttpMemoryTest(const HttpMemoryTest&) = delete;
  HttpMemoryTest& operator=(const HttpMemoryTest&) = delete;
};

bool IsZero(const void* pBlock, size_t nSize) {
  const auto* pBytes = static_cast<const char*>(pBlock);
  return std::all_of(pBytes, pBytes + nSize, [](char c) { return c == 0; });
}

TEST_F(HttpMemoryTest, IsOrdinaryMemoryWhileThereIsSome) {
  void* pBlock = HttpMalloc(8);
  pBlock = HttpRealloc(pBlock, 100000);
  EXPECT_NE(nullptr, pBlock);
  HttpFree(pBlock);
  pBlock = HttpCalloc(100, 100);
  EXPECT_TRUE(IsZero(pBlock, 10000));
  HttpFree(pBlock);
  HttpFree(nullptr);
  EXPECT_FALSE(IsMemoryShort());
}

TEST_F(HttpMemoryTest, NotesAShortageUntilItIsTaken) {
  EXPECT_EQ(nullptr, CNoHeap().Run([] { return HttpMalloc(kSmall + 1); }));
  EXPECT_TRUE(IsMemoryShort());
  EXPECT_TRUE(IsMemoryShort());
  EXPECT_TRUE(TakeMemoryShortage());
  EXPECT_FALSE(IsMemoryShort());
  EXPECT_EQ(nullptr, CNoHeap().Run([] { return HttpRealloc(nullptr, 1); }));
  EXPECT_TRUE(TakeMemoryShortage());
  EXPECT_EQ(nullptr, CNoHeap().Run([] { return HttpCalloc(2, kSmall); }));
  EXPECT_TRUE(TakeMemoryShortage());
  NoteMemoryShortage();
  EXPECT_TRUE(TakeMemoryShortage());
}

TEST_F(HttpMemoryTest, EmptyingABufferIsNoShortage) {
  EXPECT_EQ(nullptr, HttpRealloc(HttpMalloc(10), 0));
  EXPECT_FALSE(IsMemoryShort());
}

TEST_F(HttpMemoryTest, GivesZeroedBlocksOfTheReserveAgainAndAgain) {
  for (int nRound = 0; nRound < 3; ++nRound) {
    std::vector<void*> blocks(kReserve);
    CNoHeap().Run([&blocks] {
      for (size_t i = 0; i < blocks.size(); ++i) {
        blocks[i] = i % 2 == 0 ? HttpMalloc(kSmall) : HttpCalloc(kSmall / 8, 8);
      }
      return blocks.data();
    });
    EXPECT_EQ(nullptr, CNoHeap().Run([] { return HttpMalloc(1); }));
    EXPECT_EQ(kReserve, std::set<void*>(blocks.begin(), blocks.end()).size());
    for (void* pBlock : blocks) {
      ASSERT_NE(nullptr, pBlock);
      EXPECT_TRUE(IsZero(pBlock, kSmall));
      memset(pBlock, 0xee, kSmall);
      HttpFree(pBlock);
    }
  }
}

// Whichever allocation fails, what is sent is a whole reply or nothing.
TEST_F(HttpMemoryTest, RequestIsAnsweredWholeOrNotAtAll) {
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
