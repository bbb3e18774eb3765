// A second reader of requests, written from RFC 9112, to hold the service's own against; they share
// no code. Slow and plain: it looks at everything anew at each call. Any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

enum class Verdict { kPartial, kWhole, kRefused };

struct stModelRequest {
  Verdict verdict = Verdict::kPartial;
  size_t nLength = 0;       // of a whole one: its bytes
  std::string strBody;      // of a whole one: freed of its chunks
  bool bInBody = false;     // of a partial one: any bytes may follow, up to a length that is known
  bool bMayRefuse = false;  // the house may also refuse it
};

// Reads the first request of what has arrived, which no empty line stands before.
stModelRequest ReadModel(std::string_view received);
