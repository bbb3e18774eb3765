#include "CBB/Http/LibraryMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/unit/Http/Loopback.h"
#include "tests/unit/Http/NoHeap.h"
#include "tests/unit/Http/WebRoot.h"

namespace {

constexpr size_t kSmall = 128;
constexpr size_t kReserve = 160;

class LibraryMemoryTest : public testing::Test {
 protected:
  LibraryMemoryTest() { TakeMemoryShortage(); }
  ~LibraryMemoryTest() override { TakeMemoryShortage(); }
  LibraryMemoryTest(const LibraryMemoryTest&) = delete;
  LibraryMemoryTest& operator=(const LibraryMemoryTest&) = delete;
};

bool IsZero(const void* pBlock, size_t nSize) {
  const auto* pBytes = static_cast<const char*>(pBlock);
  return std::all_of(pBytes, pBytes + nSize, [](char c) { return c == 0; });
}

TEST_F(LibraryMemoryTest, IsOrdinaryMemoryWhileThereIsSome) {
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

TEST_F(LibraryMemoryTest, NotesAShortageUntilItIsTaken) {
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

TEST_F(LibraryMemoryTest, EmptyingABufferIsNoShortage) {
  EXPECT_EQ(nullptr, ReserveRealloc(ReserveMalloc(10), 0));
  EXPECT_FALSE(IsMemoryShort());
}

TEST_F(LibraryMemoryTest, GivesZeroedBlocksOfTheReserveAgainAndAgain) {
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

constexpr char kReply[] = "HTTP/1.1 200 OK\r\nContent-Length: 600\r\n\r\n";

void Answer(mg_connection* pConn, int nEvent, void* /*pData*/) {
  if (nEvent != MG_EV_HTTP_REQUEST) return;
  mg_printf(pConn, "%s", kReply);
  mg_printf(pConn, "%s", std::string(600, 'x').c_str());
}

// Whichever allocation fails, a new client gets a whole connection or none, and the next one gets
// in.
TEST_F(LibraryMemoryTest, NewcomerIsAcceptedWholeOrNotAtAll) {
  int nRefused = 0;
  for (int nFailing = 1;; ++nFailing) {
    CTestServer server(&Answer);
    const size_t nBefore = OpenDescriptors();
    std::optional<CTestClient> client;
    const bool bMet = CNoHeap(nFailing).Meets([&] { client.emplace(server); });
    EXPECT_EQ(bMet ? 0U : 1U, server.Connections()) << nFailing;
    EXPECT_EQ(bMet, client->IsOver()) << nFailing;
    EXPECT_EQ(nBefore + (bMet ? 1U : 2U), OpenDescriptors()) << nFailing;
    const CTestClient next(server);
    server.PollUntil([&] { return server.Connections() == (bMet ? 1U : 2U); });
    if (!bMet) break;
    ++nRefused;
  }
  EXPECT_GT(nRefused, 1);
}

// Whichever allocation fails, a complete reply or nothing is sent, and the server survives.
TEST_F(LibraryMemoryTest, RequestIsAnsweredWholeOrNotAtAll) {
  const std::string strWhole = kReply + std::string(600, 'x');
  CTestServer server(&Answer);
  EXPECT_EQ(strWhole, Exchange(server, "GET / HTTP/1.1\r\n\r\n"));
  int nUnanswered = 0;
  for (int nFailing = 1;; ++nFailing) {
    CTestClient client(server);
    client.Send("GET / HTTP/1.1\r\n\r\n");
    bool bShort = false;
    const bool bMet = CNoHeap(nFailing).Meets([&] { bShort = server.Poll(); });
    EXPECT_EQ(bMet, bShort) << nFailing;
    EXPECT_EQ(bMet ? 0U : 1U, server.Connections()) << nFailing;
    EXPECT_EQ(bMet, client.IsOver()) << nFailing;
    EXPECT_EQ(bMet ? "" : strWhole, client.Received()) << nFailing;
    if (!bMet) break;
    ++nUnanswered;
  }
  EXPECT_GT(nUnanswered, 3);
}

std::string WithoutDate(std::string strReply) {
  const size_t nDate = strReply.find("\r\nDate: ");
  if (nDate != std::string::npos) strReply.erase(nDate, strReply.find("\r\n", nDate + 2) - nDate);
  return strReply;
}

// The first reply of a version allocates more than later ones.
TEST_F(LibraryMemoryTest, FileIsSentWholeOrNotAtAll) {
  CWebRoot root;
  CTestServer server(&CWebRoot::Serve);
  root.Write("root/page.css", "a page");
  const std::string strWhole = WithoutDate(Exchange(server, "GET /page.css HTTP/1.1\r\n\r\n"));
  const auto time = std::filesystem::last_write_time(root.Path("root/page.css"));
  for (const bool bFirst : {true, false}) {
    int nFailing = 1;
    for (bool bMet = true; bMet; ++nFailing) {
      const std::string strName = bFirst ? std::to_string(nFailing) + ".css" : "page.css";
      root.Write("root/" + strName, "a page");
      std::filesystem::last_write_time(root.Path("root/" + strName), time);
      CTestClient client(server);
      client.Send("GET /" + strName + " HTTP/1.1\r\n\r\n");
      bMet = CNoHeap(nFailing).Meets([&] { server.Poll(); });
      EXPECT_EQ(bMet ? "" : strWhole, WithoutDate(client.Received())) << strName;
    }
    EXPECT_GT(nFailing, 3);
  }
}

// Page and include are opened one after the other; neither may stay open.
TEST_F(LibraryMemoryTest, PageWithAnIncludeIsSentWholeOrNotAtAll) {
  const std::string strRequest = "GET /page.shtml HTTP/1.1\r\n\r\n";
  CWebRoot root;
  CTestServer server(&CWebRoot::Serve);
  const auto PollUntilAllHaveGone = [&] {
    server.PollUntil([&] { return server.Connections() == 0; });
  };
  root.Write("root/page.shtml", "[<!--#include file=\"page.css\" -->]");
  root.Write("root/page.css", "a page");
  const std::string strWhole = WithoutDate(Exchange(server, strRequest));
  EXPECT_NE(std::string::npos, strWhole.find("[a page]"));
  PollUntilAllHaveGone();
  const size_t nBefore = OpenDescriptors();
  int nFailing = 1;
  for (bool bMet = true; bMet; ++nFailing) {
    {
      CTestClient client(server);
      client.Send(strRequest);
      bMet = CNoHeap(nFailing).Meets([&] { server.Poll(); });
      EXPECT_EQ(bMet ? "" : strWhole, WithoutDate(client.Received())) << nFailing;
    }
    PollUntilAllHaveGone();
    EXPECT_EQ(nBefore, OpenDescriptors()) << nFailing;
  }
  EXPECT_GT(nFailing, 3);
}

}  // namespace
