// What of a file a request wants: all of it, a part, or only to know that it has not changed. No
// I/O, no state. Any thread.
#pragma once

#include <mongoose.h>

#include <cstddef>
#include <ctime>
#include <string_view>

// One form of a file as clients know it.
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

// Judges the conditional and range fields of a GET or HEAD request, in the order that HTTP gives
// them. A date that cannot be read, a range of several parts, and one that is malformed count as
// absent. Other methods get all of the file.
stSelection Select(http_message& msg, const stRepresentation& file);

// Whether the client takes a file packed by gzip: its Accept-Encoding names it, or "*", without a
// weight of 0.
bool AcceptsGzip(http_message& msg);

// The value of a field, or nothing.
std::string_view FieldValue(http_message& msg, const char* pszName);

// A date of one of HTTP's three forms in seconds since the epoch, or -1.
time_t ParseHttpDate(std::string_view text);

// The longest text that FormatHttpDate makes, with its end.
constexpr size_t kHttpDateSize = 64;

// Puts a time as HTTP writes it, terminated, into pszText (kHttpDateSize bytes).
void FormatHttpDate(time_t time, char* pszText);
