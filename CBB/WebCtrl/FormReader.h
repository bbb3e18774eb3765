// Reads form variables from a request body, decoded, one at a time, through a buffer of its own.
// The body is bounded by what was received. HTTP server thread only.
#pragma once

#include <mongoose.h>

#include <cstring>

// When a variable counts as present; the handlers differ, and each rule is part of the interface.
enum class Presence {
  kLengthAbove0,  // decoded whole and not empty: an over-long value counts as missing
  kNonEmpty,      // something was decoded: an over-long value counts, cut to the buffer
  kAlways,        // a missing variable reads as the empty text
};

// N is the buffer's size: a value keeps at most N - 1 bytes.
template <size_t N = 64>
class CFormReader {
 public:
  explicit CFormReader(const http_message& msg) : m_body(msg.body) {}

  // The variable's text (name without regard to case), or null when it is missing in the rule's
  // sense. Valid until the next Get.
  const char* Get(const char* pszName, Presence rule) {
    memset(m_szText, 0, N);  // the library leaves no terminator behind a value it cannot decode
    const int nLen = mg_get_http_var(&m_body, pszName, m_szText, N);
    if (rule == Presence::kLengthAbove0 && nLen <= 0) return nullptr;
    if (rule == Presence::kNonEmpty && m_szText[0] == '\0') return nullptr;
    return m_szText;
  }

 private:
  mg_str m_body;
  char m_szText[N];
};

// One row of a form: which variable goes where, and when.
template <class R>
struct stFormField {
  const char* pszName;
  Presence rule;
  int (*pfnStore)(R& rec, const char* pszText);
};

// Reads the rows' variables in order into the record, each through kSize bytes; a missing one
// leaves its field as it was.
template <size_t kSize = 64, class R, size_t N>
void ReadForm(const http_message& msg, const stFormField<R> (&rows)[N], R& rec) {
  CFormReader<kSize> form(msg);
  for (const stFormField<R>& row : rows) {
    if (const char* pszText = form.Get(row.pszName, row.rule)) row.pfnStore(rec, pszText);
  }
}
