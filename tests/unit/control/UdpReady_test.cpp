// How the socket handles announced datagrams: many, or none after all.
#include <gtest/gtest.h>
#include <sys/select.h>

#include <cstdlib>
#include <string>

#include "control/UdpCtrlSocket.h"
#include "tests/unit/Util/Printed.h"
#include "tests/unit/control/FakeDevice.h"

namespace {

// How many announcements of this thread's select are faked; negative: all of them.
thread_local int t_nMadeUp = 0;

// Like a datagram with a bad checksum: announced, and then not there.
TEST(UdpReady, NeverWaitsForADatagramThatIsNotThere) {
  CFakeDevice device;
  CUdpCtrlSocket sock("127.0.0.1", device.Port(), 0, 1, "lo");
  ASSERT_EQ(0, sock.SendDataToHost("request", 7));
  ASSERT_EQ("request", device.Receive());
  char szBuf[16];
  int nLen = sizeof(szBuf);
  t_nMadeUp = 1;
  EXPECT_EQ(-1, sock.RecvDataFromHost(szBuf, nLen, 10));
  // The exchange fails, but the next one finds its reply.
  t_nMadeUp = 2;
  ASSERT_EQ(0, sock.SendDataToHost("again", 5));
  EXPECT_EQ(0, t_nMadeUp);
  ASSERT_EQ("again", device.Receive());
  device.Send("reply");
  EXPECT_EQ(0, sock.RecvDataFromHost(szBuf, nLen, 10));
  EXPECT_EQ("reply", std::string(szBuf, static_cast<size_t>(nLen)));
}

TEST(UdpReady, SendsInTheEndWhateverIsAnnounced) {
  CFakeDevice device;
  CUdpCtrlSocket sock("127.0.0.1", device.Port(), 0, 1, "lo");
  t_nMadeUp = -1;
  EXPECT_EQ(0, sock.SendDataToHost("request", 7));
  t_nMadeUp = 0;
  EXPECT_EQ("request", device.Receive());
}

// As many as a receive buffer holds.
TEST(UdpReady, DiscardsHundredsOfStaleDatagrams) {
  CFakeDevice device;
  CUdpCtrlSocket sock("127.0.0.1", device.Port(), 0, 1, "lo");
  ASSERT_EQ(0, sock.SendDataToHost("request", 7));
  ASSERT_EQ("request", device.Receive());
  for (int i = 0; i < 200; ++i) device.Send("stale " + std::to_string(i));
  ASSERT_EQ(0, sock.SendDataToHost("again", 5));
  ASSERT_EQ("again", device.Receive());
  device.Send("reply");
  char szBuf[16];
  int nLen = sizeof(szBuf);
  EXPECT_EQ(0, sock.RecvDataFromHost(szBuf, nLen, 10));
  EXPECT_EQ("reply", std::string(szBuf, static_cast<size_t>(nLen)));
}

}  // namespace

// Linked in place of select (--wrap).
extern "C" int __real_select(int nCount, fd_set* pRead, fd_set* pWrite, fd_set* pExcept,
                             timeval* pTimeout);
extern "C" int __wrap_select(int nCount, fd_set* pRead, fd_set* pWrite, fd_set* pExcept,
                             timeval* pTimeout);
int __wrap_select(int nCount, fd_set* pRead, fd_set* pWrite, fd_set* pExcept, timeval* pTimeout) {
  if (t_nMadeUp == 0) return __real_select(nCount, pRead, pWrite, pExcept, pTimeout);
  if (t_nMadeUp > 0) --t_nMadeUp;
  return 1;
}
