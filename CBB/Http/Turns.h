// What may happen to a client's connection, and which connection goes when there are too many. The
// decisions alone: no I/O, no state. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include "CBB/Http/Request.h"

// One client. Its state alone decides what may happen next.
//
//   reading --whole request--> answering --all sent--> reading
//      |                           |  \-- the reply closes --> last reply
//      | end of stream             | end of stream
//      v                           v
//   hung up --all that arrived whole is answered--> closed
//
//   reading, hung up --a request is refused--> last reply --all sent, client gone--> closed
enum class State {
  kReading,    // of the next request, which may have arrived, up to its turn
  kAnswering,  // the reply is on its way
  kHungUp,     // the client sends no more, and waits for the replies to what it has sent
  kLastReply,  // the reply on its way closes; what the client still sends is dropped
  kClosed,
};

struct stTurn {
  enum Action {
    kNothing,   // for ever
    kWait,      // for the client, or for the reply to be sent
    kContinue,  // tell the client to send the body
    kServe,
    kRefuse,  // with nStatus
    kPart,    // all is said: end the stream, and close once the client has done the same
    kClose,
  } action;
  int nStatus;
};

// What a turn of this client would do. bAllSent: nothing of an earlier reply is left.
stTurn NextTurn(State state, const CRequest& request, bool bAllSent);

// What a connection is judged by when another one needs its place.
struct stPlace {
  bool bServed;        // it has sent a whole request
  uint64_t nAgeMs;     // since it was accepted
  uint64_t nUnusedMs;  // since its last whole request, or since it was accepted
  uint64_t nLastUse;   // a number that grows from use to use: its last whole request, or its start
};

// A client that has sent no whole request for so long only holds a place; one that had its last
// reply so long ago does not need it now.
constexpr uint64_t kGraceMs = 1000;
constexpr uint64_t kUnusedMs = 10000;

// Whether the connection of one goes before that of the other: first those that only hold a place,
// then the unused ones, then newcomers, last those in use; among equals the one whose last use is
// longest ago.
bool GoesBefore(const stPlace& one, const stPlace& other);
