#include "CBB/Util/OtherFun.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <vector>

namespace {

struct stTextCase {
  const char* pszText;
  int nExpected;
};

TEST(IsIpAddrStr, WantsThreeDotsAndLimitsAllGroupsButTheLast) {
  const stTextCase kCases[] = {
      {"192.168.0.1", 1},
      {"0.0.0.0", 1},
      {"255.255.255.255", 1},
      {"192.168.0.256", 1},
      {"1.2.3.999", 1},
      {"1.2.3.99999999999999999999", 1},
      {"...", 1},
      {"1..2.3", 1},
      {".1.2.3", 1},
      {"1.2.3.", 1},
      {"256.1.1.1", 0},
      {"1.256.1.1", 0},
      {"1.1.256.1", 0},
      {"4294967297.1.1.1", 0},
      {"18446744073709551617.1.1.1", 0},
      {"1.2.3", 0},
      {"1.2.3.4.5", 0},
      {"1234", 0},
      {"", 0},
      {nullptr, 0},
      {"a.b.c.d", 0},
      {"1.2.3.4a", 0},
      {" 1.2.3.4", 0},
      {"1.2.3.-4", 0},
  };
  for (const stTextCase& row : kCases)
    EXPECT_EQ(row.nExpected, IsIpAddrStr(row.pszText))
        << (row.pszText != nullptr ? row.pszText : "null");
}

TEST(IsHexStr, WantsPrefixAndAtLeastOneDigit) {
  const stTextCase kCases[] = {
      {"0x0", 1}, {"0X1f", 1},  {"0xabcdefABCDEF0123456789", 1},
      {"0x", 0},  {"0X", 0},    {"0", 0},
      {"", 0},    {nullptr, 0}, {"0x1g", 0},
      {"1x1", 0}, {"x11", 0},   {"0x 1", 0},
      {"11", 0},  {"0x-1", 0},  {"0x1 ", 0},
  };
  for (const stTextCase& row : kCases)
    EXPECT_EQ(row.nExpected, IsHexStr(row.pszText))
        << (row.pszText != nullptr ? row.pszText : "null");
}

TEST(IsDecStr, PassesDigitsBehindAnOptionalMinus) {
  const stTextCase kCases[] = {
      {"", 1},      {"-", 1},  {"-12", 1}, {"0", 1},   {"99999999999999999999", 1},
      {nullptr, 0}, {"+5", 0}, {"1-2", 0}, {"--1", 0}, {"1.5", 0},
      {" 1", 0},    {"1 ", 0}, {"a", 0},
  };
  for (const stTextCase& row : kCases)
    EXPECT_EQ(row.nExpected, IsDecStr(row.pszText))
        << (row.pszText != nullptr ? row.pszText : "null");
}

TEST(TextToInt, ReadsTheLeadingNumber) {
  const stTextCase kCases[] = {{"0", 0},
                               {"12", 12},
                               {"-12", -12},
                               {"+12", 12},
                               {" \t\n12", 12},
                               {"12abc", 12},
                               {"abc", 0},
                               {"", 0},
                               {"--1", 0},
                               {"0x10", 0},
                               {"2147483647", INT_MAX},
                               {"2147483648", INT_MIN},
                               {"-2147483648", INT_MIN},
                               {"-2147483649", INT_MAX},
                               {"4294967295", -1},
                               {"4294967297", 1},
                               {"9223372036854775807", -1},
                               {"9223372036854775808", -1},
                               {"-9223372036854775809", 0}};
  for (const stTextCase& row : kCases)
    EXPECT_EQ(row.nExpected, TextToInt(row.pszText)) << row.pszText;
}

TEST(HexStrToUInt, ReadsExactlyTheGivenCountModulo2To32) {
  const struct {
    const char* pszHex;
    int nCount;
    int nRet;
    uint32_t uiValue;
  } kCases[] = {
      {"1f", 2, 0, 31},
      {"1F", 2, 0, 31},
      {"1fz", 2, 0, 31},
      {"1f", 1, 0, 1},
      {"FEDCBA98", 8, 0, 0xFEDCBA98u},
      {"76543210", 8, 0, 0x76543210u},
      {"fffffffff", 9, 0, 0xFFFFFFFFu},
      {"123456789", 9, 0, 0x23456789u},
      {"", 0, 0, 0},
      {"1", 0, 0, 0},
      {"1", -1, 0, 0},
      {"g", 1, -1, 0},
      {"1g", 2, -1, 0x10},
      {"12x4", 4, -1, 0x1200},
      {"0x1", 3, -1, 0},
      {"1", 2, -1, 0x10},
  };
  for (const auto& row : kCases) {
    uint32_t uiValue = 12345;
    EXPECT_EQ(row.nRet, HexStrToUInt(row.pszHex, row.nCount, uiValue)) << row.pszHex;
    EXPECT_EQ(row.uiValue, uiValue) << row.pszHex << " " << row.nCount;
  }
}

std::vector<uint8_t> Bytes(const char* pszHex, int nHexLen, int nRoom, int nExpectedRet) {
  uint8_t bytes[8];
  memset(bytes, 0xEE, sizeof(bytes));
  int nLen = nRoom;
  EXPECT_EQ(nExpectedRet, HexStrToBytes(pszHex, nHexLen, bytes, nLen)) << pszHex;
  if (nExpectedRet) {
    EXPECT_EQ(nRoom, nLen) << pszHex;
    nLen = 0;
  }
  for (size_t i = static_cast<size_t>(nLen); i < sizeof(bytes); ++i)
    EXPECT_EQ(0xEE, bytes[i]) << pszHex << ": byte " << i << " lies behind the result";
  return std::vector<uint8_t>(bytes, bytes + nLen);
}

using CBytes = std::vector<uint8_t>;

TEST(HexStrToBytes, JoinsTwoDigitsToAByte) {
  EXPECT_EQ((CBytes{0x0A, 0xFF}), Bytes("0aFF", 4, 8, 0));
  EXPECT_EQ((CBytes{0x0A, 0xFF}), Bytes("0aFF", 4, 2, 0));
  EXPECT_EQ((CBytes{0xDE, 0xAD}), Bytes("dEaDBEEF", 4, 8, 0));
  EXPECT_EQ(CBytes{}, Bytes("", 0, 8, 0));
  EXPECT_EQ(CBytes{}, Bytes("", 0, 0, 0));
}

TEST(HexStrToBytes, FillsTheMissingDigitOfAnOddLengthWithZero) {
  EXPECT_EQ((CBytes{0x12, 0x30}), Bytes("123", 3, 8, 0));
  EXPECT_EQ((CBytes{0x12, 0x30}), Bytes("123F", 3, 2, 0));
  EXPECT_EQ((CBytes{0xA0}), Bytes("a", 1, 1, 0));
}

TEST(HexStrToBytes, FailsWithoutWritingWhenRoomOrDigitsAreWrong) {
  Bytes("0aFF", 4, 1, -1);
  Bytes("123", 3, 1, -1);
  Bytes("a", 1, 0, -1);
  Bytes("0aFg", 4, 8, -1);
  Bytes("0x12", 4, 8, -1);
  Bytes("12", 3, 8, -1);
  Bytes("", -2, 8, -1);
}

}  // namespace
