#include "CBB/Http/Events.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "CBB/Http/Library.h"
#include "tests/unit/Http/WebRoot.h"

namespace {

// Records the events, and reads what has arrived.
class CNotes : public CWatcher {
 public:
  void Accepted(mg_connection& conn) override {
    m_conns.push_back(&conn);
    Note("accepted");
  }
  void CannotAccept() override { Note("cannot accept"); }
  void Readable(mg_connection& conn) override {
    Note("readable");
    if (m_pClosing == &conn) LibraryClose(m_conns[1]);
    m_pClosing = nullptr;
    char bytes[16];
    m_nReceived[&conn] += recv(conn.sock, bytes, sizeof(bytes), 0);
  }
  void Writable(mg_connection& /*conn*/) override { Note("writable"); }
  void Broken(mg_connection& /*conn*/) override { Note("broken"); }

  std::set<std::string> Take() {
    std::set<std::string> notes;
    notes.swap(m_notes);
    return notes;
  }

  std::vector<mg_connection*> m_conns;
  const mg_connection* m_pClosing = nullptr;  // closes the second one when it is readable
  std::map<const mg_connection*, ssize_t> m_nReceived;

 private:
  void Note(const char* pszNote) { m_notes.insert(pszNote); }

  std::set<std::string> m_notes;
};

void Ignore(mg_connection* /*pConn*/, int /*nEvent*/, void* /*pData*/) {}

using Notes = std::set<std::string>;

class EventsTest : public testing::Test {
 protected:
  EventsTest() {
    m_events.InitManager(m_mgr);
    m_pListener = mg_bind(&m_mgr, "127.0.0.1:0", &Ignore);
    EXPECT_NE(nullptr, m_pListener);
  }
  ~EventsTest() override {
    for (const int nSock : m_socks) close(nSock);
    mg_mgr_free(&m_mgr);
  }
  EventsTest(const EventsTest&) = delete;
  EventsTest& operator=(const EventsTest&) = delete;

  // A client that has connected; its socket.
  int Connect() {
    sockaddr_in address{};
    socklen_t nSize = sizeof(address);
    getsockname(m_pListener->sock, reinterpret_cast<sockaddr*>(&address), &nSize);
    m_socks.push_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    EXPECT_EQ(0, connect(m_socks.back(), reinterpret_cast<sockaddr*>(&address), nSize));
    return m_socks.back();
  }
  // A client that was accepted.
  int Accept() {
    const int nSock = Connect();
    EXPECT_EQ(Notes{"accepted"}, Poll());
    return nSock;
  }
  // Waits until something happens, and returns the events.
  Notes Poll() {
    mg_mgr_poll(&m_mgr, 10000);
    return m_notes.Take();
  }
  // Returns the events that are due now.
  Notes PollOnce() {
    mg_mgr_poll(&m_mgr, 0);
    return m_notes.Take();
  }
  mg_connection& Conn(size_t i = 0) { return *m_notes.m_conns[i]; }
  // The bytes that a connection has received.
  ssize_t Received(size_t i = 0) { return m_notes.m_nReceived[&Conn(i)]; }

  CNotes m_notes;
  CEvents m_events{m_notes};
  mg_mgr m_mgr{};
  mg_connection* m_pListener;
  std::vector<int> m_socks;
};

TEST_F(EventsTest, TellWhatIsWanted) {
  const int nSock = Accept();
  EXPECT_EQ(Notes{}, PollOnce());
  EXPECT_EQ(1, send(nSock, "a", 1, 0));
  EXPECT_EQ(Notes{"readable"}, Poll());
  m_events.Want(Conn(), true, true, false);
  EXPECT_EQ(Notes{"writable"}, Poll());
  EXPECT_EQ(1, send(nSock, "a", 1, 0));
  EXPECT_EQ((Notes{"readable", "writable"}), Poll());
  EXPECT_EQ(2, Received());
}

TEST_F(EventsTest, TellNothingThatIsNotWanted) {
  const int nSock = Accept();
  m_events.Want(Conn(), false, false, true);
  EXPECT_EQ(1, send(nSock, "a", 1, 0));
  const int nOther = Connect();
  EXPECT_EQ(Notes{"accepted"}, Poll());
  EXPECT_EQ(1, send(nOther, "a", 1, 0));
  EXPECT_EQ(Notes{"readable"}, Poll());
  EXPECT_EQ(0, Received(0));
  EXPECT_EQ(1, Received(1));
  // Not exactly: events that were wanted before may still come.
  m_events.Want(Conn(), true, false, true);
  m_events.Want(Conn(), false, false, false);
  EXPECT_EQ(Notes{"readable"}, Poll());
}

TEST_F(EventsTest, TellTheEndOfAStreamAsBytes) {
  const int nSock = Accept();
  shutdown(nSock, SHUT_WR);
  EXPECT_EQ(Notes{"readable"}, Poll());
  EXPECT_EQ(0, Received());
}

TEST_F(EventsTest, TellABreakWhateverIsWanted) {
  const int nSock = Accept();
  m_events.Want(Conn(), false, false, true);
  const linger now = {1, 0};
  setsockopt(nSock, SOL_SOCKET, SO_LINGER, &now, sizeof(now));
  close(nSock);
  m_socks.pop_back();
  EXPECT_EQ(Notes{"broken"}, Poll());
}

TEST_F(EventsTest, TellNothingOfAConnectionThatAnEarlierEventHasClosed) {
  const int nFirst = Accept();
  const int nSecond = Accept();
  m_notes.m_pClosing = &Conn(0);
  EXPECT_EQ(1, send(nFirst, "a", 1, 0));
  shutdown(nSecond, SHUT_WR);
  EXPECT_EQ(Notes{"readable"}, Poll());
  EXPECT_EQ(Notes{}, PollOnce());
}

TEST_F(EventsTest, GiveClientsNumbersAboveTheLowest) {
  Accept();
  EXPECT_LE(32, Conn().sock);
}

TEST_F(EventsTest, TellThatThereIsNoDescriptorForAClient) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer itself needs descriptors to look at a virtual call";
#endif
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  Connect();
  const rlimit low = {3, before.rlim_max};
  setrlimit(RLIMIT_NOFILE, &low);
  EXPECT_EQ(Notes{"cannot accept"}, Poll());
  setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(Notes{"accepted"}, Poll());
}

TEST_F(EventsTest, TellOfManyClientsInAFewPolls) {
  for (int i = 0; i < 200; ++i) Connect();
  while (m_notes.m_conns.size() < 200 && Poll() == Notes{"accepted"}) continue;
  EXPECT_EQ(200U, m_notes.m_conns.size());
  for (const int nSock : m_socks) EXPECT_EQ(1, send(nSock, "a", 1, 0));
  while (PollOnce() == Notes{"readable"}) continue;
  for (size_t i = 0; i < 200; ++i) EXPECT_EQ(1, Received(i));
}

TEST(Events, LeaveNothingOpenOnceTheManagerIsFreed) {
  const size_t nBefore = OpenDescriptors();
  CNotes notes;
  CEvents events(notes);
  mg_mgr mgr{};
  events.InitManager(mgr);
  EXPECT_EQ(nBefore, OpenDescriptors());
  EXPECT_NE(nullptr, mg_bind(&mgr, "127.0.0.1:0", &Ignore));
  EXPECT_EQ(nBefore + 2, OpenDescriptors());
  mg_mgr_free(&mgr);
  EXPECT_EQ(nBefore, OpenDescriptors());
}

}  // namespace
