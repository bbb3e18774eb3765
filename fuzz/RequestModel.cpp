#include "fuzz/RequestModel.h"

#include <algorithm>
#include <vector>

#include "fuzz/HttpWords.h"

namespace {

constexpr Text kLineEnd = "\r\n";
constexpr Text kHeadEnd = "\r\n\r\n";

struct stLine {
  std::string strName;  // in small letters
  Text value;
};

struct stRequestHead {
  Text method;
  Text target;
  bool bOld = false;  // HTTP/1.0
  std::vector<stLine> lines;

  std::vector<Text> Values(Text name) const {
    std::vector<Text> values;
    for (const stLine& line : lines) {
      if (line.strName == name) values.push_back(line.value);
    }
    return values;
  }
};

// ---- Where the house deliberately asks for more than the standard, or for less.

// Longer heads are refused, and as much between two pieces of a body in chunks: nobody else bounds
// what a client makes the service hold.
constexpr size_t kMostHead = 8191;
constexpr size_t kMostBody = 1 << 20;
constexpr size_t kMostLines = 100;

// Other methods ask for what a server like this does not do, CONNECT included.
constexpr Text kMethods[] = {
    "GET",      "HEAD",       "POST",       "PUT",         "DELETE", "OPTIONS", "TRACE",
    "PATCH",    "COPY",       "MOVE",       "LOCK",        "UNLOCK", "MKCOL",   "PROPFIND",
    "SEARCH",   "PROPPATCH",  "BIND",       "UNBIND",      "REBIND", "ACL",     "REPORT",
    "MERGE",    "CHECKOUT",   "NOTIFY",     "SUBSCRIBE",   "LINK",   "UNLINK",  "PURGE",
    "M-SEARCH", "MKACTIVITY", "MKCALENDAR", "UNSUBSCRIBE",
};

// A body whose length nobody tells may be half a body: no set is carried out with one.
bool LacksLength(const stRequestHead& head, bool bHasBody) {
  return !bHasBody && (head.method == "POST" || head.method == "PUT");
}

// Bytes that a target should escape and browsers do not, so that the pages' own requests pass.
bool IsTargetByte(char c) { return c > ' ' && c < 0x7F && c != '#'; }

// A length that is told twice is refused even when it is the same; so is any coding but the one
// that everybody knows, and a list with it.
bool IsOneLength(const std::vector<Text>& values) {
  return values.size() == 1 && IsNumber(values.front());
}
bool IsOneCoding(const std::vector<Text>& values) {
  return values.size() == 1 && Small(values.front()) == "chunked";
}

// The fields that tell where a body ends. A TAB behind their value is a blank that readers differ
// about. Behind a body in chunks they have no place: ignored, but refused when they are not right.
bool IsFraming(const stLine& line) {
  return line.strName == "content-length" || line.strName == "transfer-encoding";
}

// An expectation that the service does not meet; a client of HTTP/1.0 cannot have one.
bool ExpectsMore(const stRequestHead& head) {
  const std::vector<Text> values = head.Values("expect");
  return !head.bOld && std::any_of(values.begin(), values.end(),
                                   [](Text value) { return Small(value) != "100-continue"; });
}

// Extensions of a chunk have no meaning here, so that what does not leave its line is ignored, be
// it well-formed or not.
bool AreExtensions(Text text) {
  return text.empty() || (StartsWith(TrimBlanks(text), ";") && IsFieldText(text));
}

// ---- The head.

bool IsTarget(Text method, Text target) {
  if (target == "*") return method == "OPTIONS";
  if (!std::all_of(target.begin(), target.end(), IsTargetByte)) return false;
  if (StartsWith(target, "/")) return true;
  const std::string strScheme = Small(Take(target, "://"));
  const Text authority = target.substr(0, target.find_first_of("/?"));
  return (strScheme == "http" || strScheme == "https") && !authority.empty() &&
         IsAuthority(authority);
}

bool ReadRequestLine(Text line, stRequestHead& head) {
  head.method = Take(line, " ");
  head.target = Take(line, " ");
  head.bOld = line == "HTTP/1.0";
  return line.size() == 8 && StartsWith(line, "HTTP/1.") && IsNumber(line.substr(7)) &&
         std::find(std::begin(kMethods), std::end(kMethods), head.method) != std::end(kMethods) &&
         IsTarget(head.method, head.target);
}

bool ReadFieldLine(Text line, stLine& field) {
  if (line.find(':') == kNone) return false;
  const Text name = Take(line, ":");
  field = {Small(name), TrimBlanks(line)};
  return IsToken(name) && IsFieldText(line);
}

bool ReadHead(Text text, stRequestHead& head) {
  if (!ReadRequestLine(Take(text, kLineEnd), head)) return false;
  while (!text.empty()) {
    const Text line = Take(text, kLineEnd);
    stLine field;
    if (!ReadFieldLine(line, field)) return false;
    if (IsFraming(field) && line.back() == '\t') return false;
    head.lines.push_back(std::move(field));
  }
  return head.lines.size() <= kMostLines;
}

bool AreHostsRight(const stRequestHead& head) {
  const std::vector<Text> hosts = head.Values("host");
  // None at all is served: scripts in the field send none.
  return hosts.empty() || (hosts.size() == 1 && IsAuthority(hosts.front()));
}

// ---- The body.

// Digits of any base up to 16; kMostBody + 1 for all numbers beyond it.
size_t ToNumber(Text digits, size_t nBase) {
  size_t nNumber = 0;
  for (const char c : digits) {
    const auto nDigit = static_cast<size_t>(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
    nNumber = std::min(nNumber * nBase + nDigit, kMostBody + 1);
  }
  return nNumber;
}

stModelRequest Found(Verdict verdict, size_t nLength) {
  stModelRequest request;
  request.verdict = verdict;
  request.nLength = nLength;
  return request;
}

stModelRequest Refused() { return Found(Verdict::kRefused, 0); }

stModelRequest InBody() {
  stModelRequest request;
  request.bInBody = true;
  return request;
}

// Ends the reading of what has arrived at a place from which on a bounded number of bytes may come.
stModelRequest Incomplete(Text received, size_t nMost) {
  return Found(received.size() > nMost ? Verdict::kRefused : Verdict::kPartial, 0);
}

// The size of a chunk from its line, kNone for one that is not well-formed.
size_t ChunkSize(Text line) {
  const size_t nDigits = std::min(line.find_first_not_of("0123456789abcdefABCDEF"), line.size());
  if (nDigits == 0 || !AreExtensions(line.substr(nDigits))) return kNone;
  return ToNumber(line.substr(0, nDigits), 16);
}

bool AreTrailers(Text text, bool& bMayRefuse) {
  stLine field;
  while (!text.empty()) {
    if (!ReadFieldLine(Take(text, kLineEnd), field)) return false;
    bMayRefuse |= IsFraming(field);
  }
  return true;
}

// Reads the last lines of a body in chunks, from nAt on, of which none may end beyond nMost.
stModelRequest ReadTrailer(Text received, size_t nAt, size_t nMost, bool& bMayRefuse) {
  const Text window = received.substr(0, nMost);
  const bool bNone = StartsWith(window.substr(nAt), kLineEnd);
  const size_t nEnd = bNone ? nAt : window.find(kHeadEnd, nAt);
  if (nEnd == kNone) return Incomplete(received, nMost);
  if (!bNone && !AreTrailers(window.substr(nAt, nEnd - nAt), bMayRefuse)) return Refused();
  return Found(Verdict::kWhole, nEnd + (bNone ? kLineEnd : kHeadEnd).size());
}

// Reads a body in chunks from behind the head on, into strBody.
stModelRequest ReadChunks(Text received, size_t nHead, std::string& strBody, bool& bMayRefuse) {
  for (size_t nAt = nHead;;) {
    const size_t nMost = std::min(nAt + kMostHead, nHead + kMostBody);
    if (nAt > nHead) {
      if (received.size() < nAt + 2) return Incomplete(received, nMost);
      if (received.substr(nAt, 2) != kLineEnd) return Refused();
      nAt += 2;
    }
    const size_t nLineEnd = received.substr(0, nMost).find(kLineEnd, nAt);
    if (nLineEnd == kNone) return Incomplete(received, nMost);
    const size_t nSize = ChunkSize(received.substr(nAt, nLineEnd - nAt));
    nAt = nLineEnd + 2;
    if (nSize == 0) return ReadTrailer(received, nAt, nMost, bMayRefuse);
    if (nSize == kNone || nSize > kMostBody - strBody.size()) return Refused();
    if (nAt == nMost) return Incomplete(received, nMost);
    if (received.size() < nAt + nSize) return InBody();
    strBody += received.substr(nAt, nSize);
    nAt += nSize;
  }
}

stModelRequest ReadPlainBody(Text received, size_t nHead, size_t nBody) {
  if (nBody > kMostBody) return Refused();
  if (received.size() < nHead + nBody) return InBody();
  stModelRequest request = Found(Verdict::kWhole, nHead + nBody);
  request.strBody = received.substr(nHead, nBody);
  return request;
}

stModelRequest ReadCodedBody(Text received, size_t nHead) {
  std::string strBody;
  bool bMayRefuse = false;
  stModelRequest request = ReadChunks(received, nHead, strBody, bMayRefuse);
  request.strBody = std::move(strBody);
  request.bMayRefuse = bMayRefuse;
  return request;
}

stModelRequest ReadBody(Text received, size_t nHead, const stRequestHead& head) {
  const std::vector<Text> lengths = head.Values("content-length");
  const std::vector<Text> codings = head.Values("transfer-encoding");
  if (LacksLength(head, !lengths.empty() || !codings.empty())) return Refused();
  if (!codings.empty()) {
    const bool bRight = IsOneCoding(codings) && lengths.empty() && !head.bOld;
    return bRight ? ReadCodedBody(received, nHead) : Refused();
  }
  if (lengths.empty()) return ReadPlainBody(received, nHead, 0);
  return IsOneLength(lengths) ? ReadPlainBody(received, nHead, ToNumber(lengths.front(), 10))
                              : Refused();
}

}  // namespace

stModelRequest ReadModel(Text received) {
  const size_t nEnd = received.substr(0, kMostHead).find(kHeadEnd);
  if (nEnd == kNone) return Incomplete(received, kMostHead);
  stRequestHead head;
  if (!ReadHead(received.substr(0, nEnd), head)) return Refused();
  if (!AreHostsRight(head) || ExpectsMore(head)) return Refused();
  return ReadBody(received, nEnd + kHeadEnd.size(), head);
}
