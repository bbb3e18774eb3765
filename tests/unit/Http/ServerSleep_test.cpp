// The server sleeps when there is nothing to do: what clients leave half done does not wake it.
#include <gtest/gtest.h>
#include <sys/epoll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <optional>
#include <string>

#include "tests/unit/Http/Loopback.h"

extern "C" int __real_epoll_wait(int nPoll, epoll_event* pEvents, int nMost, int nTimeoutMs);
extern "C" int __wrap_epoll_wait(int nPoll, epoll_event* pEvents, int nMost, int nTimeoutMs);

namespace {

bool g_bSlept = false;  // the last wait took all of its time, and it was some

constexpr int kWaitMs = 5;
constexpr size_t kLong = 4U << 20;  // more than fits the sockets

void Answer(mg_connection* pConn, int nEvent, void* /*pData*/) {
  static const std::string s_strReply(kLong, 'x');
  if (nEvent != MG_EV_HTTP_REQUEST) return;
  mg_send(pConn, s_strReply.data(), static_cast<int>(s_strReply.size()));
}

// Some waits may still find what is on its way; a server that is kept awake never sleeps twice.
bool ComesToRest(CTestServer& server) {
  int nSlept = 0;
  for (int nWait = 0; nWait < 100 && nSlept < 2; ++nWait) {
    server.Poll(kWaitMs);
    nSlept = g_bSlept ? nSlept + 1 : 0;
  }
  return nSlept == 2;
}

constexpr char kGet[] = "GET / HTTP/1.1\r\n\r\n";

TEST(ServerSleep, EndsWhenThereIsSomethingToDo) {
  CTestServer server(&Answer);
  CTestClient client(server);
  EXPECT_TRUE(ComesToRest(server));
  client.Send("x");
  server.Poll(kWaitMs);
  EXPECT_FALSE(g_bSlept);
  EXPECT_TRUE(ComesToRest(server));
}

TEST(ServerSleep, LastsBesideAClientThat) {
  const struct {
    const char* pszSentence;
    void (*pfnDoes)(CTestClient&);
  } rows[] = {
      {"sends half a head", [](CTestClient& client) { client.Send("GET / HTTP"); }},
      {"asks and does not read", [](CTestClient& client) { client.Send(kGet); }},
      {"asks and asks again", [](CTestClient& client) { client.Send(std::string(kGet) + kGet); }},
      {"asks and sends an urgent byte",
       [](CTestClient& client) {
         client.Send(kGet);
         client.SendUrgent('x');
       }},
      {"asks and ends",
       [](CTestClient& client) {
         client.Send(kGet);
         client.End();
       }},
      {"asks twice and ends",
       [](CTestClient& client) {
         client.Send(std::string(kGet) + kGet);
         client.End();
       }},
      {"asks for a reply that closes, and ends",
       [](CTestClient& client) {
         client.Send("GET / HTTP/1.1\r\nConnection: close\r\n\r\n");
         client.End();
       }},
      {"stays behind a refusal", [](CTestClient& client) { client.Send("x\r\n\r\n"); }},
  };
  for (const auto& row : rows) {
    CTestServer server(&Answer);
    CTestClient client(server, 4096);
    row.pfnDoes(client);
    EXPECT_TRUE(ComesToRest(server)) << row.pszSentence;
    EXPECT_EQ(1U, server.Connections()) << row.pszSentence;
    CTestClient other(server);
    other.Send(kGet);
    EXPECT_NE("", other.Await(1)) << row.pszSentence;
  }
}

// Room for one more descriptor of the process while it lives.
class CLastDescriptor {
 public:
  CLastDescriptor() {
    getrlimit(RLIMIT_NOFILE, &m_before);
    const int nNext = dup(0);
    close(nNext);
    rlimit limit = m_before;
    limit.rlim_cur = static_cast<rlim_t>(nNext) + 1;
    setrlimit(RLIMIT_NOFILE, &limit);
  }
  ~CLastDescriptor() { setrlimit(RLIMIT_NOFILE, &m_before); }
  CLastDescriptor(const CLastDescriptor&) = delete;
  CLastDescriptor& operator=(const CLastDescriptor&) = delete;

 private:
  rlimit m_before{};
};

// The listener would wake it as long as the client waits.
TEST(ServerSleep, LastsWhileNobodyCanBeAccepted) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer itself needs descriptors to look at a virtual call";
#endif
  CTestServer server(&Answer);
  std::optional<CTestClient> client;
  {
    const CLastDescriptor last;
    client.emplace(server);
    EXPECT_TRUE(ComesToRest(server));
    EXPECT_EQ(0U, server.Connections());
  }
  server.PollUntil([&] { return server.Connections() == 1; });
}

}  // namespace

// Linked in place of epoll_wait (--wrap).
extern "C" int __wrap_epoll_wait(int nPoll, epoll_event* pEvents, int nMost, int nTimeoutMs) {
  const int nEvents = __real_epoll_wait(nPoll, pEvents, nMost, nTimeoutMs);
  g_bSlept = nEvents == 0 && nTimeoutMs > 0;
  return nEvents;
}
