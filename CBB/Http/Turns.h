// Decides what may happen to a client's connection, and which connection is closed when there are
// too many. No I/O, no state. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include "CBB/Http/Request.h"

// One client. Its state alone decides what may happen next.
//
//   reading --whole request--> answering --all sent--> reading
//      |                             \-- the reply closes --> last reply
//      | end of stream
//      v
//   hung up --all that arrived whole is answered--> closed
//
//   reading, hung up --a request is refused--> last reply --all sent, client gone--> closed
enum class State {
  kReading,    // the next request, which may have arrived and be waiting for its turn
  kAnswering,  // the reply is being sent
  kHungUp,     // the client has ended its stream and waits for the replies to what it has sent
  kLastReply,  // the reply being sent is the last; what the client still sends is dropped
  kClosed,
};

struct stTurn {
  enum Action {
    kNothing,   // indefinitely
    kWait,      // for the client, or for the reply to be sent
    kContinue,  // tell the client to send the body
    kServe,
    kRefuse,  // with nStatus
    kPart,    // everything is sent: end the stream, and close once the client has done the same
    kClose,
  } action;
  int nStatus;
};

// What a turn of this client would do. bAllSent: the earlier reply has been sent in full.
stTurn NextTurn(State state, const CRequest& request, bool bAllSent);

// What decides whether a connection must make room for another one.
struct stPlace {
  bool bServed;        // it has sent a whole request
  uint64_t nAgeMs;     // since it was accepted
  uint64_t nUnusedMs;  // since its last whole request, or else since it was accepted
  uint64_t nLastUse;   // number of its last use, which is larger than all before
};

// A client that has sent no whole request for this long only takes up room; one whose last reply is
// this long ago does not need its connection now.
constexpr uint64_t kGraceMs = 1000;
constexpr uint64_t kUnusedMs = 10000;

// Whether the first connection is closed before the second: first those that only take up room,
// then unused ones, then newcomers, and last those in use; among equals the least recently used.
bool GoesBefore(const stPlace& one, const stPlace& other);
