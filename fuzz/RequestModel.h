// A second parser of requests, written from RFC 9112, for comparison with the service's own; they
// share no code. Slow and simple: each call starts from the beginning. Any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

enum class Verdict { kPartial, kWhole, kRefused };

struct stModelRequest {
  Verdict verdict = Verdict::kPartial;
  size_t nLength = 0;       // of a whole request: its length
  std::string strBody;      // of a whole request: without chunk framing
  bool bInBody = false;     // of a partial request: any bytes may follow, up to a known length
  bool bMayRefuse = false;  // the service may also refuse it
};

// Reads the first request of what has arrived, which must not begin with an empty line.
stModelRequest ReadModel(std::string_view received);
