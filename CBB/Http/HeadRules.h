// Rules for a request's head beyond those of the parser. No I/O, no state. Any thread.
#pragma once

#include <strings.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

// One field line: its name, and its value without surrounding blanks.
struct stFieldLine {
  std::string_view name;
  std::string_view value;
};

// A head as the parser found it. All texts are parts of text.
struct stHead {
  std::string_view text;  // from the first byte of the request line to the last of the empty line
  std::string_view method;
  std::string_view target;
  const stFieldLine* pFields = nullptr;
  size_t nFields = 0;
  int nMinor = 0;           // of HTTP/1.x
  bool bHasLength = false;  // the parser accepted a Content-Length: exactly one, a plain number
  uint64_t nLength = 0;
  bool bChunked = false;  // the parser will read the body as chunks
};

constexpr uint64_t kMaxBodyBytes = 1U << 20;  // as received: chunks with their framing

// Returns 0 for a head that is accepted, otherwise the status to refuse it with:
//   400  a line that does not end in CR LF, is folded or has no name; a request line with other
//        than two single blanks; a target of no known form; two hosts, or one that cannot be a
//        host; a coding in HTTP/1.0, or twice
//   411  POST or PUT with neither a length nor a coding
//   413  a length of more than kMaxBodyBytes
//   417  an expectation other than 100-continue
//   501  a transfer coding other than chunked; a method that this kind of server does not serve
int JudgeHead(const stHead& head);

// Whether a client wants to keep the connection: what the Connection lines say, otherwise the
// version's default.
bool KeepsOpen(const stHead& head);

// Judges a request line whose method the parser rejected. line is what has arrived of it, up to its
// line end if that is there. Returns 501 for a well-formed line of HTTP/1.x, 505 for another
// version, 400 for anything else; 0 while more of the line is needed. Bytes after the deciding ones
// do not matter.
int JudgeUnknownMethod(std::string_view line);

// Whether every line of a text ends in CR LF, none is folded, and every field has a name. The
// parser reads some of these differently from other readers.
bool AreLinesWhole(std::string_view text);

// Whether a field's comma-separated list contains this element, ignoring case.
bool HasListElement(std::string_view list, std::string_view element);

// Whether two texts are equal, ignoring case.
inline bool IsSameName(std::string_view one, std::string_view other) {
  return one.size() == other.size() && strncasecmp(one.data(), other.data(), one.size()) == 0;
}

// Where the path of a target begins: after the scheme and host of an absolute one, or its length if
// it has no path; 0 for a target that is not absolute.
size_t PathBegin(std::string_view target);
