// One client and its connection, from the first byte to the last.
#include "CBB/Http/Connection.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <memory>
#include <string>

#include "tests/unit/Http/Loopback.h"

namespace {

using testing::EndsWith;
using testing::StartsWith;

constexpr char kHead[] = "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\n";

std::shared_ptr<const std::string> g_pText;
int g_nFile = -1;
CConnection* g_pServed = nullptr;

// Replies according to the path: with path and body in angle brackets, or as the path says.
void Answer(mg_connection* pConn, int nEvent, void* pData) {
  if (nEvent != MG_EV_HTTP_REQUEST) return;
  const auto& msg = *static_cast<http_message*>(pData);
  const std::string strPath(msg.uri.p, msg.uri.len);
  CConnection& connection = CConnection::Of(*pConn);
  g_pServed = &connection;
  if (strPath == "/nothing") return;
  if (strPath == "/head") {
    mg_printf(pConn, "%stext", kHead);
  } else if (strPath == "/text") {
    mg_printf(pConn, "%s", kHead);
    connection.SetBody(CBody(g_pText, 1, g_pText->size() - 1));
  } else if (strPath == "/file") {
    struct stat st {};
    fstat(g_nFile, &st);
    mg_printf(pConn, "%s", kHead);
    connection.SetBody(CBody(dup(g_nFile), 1, st.st_size - 1, st.st_ctim));
  } else {
    mg_printf(pConn, "<%s %.*s>", strPath.c_str(), static_cast<int>(msg.body.len), msg.body.p);
  }
  if (strPath == "/last") pConn->flags |= MG_F_SEND_AND_CLOSE;
}

std::string Get(const std::string& strPath, const std::string& strFields = "") {
  return "GET " + strPath + " HTTP/1.1\r\n" + strFields + "\r\n";
}

class ConnectionTest : public testing::Test {
 protected:
  // After a request that was answered: the server has read only this part of the next one.
  void SendPart(CTestClient& client, const std::string& strPart) {
    client.Send(Get("/a"));
    client.Await(5);
    client.Send(strPart);
    m_server.Poll();
  }

