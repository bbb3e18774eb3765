// The parser at work on one request: what it has found so far, and what it calls. Only CRequest
// uses it. HTTP server thread only.
#pragma once

#include <llhttp/llhttp.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "CBB/Http/HeadRules.h"
#include "CBB/Http/Request.h"

// A piece of the received bytes, which may move while a request arrives.
struct stSpan {
  uint16_t usAt = 0;
  uint16_t usSize = 0;

  std::string_view In(const char* pReceived) const { return {pReceived + usAt, usSize}; }
};

// A head is short, so two bytes tell where something is in it.
static_assert(kMaxHeadBytes <= UINT16_MAX, "a span's size");

struct stRequestParse {
  stRequestParse();
  stRequestParse(const stRequestParse&) = delete;
  stRequestParse& operator=(const stRequestParse&) = delete;

  llhttp_t parser;
  std::string_view received;  // of the call under way
  size_t nFed = 0;
  size_t nHead = 0;    // bytes of the head; 0 as long as it is not there as a whole
  size_t nLength = 0;  // bytes of the whole request, once it is there
  size_t nBodyEnd = 0;
  int nRefusal = 0;
  bool bHasLength = false;
  bool bChunked = false;
  bool bSizeLine = false;  // what comes next is a chunk's size, or the rest of its line
  bool bLastChunk = false;
  bool bEnded = false;
  bool bExpects = false;
  bool bKeepsOpen = false;
  stSpan target;
  size_t nFields = 0;
  stSpan names[kMaxFieldLines];
  stSpan values[kMaxFieldLines];
  std::string strBody;  // a body in chunks, without their frames

  // Where feeding stops, however much has arrived: at a limit that does not depend on how the bytes
  // were cut. And the status for a request that goes on behind it.
  size_t Limit() const;
  int LimitStatus() const;

  // The status for a request that the parser has stopped at with this error.
  int RefusalFor(int nError) const;

  // How far to feed in one go, up to nEnd: to the head's end, as what follows is judged by it; to
  // the end of a chunk's size, as its extensions are taken out; and nothing as long as such a line
  // is not whole.
  size_t UpTo(size_t nEnd) const;

  // The line ends, sizes and fields behind the last byte of a body in chunks.
  std::string_view BehindBody() const;

  std::string_view Head(size_t nSize) const { return received.substr(0, nSize); }
  std::string_view Head() const { return Head(nHead); }
  std::string_view Method() const {
    return llhttp_method_name(static_cast<llhttp_method_t>(parser.method));
  }
  stFieldLine Field(size_t i, const char* pReceived) const;  // i < nFields
};
