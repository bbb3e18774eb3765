#include "control/XmlText.h"

#include <array>
#include <cassert>
#include <cctype>
#include <cstring>
#include <memory>
#include <new>

namespace {

// The parser steps over a terminator that a cut multi-byte sequence promises to contain; no
// sequence is longer than this.
constexpr size_t kPadding = 8;

bool HasUtf8Mark(const char* pszText) { return !strncmp(pszText, "\xEF\xBB\xBF", 3); }

// Measures nesting with the parser's own lexical functions, so that both see the same tags in
// every encoding. Only elements are taken apart here, in a loop; the rest cannot nest.
class CDepthProbe : private TiXmlDocument {
 public:
  // True when the parser would go deeper than kXmlDepthMax. Where the parser stops with an error,
  // the measuring may stop too.
  bool IsTooDeep(const char* pszText);

 private:
  const char* Step(const char* p);
  const char* StepNode(const char* p);
  const char* OpenElement(const char* p);
  const char* CloseElement(const char* p);
  void LearnEncoding(TiXmlNode& node);

  TiXmlEncoding m_encoding = TIXML_ENCODING_UNKNOWN;
  int m_nDepth = 0;
  int m_nDeepest = 0;
};

bool CDepthProbe::IsTooDeep(const char* pszText) {
  if (HasUtf8Mark(pszText)) m_encoding = TIXML_ENCODING_UTF8;
  const char* p = SkipWhiteSpace(pszText, m_encoding);
  while (p && *p && m_nDeepest <= kXmlDepthMax) {
    p = Step(p);
    // Not in one call with the step, which may have learnt the encoding.
    p = SkipWhiteSpace(p, m_encoding);
  }
  return m_nDeepest > kXmlDepthMax;
}

// Steps over one tag, text or other node. Returns null where the parser stops.
const char* CDepthProbe::Step(const char* p) {
  if (m_nDepth > 0 && *p != '<') {
    TiXmlText text("");
    return text.Parse(p, nullptr, m_encoding);
  }
  if (m_nDepth > 0 && p[1] == '/') return CloseElement(p);
  return StepNode(p);
}

const char* CDepthProbe::StepNode(const char* p) {
  const std::unique_ptr<TiXmlNode> pNode(Identify(p, m_encoding));
  if (!pNode) return nullptr;
  if (pNode->ToElement()) return OpenElement(p);
  p = pNode->Parse(p, nullptr, m_encoding);
  if (m_nDepth == 0) LearnEncoding(*pNode);
  return p;
}

// Steps over a start tag or an empty-element tag.
const char* CDepthProbe::OpenElement(const char* p) {
  if (++m_nDepth > m_nDeepest) m_nDeepest = m_nDepth;
  TIXML_STRING name;
  p = ReadName(SkipWhiteSpace(p + 1, m_encoding), &name, m_encoding);
  while (p && *p) {
    p = SkipWhiteSpace(p, m_encoding);
    if (!p || !*p) return nullptr;
    if (*p == '>') return p + 1;
    if (*p == '/') {
      m_nDepth--;
      return p[1] == '>' ? p + 2 : nullptr;
    }
    TiXmlAttribute attribute;
    p = attribute.Parse(p, nullptr, m_encoding);
  }
  return nullptr;
}

// Steps over an end tag. Its name is not compared: the parser stops at a wrong one.
const char* CDepthProbe::CloseElement(const char* p) {
  m_nDepth--;
  TIXML_STRING name;
  p = SkipWhiteSpace(ReadName(p + 2, &name, m_encoding), m_encoding);
  return p && *p == '>' ? p + 1 : nullptr;
}

// A first declaration fixes the encoding of what follows, by the parser's rule.
void CDepthProbe::LearnEncoding(TiXmlNode& node) {
  const TiXmlDeclaration* const pDecl = node.ToDeclaration();
  if (!pDecl || m_encoding != TIXML_ENCODING_UNKNOWN) return;
  const char* const pszName = pDecl->Encoding();
  const bool bUtf8 = !*pszName || StringEqual(pszName, "UTF-8", true, TIXML_ENCODING_UNKNOWN) ||
                     StringEqual(pszName, "UTF8", true, TIXML_ENCODING_UNKNOWN);
  m_encoding = bUtf8 ? TIXML_ENCODING_UTF8 : TIXML_ENCODING_LEGACY;
}

// Where a start tag's plain text ends, the terminator included. A table: strcspn takes longer to
// begin than most names are.
constexpr auto kTagStops = [] {
  std::array<bool, 256> stops{};
  for (const char c : "=\"'/<>") stops[static_cast<unsigned char>(c)] = true;
  return stops;
}();

// Steps over the rest of a start tag, from behind its "<": past "/>" (then bEmpty) or ">". Null for
// a tag that is not of names and quoted values alone.
const char* PlainTagEnd(const char* p, bool& bEmpty) {
  for (char cBefore = 0;; cBefore = *p++) {
    while (!kTagStops[static_cast<unsigned char>(*p)]) p++;
    bEmpty = *p == '/';
    if (*p == '>') return p + 1;
    if (bEmpty) return p[1] == '>' ? p + 2 : nullptr;
    if (*p == '=') continue;
    if (cBefore != '=' || (*p != '"' && *p != '\'')) return nullptr;
    p = strchr(p + 1, *p);
    if (!p) return nullptr;
  }
}

// True when the text is made of elements and text alone, in the plainest form, none nested too
// deep: what a device really sends is passed here without building anything.
bool IsPlainAndFlat(const char* pszText) {
  if (HasUtf8Mark(pszText)) return false;
  int nDepth = 0;
  for (const char* p = strchr(pszText, '<'); p; p = strchr(p, '<')) {
    p++;
    if (*p == '/') {
      if (--nDepth < 0) return false;
      continue;
    }
    if (*p != '_' && !(*p > 0 && isalpha(*p))) return false;
    bool bEmpty = false;
    p = PlainTagEnd(p, bEmpty);
    if (!p) return false;
    if (!bEmpty && ++nDepth >= kXmlDepthMax) return false;
  }
  return true;
}

// True when the text has few enough places where an element can begin at all.
bool HasFewElements(const char* pszText) {
  int nPlaces = 0;
  for (const char* p = strchr(pszText, '<'); p; p = strchr(p + 1, '<')) {
    const unsigned char c = static_cast<unsigned char>(p[1]);
    if (c >= 127 || c == '_' || isalpha(c)) nPlaces++;
  }
  return nPlaces <= kXmlDepthMax;
}

}  // namespace

int ParseXml(TiXmlDocument& doc, const char* pszText) {
  assert(pszText);
  doc.Clear();
  // Nobody asks for rows and columns, and older builds of the parser count them without end in a
  // text that is cut inside a character.
  doc.SetTabSize(0);
  const size_t nLen = strlen(pszText);
  const std::unique_ptr<char[]> pCopy(new (std::nothrow) char[nLen + kPadding]());
  if (!pCopy) return -1;
  memcpy(pCopy.get(), pszText, nLen);
  if (!HasFewElements(pCopy.get()) && !IsPlainAndFlat(pCopy.get())) {
    CDepthProbe probe;
    if (probe.IsTooDeep(pCopy.get())) return -1;
  }
  doc.Parse(pCopy.get());
  return 0;
}
