// Hostile XML text on its way to the recursive parser.
//
// The server thread has a stack of 128 KiB and the parser takes a frame per nested element, so the
// nesting is measured, without recursion, before the parser sees the text.
#pragma once

#include <tinyxml.h>

#include <cstddef>
#include <string>

// The deepest nesting of elements that is parsed; the root counts as 1.
constexpr int kXmlDepthMax = 32;

// Parses a terminated text into a document, whose earlier content is dropped. Returns 0 when the
// text was parsed as far as the parser gets (its own errors are the document's); -1, with an empty
// document, when elements nest deeper than kXmlDepthMax or memory runs out. Stateless, for any
// thread.
int ParseXml(TiXmlDocument& doc, const char* pszText);

// A terminated text without what is inside of its outermost elements: the parser makes the same of
// their tags and of all else outside of them, however deep the text nests. For any thread.
std::string OutermostXml(const char* pszText);

// The length of a terminated text's root tag, when the text begins with one and the tag is so plain
// that the parser makes the same of it whatever follows; else 0. For any thread.
size_t RootTagLength(const char* pszText);
