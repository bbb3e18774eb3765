#include "control/XmlText.h"

#include <cassert>
#include <cctype>
#include <cstring>
#include <memory>
#include <new>

namespace {

// A cut multi-byte sequence makes the parser step over the terminator; no sequence is longer than
// this.
constexpr size_t kPadding = 8;

bool HasUtf8Mark(const char* pszText) { return strncmp(pszText, "\xEF\xBB\xBF", 3) == 0; }

// Measures nesting with the parser's own lexical functions, so that both see the same tags in every
// encoding. It parses only elements, in a loop; other nodes cannot nest. One object measures one
// text.
class CDepthProbe : private TiXmlDocument {
 public:
  // True when the parser would recurse deeper than kXmlDepthMax. Measuring may stop where the
  // parser stops with an error.
  bool IsTooDeep(const char* pszText);
  // The text without the content of its outermost elements.
  std::string Outermost(const char* pszText);

 private:
  const char* Begin(const char* pszText);
  const char* Step(const char* p);
  const char* OpenElement(const char* p);
  const char* CloseElement(const char* p);
  void LearnEncoding(TiXmlNode& node);

  TiXmlEncoding m_encoding = TIXML_ENCODING_UNKNOWN;
  int m_nDepth = 0;
  int m_nDeepest = 0;
};

const char* CDepthProbe::Begin(const char* pszText) {
  if (HasUtf8Mark(pszText)) m_encoding = TIXML_ENCODING_UTF8;
  return SkipWhiteSpace(pszText, m_encoding);
}

bool CDepthProbe::IsTooDeep(const char* pszText) {
  const char* p = Begin(pszText);
  while (p != nullptr && *p && m_nDeepest <= kXmlDepthMax) {
    p = Step(p);
    // Not in the same call as the step, which may have found the encoding.
    p = SkipWhiteSpace(p, m_encoding);
  }
  return m_nDeepest > kXmlDepthMax;
}

std::string CDepthProbe::Outermost(const char* pszText) {
  const char* p = Begin(pszText);
  std::string strOutermost(pszText, p != nullptr ? p : pszText);
  while (p != nullptr && *p) {
    const bool bInside = m_nDepth > 0;
    const char* const pNext = Step(p);
    // After the point where the parser stops nothing matters.
    if (!bInside) strOutermost.append(p, pNext != nullptr ? pNext : p + strlen(p));
    if (!bInside && m_nDepth > 0 && pNext != nullptr)
      strOutermost.insert(strOutermost.size() - 1, "/");
    p = SkipWhiteSpace(pNext, m_encoding);
  }
  return strOutermost;
}

// Steps over one tag, text or other node. Returns null where the parser stops.
const char* CDepthProbe::Step(const char* p) {
  if (m_nDepth > 0 && *p != '<') {
    TiXmlText text("");
    return text.Parse(p, nullptr, m_encoding);
  }
  if (m_nDepth > 0 && p[1] == '/') return CloseElement(p);
  const std::unique_ptr<TiXmlNode> pNode(Identify(p, m_encoding));
  if (pNode == nullptr) return nullptr;
  if (pNode->ToElement() != nullptr) return OpenElement(p);
  p = pNode->Parse(p, nullptr, m_encoding);
  if (m_nDepth == 0) LearnEncoding(*pNode);
  return p;
}

// Steps over a start tag or an empty-element tag.
const char* CDepthProbe::OpenElement(const char* p) {
  if (++m_nDepth > m_nDeepest) m_nDeepest = m_nDepth;
  TIXML_STRING name;
  p = ReadName(SkipWhiteSpace(p + 1, m_encoding), &name, m_encoding);
  while (p != nullptr && *p) {
    p = SkipWhiteSpace(p, m_encoding);
    if (p == nullptr || !*p) return nullptr;
    if (*p == '>') return p + 1;
    if (*p == '/') {
      --m_nDepth;
      return p[1] == '>' ? p + 2 : nullptr;
    }
    TiXmlAttribute attribute;
    p = attribute.Parse(p, nullptr, m_encoding);
  }
  return nullptr;
}

// Steps over an end tag. Its name is not checked: the parser stops at a wrong one.
const char* CDepthProbe::CloseElement(const char* p) {
  --m_nDepth;
  TIXML_STRING name;
  p = SkipWhiteSpace(ReadName(p + 2, &name, m_encoding), m_encoding);
  return p != nullptr && *p == '>' ? p + 1 : nullptr;
}

// The first declaration sets the encoding of what follows, by the parser's rule.
void CDepthProbe::LearnEncoding(TiXmlNode& node) {
  const TiXmlDeclaration* const pDecl = node.ToDeclaration();
  if (pDecl == nullptr || m_encoding != TIXML_ENCODING_UNKNOWN) return;
  const char* const pszName = pDecl->Encoding();
  const bool bUtf8 = *pszName == 0 || StringEqual(pszName, "UTF-8", true, TIXML_ENCODING_UNKNOWN) ||
                     StringEqual(pszName, "UTF8", true, TIXML_ENCODING_UNKNOWN);
  m_encoding = bUtf8 ? TIXML_ENCODING_UTF8 : TIXML_ENCODING_LEGACY;
}

// The first ">" after a start tag's "<", or null when it might be part of a value. It is not when
// only paired double quotes come before it. A quote that neither opens nor closes a value stops the
// parser, and so does anything else here that is not a tag, so no element is missed.
const char* PlainTagEnd(const char* p) {
  const char* const pEnd = strchr(p, '>');
  if (pEnd == nullptr || memchr(p, '\'', static_cast<size_t>(pEnd - p)) != nullptr) return nullptr;
  bool bInValue = false;
  while (const void* const pQuote = memchr(p, '"', static_cast<size_t>(pEnd - p))) {
    p = static_cast<const char*>(pQuote) + 1;
    bInValue = !bInValue;
  }
  return bInValue ? nullptr : pEnd;
}

bool BeginsName(char c) { return c == '_' || (c > 0 && isalpha(c) != 0); }

// True when the text consists of plain elements and text, none nested too deeply. What devices
// really send passes here without building anything.
bool IsPlainAndFlat(const char* pszText) {
  if (HasUtf8Mark(pszText)) return false;
  int nDepth = 0;
  for (const char* p = strchr(pszText, '<'); p != nullptr; p = strchr(p, '<')) {
    ++p;
    if (*p == '/') {
      if (--nDepth < 0) return false;
      continue;
    }
    if (!BeginsName(*p)) return false;
    p = PlainTagEnd(p);
    if (p == nullptr) return false;
    if (p[-1] != '/' && ++nDepth >= kXmlDepthMax) return false;
  }
  return true;
}

}  // namespace

