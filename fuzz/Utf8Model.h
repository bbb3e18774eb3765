// Strict UTF-8, as a browser accepts it.
#pragma once

#include <string_view>

// True when the text is well-formed: shortest forms only, no surrogates, nothing above U+10FFFF.
bool IsUtf8(std::string_view text);
