// Strict UTF-8, as a browser takes it.
#ifndef FUZZ_UTF8MODEL_H_
#define FUZZ_UTF8MODEL_H_

#include <string_view>

// True when the text is well-formed: shortest forms only, no surrogates, nothing above U+10FFFF.
bool IsUtf8(std::string_view text);

#endif  // FUZZ_UTF8MODEL_H_
