// Words of HTTP's grammar for the model of requests. Any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

using Text = std::string_view;

constexpr size_t kNone = Text::npos;

bool IsToken(Text text);
bool IsNumber(Text text);

// Whether a text may stand in a line. No line ends in here: one that ends in CR or LF alone is
// refused, though the standard allows the latter, as readers differ about it.
bool IsFieldText(Text text);

// Host and port, which may be empty.
bool IsAuthority(Text text);

// The same in small letters.
std::string Small(Text text);

bool StartsWith(Text text, Text start);

// Takes what stands before the mark off the text, and the mark; all of it when there is no mark.
Text Take(Text& rest, Text mark);

// Without the blanks and TABs around it.
Text TrimBlanks(Text text);
