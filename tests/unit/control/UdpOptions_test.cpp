// The options that the socket sets, and what it does when they are refused.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <string>

#include "control/UdpCtrlSocket.h"
#include "tests/unit/Util/Printed.h"
#include "tests/unit/control/FakeDevice.h"

namespace {

int g_nRefusedOption = -1;

// Makes one socket-level option fail as long as it lives.
class CRefuseOption {
 public:
  explicit CRefuseOption(int nOption) { g_nRefusedOption = nOption; }
  ~CRefuseOption() { g_nRefusedOption = -1; }
};

// The descriptor, which the socket prints when it is opened again.
int Descriptor(CUdpCtrlSocket& sock) {
  const std::string strSaid = Printed([&] { EXPECT_EQ(0, sock.OpenCtrlSocket()); });
  int nSock = -1;
  sscanf(strSaid.c_str(), "CUdpCtrlSocket::OpenCtrlSocket already created socket:%d.", &nSock);
  return nSock;
}

int Option(int nSock, int nOption) {
  int nValue = -1;
  socklen_t nLen = sizeof(nValue);
  EXPECT_EQ(0, getsockopt(nSock, SOL_SOCKET, nOption, &nValue, &nLen));
  return nValue;
}

}  // namespace

// Linked in place of setsockopt (--wrap).
extern "C" int __real_setsockopt(int nSock, int nLevel, int nOption, const void* pValue,
                                 socklen_t nLen);
extern "C" int __wrap_setsockopt(int nSock, int nLevel, int nOption, const void* pValue,
                                 socklen_t nLen);
int __wrap_setsockopt(int nSock, int nLevel, int nOption, const void* pValue, socklen_t nLen) {
  if (nLevel != SOL_SOCKET || nOption != g_nRefusedOption)
    return __real_setsockopt(nSock, nLevel, nOption, pValue, nLen);
  errno = EPERM;
  return -1;
}

TEST(UdpOptions, AreSetWhateverTheBroadcastFlag) {
  int nLimit = 0;
  ASSERT_TRUE(std::ifstream("/proc/sys/net/core/wmem_max") >> nLimit);
  for (const uint8_t ucBroadcast : {uint8_t{0}, uint8_t{1}}) {
    CUdpCtrlSocket sock("127.0.0.1", 9, 0, ucBroadcast, "lo");
    const int nSock = Descriptor(sock);
    ASSERT_GE(nSock, 0);
    EXPECT_EQ(1, Option(nSock, SO_BROADCAST));
    EXPECT_NE(0, Option(nSock, SO_REUSEADDR));
    EXPECT_EQ(2 * std::min(307200, nLimit), Option(nSock, SO_SNDBUF)) << "the system doubles it";
    EXPECT_EQ(0, fcntl(nSock, F_GETFL) & O_NONBLOCK);
  }
}

TEST(UdpOptions, RefusedBroadcastIsReportedAndLeavesTheSocketOpen) {
  CFakeDevice device;
  CUdpCtrlSocket sock("127.0.0.1", device.Port(), 0, 1, "lo");
  sock.CloseCtrlSocket();
  const CRefuseOption refuse(SO_BROADCAST);
  EXPECT_EQ(
      "CUdpCtrlSocket::OpenCtrlSocket, setsockopt broadcast Failed, Error:Operation not "
      "permitted\n",
      Printed([&] { EXPECT_EQ(-1, sock.OpenCtrlSocket()); }));
  EXPECT_EQ(0, sock.SendDataToHost("sent", 4));
  EXPECT_EQ("sent", device.Receive());
}

TEST(UdpOptions, OthersMayBeRefused) {
  for (const int nOption : {SO_REUSEADDR, SO_SNDBUF}) {
    const CRefuseOption refuse(nOption);
    EXPECT_EQ("", Printed([] { CUdpCtrlSocket("127.0.0.1", 9, 0, 1, "lo").CloseCtrlSocket(); }));
  }
}
