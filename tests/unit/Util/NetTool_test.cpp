#include "CBB/Util/NetTool.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <thread>
#include <vector>

namespace {

constexpr uint32_t kUntouched = 0x11223344;

TEST(GetIfAddr, GivesTheAddressInNetworkOrder) {
  uint32_t uiAddr = kUntouched;
  ASSERT_EQ(0, GetIfAddr("lo", uiAddr));
  EXPECT_EQ(htonl(INADDR_LOOPBACK), uiAddr);
}

TEST(GetIfAddr, TellsANullNameFromAnUnknownOne) {
  const struct {
    const char* pszName;
    int nRet;
  } kCases[] = {
      {nullptr, -2},
      {"nosuchif0", -1},
      {"", -1},
      {"a name that is much longer than any name of an interface", -1},
  };
  for (const auto& row : kCases) {
    uint32_t uiAddr = kUntouched;
    EXPECT_EQ(row.nRet, GetIfAddr(row.pszName, uiAddr));
    EXPECT_EQ(kUntouched, uiAddr);
  }
}

TEST(AddressText, IsDottedInMemoryOrder) {
  for (const char* pszText :
       {"0.0.0.0", "1.2.3.4", "127.0.0.1", "203.0.113.101", "255.255.255.255"}) {
    EXPECT_EQ(pszText, AddressText(inet_addr(pszText)));
  }
}

TEST(GetIfBrdAddr, FailsForUnknownInterfaces) {
  for (const char* pszName : {"nosuchif0", "", "a name beyond sixteen characters"}) {
    uint32_t uiAddr = kUntouched;
    EXPECT_EQ(-1, GetIfBrdAddr(pszName, uiAddr)) << pszName;
    EXPECT_EQ(kUntouched, uiAddr);
  }
}

TEST(GetIfAddr, LeavesNoDescriptorBehind) {
  uint32_t uiAddr = 0;
  const int nBefore = dup(STDOUT_FILENO);
  close(nBefore);
  for (int i = 0; i < 3; ++i) {
    GetIfAddr("lo", uiAddr);
    GetIfAddr("nosuchif0", uiAddr);
  }
  const int nAfter = dup(STDOUT_FILENO);
  close(nAfter);
  EXPECT_EQ(nBefore, nAfter);
}

TEST(GetIfAddr, ServesSeveralThreads) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([] {
      for (int n = 0; n < 100; ++n) {
        uint32_t uiAddr = 0;
        EXPECT_EQ(0, GetIfAddr("lo", uiAddr));
        EXPECT_EQ(htonl(INADDR_LOOPBACK), uiAddr);
      }
    });
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
