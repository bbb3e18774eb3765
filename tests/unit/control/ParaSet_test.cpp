// The set transaction over the caller's socket.
#include <gtest/gtest.h>
#include <malloc.h>

#include <cstring>
#include <string>

#include "control/VariCfgSec.h"
#include "tests/unit/control/FakeDevice.h"

namespace {

constexpr char kSet[] =
    "<VariCfgSec Action=\"DEVICE_SET\"><stDisplay strLanguage=\"en\" /></VariCfgSec>";

TEST(SetParaInfoByCmd, ReturnsTheResultOfTheDevice) {
  std::string strDeep = "<VariCfgSec Action=\"DEVICE_SET\" Result=\"0\">";
  for (int i = 0; i < 40; ++i) strDeep += "<a>";
  const struct {
    std::string strReply;
    int nRet;
    int nResult;
  } kCases[] = {
      {"<VariCfgSec Action=\"DEVICE_SET\" Result=\"0\" />", 0, 0},
      {"<VariCfgSec Action=\"DEVICE_SET\" Result=\"3\"></VariCfgSec>", 0, 3},
      {"<VariCfgSec Action=\"DEVICE_SET\" x=\"9\" Result=\"-7\"/>", 0, -7},
      {"<VariCfgSec Action=\"DEVICE_SET\" Result=\"none\"/>", 0, 0},
      {"<VariCfgSec Action=\"DEVICE_SET\" Result=\"\"/>", 0, 0},
      {"<VariCfgSec Action=\"DEVICE_SET\" Result=\"4294967296\"/>", 0, 0},
      {"<VariCfgSec Action=\"DEVICE_SET\" Result=\"-4294967295\"/>", 0, 1},
      {"<VariCfgSec Action=\"DEVICE_SET\" Result=\"99999999999999999999\"/>", 0, -1},
      {"<VariCfgSec Action=\"DEVICE_SET\" Result=\"" + std::string(509, '0') + "12345\"/>", 0, 12},
      {"<VariCfgSec Action=\"DEVICE_SET\" Result=\"5" + std::string(29000, ' ') + "\"/>", 0, 5},
      {"<VariCfgSec Action=\"DEVICE_SET\" Result=\"4\"/>" + std::string(1, '\0') + "rest", 0, 4},
      {"<VariCfgSec Action=\"DEVICE_SET\"/>", -1, 0},
      {"<VariCfgSec Result=\"0\" Action=\"DEVICE_SET\"/>", -1, 0},
      {"no reply of ours", -1, 0},
      {std::string(30001, 'x'), -1, 0},
      {strDeep, -1, 0},
  };
  for (const auto& row : kCases) {
    CFakeDevice device;
    CUdpCtrlSocket sock("127.0.0.1", device.Port(), 0, 1, "lo");
    device.AnswerWith({row.strReply});
    int nResult = 777;
    EXPECT_EQ(row.nRet, SetParaInfoByCmd(sock, kSet, static_cast<int>(strlen(kSet)), nResult, 10))
        << row.strReply.substr(0, 80);
    EXPECT_EQ(row.nRet ? 777 : row.nResult, nResult) << row.strReply.substr(0, 80);
    EXPECT_EQ(kSet, device.Request()) << "sent without a terminator";
  }
}

TEST(SetParaInfoByCmd, FailsWithoutAReply) {
  const CFakeDevice device;
  CUdpCtrlSocket sock("127.0.0.1", device.Port(), 0, 1, "lo");
  int nResult = 777;
  EXPECT_EQ(-1, SetParaInfoByCmd(sock, kSet, 1, nResult, 0));
  EXPECT_EQ(777, nResult);
}

TEST(SetParaInfoByCmd, FailsWhenTheSendFails) {
  const CFakeDevice device;
  CUdpCtrlSocket sock("127.0.0.1", device.Port(), 0, 1, "lo");
  sock.CloseCtrlSocket();
  int nResult = 777;
  EXPECT_EQ(-1, SetParaInfoByCmd(sock, kSet, 1, nResult, 10));
  EXPECT_EQ(777, nResult);
}

// The heap is filled with quotation marks: one of them would end the value in a reply that is cut
// in the middle of it.
TEST(SetParaInfoByCmd, SeesNothingBehindTheReply) {
  CFakeDevice device;
  CUdpCtrlSocket sock("127.0.0.1", device.Port(), 0, 1, "lo");
  device.AnswerWith({"<VariCfgSec Action=\"DEVICE_SET\" Result=\"4"});
  int nResult = 777;
  mallopt(M_PERTURB, '"' ^ 0xFF);
  const int nRet = SetParaInfoByCmd(sock, kSet, 1, nResult, 10);
  mallopt(M_PERTURB, 0);
  EXPECT_EQ(-1, nRet);
  EXPECT_EQ(777, nResult);
}

}  // namespace
