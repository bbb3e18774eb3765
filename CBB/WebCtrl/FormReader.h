// Reads and decodes form variables from a request body, one at a time, through its own buffer. It
// never reads past the received body. HTTP server thread only.
#pragma once

#include <mongoose.h>

#include <cstring>

// When a variable counts as present. The handlers differ, and each rule is part of the interface.
enum class Presence {
  kLengthAbove0,  // fully decoded and not empty: an over-long value counts as missing
  kNonEmpty,      // something was decoded: an over-long value counts, cut to the buffer
  kAlways,        // a missing variable reads as the empty text
};

// N is the buffer's size: a value keeps at most N - 1 bytes.
template <size_t N = 64>
class CFormReader {
 public:
  explicit CFormReader(const http_message& msg) : m_body(msg.body) {}

  // The variable's text (the name's case is ignored), or null when the rule counts it as missing.
  // Valid until the next Get.
  const char* Get(const char* pszName, Presence rule) {
    memset(m_szText, 0, N);  // the library does not terminate a value it cannot decode
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

// Reads the rows' variables in order into the record, each through a buffer of kSize bytes; a
// missing one leaves its field unchanged.
template <size_t kSize = 64, class R, size_t N>
void ReadForm(const http_message& msg, const stFormField<R> (&rows)[N], R& rec) {
  CFormReader<kSize> form(msg);
  for (const stFormField<R>& row : rows) {
    if (const char* pszText = form.Get(row.pszName, row.rule)) row.pfnStore(rec, pszText);
  }
}
