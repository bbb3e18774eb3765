// What a request's head must keep beyond what the parser asks of it. No I/O, no state. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// One field line: its name, and its value without the blanks around it.
struct stFieldLine {
  std::string_view name;
  std::string_view value;
};

// A head as the parser found it. All texts lie within text.
struct stHead {
  std::string_view text;  // from the request line's first byte to the blank line's last
  std::string_view method;
  std::string_view target;
  const stFieldLine* pFields = nullptr;
  size_t nFields = 0;
  int nMinor = 0;           // of HTTP/1.x
  bool bHasLength = false;  // the parser took a Content-Length, one and a plain number
  uint64_t nLength = 0;
  bool bChunked = false;  // the parser will take the body for chunks
};

constexpr uint64_t kMaxBodyBytes = 1U << 20;  // as received: of chunks, with their frames

// Returns 0 for a head that may be carried out, else the status to refuse it with:
//   400  a line that does not end in CR LF, is folded or has no name; a request line with other
//   than
//        two single blanks; a target of no known form; two hosts, or one that cannot be a host; a
//        coding in HTTP/1.0, or twice
//   411  POST or PUT without a length and a coding
//   413  a length of more than kMaxBodyBytes
//   417  an expectation other than 100-continue
//   501  a transfer coding other than chunked; a method that is no request to a server like this
int JudgeHead(const stHead& head);

// Whether a client would go on using the connection: what the Connection lines say, or else the
// version.
bool KeepsOpen(const stHead& head);

// Judges a request line that the parser did not take because of its method. line is what has
// arrived of it, up to its line end where that is there already. Returns 501 for a well-formed line
// of HTTP/1.x, 505 for one of another version, 400 for anything else; 0 as long as more of the line
// is needed to tell. What stands behind the bytes that decide does not matter.
int JudgeUnknownMethod(std::string_view line);

// Whether every line in a text ends in CR LF, and none is folded or has a field without a name. The
// parser takes some of these for what other readers do not.
bool AreLinesWhole(std::string_view text);

// Whether a field's comma-separated list has this element, whatever the case of its letters.
bool HasListElement(std::string_view list, std::string_view element);

// Whether two texts are the same but for the case of their letters.
bool IsSameName(std::string_view one, std::string_view other);

// Where the path of a target begins, behind scheme and host of an absolute one. A target without a
// path: its length. 0 for one that is not absolute.
size_t PathBegin(std::string_view target);
