// Turns, connections, memory: how the server chooses between its clients.
#include "CBB/Http/Server.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "CBB/Http/LentText.h"
#include "CBB/Http/LibraryMemory.h"
#include "tests/unit/Http/Loopback.h"
#include "tests/unit/Http/WebRoot.h"

namespace {

using Clock = std::chrono::steady_clock;
using Clients = std::vector<std::unique_ptr<CTestClient>>;

std::vector<std::string> g_served;                     // paths, in the order of their turns
void (*g_pfnMeanwhile)(const std::string&) = nullptr;  // runs while a request is executed

// Answers with the path in angle brackets.
void Answer(mg_connection* pConn, int nEvent, void* pData) {
  if (nEvent != MG_EV_HTTP_REQUEST) return;
  const mg_str& uri = static_cast<http_message*>(pData)->uri;
  g_served.emplace_back(uri.p, uri.len);
  mg_printf(pConn, "<%.*s>", static_cast<int>(uri.len), uri.p);
  if (g_pfnMeanwhile != nullptr) g_pfnMeanwhile(g_served.back());
}

std::string Get(const std::string& strPath) { return "GET " + strPath + " HTTP/1.1\r\n\r\n"; }

void Spin(int nMs) {
  const auto end = Clock::now() + std::chrono::milliseconds(nMs);
  while (Clock::now() < end) continue;
}

class ServerTest : public testing::Test {
 protected:
  ServerTest() {
    g_served.clear();
    g_pfnMeanwhile = nullptr;
    TakeMemoryShortage();
  }

