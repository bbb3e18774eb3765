#include "fuzz/RequestModel.h"

#include <algorithm>
#include <vector>

#include "fuzz/HttpWords.h"

namespace {

constexpr Text kLineEnd = "\r\n";
constexpr Text kHeadEnd = "\r\n\r\n";

struct stLine {
  std::string strName;  // in lower case
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

// ---- Where we deliberately demand more than the standard, or less.

// Longer heads are refused, and so is as much between two chunks: nothing else limits what a client
// makes the service hold.
constexpr size_t kMostHead = 8191;
constexpr size_t kMostBody = 1 << 20;
constexpr size_t kMostLines = 100;

// Other methods, CONNECT included, ask for what this kind of server does not do.
constexpr Text kMethods[] = {
    "GET",      "HEAD",       "POST",       "PUT",         "DELETE", "OPTIONS", "TRACE",
    "PATCH",    "COPY",       "MOVE",       "LOCK",        "UNLOCK", "MKCOL",   "PROPFIND",
    "SEARCH",   "PROPPATCH",  "BIND",       "UNBIND",      "REBIND", "ACL",     "REPORT",
    "MERGE",    "CHECKOUT",   "NOTIFY",     "SUBSCRIBE",   "LINK",   "UNLINK",  "PURGE",
    "M-SEARCH", "MKACTIVITY", "MKCALENDAR", "UNSUBSCRIBE",
};

// A body of unknown length may be half a body: no set is executed with one.
bool LacksLength(const stRequestHead& head, bool bHasBody) {
  return !bHasBody && (head.method == "POST" || head.method == "PUT");
}

// Bytes that should be escaped in a target but that browsers send as they are; the pages' own
// requests must pass.
bool IsTargetByte(char c) { return c > ' ' && c < 0x7F && c != '#'; }

// A repeated length is refused even when both are equal. So is any coding other than "chunked", and
// any list with it.
bool IsOneLength(const std::vector<Text>& values) {
  return values.size() == 1 && IsNumber(values.front());
}
bool IsOneCoding(const std::vector<Text>& values) {
  return values.size() == 1 && Small(values.front()) == "chunked";
}

// The fields that say where a body ends. In the trailer of a chunked body they do not belong: they
// are ignored, but refused when malformed.
bool IsFraming(const stLine& line) {
  return line.strName == "content-length" || line.strName == "transfer-encoding";
}

// Parsers differ about a TAB after the value of such a field, also among blanks.
bool EndsWithTab(Text line) {
  return line.substr(line.find_last_not_of(" \t") + 1).find('\t') != kNone;
}

// An expectation that the service does not meet; an HTTP/1.0 client cannot have one.
bool ExpectsMore(const stRequestHead& head) {
  const std::vector<Text> values = head.Values("expect");
  return !head.bOld && std::any_of(values.begin(), values.end(),
                                   [](Text value) { return Small(value) != "100-continue"; });
}

// Chunk extensions have no meaning here, so anything up to the end of the line is ignored,
// well-formed or not.
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
    if (IsFraming(field) && EndsWithTab(line)) return false;
    head.lines.push_back(std::move(field));
  }
  return head.lines.size() <= kMostLines;
}

bool AreHostsRight(const stRequestHead& head) {
  const std::vector<Text> hosts = head.Values("host");
  // A request without Host is served: scripts in the field send none.
  return hosts.empty() || (hosts.size() == 1 && IsAuthority(hosts.front()));
}

// ---- The body.

// Digits of any base up to 16; kMostBody + 1 stands for all larger numbers.
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

// Limits what is read of the received bytes: from this place on only a bounded number may come.
stModelRequest Incomplete(Text received, size_t nMost) {
  return Found(received.size() > nMost ? Verdict::kRefused : Verdict::kPartial, 0);
}

// The size of a chunk from its line; kNone when malformed.
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

// Reads the trailer of a chunked body from nAt on; no line may end beyond nMost.
stModelRequest ReadTrailer(Text received, size_t nAt, size_t nMost, bool& bMayRefuse) {
  const Text window = received.substr(0, nMost);
  const bool bNone = StartsWith(window.substr(nAt), kLineEnd);
  const size_t nEnd = bNone ? nAt : window.find(kHeadEnd, nAt);
  if (nEnd == kNone) return Incomplete(received, nMost);
  if (!bNone && !AreTrailers(window.substr(nAt, nEnd - nAt), bMayRefuse)) return Refused();
  return Found(Verdict::kWhole, nEnd + (bNone ? kLineEnd : kHeadEnd).size());
}

// Reads a chunked body, which begins after the head, into strBody.
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
