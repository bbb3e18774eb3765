#include "CBB/Http/HeadRules.h"

#include <algorithm>
#include <cctype>

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr size_t kVersionSize = 8;  // "HTTP/1.1"

// The ASCII letters, the digits and some more bytes.
class CByteSet {
 public:
  constexpr explicit CByteSet(std::string_view others) {
    for (char c = '0'; c <= '9'; ++c) Add(c);
    for (char c = 'A'; c <= 'Z'; ++c) Add(c);
    for (char c = 'a'; c <= 'z'; ++c) Add(c);
    for (const char c : others) Add(c);
  }
  constexpr bool Has(char c) const { return m_bHas[static_cast<unsigned char>(c)]; }

 private:
  constexpr void Add(char c) { m_bHas[static_cast<unsigned char>(c)] = true; }

  bool m_bHas[256] = {};
};

constexpr CByteSet kTokenBytes("!#$%&'*+-.^_`|~");
constexpr CByteSet kHostBytes("-._~%!$&'()*+,;=:[]");

bool IsTokenByte(char c) { return kTokenBytes.Has(c); }

std::string_view Trim(std::string_view text) {
  const size_t nFirst = text.find_first_not_of(" \t");
  if (nFirst == std::string_view::npos) return {};
  return text.substr(nFirst, text.find_last_not_of(" \t") - nFirst + 1);
}

// Takes the next element off a comma-separated list.
std::string_view TakeElement(std::string_view& list) {
  const size_t nComma = std::min(list.find(','), list.size());
  const std::string_view element = Trim(list.substr(0, nComma));
  list.remove_prefix(std::min(nComma + 1, list.size()));
  return element;
}

// Exactly "method target HTTP/1.x": the parser also accepts extra spaces and other protocols.
bool IsRequestLine(const stHead& head) {
  const size_t nTarget = head.method.size() + 1;
  const size_t nVersion = nTarget + head.target.size() + 1;
  return head.text.find(kLineEnd) == nVersion + kVersionSize &&
         head.text.data() + nTarget == head.target.data() &&
         head.text.substr(nVersion, 5) == "HTTP/";
}

bool IsTarget(const stHead& head) {
  const std::string_view target = head.target;
  if (target.find('#') != std::string_view::npos) return false;
  if (target == "*") return head.method == "OPTIONS";
  if (target.empty() || target.front() == '/') return !target.empty();
  const size_t nHost = target.find("://");
  if (nHost == std::string_view::npos) return false;
  const std::string_view scheme = target.substr(0, nHost);
  const std::string_view host = target.substr(nHost + 3, PathBegin(target) - nHost - 3);
  return (IsSameName(scheme, "http") || IsSameName(scheme, "https")) && !host.empty() &&
         host.find('@') == std::string_view::npos;
}

// Judges the codings of all Transfer-Encoding lines together: 0, or the status to refuse with.
int JudgeCodings(const stHead& head) {
  int nLines = 0, nChunked = 0;
  for (size_t i = 0; i < head.nFields; ++i) {
    if (!IsSameName(head.pFields[i].name, "Transfer-Encoding")) continue;
    ++nLines;
    if (head.pFields[i].value.empty()) return 400;
    for (std::string_view list = head.pFields[i].value; !list.empty();) {
      const std::string_view coding = TakeElement(list);
      if (coding.empty()) return 400;
      if (!IsSameName(coding, "chunked")) return 501;
      ++nChunked;
    }
  }
  if (nLines == 0) return head.bChunked ? 400 : 0;
  return nChunked == 1 && head.bChunked && !head.bHasLength && head.nMinor > 0 ? 0 : 400;
}

int JudgeBody(const stHead& head) {
  if (const int nStatus = JudgeCodings(head)) return nStatus;
  const bool bNeedsBody = head.method == "POST" || head.method == "PUT";
  if (bNeedsBody && !head.bHasLength && !head.bChunked) return 411;
  return head.bHasLength && head.nLength > kMaxBodyBytes ? 413 : 0;
}

// Host and port, or nothing.
bool IsHost(std::string_view value) {
  return std::all_of(value.begin(), value.end(), [](char c) { return kHostBytes.Has(c); });
}

