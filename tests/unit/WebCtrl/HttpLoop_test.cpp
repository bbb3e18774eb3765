#include "CBB/WebCtrl/HttpLoop.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "CBB/WebCtrl/WebCtrl.h"
#include "tests/unit/WebCtrl/Device.h"
#include "tests/unit/WebCtrl/HttpConn.h"
#include "tests/unit/control/NetSpace.h"

// The loop's failure paths leave the manager as it is; nothing else may leak.
extern "C" const char* __lsan_default_suppressions() { return "leak:RunHttpLoop\n"; }

namespace {

constexpr char kNeedsNetSpace[] = "no private network namespace";
constexpr char kGet[] = "GET /get_cpu_usage HTTP/1.1\r\n\r\n";

size_t CountReplies(const std::string& strSent) {
  size_t nReplies = 0;
  for (std::string strRest = strSent; !strRest.empty(); ++nReplies) {
    strRest = TakeReply(strRest).strRest;
  }
  return nReplies;
}

std::string PostHead(const std::string& strHeaders) {
  return "POST /get_cpu_usage HTTP/1.1\r\n" + strHeaders + "\r\n";
}

TEST(HttpEvent, AnswersWholeRequestsAndNoOthers) {
  const struct {
    std::string strBytes;
    size_t nReplies;         // while the client stays
    size_t nRepliesAtClose;  // once it has gone
  } rows[] = {
      {kGet, 1, 1},
      {std::string(kGet) + kGet, 2, 2},
      {PostHead("Content-Length: 3\r\n") + "a=1", 1, 1},
      {PostHead("Content-Length: 3\r\n") + "a=1" + kGet, 2, 2},
      {PostHead("Content-Length: 0\r\n"), 1, 1},
      {PostHead("Content-Length: 4\r\n") + "a=1", 0, 0},
      {PostHead("Content-Length: 9223372036854775807\r\n") + "a=1", 0, 0},
      {PostHead("Content-Length: 99999999999999999999999\r\n") + "a=1", 0, 0},
      {PostHead("") + "a=1", 0, 1},  // such a body ends with the connection
      {PostHead("Transfer-Encoding: chunked\r\n") + "3\r\na=1\r\n0\r\n\r\n", 1, 1},
      {PostHead("Transfer-Encoding: chunked\r\n") + "3\r\na=1\r\n", 0, 0},
      {PostHead("Transfer-Encoding: chunked\r\n") + "ffffff\r\na=1", 0, 0},
      {PostHead("Content-Length: 4\r\nX: y\r\n"), 0, 0},
  };
  for (const auto& row : rows) {
    CHttpConn conn;
    conn.Receive(row.strBytes);
    EXPECT_EQ(row.nReplies, CountReplies(conn.Sent())) << row.strBytes;
    EXPECT_FALSE(conn.IsClosing()) << row.strBytes;
    conn.Close();
    EXPECT_EQ(row.nRepliesAtClose, CountReplies(conn.Sent())) << row.strBytes;
  }
}

// Half a body without a length is no request, whoever closes the connection around it.
TEST(HttpEvent, TakesNoBrokenConnectionForTheEndOfABody) {
  for (const char* pszBody : {"", "a", "a=1&"}) {
    CHttpConn conn;
    conn.Receive(PostHead("") + pszBody);
    conn.Break();
    EXPECT_EQ("", conn.Sent()) << pszBody;
  }
}

// The library subtracts a negative length from what it takes off its buffer: with minus the head's
// own length it would look at the same request for ever.
TEST(HttpEvent, ClosesOnNegativeContentLength) {
  for (int nLength = -1; nLength >= -200; --nLength) {
    const std::string strHead = PostHead("Content-Length: " + std::to_string(nLength) + "\r\n");
    CHttpConn conn;
    conn.Receive(strHead + kGet);
    conn.Close();
    EXPECT_EQ("", conn.Sent()) << nLength;
  }
}

TEST(HttpEvent, AnswersOneRequestInAPoll) {
  CHttpConn conn;
  conn.Arrive(std::string(kGet) + kGet + kGet);
  conn.Get()->proto_handler(conn.Get(), MG_EV_RECV, nullptr);
  for (size_t nReplies = 1; nReplies <= 3; ++nReplies) {
    EXPECT_EQ(nReplies, CountReplies(conn.Sent()));
    EXPECT_EQ(nReplies < 3, conn.Poll());
  }
}

TEST(HttpEvent, ClosesOnAHeadOf8KiBEvenWhenItComesAtOnce) {
  for (const size_t nHead : {8191U, 8192U, 12000U}) {
    std::string strHead = "GET /get_cpu_usage HTTP/1.1\r\nX: ";
    strHead += std::string(nHead - strHead.size() - 4, 'x') + "\r\n\r\n";
    CHttpConn conn;
    conn.Receive(strHead);
    EXPECT_EQ(nHead > 8191, conn.IsClosing()) << nHead;
    EXPECT_EQ(nHead > 8191, conn.Sent().empty()) << nHead;
  }
}

TEST(HttpEvent, SendsAReplyBeforeItClosesOnWhatIsBrokenBehind) {
  for (const char* pszBroken : {"\r\n\r\n", "GET\r\n\r\n", "\x01"}) {
    CHttpConn conn;
    conn.Receive(std::string(kGet) + pszBroken);
    EXPECT_EQ(1U, CountReplies(conn.Sent()));
    EXPECT_FALSE(conn.IsClosing());
    mbuf_remove(&conn.Get()->send_mbuf, conn.Get()->send_mbuf.len);
    ResumeReceiving(*conn.Get()->mgr);
    EXPECT_TRUE(conn.IsClosing());
  }
}

TEST(HttpEvent, TakesNoLackOfMemoryForTheEndOfABody) {
  CHttpConn conn;
  conn.Receive(PostHead("") + "a=1");
  CloseIdleConnections(*conn.Get()->mgr, 0);
  conn.Close();
  EXPECT_EQ("", conn.Sent());
}

TEST(HttpEvent, KeepsAConnectionThatTheClientHasEndedUntilAllIsAnswered) {
  CHttpConn conn;
  conn.Arrive(std::string(kGet) + kGet + kGet + "GET /");
  conn.Get()->proto_handler(conn.Get(), MG_EV_RECV, nullptr);
  conn.Get()->flags |= MG_F_SEND_AND_CLOSE;
  for (size_t nReplies = 1; nReplies <= 3; ++nReplies) {
    EXPECT_EQ(nReplies, CountReplies(conn.Sent()));
    EXPECT_EQ(nReplies < 3, conn.Poll());
    EXPECT_EQ(0U, conn.Get()->recv_mbuf_limit);
  }
  EXPECT_FALSE(conn.Poll());
  mbuf_remove(&conn.Get()->send_mbuf, conn.Get()->send_mbuf.len);
  EXPECT_FALSE(conn.Poll());
  EXPECT_NE(0U, conn.Get()->flags & MG_F_SEND_AND_CLOSE);
}

TEST(HttpEvent, ClosesOnAClientThatNeverReads) {
  constexpr size_t kMiB = 1024 * 1024;
  CHttpConn conn;
  for (int nPiece = 0; nPiece < 100 && !conn.IsClosing(); ++nPiece) {
    EXPECT_LE(conn.Sent().size(), kMiB + 1024);
    std::string strRequests;
    for (int i = 0; i < 500; ++i) strRequests += kGet;
    conn.Receive(strRequests);
  }
  EXPECT_TRUE(conn.IsClosing());
  EXPECT_GT(conn.Sent().size(), kMiB);
  EXPECT_LE(conn.Sent().size(), kMiB + 1024);
}

TEST(HttpEvent, TakesNoMoreFromAClientInTheSamePoll) {
  CHttpConn conn;
  conn.Arrive("GET /");
  conn.Get()->proto_handler(conn.Get(), MG_EV_RECV, nullptr);
  EXPECT_EQ(0U, conn.Get()->recv_mbuf_limit);
  EXPECT_FALSE(conn.IsClosing());
}

TEST(ResumeReceiving, ClosesOnRequestsBeyondOneMiB) {
  constexpr size_t kMiB = 1024 * 1024;
  mg_connection conns[3] = {};
  mg_mgr mgr{};
  mgr.active_connections = &conns[0];
  conns[0].next = &conns[1];
  conns[1].next = &conns[2];
  conns[1].recv_mbuf.len = kMiB - 1;
  conns[2].recv_mbuf.len = kMiB;
  ResumeReceiving(mgr);
  for (const mg_connection& conn : conns) EXPECT_EQ(kMiB, conn.recv_mbuf_limit);
  EXPECT_EQ(0U, conns[0].flags);
  EXPECT_EQ(0U, conns[1].flags);
  EXPECT_EQ(static_cast<unsigned long>(MG_F_CLOSE_IMMEDIATELY), conns[2].flags);
}

TEST(HttpEvent, KeepsTheNextRequestOutOfTheBody) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    CDevice device([](const std::string&) { return R"(<VariCfgSec Action="" Result="1"/>)"; });
    CWebCtrl::Instance().SetDevice("127.0.0.1", device.Port());
    CHttpConn conn;
    conn.Receive(Post("/set_LangInfo", "strLanguage=CN") + kGet);
    EXPECT_EQ(2U, CountReplies(conn.Sent()));
    EXPECT_EQ(std::vector<std::string>{R"(<VariCfgSec Action="DEVICE_SET"><stDisplay)"
                                       R"( strLanguage="CN" /></VariCfgSec>)"},
              device.Requests());
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

TEST(HttpEvent, PrintsTheTwoSettingsOfIncludeCalls) {
  const struct {
    const char* pszParameter;
    const char* pszPrinted;
  } rows[] = {{"setting1", "value1"}, {"setting2", "value2"}, {"setting3", ""},
              {"SETTING1", ""},       {"setting1 ", ""},      {"", ""}};
  for (const auto& row : rows) {
    CHttpConn conn;
    std::string strParameter = row.pszParameter;
    HttpEvent(conn.Get(), 105, strParameter.data());
    EXPECT_EQ(row.pszPrinted, conn.Sent()) << row.pszParameter;
  }
}

TEST(HttpEvent, IgnoresEveryOtherEvent) {
  CHttpConn conn;
  char szData[] = "setting1";
  for (int nEvent = 0; nEvent < 200; ++nEvent) {
    if (nEvent != 100 && nEvent != 105) HttpEvent(conn.Get(), nEvent, szData);
  }
  EXPECT_EQ("", conn.Sent());
  EXPECT_EQ(0U, conn.Get()->flags);
}

// A manager with a listener and a row of connections, the newest in front, accepted within the same
// second.
class CloseIdleConnectionsTest : public testing::Test {
 protected:
  void Open(size_t nConnections) {
    m_conns.resize(nConnections + 1);
    for (size_t i = 0; i < m_conns.size(); ++i) {
      m_conns[i].next = i + 1 < m_conns.size() ? &m_conns[i + 1] : nullptr;
      m_conns[i].listener = &m_conns.back();
    }
    m_conns.back().listener = nullptr;
    for (size_t i = nConnections; i-- > 0;) HttpEvent(&m_conns[i], MG_EV_ACCEPT, nullptr);
    m_mgr.active_connections = m_conns.data();
  }

