#include "CBB/WebCtrl/MaskSvrAddr.h"

#include <gtest/gtest.h>

#include <string>

#include WEBCTRL_ADDRESS_TABLE

namespace {

std::string Mask(int nDirection, const std::string& strText) {
  std::string strShown(std::max<size_t>(16, strText.size() + 1), '#');
  EXPECT_EQ(0, MaskSvrAddr(nDirection, strText.c_str(), strShown.data()));
  return strShown.c_str();
}

TEST(MaskSvrAddr, ExchangesEveryPairBothWays) {
  for (const auto& pair : kAddressTable) {
    EXPECT_EQ(pair[1], Mask(kMask, pair[0]));
    EXPECT_EQ(pair[1], Mask(-7, pair[0])) << "any direction but 0 masks";
    EXPECT_EQ(pair[0], Mask(kUnmask, pair[1]));
  }
}

TEST(MaskSvrAddr, CopiesTheWrongSideOfAPairUnchanged) {
  for (const auto& pair : kAddressTable) {
    EXPECT_EQ(pair[1], Mask(kMask, pair[1]));
    EXPECT_EQ(pair[0], Mask(kUnmask, pair[0]));
  }
}

TEST(MaskSvrAddr, CopiesOtherTextsUnchanged) {
  const std::string strPlatform = kAddressTable[0][0];
  const std::string strPlaceholder = kAddressTable[0][1];
  const std::string rows[] = {"",
                              "192.168.1.100",
                              "some.host",
                              strPlatform + " ",
                              " " + strPlatform,
                              strPlatform.substr(1),
                              strPlatform.substr(0, strPlatform.size() - 1),
                              strPlaceholder + "0",
                              strPlaceholder.substr(0, strPlaceholder.size() - 1),
                              std::string(200, 'x')};
  for (const std::string& strText : rows) {
    EXPECT_EQ(strText, Mask(kMask, strText));
    EXPECT_EQ(strText, Mask(kUnmask, strText));
  }
}

TEST(MaskSvrAddr, WritesNothingBehindTheTerminator) {
  char szShown[17];
  memset(szShown, '#', sizeof(szShown));
  MaskSvrAddr(kMask, kAddressTable[3][0], szShown);
  EXPECT_EQ(std::string(kAddressTable[3][1]) + std::string("\0##", 3), std::string(szShown, 17));
}

}  // namespace
