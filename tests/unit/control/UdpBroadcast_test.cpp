// Broadcasts and the fixed interface name, inside their own namespace.
#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <string>

#include "CBB/Util/NetTool.h"
#include "control/UdpCtrlSocket.h"
#include "tests/unit/Util/Printed.h"
#include "tests/unit/control/FakeDevice.h"
#include "tests/unit/control/NetSpace.h"

namespace {

constexpr char kLimited[] = "255.255.255.255";

// Sends from eth0 to a device on any address; returns the datagram's destination address.
std::string SentTo(const char* pszDstIp, uint8_t ucBroadcast, std::string& strPrinted) {
  CFakeDevice device(0, true);
  CUdpCtrlSocket sock(pszDstIp, device.Port(), 0, ucBroadcast, "eth0");
  strPrinted = Printed([&] { EXPECT_EQ(0, sock.SendDataToHost("who", 3)); });
  EXPECT_EQ("who", device.Receive());
  EXPECT_EQ(inet_addr(kEth0Ip), device.Peer().sin_addr.s_addr) << "bound to eth0's address";
  return inet_ntoa(device.RequestDst());
}

TEST(UdpBroadcast, ReplacesTheLimitedBroadcastByThatOfEth0WhenAllowed) {
  const struct {
    const char* pszDstIp;
    uint8_t ucBroadcast;
    const char* pszSentTo;
    const char* pszPrinted;
  } kCases[] = {
      {kLimited, 1, kEth0Broadcast,
       "CUdpCtrlSocket::SendDataToHost, get IfBrdAddr ok, brdaddr:0xff0200c0.\n"},
      {kLimited, 255, kEth0Broadcast,
       "CUdpCtrlSocket::SendDataToHost, get IfBrdAddr ok, brdaddr:0xff0200c0.\n"},
      {kLimited, 0, kLimited, ""},
      {kEth0Broadcast, 0, kEth0Broadcast, ""},
      {kEth0Ip, 1, kEth0Ip, ""},
  };
  const bool bRan = RunInNetSpace(Eth0::kUp, [&] {
    for (const auto& row : kCases) {
      std::string strPrinted;
      EXPECT_EQ(row.pszSentTo, SentTo(row.pszDstIp, row.ucBroadcast, strPrinted));
      EXPECT_EQ(row.pszPrinted, strPrinted) << row.pszDstIp;
    }
  });
  if (!bRan) GTEST_SKIP() << "no network namespace with an eth0 here";
}

TEST(UdpBroadcast, FailsWithoutEth0WhateverTheSocketsInterface) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    CUdpCtrlSocket sock(kLimited, 9, 0, 1, "lo");
    EXPECT_EQ("CUdpCtrlSocket::SendDataToHost, get IfBrdAddr failed.\n",
              Printed([&] { EXPECT_EQ(-1, sock.SendDataToHost("x", 1)); }));
  });
  if (!bRan) GTEST_SKIP() << "no network namespace here";
}

TEST(UdpBroadcast, GetIfBrdAddrGivesNetworkOrder) {
  const bool bRan = RunInNetSpace(Eth0::kUp, [] {
    uint32_t uiAddr = 0;
    EXPECT_EQ(0, GetIfBrdAddr("eth0", uiAddr));
    EXPECT_EQ(inet_addr(kEth0Broadcast), uiAddr);
  });
  if (!bRan) GTEST_SKIP() << "no network namespace with an eth0 here";
}

}  // namespace
