#include "control/UdpCtrlSocket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/unit/Util/NoMemory.h"
#include "tests/unit/Util/Printed.h"
#include "tests/unit/control/FakeDevice.h"

namespace {

using testing::MatchesRegex;

// A socket towards the fake device that has sent one request, which the device has received.
class UdpCtrlSocketTest : public testing::Test {
 protected:
  UdpCtrlSocketTest() : m_sock("127.0.0.1", m_device.Port(), 0, 1, "lo") {}
  void SetUp() override {
    ASSERT_EQ(0, m_sock.SendDataToHost("request", 7));
    ASSERT_EQ("request", m_device.Receive());
  }

  // Receives with the given capacity; the buffer shows '#' where nothing was written.
  int Receive(int nRoom, int nTimeoutSec = 10) {
    m_strBuf.assign(70000, '#');
    m_nLen = nRoom;
    int nRet = 0;
    m_strPrinted =
        Printed([&] { nRet = m_sock.RecvDataFromHost(m_strBuf.data(), m_nLen, nTimeoutSec); });
    return nRet;
  }
  void ExpectUntouched(int nRoom) const {
    EXPECT_EQ(nRoom, m_nLen);
    EXPECT_EQ(std::string::npos, m_strBuf.find_first_not_of('#'));
  }
  // "[destination  VS sender], port[destination VS sender]" of the traces.
  std::string Peers(const char* pszFrom, int nFromPort) const {
    return std::string("[127.0.0.1  VS ") + pszFrom + "], port[" + std::to_string(m_device.Port()) +
           " VS " + std::to_string(nFromPort) + "]";
  }

