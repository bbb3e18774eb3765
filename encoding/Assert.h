// Assertions that stay in every build: a release build defines NDEBUG, but a caller that breaks a
// precondition here would write past a buffer. A failure prints the text on stderr and aborts.
#pragma once

// Prints "<file>:<line>: <function>: Assertion `<text>' failed." on standard error and aborts.
[[noreturn]] void EncAssertFailed(const char* pszText, const char* pszFile, int nLine,
                                  const char* pszFunction);

// Aborts with `text` unless `condition` holds. The text is a separate argument because it is part
// of the interface: it must not change with the compiler's NULL or with formatting.
#define ENC_ASSERT(condition, text) \
  ((condition) ? static_cast<void>(0) : EncAssertFailed(text, __FILE__, __LINE__, __func__))
