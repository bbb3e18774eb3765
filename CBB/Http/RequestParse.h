// The parser's state for one request: what it has found so far, and its callbacks. Only CRequest
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
  uint16_t usAt;
  uint16_t usSize;

  std::string_view In(const char* pReceived) const { return {pReceived + usAt, usSize}; }
};

// A head is short, so two bytes hold an offset in it.
static_assert(kMaxHeadBytes <= UINT16_MAX, "a span's size");

struct stRequestParse {
  stRequestParse();
  stRequestParse(const stRequestParse&) = delete;
  stRequestParse& operator=(const stRequestParse&) = delete;

  llhttp_t parser;
  std::string_view received;  // of the current call
  size_t nFed = 0;
  size_t nUpTo = 0;    // where the current call of the parser ends
  size_t nHead = 0;    // bytes of the head; 0 until all of it is there
  size_t nLength = 0;  // bytes of the whole request, once complete
  size_t nBodyEnd = 0;
  int nRefusal = 0;
  bool bHasLength = false;
  bool bChunked = false;
  bool bSizeLine = false;  // next comes a chunk's size or the rest of its line
  bool bLastChunk = false;
  bool bEnded = false;
  bool bExpects = false;
  bool bKeepsOpen = false;
  stSpan target{};
  size_t nFields;
  // Those of the first nFields lines, and what has arrived of the next one; others are not set. The
  // values are without surrounding blanks, once complete.
  stSpan names[kMaxFieldLines + 1];
  stSpan values[kMaxFieldLines + 1];
  std::string strBody;  // a chunked body without its framing

  // i fields are complete, and the next one begins.
  void BeginField(size_t i);

  // Where feeding stops, however much has arrived: a limit that does not depend on how the bytes
  // were cut. And the status for a request that continues past it.
  size_t Limit() const;
  int LimitStatus() const;

  // The status for a request that the parser rejected with this error.
  int RefusalFor(int nError) const;

  // How far to feed in one call, at most to nEnd: to the end of the head, which decides how the
  // rest is read; to the end of a chunk's size, whose extensions are skipped; and nothing while
  // such a line is incomplete.
  size_t UpTo(size_t nEnd) const;

  // The bytes of framing (line ends, sizes, trailer fields) after the last byte of a chunk's data.
  std::string_view BehindBody() const;

  std::string_view Head(size_t nSize) const { return received.substr(0, nSize); }
  std::string_view Head() const { return Head(nHead); }
  std::string_view Method() const {
    return llhttp_method_name(static_cast<llhttp_method_t>(parser.method));
  }
  stFieldLine Field(size_t i, const char* pReceived) const {  // i < nFields
    return {names[i].In(pReceived), values[i].In(pReceived)};
  }
};