  CTestServer m_server{&Answer};
};

TEST_F(ConnectionTest, AnswersWhatArrivedWholeBeforeItCloses) {
  const struct {
    std::string strBytes;
    const char* pszReceived;
  } rows[] = {
      {"", ""},
      {"GET / HTTP", ""},
      {Get("/a"), "</a >"},
      {"\r\n\r\n" + Get("/a") + "\r\n" + Get("/b") + "\r\n", "</a ></b >"},
      {Get("/a") + Get("/b") + "GET /c", "</a ></b >"},
      {"POST /a HTTP/1.1\r\nContent-Length: 3\r\n\r\nb=1" + Get("/c"), "</a b=1></c >"},
      {"POST /a HTTP/1.1\r\nContent-Length: 4\r\n\r\nb=1", ""},
      {"POST /a HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nb=1\r\n0\r\n\r\n" + Get("/c"),
       "</a b=1></c >"},
      {Get("/nothing") + Get("/a"), "</a >"},
      // Nothing may follow a reply that closes.
      {Get("/a", "Connection: close\r\n") + Get("/b"), "</a >"},
      {"GET /a HTTP/1.0\r\n\r\n" + Get("/b"), "</a >"},
      {"GET /a HTTP/1.0\r\nConnection: keep-alive\r\n\r\n" + Get("/b"), "</a ></b >"},
      {Get("/last") + Get("/b"), "</last >"},
      // A reply to HEAD ends with its head.
      {"HEAD /head HTTP/1.1\r\n\r\n" + Get("/a"),
       "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\n</a >"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.pszReceived, Exchange(m_server, row.strBytes)) << row.strBytes;
    m_server.PollUntil([&] { return m_server.Connections() == 0; });
    for (size_t nCut = 1; nCut < row.strBytes.size(); nCut += 5) {
      CTestClient client(m_server);
      client.SendAll(std::string_view(row.strBytes).substr(0, nCut));
      m_server.Poll();
      client.SendAll(std::string_view(row.strBytes).substr(nCut));
      client.End();
      EXPECT_EQ(row.pszReceived, client.AwaitEnd()) << row.strBytes << "\ncut at " << nCut;
    }
  }
}

TEST_F(ConnectionTest, StaysOpenBetweenRequests) {
  CTestClient client(m_server);
  std::string strAll;
  for (int i = 0; i < 5; ++i) {
    client.Send(Get("/a"));
    EXPECT_EQ(strAll += "</a >", client.Await(strAll.size() + 5));
  }
  EXPECT_FALSE(client.IsOver());
}

// Else it would vanish from the middle of a request.
TEST_F(ConnectionTest, ReadsAnUrgentByteAsAnyOther) {
  CTestClient client(m_server);
  client.Send("GET /");
  client.SendUrgent('a');
  client.Send(" HTTP/1.1\r\n\r\n");
  EXPECT_EQ("</a >", client.Await(5));
}

TEST_F(ConnectionTest, TakesNothingFromASocketThatHasNothing) {
  CTestClient client(m_server);
  SendPart(client, "POST /b HTTP/1.1\r\nContent-Length: 3\r\n\r\nc");
  g_pServed->OnReadable();
  client.Send("=1");
  EXPECT_EQ("</a ></b c=1>", client.Await(13));
}

TEST_F(ConnectionTest, HoldsWhatHasArrivedAndNoMore) {
  CTestClient client(m_server);
  SendPart(client, "POST /b HTTP/1.1\r\nContent-Length: 900\r\n\r\n");
  const size_t nBefore = g_pServed->Held();
  client.Send(std::string(500, 'c'));
  m_server.Poll();
  EXPECT_EQ(nBefore + 500, g_pServed->Held());
}

TEST_F(ConnectionTest, RefusesBehindTheRepliesOfWhatWasGood) {
  const std::string strReceived = Exchange(m_server, Get("/a") + "BAD\r\n\r\n" + Get("/b"));
  EXPECT_THAT(strReceived, StartsWith("</a >HTTP/1.1 400 Bad Request\r\n"));
  EXPECT_THAT(strReceived, EndsWith("Connection: close\r\nContent-Type: text/plain\r\n"
                                    "Content-Length: 11\r\n\r\nBad Request"));
}

// Closing while bytes arrive would reset the connection, and the client would lose the reply.
TEST_F(ConnectionTest, LetsAClientReadTheLastReplyWhileItSends) {
  for (const std::string& strFirst :
       {Get("/a", "Connection: close\r\n"), std::string("POST / HTTP/1.1\r\n\r\n")}) {
    CTestClient client(m_server);
    client.SendAll(strFirst);
    client.SendAll(std::string(4U << 20, 'x'));
    EXPECT_THAT(client.AwaitEnd(), testing::AnyOf("</a >", EndsWith("Length Required")));
    EXPECT_FALSE(client.IsBroken());
    EXPECT_EQ(1U, m_server.Connections());
    client.End();
    m_server.PollUntil([&] { return m_server.Connections() == 0; });
  }
}

TEST_F(ConnectionTest, ClosesInTheEndOnAClientThatStays) {
  CTestClient client(m_server);
  client.Send(Get("/a", "Connection: close\r\n"));
  client.AwaitEnd();
  EXPECT_EQ(1U, m_server.Connections());
  m_server.PollUntil([&] { return m_server.Connections() == 0; });
}

// Whatever an earlier call has left behind as its error.
TEST_F(ConnectionTest, DropsWhatComesBehindTheLastReply) {
  CTestClient client(m_server);
  client.Send(Get("/a", "Connection: close\r\n"));
  client.AwaitEnd();
  for (int i = 0; i < 3; ++i) {
    client.Send("x");
    errno = 0;
    m_server.Poll();
  }
  EXPECT_EQ(1U, m_server.Connections());
}

TEST_F(ConnectionTest, HoldsNothingOfWhatComesBehindTheLastReply) {
  CTestClient client(m_server);
  client.Send(Get("/a", "Connection: close\r\n"));
  client.AwaitEnd();
  client.SendAll(std::string(kMaxHeldBytes + 1, 'x'));
  for (size_t i = 0; i <= kMaxHeldBytes / MG_TCP_IO_SIZE; ++i) m_server.Poll();
  EXPECT_EQ(1U, m_server.Connections());
}

TEST_F(ConnectionTest, AsksOnceForABodyThatAwaitsASign) {
  const std::string strSign = "HTTP/1.1 100 Continue\r\n\r\n";
  const std::string strHead =
      "POST /a HTTP/1.1\r\nExpect: 100-continue\r\nContent-Length: 3\r\n\r\n";
  CTestClient client(m_server);
  for (int i = 0; i < 2; ++i) {
    const std::string strBefore = client.Received();
    client.Send(strHead);
    EXPECT_EQ(strBefore + strSign, client.Await(strBefore.size() + strSign.size()));
    for (const char* pszPart : {"b", "=", "1"}) {
      client.Send(pszPart);
      m_server.Poll();
    }
    EXPECT_EQ(strBefore + strSign + "</a b=1>", client.Await(strBefore.size() + 33));
  }
}

TEST_F(ConnectionTest, DoesNotAskForABodyThatIsThere) {
  for (const char* pszVersion : {"1.0", "1.1"}) {
    const std::string strHead = std::string("POST /a HTTP/") + pszVersion +
                                "\r\nExpect: 100-continue\r\nContent-Length: 3\r\n\r\n";
    EXPECT_EQ("</a b=1>", Exchange(m_server, strHead + "b=1")) << pszVersion;
  }
  EXPECT_THAT(Exchange(m_server, Get("/a", "Expect: much\r\n")),
              StartsWith("HTTP/1.1 417 Expectation Failed\r\n"));
}

TEST_F(ConnectionTest, SendsATextBehindTheHead) {
  g_pText = std::make_shared<std::string>(".text");
  EXPECT_EQ(std::string(kHead) + "text</a >", Exchange(m_server, Get("/text") + Get("/a")));
  const std::string strLong = std::string(3U << 20, 'x') + "end";
  g_pText = std::make_shared<std::string>("." + strLong);
  EXPECT_EQ(kHead + strLong, Exchange(m_server, Get("/text")));
}

uint64_t NowMs() {
  using std::chrono::milliseconds;
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<uint64_t>(std::chrono::duration_cast<milliseconds>(now).count());
}

stPlace g_place;

void NotePlace(mg_connection* pConn, int nEvent, void* /*pData*/) {
  if (nEvent == MG_EV_HTTP_REQUEST) g_place = CConnection::Of(*pConn).Place(NowMs() + 60000);
}

// A minute from now on.
TEST(ConnectionPlace, GrowsOldFromTheStartAndFromTheLastRequest) {
  constexpr uint64_t kMostMs = 80000;
  CTestServer server(&NotePlace);
  CTestClient client(server);
  uint64_t nLastUse = 0;
  for (int i = 0; i < 2; ++i) {
    for (const uint64_t nNow = NowMs(); NowMs() < nNow + 2;) continue;
    client.Send(Get("/nothing"));
    server.Poll();
    EXPECT_TRUE(g_place.bServed);
    EXPECT_LE(60000U, g_place.nUnusedMs);
    EXPECT_LT(g_place.nUnusedMs, g_place.nAgeMs);
    EXPECT_GT(kMostMs, g_place.nAgeMs);
    EXPECT_LT(nLastUse, g_place.nLastUse);
    nLastUse = g_place.nLastUse;
  }
}

class FileBodyTest : public ConnectionTest {
 protected:
  FileBodyTest() {
    g_nFile = open("/tmp", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    Append("." + m_strText);
  }
  ~FileBodyTest() override { close(g_nFile); }

  static void Append(const std::string& strText) {
    EXPECT_EQ(static_cast<ssize_t>(strText.size()), write(g_nFile, strText.data(), strText.size()));
  }

  const std::string m_strText = std::string(3U << 20, 'x') + "end";
};

TEST_F(FileBodyTest, IsSentBehindTheHead) {
  EXPECT_EQ(kHead + m_strText + "</a >", Exchange(m_server, Get("/file") + Get("/a")));
}

TEST_F(FileBodyTest, ReachesAClientThatSendsNoMoreMeanwhile) {
  for (const char* pszFields : {"", "Connection: close\r\n"}) {
    CTestClient client(m_server, 4096);
    client.Send(Get("/file", pszFields));
    client.Await(1);
    client.End();
    errno = 0;  // whatever an earlier call has left behind
    m_server.Poll();
    EXPECT_EQ(kHead + m_strText, client.AwaitEnd()) << pszFields;
    EXPECT_FALSE(client.IsBroken());
  }
}

TEST_F(FileBodyTest, EndsTheConnectionOnceTheFileHasChanged) {
  CTestClient client(m_server, 4096);
  client.Send(Get("/file") + Get("/a"));
  client.Await(1);
  Append("more");
  EXPECT_LT(client.AwaitEnd().size(), m_strText.size());
  EXPECT_EQ(0U, m_server.Connections());
}

}  // namespace
