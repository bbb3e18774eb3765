#include "fuzz/HttpWords.h"

#include <algorithm>
#include <cctype>

namespace {

template <class F>
bool All(Text text, F pfnTest) {
  return std::all_of(text.begin(), text.end(),
                     [&](char c) { return pfnTest(static_cast<unsigned char>(c)); });
}

bool IsAnyOf(unsigned char c, Text set) { return set.find(static_cast<char>(c)) != kNone; }

}  // namespace

bool IsToken(Text text) {
  return !text.empty() && All(text, [](unsigned char c) {
    return isalnum(c) != 0 || IsAnyOf(c, "!#$%&'*+-.^_`|~");
  });
}

bool IsNumber(Text text) {
  return !text.empty() && All(text, [](unsigned char c) { return isdigit(c) != 0; });
}

bool IsFieldText(Text text) {
  return All(text, [](unsigned char c) { return c == '\t' || (c >= ' ' && c != 0x7F); });
}

bool IsAuthority(Text text) {
  return All(text,
             [](unsigned char c) { return isalnum(c) != 0 || IsAnyOf(c, "-._~%!$&'()*+,;=:[]"); });
}

std::string Small(Text text) {
  std::string strSmall(text);
  for (char& c : strSmall) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
  return strSmall;
}

bool StartsWith(Text text, Text start) { return text.substr(0, start.size()) == start; }

Text Take(Text& rest, Text mark) {
  const size_t nMark = rest.find(mark);
  const Text taken = rest.substr(0, nMark);
  rest.remove_prefix(nMark == kNone ? rest.size() : nMark + mark.size());
  return taken;
}

Text TrimBlanks(Text text) {
  const size_t nFirst = text.find_first_not_of(" \t");
  return nFirst == kNone ? Text() : text.substr(nFirst, text.find_last_not_of(" \t") + 1 - nFirst);
}