  CFakeDevice m_device;
  CUdpCtrlSocket m_sock;
  std::string m_strBuf;
  std::string m_strPrinted;
  int m_nLen = 0;
};

constexpr char kGotData[] = "CUdpCtrlSocket::RecvDataFromHost,  get data from";

TEST_F(UdpCtrlSocketTest, SendsFromTheAddressOfItsInterface) {
  EXPECT_EQ(htonl(INADDR_LOOPBACK), m_device.Peer().sin_addr.s_addr);
}

TEST_F(UdpCtrlSocketTest, ReceivesAReplyWithoutTerminator) {
  m_device.Send("reply");
  EXPECT_EQ(0, Receive(100));
  EXPECT_EQ(5, m_nLen);
  EXPECT_EQ("reply##", m_strBuf.substr(0, 7));
  EXPECT_EQ(kGotData + Peers("127.0.0.1", m_device.Port()) + ",len[5].\n", m_strPrinted);
}

TEST_F(UdpCtrlSocketTest, AcceptsTheRightPortOfAnotherHost) {
  m_device.SendFrom("127.0.0.2", m_device.Port(), "elsewhere");
  EXPECT_EQ(0, Receive(100));
  EXPECT_EQ("elsewhere", m_strBuf.substr(0, 9));
  EXPECT_EQ(kGotData + Peers("127.0.0.2", m_device.Port()) + ",len[9].\n", m_strPrinted);
}

TEST_F(UdpCtrlSocketTest, RefusesAnotherPort) {
  const CFakeDevice other;
  m_device.SendFrom("127.0.0.2", other.Port(), "stranger");
  EXPECT_EQ(-1, Receive(100));
  ExpectUntouched(100);
  EXPECT_EQ("CUdpCtrlSocket::RecvDataFromHost, failed, get data peer net info not match" +
                Peers("127.0.0.2", other.Port()) + ".\n",
            m_strPrinted);
}

TEST_F(UdpCtrlSocketTest, RefusesAReplyBeyondTheRoom) {
  m_device.Send("123456");
  EXPECT_EQ(-1, Receive(5));
  ExpectUntouched(5);
  EXPECT_EQ(kGotData + Peers("127.0.0.1", m_device.Port()) + ", too long len[6 VS 5].\n",
            m_strPrinted);
}

TEST_F(UdpCtrlSocketTest, AcceptsAReplyThatFillsTheRoom) {
  m_device.Send("12345");
  EXPECT_EQ(0, Receive(5));
  EXPECT_EQ("12345#", m_strBuf.substr(0, 6));
}

TEST_F(UdpCtrlSocketTest, CutsADatagramAtTheWorkingBuffer) {
  m_device.Send(std::string(30000, 'a') + std::string(10000, 'b'));
  EXPECT_EQ(0, Receive(40000));
  EXPECT_EQ(30000, m_nLen);
  EXPECT_EQ(std::string(30000, 'a') + "#", m_strBuf.substr(0, 30001));
}

TEST_F(UdpCtrlSocketTest, TakesAnEmptyDatagramForAFailure) {
  m_device.Send("");
  EXPECT_EQ(-1, Receive(100));
  ExpectUntouched(100);
  EXPECT_EQ("", m_strPrinted);
}

TEST_F(UdpCtrlSocketTest, FailsWithoutMemoryForTheWorkingBuffer) {
  m_device.Send("reply");
  char szBuf[8] = "before";
  int nLen = sizeof(szBuf);
  const CNoMemory noMemory;
  EXPECT_EQ(-1, m_sock.RecvDataFromHost(szBuf, nLen, 10));
  EXPECT_STREQ("before", szBuf);
}

TEST_F(UdpCtrlSocketTest, TimesOutSilently) {
  for (const int nTimeoutSec : {0, 1}) {
    EXPECT_EQ(-2, Receive(100, nTimeoutSec));
    ExpectUntouched(100);
    EXPECT_EQ("", m_strPrinted);
  }
}

TEST_F(UdpCtrlSocketTest, DiscardsWhatArrivedBeforeTheRequest) {
  for (int i = 0; i < 20; ++i) m_device.Send("late reply " + std::to_string(i));
  m_device.Send("");
  ASSERT_EQ(0, m_sock.SendDataToHost("again", 5));
  EXPECT_EQ(-2, Receive(100, 0));
  EXPECT_EQ("again", m_device.Receive());
  m_device.Send("timely");
  EXPECT_EQ(0, Receive(100));
  EXPECT_EQ("timely", m_strBuf.substr(0, 6));
}

TEST_F(UdpCtrlSocketTest, SendsAWholeBinaryDatagram) {
  const std::string strData = std::string("a\0b", 3) + std::string(60000, 'x');
  ASSERT_EQ(0, m_sock.SendDataToHost(strData.data(), static_cast<int>(strData.size())));
  EXPECT_EQ(strData, m_device.Receive());
}

TEST_F(UdpCtrlSocketTest, ReportsADatagramThatIsTooLong) {
  const std::string strData(70000, 'x');
  EXPECT_EQ("CUdpCtrlSocket::SendData2Wifi, send data to [0x100007f:" +
                std::to_string(m_device.Port()) + "][len:70000], failed, err:Message too long.\n",
            Printed([&] { EXPECT_EQ(-1, m_sock.SendDataToHost(strData.data(), 70000)); }));
}

TEST_F(UdpCtrlSocketTest, OpensOnce) {
  EXPECT_THAT(Printed([&] { EXPECT_EQ(0, m_sock.OpenCtrlSocket()); }),
              MatchesRegex("CUdpCtrlSocket::OpenCtrlSocket already created socket:[0-9]+\\.\n"));
}

TEST_F(UdpCtrlSocketTest, ClosedItFailsInTheCallsUntilOpenedAgain) {
  EXPECT_EQ(0, m_sock.CloseCtrlSocket());
  EXPECT_EQ(0, m_sock.CloseCtrlSocket());
  EXPECT_EQ("CUdpCtrlSocket::SendData2Wifi, send data to [0x100007f:" +
                std::to_string(m_device.Port()) + "][len:4], failed, err:Bad file descriptor.\n",
            Printed([&] { EXPECT_EQ(-1, m_sock.SendDataToHost("lost", 4)); }));
  EXPECT_EQ(-1, Receive(100));
  ExpectUntouched(100);
  EXPECT_EQ("CUdpCtrlSocket::RecvDataFromHost , get net ctrl select failed!\n", m_strPrinted);
  EXPECT_EQ(0, m_sock.OpenCtrlSocket());
  EXPECT_EQ(0, m_sock.SendDataToHost("sent", 4));
  EXPECT_EQ("sent", m_device.Receive());
}

TEST(CUdpCtrlSocket, BindsTheLocalPortEachTimeAnew) {
  uint16_t usPort = 0;
  {
    const CFakeDevice free;
    usPort = free.Port();
  }
  CFakeDevice device;
  for (int i = 0; i < 3; ++i) {
    CUdpCtrlSocket sock("127.0.0.1", device.Port(), usPort, 1, "lo");
    ASSERT_EQ(0, sock.SendDataToHost("x", 1));
    EXPECT_EQ("x", device.Receive());
    EXPECT_EQ(usPort, ntohs(device.Peer().sin_port));
  }
}

TEST(CUdpCtrlSocket, ReportsATakenPortAndFailsToSend) {
  const CFakeDevice taken;
  EXPECT_EQ(
      "CUdpCtrlSocketSvr::OpenSvrSocket, Server Bind Failed. Error:Address already in use\n"
      "CUdpCtrlSocket::SendData2Wifi, send data to [0x100007f:9][len:1], failed, err:Bad file "
      "descriptor.\n",
      Printed([&] {
        CUdpCtrlSocket sock("127.0.0.1", 9, taken.Port(), 1, "lo");
        EXPECT_EQ(-1, sock.SendDataToHost("x", 1));
      }));
}

TEST(CUdpCtrlSocket, OpenReportsATakenPortWithMinus1) {
  const CFakeDevice taken;
  Printed([&] {
    CUdpCtrlSocket sock("127.0.0.1", 9, taken.Port(), 1, "lo");
    EXPECT_EQ(-1, sock.OpenCtrlSocket());
  });
}

TEST(CUdpCtrlSocket, BindsAnyAddressWhenTheInterfaceHasNone) {
  CFakeDevice device;
  CUdpCtrlSocket sock("127.0.0.1", device.Port(), 0, 1, "nosuchif0");
  ASSERT_EQ(0, sock.SendDataToHost("x", 1));
  ASSERT_EQ("x", device.Receive());
  device.SendFrom("127.0.0.3", device.Port(), "y");
  char szBuf[8];
  int nLen = sizeof(szBuf);
  EXPECT_EQ(0, sock.RecvDataFromHost(szBuf, nLen, 10));
}

TEST(CUdpCtrlSocket, CutsTextsThatDoNotFit) {
  CFakeDevice device;
  // The first 31 characters are an octal 127.0.0.1; with one more the text is not an address.
  const std::string strIp = "127.0.0." + std::string(22, '0') + "1" + "9";
  CUdpCtrlSocket sock(strIp.c_str(), device.Port(), 0, 1, "a name beyond eleven characters");
  ASSERT_EQ(0, sock.SendDataToHost("x", 1));
  EXPECT_EQ("x", device.Receive());
}

// Uses up every descriptor below select's limit.
class CDescriptorHoard {
 public:
  CDescriptorHoard() {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    m_old = limit;
    limit.rlim_cur = FD_SETSIZE + 64 < limit.rlim_max ? FD_SETSIZE + 64 : limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    while (m_held.empty() || (m_held.back() >= 0 && m_held.back() < FD_SETSIZE))
      m_held.push_back(open("/dev/null", O_RDONLY));
  }
  ~CDescriptorHoard() {
    for (const int nFd : m_held) close(nFd);
    setrlimit(RLIMIT_NOFILE, &m_old);
  }
  bool IsComplete() const { return m_held.back() >= FD_SETSIZE; }

 private:
  std::vector<int> m_held;
  rlimit m_old{};
};

TEST(CUdpCtrlSocket, RefusesADescriptorThatFitsNoSet) {
  const CDescriptorHoard hoard;
  if (!hoard.IsComplete()) GTEST_SKIP() << "not enough descriptors allowed";
  EXPECT_EQ(
      "CUdpCtrlSocket::OpenCtrlSocket, Create Ctrl Socket Failed.Error:Too many open files\n"
      "CUdpCtrlSocket::SendData2Wifi, send data to [0x100007f:9][len:1], failed, err:Bad file "
      "descriptor.\n",
      Printed([] {
        CUdpCtrlSocket sock("127.0.0.1", 9, 0, 1, "lo");
        EXPECT_EQ(-1, sock.SendDataToHost("x", 1));
      }));
}

}  // namespace
