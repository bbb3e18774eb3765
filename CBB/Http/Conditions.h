// How much of a file a request asks for: all of it, a part, or only whether it has changed. No I/O,
// no state. Any thread.
#pragma once

#include <mongoose.h>

#include <cstddef>
#include <ctime>
#include <string_view>

// One form of a file as clients identify it.
struct stRepresentation {
  std::string_view tag;  // entity tag, with its quotation marks
  time_t modified;
  size_t nSize;
};

struct stSelection {
  int nStatus;  // 200, 206, 304, 412 or 416
  size_t nAt;   // of the part that is sent with 200 and 206
  size_t nSize;
};

// Evaluates the conditional and range fields of a GET or HEAD request in the order that HTTP
// prescribes. An unreadable date, a malformed range and a range of several parts count as absent.
// Other methods get the whole file.
stSelection Select(const http_message& msg, const stRepresentation& file);

// Whether the client accepts gzip: its Accept-Encoding names "gzip" or "*" with a weight above 0.
bool AcceptsGzip(const http_message& msg);

// The value of a field (of its first line), or empty.
std::string_view FieldValue(const http_message& msg, std::string_view name);

// Parses a date in one of HTTP's three forms into seconds since the epoch; -1 if it is none of
// them.
time_t ParseHttpDate(std::string_view text);

// The longest text that FormatHttpDate writes, terminator included.
constexpr size_t kHttpDateSize = 64;

// Writes a time in HTTP's form, terminated, into pszText (kHttpDateSize bytes).
void FormatHttpDate(time_t time, char* pszText);
