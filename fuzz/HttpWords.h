// Elements of HTTP's grammar for the model of requests. Any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

using Text = std::string_view;

constexpr size_t kNone = Text::npos;

bool IsToken(Text text);
bool IsNumber(Text text);

// Whether a text may be part of a line. It must not contain CR or LF: a line that ends in LF alone
// is refused although the standard allows it, because parsers differ about it.
bool IsFieldText(Text text);

// Host and port, which may be empty.
bool IsAuthority(Text text);

// The text in lower case.
std::string Small(Text text);

bool StartsWith(Text text, Text start);

// Removes and returns the text up to the mark, and drops the mark; all of it when there is no mark.
Text Take(Text& rest, Text mark);

// The text without surrounding blanks and TABs.
Text TrimBlanks(Text text);
