#include "CBB/Http/Turns.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr const char* kActions[] = {"nothing", "wait", "continue", "serve",
                                    "refuse",  "part", "close"};

struct stReceived {
  const char* pszName;
  const char* pszBytes;
};
// In the order of the table's columns.
constexpr stReceived kReceived[] = {
    {"nothing", ""},
    {"a part", "GET / HTTP"},
    {"a head that awaits a sign",
     "POST / HTTP/1.1\r\nContent-Length: 3\r\nExpect: 100-continue\r\n\r\n"},
    {"a whole request", "GET / HTTP/1.1\r\n\r\n"},
    {"a refused one", "POST / HTTP/1.1\r\n\r\n"},
};
constexpr size_t kColumns = sizeof(kReceived) / sizeof(kReceived[0]);

TEST(NextTurn, FollowsFromTheStateAlone) {
  const struct {
    const char* pszState;
    State state;
    bool bAllSent;
    const char* actions[kColumns];
  } rows[] = {
      {"reading", State::kReading, true, {"wait", "wait", "continue", "serve", "refuse"}},
      {"reading", State::kReading, false, {"wait", "wait", "wait", "wait", "wait"}},
      {"answering", State::kAnswering, true, {"wait", "wait", "continue", "serve", "refuse"}},
      {"answering", State::kAnswering, false, {"wait", "wait", "wait", "wait", "wait"}},
      {"hung up", State::kHungUp, true, {"close", "close", "close", "serve", "refuse"}},
      {"hung up", State::kHungUp, false, {"wait", "wait", "wait", "wait", "wait"}},
      {"last reply", State::kLastReply, true, {"part", "part", "part", "part", "part"}},
      {"last reply", State::kLastReply, false, {"wait", "wait", "wait", "wait", "wait"}},
      {"closed", State::kClosed, true, {"nothing", "nothing", "nothing", "nothing", "nothing"}},
      {"closed", State::kClosed, false, {"nothing", "nothing", "nothing", "nothing", "nothing"}},
  };
  for (const auto& row : rows) {
    for (size_t i = 0; i < kColumns; ++i) {
      CRequest request;
      request.Read(kReceived[i].pszBytes);
      const stTurn turn = NextTurn(row.state, request, row.bAllSent);
      const std::string strAction = kActions[turn.action];
      EXPECT_EQ(row.actions[i], strAction)
          << row.pszState << (row.bAllSent ? ", all sent, " : ", ") << kReceived[i].pszName;
      EXPECT_EQ(strAction == "refuse" ? 411 : 0, turn.nStatus) << kReceived[i].pszName;
    }
  }
}

// The connections in the order in which they are closed, at the limits of the times.
TEST(GoesBefore, PutsThoseFirstThatNeedTheirPlaceLeast) {
  constexpr stPlace kOrder[] = {
      {false, 1000, 1000, 3},  {false, 50000, 50000, 9},  // only take up room
      {true, 90000, 10000, 1}, {true, 10000, 99999, 6},   // unused
      {false, 999, 999, 2},    {false, 0, 0, 8},          // newcomers
      {true, 90000, 9999, 4},  {true, 0, 0, 5},           // in use
  };
  constexpr size_t kPlaces = sizeof(kOrder) / sizeof(kOrder[0]);
  for (size_t i = 0; i < kPlaces; ++i) {
    for (size_t j = 0; j < kPlaces; ++j) {
      EXPECT_EQ(i < j, GoesBefore(kOrder[i], kOrder[j])) << i << " and " << j;
    }
  }
}

}  // namespace