  // Polls until this many requests have been executed, and returns all of them.
  static std::vector<std::string> Served(CTestServer& server, size_t nRequests) {
    server.PollUntil([&] { return g_served.size() >= nRequests; });
    return g_served;
  }
};

TEST_F(ServerTest, GivesEachClientATurnInEachRound) {
  CTestServer server(&Answer);
  CTestClient a(server), b(server), c(server);
  a.Send(Get("/a1") + Get("/a2") + Get("/a3"));
  b.Send(Get("/b1") + Get("/b2"));
  c.Send(Get("/c1"));
  EXPECT_EQ((std::vector<std::string>{"/a1", "/b1", "/c1", "/a2", "/b2", "/a3"}),
            Served(server, 6));
  EXPECT_EQ("</a1></a2></a3>", a.Await(15));
}

TEST_F(ServerTest, PutsNewcomersFirst) {
  CTestServer server(&Answer);
  CTestClient a(server), b(server);
  a.Send(Get("/a1") + Get("/a2") + Get("/a3"));
  Served(server, 1);
  b.Send(Get("/b1"));
  EXPECT_EQ((std::vector<std::string>{"/a1", "/b1", "/a2", "/a3"}), Served(server, 4));
}

std::vector<CTestClient*> g_coming;

// Each request is as slow as a round may be, and somebody new asks meanwhile.
TEST_F(ServerTest, LetsNobodyWaitForAllNewcomers) {
  CTestServer server(&Answer);
  CTestClient a(server);
  Clients newcomers;
  g_coming.clear();
  for (int i = 0; i < 8; ++i) {
    newcomers.push_back(std::make_unique<CTestClient>(server));
    g_coming.push_back(newcomers.back().get());
  }
  g_pfnMeanwhile = [](const std::string& /*strPath*/) {
    if (!g_coming.empty()) {
      g_coming.back()->Send(Get("/new"));
      g_coming.pop_back();
    }
    Spin(5);
  };
  a.Send(Get("/a1") + Get("/a2") + Get("/a3"));
  const std::vector<std::string> served = Served(server, 8);
  EXPECT_EQ((std::vector<std::string>{"/a1", "/new", "/a2", "/new", "/new", "/a3"}),
            std::vector<std::string>(served.begin(), served.begin() + 6));
}

TEST_F(ServerTest, CarriesNothingOutForAClientThatHasReset) {
  CTestServer server(&Answer);
  CTestClient a(server), b(server);
  a.Send(Get("/a1") + Get("/a2"));
  b.Send(Get("/b1") + Get("/b2"));
  Served(server, 2);
  a.Reset();
  EXPECT_EQ((std::vector<std::string>{"/a1", "/b1", "/b2"}), Served(server, 3));
  server.PollUntil([&] { return server.Connections() == 1; });
  EXPECT_EQ(3U, g_served.size());
}

CTestClient* g_pLeaving = nullptr;

// A slow request, like one that waits for the device; another client gives up meanwhile.
TEST_F(ServerTest, LooksForResetsBehindASlowRequest) {
  CTestServer server(&Answer);
  CTestClient a(server), b(server);
  g_pLeaving = &b;
  g_pfnMeanwhile = [](const std::string& strPath) {
    if (strPath != "/a1") return;
    g_pLeaving->Reset();
    Spin(5);
  };
  a.Send(Get("/a1") + Get("/a2"));
  b.Send(Get("/b1"));
  EXPECT_EQ((std::vector<std::string>{"/a1", "/a2"}), Served(server, 2));
  EXPECT_EQ(1U, server.Connections());
}

TEST_F(ServerTest, GivesThePlaceOfWhoNeverAskedToANewcomer) {
  CTestServer server(&Answer, 4);
  Clients clients;
  for (int i = 0; i < 4; ++i) clients.push_back(std::make_unique<CTestClient>(server));
  clients[0]->Send(Get("/a"));
  EXPECT_EQ("</a>", clients[0]->Await(4));
  clients[1]->Send("GET / HTTP");
  server.Poll();
  EXPECT_EQ(4U, server.Connections());
  clients.push_back(std::make_unique<CTestClient>(server));
  clients.back()->Send(Get("/new"));
  EXPECT_EQ("</new>", clients.back()->Await(6));
  EXPECT_EQ(4U, server.Connections());
  for (size_t i = 0; i < clients.size(); ++i) EXPECT_EQ(i == 1, clients[i]->IsOver()) << i;
}

TEST_F(ServerTest, KeepsHundredsOfIdleClients) {
  CTestServer server(&Answer);
  CTestClient first(server);
  Clients clients;
  for (int i = 0; i < 400; ++i) clients.push_back(std::make_unique<CTestClient>(server));
  first.Send(Get("/a"));
  EXPECT_EQ("</a>", first.Await(4));
  EXPECT_EQ(401U, server.Connections());
}

TEST_F(ServerTest, ClosesWhoMakesItHoldMost) {
  constexpr size_t kMiB = 1U << 20;
  const std::string strHead = "POST / HTTP/1.1\r\nContent-Length: 1048576\r\n\r\n";
  CTestServer server(&Answer);
  Clients clients;
  for (size_t i = 0; i < 9; ++i) {
    clients.push_back(std::make_unique<CTestClient>(server));
    clients.back()->SendAll(strHead + std::string(i == 4 ? kMiB - 1 : kMiB - 100000, 'x'));
  }
  server.PollUntil([&] { return server.Connections() == 8; });
  for (size_t i = 0; i < clients.size(); ++i) EXPECT_EQ(i == 4, clients[i]->IsOver()) << i;
}

template <size_t kLength>
void AnswerWithBytes(mg_connection* pConn, int nEvent, void* /*pData*/) {
  static const std::string s_strReply(kLength, 'x');
  if (nEvent != MG_EV_HTTP_REQUEST) return;
  mg_send(pConn, s_strReply.data(), static_cast<int>(s_strReply.size()));
}
constexpr auto AnswerAtLength = AnswerWithBytes<6U << 20>;

// At some reply the socket takes a part and then nothing more.
TEST_F(ServerTest, GoesOnBesideRepliesThatAreReadLate) {
  constexpr size_t kLength = 100000;
  constexpr size_t kReplies = 60;
  CTestServer server(&AnswerWithBytes<kLength>);
  CTestClient late(server, 4096), other(server);
  std::string strRequests;
  for (size_t i = 0; i < kReplies; ++i) strRequests += Get("/");
  late.Send(strRequests);
  for (size_t i = 0; i < kReplies; ++i) server.Poll();
  other.Send(Get("/"));
  EXPECT_EQ(kLength, other.Await(kLength).size());
  EXPECT_EQ(kReplies * kLength, late.Await(kReplies * kLength).size());
}

TEST_F(ServerTest, CountsRepliesThatAreNotRead) {
  CTestServer server(AnswerAtLength);
  CTestClient first(server, 4096), second(server, 4096);
  first.Send(Get("/"));
  first.Await(1);
  EXPECT_EQ(2U, server.Connections());
  second.Send(Get("/"));
  server.PollUntil([&] { return server.Connections() == 1; });
  EXPECT_NE(first.IsOver(), second.IsOver());
}

// Kept, the buffers of twenty clients would be more than all may hold.
TEST_F(ServerTest, HoldsNothingOfARequestThatWasAnswered) {
  const std::string strHead = "POST /a HTTP/1.1\r\nContent-Length: 1000000\r\n\r\n";
  CTestServer server(&Answer);
  Clients clients;
  for (size_t i = 0; i < 20; ++i) {
    clients.push_back(std::make_unique<CTestClient>(server));
    clients.back()->SendAll(strHead + std::string(1000000, 'x'));
    EXPECT_EQ("</a>", clients.back()->Await(4));
  }
  EXPECT_EQ(20U, server.Connections());
}

TEST_F(ServerTest, HoldsNothingOfAReplyThatWasRead) {
  CTestServer server(AnswerAtLength);
  Clients clients;
  for (size_t i = 0; i < 4; ++i) {
    clients.push_back(std::make_unique<CTestClient>(server));
    clients.back()->Send(Get("/"));
    EXPECT_EQ(6U << 20, clients.back()->Await(6U << 20).size());
  }
  EXPECT_EQ(4U, server.Connections());
}

TEST_F(ServerTest, DisconnectsAllWhenMemoryIsShort) {
  CTestServer server(&Answer);
  CTestClient a(server), b(server);
  g_pfnMeanwhile = [](const std::string&) { NoteMemoryShortage(); };
  a.Send(Get("/a"));
  EXPECT_TRUE(server.Poll());
  EXPECT_EQ(0U, server.Connections());
  for (CTestClient* pClient : {&a, &b}) EXPECT_EQ("", pClient->AwaitEnd());
  EXPECT_FALSE(server.Poll());
}

TEST_F(ServerTest, TakesAHandlersExceptionForAShortage) {
  CTestServer server(&Answer);
  CTestClient client(server);
  g_pfnMeanwhile = [](const std::string&) { throw std::bad_alloc(); };
  client.Send(Get("/a"));
  EXPECT_TRUE(server.Poll());
  EXPECT_EQ("", client.AwaitEnd());
}

TEST_F(ServerTest, BindsAnAddressOnce) {
  CTestServer server(&Answer);
  const std::string strTaken = "127.0.0.1:" + std::to_string(server.Port());
  for (const std::string& strAddress : {strTaken, std::string("x")}) {
    CServer other(&Answer);
    EXPECT_EQ(-1, other.Bind(strAddress.c_str())) << strAddress;
    other.Close();
  }
}

TEST_F(ServerTest, LeavesNothingOpenOnceItIsClosed) {
  CLentText::Prepare();  // the process's, not a server's
  const size_t nBefore = OpenDescriptors();
  for (int i = 0; i < 2; ++i) {
    auto pServer = std::make_unique<CTestServer>(&Answer);
    CTestClient a(*pServer), b(*pServer);
    a.Send(Get("/a") + "GET /");
    a.Await(4);
    pServer.reset();
    EXPECT_TRUE(a.IsOver());
    EXPECT_TRUE(b.IsOver());
  }
  EXPECT_EQ(nBefore, OpenDescriptors());
}

}  // namespace
