// The query transaction, which binds a fixed port, so it runs inside its own namespace.
#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "control/VariCfgSec.h"
#include "tests/unit/Util/Printed.h"
#include "tests/unit/control/FakeDevice.h"
#include "tests/unit/control/NetSpace.h"

namespace {

constexpr char kRequest[] = "<VariCfgSec Action=\"DEVICE_QUERY\"><stDisplay></VariCfgSec>";

struct stQueryOutcome {
  int nRet;
  int nCapacity;
  std::string strBuf;
  std::string strPrinted;
  std::string strRequest;
};

// Runs one query whose request is in the reply's own buffer, followed by a longer text.
stQueryOutcome Query(CFakeDevice& device, int nCapacity, const std::vector<std::string>& replies) {
  stQueryOutcome outcome;
  outcome.nCapacity = nCapacity;
  outcome.strBuf = std::string(kRequest) + '\0' + std::string(40000, '#');
  device.AnswerWith(replies);
  outcome.strPrinted = Printed([&] {
    outcome.nRet = GetParaInfoByCmd("127.0.0.1", device.Port(), outcome.strBuf.data(),
                                    outcome.strBuf.data(), outcome.nCapacity);
  });
  outcome.strRequest = device.Request();
  return outcome;
}

void InNetSpace(Eth0 eth0, const std::function<void()>& fn) {
  if (!RunInNetSpace(eth0, fn)) GTEST_SKIP() << "no network namespace here";
}

TEST(GetParaInfoByCmd, ReadsExactlyTheReply) {
  InNetSpace(Eth0::kNone, [] {
    CFakeDevice device;
    const stQueryOutcome outcome = Query(device, 512, {"<reply/>"});
    EXPECT_EQ(0, outcome.nRet);
    EXPECT_EQ(8, outcome.nCapacity);
    EXPECT_STREQ("<reply/>", outcome.strBuf.c_str());
    EXPECT_EQ(kRequest, outcome.strRequest) << "sent without a terminator";
    EXPECT_EQ(kLocalPort, ntohs(device.Peer().sin_port));
    const std::string strPort = std::to_string(device.Port());
    EXPECT_EQ("FUN:GetParaInfoByCmd, LINE:461, dst.ip:127.0.0.1, dst:port:" + strPort +
                  ".\nCUdpCtrlSocket::RecvDataFromHost,  get data from[127.0.0.1  VS 127.0.0.1], "
                  "port[" +
                  strPort + " VS " + strPort + "],len[8].\nFUN:GetParaInfoByCmd, LINE:477.\n",
              outcome.strPrinted);
  });
}

TEST(GetParaInfoByCmd, BindsTheAddressOfEth0) {
  InNetSpace(Eth0::kUp, [] {
    CFakeDevice device(0, true);
    int nCapacity = 100;
    char szReply[101];
    device.AnswerWith({"<r/>"});
    EXPECT_EQ(0, GetParaInfoByCmd(kEth0Ip, device.Port(), kRequest, szReply, nCapacity));
    EXPECT_EQ(kRequest, device.Request());
    EXPECT_EQ(inet_addr(kEth0Ip), device.Peer().sin_addr.s_addr);
  });
}

TEST(GetParaInfoByCmd, TerminatesAReplyThatFillsTheCapacity) {
  InNetSpace(Eth0::kNone, [] {
    for (const int nCapacity : {1, 512, 2048, kReplyMax, 30720}) {
      CFakeDevice device;
      const int nReply = nCapacity < kReplyMax ? nCapacity : kReplyMax;
      const stQueryOutcome outcome =
          Query(device, nCapacity, {std::string(static_cast<size_t>(nReply), 'r')});
      EXPECT_EQ(0, outcome.nRet) << nCapacity;
      EXPECT_EQ(nReply, outcome.nCapacity);
      EXPECT_EQ(std::string(static_cast<size_t>(nReply), 'r'), outcome.strBuf.c_str());
    }
  });
}

TEST(GetParaInfoByCmd, LeavesTheBufferAloneWhenItFails) {
  InNetSpace(Eth0::kNone, [] {
    CFakeDevice device;
    const stQueryOutcome outcome = Query(device, 512, {std::string(513, 'r')});
    EXPECT_EQ(-1, outcome.nRet);
    EXPECT_EQ(512, outcome.nCapacity);
    EXPECT_STREQ(kRequest, outcome.strBuf.c_str());
    EXPECT_EQ(std::string::npos, outcome.strPrinted.find("LINE:477"));
  });
}

TEST(GetParaInfoByCmd, FailsWhenNoReplyComes) {
  InNetSpace(Eth0::kNone, [] {
    CFakeDevice device;
    const stQueryOutcome outcome = Query(device, 512, {});
    EXPECT_EQ(-1, outcome.nRet);
    EXPECT_STREQ(kRequest, outcome.strBuf.c_str());
  });
}

TEST(GetParaInfoByCmd, FailsWhenThePortIsTaken) {
  InNetSpace(Eth0::kNone, [] {
    const CFakeDevice taken(kLocalPort);
    int nCapacity = 10;
    char szReply[11] = "before";
    EXPECT_EQ(
        "FUN:GetParaInfoByCmd, LINE:461, dst.ip:127.0.0.1, dst:port:9.\n"
        "CUdpCtrlSocketSvr::OpenSvrSocket, Server Bind Failed. Error:Address already in use\n"
        "CUdpCtrlSocket::SendData2Wifi, send data to [0x100007f:9][len:58], failed, err:Bad file "
        "descriptor.\n",
        Printed([&] {
          EXPECT_EQ(-1, GetParaInfoByCmd("127.0.0.1", 9, kRequest, szReply, nCapacity));
        }));
    EXPECT_STREQ("before", szReply);
  });
}

}  // namespace