int JudgeFields(const stHead& head) {
  int nHosts = 0, nStatus = 0;
  for (size_t i = 0; i < head.nFields; ++i) {
    const stFieldLine& field = head.pFields[i];
    if (IsSameName(field.name, "Host")) nHosts += IsHost(field.value) ? 1 : 2;
    // HTTP/1.0 has no transfer codings.
    if (head.nMinor > 0 && IsSameName(field.name, "Expect") &&
        !IsSameName(field.value, "100-continue"))
      nStatus = 417;
  }
  return nHosts > 1 ? 400 : nStatus;
}

// Methods that the parser knows but that ask for something other than a reply.
bool IsForeignMethod(std::string_view method) {
  return method == "CONNECT" || method == "PRI" || method == "SOURCE";
}

// "HTTP/d.d", as far as it has arrived.
bool MayBeVersion(std::string_view text) {
  constexpr std::string_view kShape = "HTTP/0.0";
  for (size_t i = 0; i < text.size(); ++i) {
    if (i >= kShape.size()) return false;
    const bool bDigit = isdigit(static_cast<unsigned char>(text[i])) != 0;
    if (kShape[i] == '0' ? !bDigit : text[i] != kShape[i]) return false;
  }
  return true;
}

}  // namespace

bool AreLinesWhole(std::string_view text) {
  for (size_t nEnd = text.find('\n'); nEnd != std::string_view::npos;
       nEnd = text.find('\n', nEnd + 1)) {
    if (nEnd == 0 || text[nEnd - 1] != '\r') return false;
    const char cNext = nEnd + 1 < text.size() ? text[nEnd + 1] : '\r';
    if (cNext == ' ' || cNext == '\t' || cNext == ':') return false;
  }
  return true;
}

bool HasListElement(std::string_view list, std::string_view element) {
  while (!list.empty()) {
    if (IsSameName(TakeElement(list), element)) return true;
  }
  return false;
}

size_t PathBegin(std::string_view target) {
  const bool bAbsolute = !target.empty() && target.front() != '/';
  const size_t nHost = bAbsolute ? target.find("://") : std::string_view::npos;
  if (nHost == std::string_view::npos) return 0;
  return std::min(target.find_first_of("/?", nHost + 3), target.size());
}

bool KeepsOpen(const stHead& head) {
  bool bClose = false, bKeep = head.nMinor > 0;
  for (size_t i = 0; i < head.nFields; ++i) {
    if (!IsSameName(head.pFields[i].name, "Connection")) continue;
    bClose |= HasListElement(head.pFields[i].value, "close");
    bKeep |= HasListElement(head.pFields[i].value, "keep-alive");
  }
  return bKeep && !bClose;
}

int JudgeHead(const stHead& head) {
  if (!AreLinesWhole(head.text) || !IsRequestLine(head)) return 400;
  if (IsForeignMethod(head.method)) return 501;
  if (!IsTarget(head)) return 400;
  const int nFields = JudgeFields(head);
  if (nFields == 400) return nFields;
  const int nBody = JudgeBody(head);
  return nBody != 0 ? nBody : nFields;
}

int JudgeUnknownMethod(std::string_view line) {
  const size_t nMethod =
      static_cast<size_t>(std::find_if_not(line.begin(), line.end(), IsTokenByte) - line.begin());
  if (nMethod == line.size()) return 0;
  if (nMethod == 0 || line[nMethod] != ' ') return 400;
  std::string_view rest = line.substr(nMethod + 1);
  const size_t nTarget = static_cast<size_t>(
      std::find_if(rest.begin(), rest.end(), [](char c) { return c <= ' ' || c == 0x7F; }) -
      rest.begin());
  if (nTarget == rest.size()) return 0;
  if (nTarget == 0 || rest[nTarget] != ' ') return 400;
  rest.remove_prefix(nTarget + 1);
  if (!MayBeVersion(rest.substr(0, kVersionSize))) return 400;
  if (rest.size() > kVersionSize && rest[kVersionSize] != '\r') return 400;
  if (rest.size() <= kVersionSize + 1) return 0;
  if (rest[kVersionSize + 1] != '\n' || rest[5] == '0') return 400;
  return rest[5] == '1' ? 501 : 505;
}
