#include "tools/devsim/TagReader.h"

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

bool IsNameStart(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

bool IsNameChar(char c) {
  return IsNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == ':';
}

}  // namespace

bool CTagReader::Accept(char cWanted) {
  if (m_nPos >= m_text.size() || m_text[m_nPos] != cWanted) return false;
  ++m_nPos;
  return true;
}

void CTagReader::SkipBlanks() {
  while (m_nPos < m_text.size() && IsBlank(m_text[m_nPos])) ++m_nPos;
}

bool CTagReader::AtEnd() {
  SkipBlanks();
  return m_nPos == m_text.size();
}

std::string_view CTagReader::Name() {
  const size_t nStart = m_nPos;
  if (IsNameStart(Peek()))
    while (m_nPos < m_text.size() && IsNameChar(m_text[m_nPos])) ++m_nPos;
  return m_text.substr(nStart, m_nPos - nStart);
}

bool CTagReader::Attribute(stTag& tag) {
  stTagAttr attr;
  attr.name = Name();
  SkipBlanks();
  if (attr.name.empty() || !Accept('=')) return false;
  SkipBlanks();
  const char cQuote = Peek();
  if ((cQuote != '"' && cQuote != '\'') || !Accept(cQuote)) return false;
  const size_t nEnd = m_text.find(cQuote, m_nPos);
  if (nEnd == std::string_view::npos) return false;
  attr.value = m_text.substr(m_nPos, nEnd - m_nPos);
  m_nPos = nEnd + 1;
  tag.attrs.push_back(attr);
  return true;
}

int CTagReader::Finish(stTag& tag) {
  for (;;) {
    SkipBlanks();
    if (Accept('>')) return 0;
    if (tag.kind == stTag::Kind::kClose) return -1;
    if (Accept('/')) {
      tag.kind = stTag::Kind::kEmpty;
      return Accept('>') ? 0 : -1;
    }
    if (!Attribute(tag)) return -1;
  }
}

int CTagReader::Next(stTag& tag) {
  m_nPos = m_text.find('<', m_nPos);
  if (m_nPos == std::string_view::npos) {
    m_nPos = m_text.size();
    return 1;
  }
  ++m_nPos;
  tag.kind = Accept('/') ? stTag::Kind::kClose : stTag::Kind::kOpen;
  tag.attrs.clear();
  tag.name = Name();
  return tag.name.empty() ? -1 : Finish(tag);
}

int CheckNesting(std::string_view text, int nMaxDepth) {
  CTagReader reader(text);
  stTag tag;
  std::vector<std::string_view> open;
  do {
    if (reader.Next(tag) != 0) return -1;
    if (tag.kind == stTag::Kind::kClose) {
      if (open.empty() || open.back() != tag.name) return -1;
      open.pop_back();
      continue;
    }
    if (open.size() >= static_cast<size_t>(nMaxDepth)) return -1;
    if (tag.kind == stTag::Kind::kOpen) open.push_back(tag.name);
  } while (!open.empty());
  return reader.AtEnd() ? 0 : -1;
}