int ParseXml(TiXmlDocument& doc, const char* pszText) {
  assert(pszText != nullptr);
  doc.Clear();
  // Rows and columns are never used, and older builds of the parser loop forever counting them in a
  // text that is cut inside a character.
  doc.SetTabSize(0);
  const size_t nLen = strlen(pszText);
  const std::unique_ptr<char[]> pCopy(new (std::nothrow) char[nLen + kPadding]);
  if (pCopy == nullptr) return -1;
  memcpy(pCopy.get(), pszText, nLen);
  memset(pCopy.get() + nLen, 0, kPadding);
  if (!IsPlainAndFlat(pCopy.get())) {
    CDepthProbe probe;
    if (probe.IsTooDeep(pCopy.get())) return -1;
  }
  doc.Parse(pCopy.get());
  return 0;
}

std::string OutermostXml(const char* pszText) {
  const std::string strPadded = std::string(pszText).append(kPadding, '\0');
  CDepthProbe probe;
  return probe.Outermost(strPadded.c_str());
}

size_t RootTagLength(const char* pszText) {
  if (pszText[0] != '<' || !BeginsName(pszText[1])) return 0;
  const char* const pEnd = PlainTagEnd(pszText + 1);
  // The parser looks for the end of an unfinished reference in what follows.
  if (pEnd == nullptr || memchr(pszText, '&', static_cast<size_t>(pEnd - pszText)) != nullptr)
    return 0;
  return static_cast<size_t>(pEnd - pszText) + 1;
}
