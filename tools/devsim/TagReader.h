// Reads the tags of a message one by one. The document need not be well-formed: a query leaves its
// section element open, so only the single tags give its names. Results are views into the text
// passed to the reader; it must not change meanwhile.
#pragma once

#include <stddef.h>

#include <string_view>
#include <vector>

struct stTagAttr {
  std::string_view name;
  std::string_view value;  // the raw text between the quotes, entities not resolved
};

struct stTag {
  enum class Kind { kOpen, kEmpty, kClose };  // <a>, <a/>, </a>
  Kind kind = Kind::kOpen;
  std::string_view name;
  std::vector<stTagAttr> attrs;
};

class CTagReader {
 public:
  explicit CTagReader(std::string_view text) : m_text(text) {}

  // Skips to the next "<" and reads the tag there. Returns 0 with the tag, 1 at the end of the
  // text, -1 when it is not an element's tag (comments, declarations and anything malformed
  // included).
  int Next(stTag& tag);

  // Whether only blanks are left.
  bool AtEnd();

 private:
  char Peek() const { return m_nPos < m_text.size() ? m_text[m_nPos] : '\0'; }
  bool Accept(char cWanted);
  void SkipBlanks();
  std::string_view Name();
  bool Attribute(stTag& tag);
  int Finish(stTag& tag);

  std::string_view m_text;
  size_t m_nPos = 0;
};

// Whether the text is one closed element with elements nested at most nMaxDepth deep, made of
// elements, quoted attributes and text only. Returns 0 when it is, -1 otherwise. The XML library
// recurses, so it gets only text that has passed this check.
int CheckNesting(std::string_view text, int nMaxDepth);
