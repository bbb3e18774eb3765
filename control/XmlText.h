// Protects the recursive parser from hostile XML text.
//
// The server thread has a stack of 128 KiB and the parser needs a frame per nested element. So the
// nesting is measured, without recursion, before the parser sees the text.
#pragma once

#include <tinyxml.h>

#include <cstddef>
#include <string>

// The deepest nesting of elements that is parsed; the root counts as 1.
constexpr int kXmlDepthMax = 32;

// Parses a terminated text into a document, whose earlier content is dropped. Returns 0 when the
// parser has run (its errors are in the document); -1, with an empty document, when elements nest
// deeper than kXmlDepthMax or memory runs out. Stateless; any thread.
int ParseXml(TiXmlDocument& doc, const char* pszText);

// A terminated text without the content of its outermost elements. The parser reads their tags and
// everything outside them just as in the full text, however deeply that nests. Any thread.
std::string OutermostXml(const char* pszText);

// The length of a terminated text's root tag, if the text begins with one that is plain enough for
// the parser to read it the same way whatever follows; otherwise 0. Any thread.
size_t RootTagLength(const char* pszText);