  std::vector<size_t> Closed() const {
    std::vector<size_t> closed;
    for (size_t i = 0; i < m_conns.size(); ++i) {
      if ((m_conns[i].flags & MG_F_CLOSE_IMMEDIATELY) != 0) closed.push_back(i);
    }
    return closed;
  }

  mg_mgr m_mgr{};
  std::vector<mg_connection> m_conns;
};

TEST_F(CloseIdleConnectionsTest, Leaves128) {
  Open(128);
  CloseIdleConnections(m_mgr);
  EXPECT_EQ(std::vector<size_t>{}, Closed());
}

TEST_F(CloseIdleConnectionsTest, LeavesAsManyAsItIsTold) {
  Open(3);
  CloseIdleConnections(m_mgr, 2);
  EXPECT_EQ(std::vector<size_t>{2}, Closed());
  CloseIdleConnections(m_mgr, 0);
  EXPECT_EQ((std::vector<size_t>{0, 1, 2}), Closed());
}

TEST_F(CloseIdleConnectionsTest, ClosesTheLongestIdleBeyond128) {
  Open(130);
  HttpEvent(&m_conns[129], MG_EV_RECV, nullptr);
  HttpEvent(&m_conns[127], MG_EV_SEND, nullptr);
  CloseIdleConnections(m_mgr);
  EXPECT_EQ((std::vector<size_t>{126, 128}), Closed());
}

TEST_F(CloseIdleConnectionsTest, TakesNoPollForTraffic) {
  Open(130);
  HttpEvent(&m_conns[129], MG_EV_POLL, nullptr);
  CloseIdleConnections(m_mgr);
  EXPECT_EQ((std::vector<size_t>{128, 129}), Closed());
}

TEST_F(CloseIdleConnectionsTest, CountsNoConnectionThatGoesAnyway) {
  Open(130);
  m_conns[3].flags = m_conns[4].flags = MG_F_CLOSE_IMMEDIATELY;
  CloseIdleConnections(m_mgr);
  EXPECT_EQ((std::vector<size_t>{3, 4}), Closed());
}

TEST_F(CloseIdleConnectionsTest, NeverClosesTheListener) {
  Open(0);
  CloseIdleConnections(m_mgr);
  EXPECT_EQ(std::vector<size_t>{}, Closed());
  Open(500);
  CloseIdleConnections(m_mgr);
  EXPECT_EQ(372U, Closed().size());
  EXPECT_EQ(0U, m_conns.back().flags);
}

std::string ErrorsOfLoop(const char* pszWebRoot) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(-1, RunHttpLoop(pszWebRoot));
  return testing::internal::GetCapturedStderr();
}

TEST(RunHttpLoop, EndsWhenTheWebRootIsMissing) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    EXPECT_EQ("Cannot find web_root directory, exiting\n", ErrorsOfLoop("/no/such/folder"));
    EXPECT_STREQ("/no/such/folder", HttpOptions().document_root);
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

TEST(RunHttpLoop, EndsWhenThePortIsTaken) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    const int nSock = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(80);
    EXPECT_EQ(0, bind(nSock, reinterpret_cast<sockaddr*>(&addr), sizeof(addr)));
    EXPECT_EQ(0, listen(nSock, 1));
    EXPECT_EQ("Cannot bind to 80\n", ErrorsOfLoop("/"));
    close(nSock);
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

}  // namespace
