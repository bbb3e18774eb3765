#include "CBB/Http/RequestParse.h"

#include <algorithm>
#include <new>

#include "CBB/Http/LibraryMemory.h"

namespace {

constexpr std::string_view kHeadEnd = "\r\n\r\n";

bool EndsHead(std::string_view text) {
  return text.size() >= kHeadEnd.size() && text.substr(text.size() - kHeadEnd.size()) == kHeadEnd;
}

// The parser's callbacks. A text may come in several pieces, each starting where the one before
// ended. Nothing here throws, because the parser's C frames are on the stack.
struct stParserCalls {
  using stParse = stRequestParse;

  static stParse& Of(llhttp_t* pParser) { return *static_cast<stParse*>(pParser->data); }

  static int Refuse(stParse& parse, int nStatus) {
    parse.nRefusal = nStatus;
    return -1;
  }

  static void Extend(const stParse& parse, stSpan& span, const char* pAt, size_t nSize) {
    if (span.usSize == 0) span.usAt = static_cast<uint16_t>(pAt - parse.received.data());
    span.usSize = static_cast<uint16_t>(span.usSize + nSize);
  }

  static int OnTarget(llhttp_t* pParser, const char* pAt, size_t nSize) {
    Extend(Of(pParser), Of(pParser).target, pAt, nSize);
    return 0;
  }

  static int OnVersion(llhttp_t* pParser) {
    if (pParser->http_major != 1) return Refuse(Of(pParser), pParser->http_major == 0 ? 400 : 505);
    // After this one the parser waits for another protocol to begin.
    return pParser->method == HTTP_PRI ? Refuse(Of(pParser), 501) : 0;
  }

  // Trailer fields of a chunked body are read and dropped.
  static bool IsTrailer(const stParse& parse) { return parse.nHead != 0; }

  static int OnFieldName(llhttp_t* pParser, const char* pAt, size_t nSize) {
    stParse& parse = Of(pParser);
    if (IsTrailer(parse)) return 0;
    if (parse.nFields == kMaxFieldLines) return Refuse(parse, 431);
    Extend(parse, parse.names[parse.nFields], pAt, nSize);
    return 0;
  }

  static int OnFieldValue(llhttp_t* pParser, const char* pAt, size_t nSize) {
    stParse& parse = Of(pParser);
    if (!IsTrailer(parse)) Extend(parse, parse.values[parse.nFields], pAt, nSize);
    return 0;
  }

  static int OnFieldEnd(llhttp_t* pParser) {
    stParse& parse = Of(pParser);
    if (IsTrailer(parse)) return 0;
    stSpan& value = parse.values[parse.nFields];
    const std::string_view text = value.In(parse.received.data());
    value.usSize = static_cast<uint16_t>(text.find_last_not_of(" \t") + 1);
    parse.BeginField(parse.nFields + 1);
    return 0;
  }

  static int OnHead(llhttp_t* pParser) {
    stParse& parse = Of(pParser);
    // The parser is fed up to the end of the head, if that is there.
    if (!EndsHead(parse.Head(parse.nUpTo))) return Refuse(parse, 400);
    parse.nHead = parse.nUpTo;
    parse.bHasLength = (pParser->flags & F_CONTENT_LENGTH) != 0;
    parse.bChunked = parse.bSizeLine = (pParser->flags & F_CHUNKED) != 0;
    pParser->upgrade = 0;  // upgrades are not supported
    const int nStatus = Judge(parse);
    return nStatus == 0 ? 0 : Refuse(parse, nStatus);
  }

  static int Judge(stParse& parse) {
    static stFieldLine s_fields[kMaxFieldLines];  // not cleared for each request
    for (size_t i = 0; i < parse.nFields; ++i) {
      s_fields[i] = parse.Field(i, parse.received.data());
      if (IsSameName(s_fields[i].name, "Expect")) parse.bExpects = parse.parser.http_minor > 0;
    }
    stHead head;
    head.text = parse.Head();
    head.method = parse.Method();
    head.target = parse.target.In(parse.received.data());
    head.pFields = s_fields;
    head.nFields = parse.nFields;
    head.nMinor = parse.parser.http_minor;
    head.bHasLength = parse.bHasLength;
    head.nLength = parse.parser.content_length;
    head.bChunked = parse.bChunked;
    parse.bKeepsOpen = KeepsOpen(head);
    return JudgeHead(head);
  }

  // A chunk that would make the body too long is refused before it arrives.
  static int OnChunk(llhttp_t* pParser) {
    stParse& parse = Of(pParser);
    parse.bSizeLine = false;
    parse.bLastChunk = pParser->content_length == 0;
    const uint64_t nMost = kMaxBodyBytes - parse.strBody.size();
    return pParser->content_length <= nMost ? 0 : Refuse(parse, 413);
  }

  static int OnBody(llhttp_t* pParser, const char* pAt, size_t nSize) {
    stParse& parse = Of(pParser);
    parse.nBodyEnd = static_cast<size_t>(pAt - parse.received.data()) + nSize;
    if (!parse.bChunked) return 0;
    try {
      parse.strBody.append(pAt, nSize);
    } catch (const std::bad_alloc&) {
      NoteMemoryShortage();
      return Refuse(parse, 503);
    }
    return 0;
  }

  // The next chunk's size line is checked before the parser gets it.
  static int OnChunkEnd(llhttp_t* pParser) {
    stParse& parse = Of(pParser);
    if (parse.bLastChunk) return 0;
    parse.bSizeLine = true;
    return HPE_PAUSED;
  }

  // The bytes that follow belong to the next request, which is read separately.
  static int OnEnd(llhttp_t* pParser) {
    Of(pParser).bEnded = true;
    return HPE_PAUSED;
  }

  static llhttp_settings_t Settings() {
    llhttp_settings_t settings;
    llhttp_settings_init(&settings);
    settings.on_url = &OnTarget;
    settings.on_version_complete = &OnVersion;
    settings.on_header_field = &OnFieldName;
    settings.on_header_value = &OnFieldValue;
    settings.on_header_value_complete = &OnFieldEnd;
    settings.on_headers_complete = &OnHead;
    settings.on_chunk_header = &OnChunk;
    settings.on_chunk_complete = &OnChunkEnd;
    settings.on_body = &OnBody;
    settings.on_message_complete = &OnEnd;
    return settings;
  }
};

}  // namespace

stRequestParse::stRequestParse() {
  static const llhttp_settings_t s_settings = stParserCalls::Settings();
  llhttp_init(&parser, HTTP_REQUEST, &s_settings);
  // Our own rules decide which versions and codings are accepted, with a status for each.
  parser.lenient_flags = LENIENT_VERSION | LENIENT_TRANSFER_ENCODING;
  parser.data = this;
  BeginField(0);
}

void stRequestParse::BeginField(size_t i) {
  nFields = i;
  names[i] = values[i] = {};
}

size_t stRequestParse::Limit() const {
  if (nHead == 0) return kMaxHeadBytes;
  const size_t nBody = nHead + kMaxBodyBytes;
  return bChunked ? std::min(nBody, std::max(nHead, nBodyEnd) + kMaxHeadBytes) : nBody;
}

int stRequestParse::LimitStatus() const {
  if (nHead != 0) return nFed < nHead + kMaxBodyBytes ? 431 : 413;
  return Head(nFed).find('\n') == std::string_view::npos ? 414 : 431;
}

int stRequestParse::RefusalFor(int nError) const {
  if (nRefusal != 0) return nRefusal;
  // A plain number, but too large for the parser.
  const bool bTooLong = nError == HPE_INVALID_CONTENT_LENGTH &&
                        std::string_view(parser.reason).find("overflow") != std::string_view::npos;
  return bTooLong ? 413 : 400;
}

size_t stRequestParse::UpTo(size_t nEnd) const {
  const std::string_view there = received.substr(0, nEnd);
  if (nHead == 0) {
    const size_t nFrom = nFed - std::min(nFed, kHeadEnd.size() - 1);
    const size_t nAt = there.find(kHeadEnd, nFrom);
    return nAt == std::string_view::npos ? nEnd : nAt + kHeadEnd.size();
  }
  if (!bSizeLine) return nEnd;
  const size_t nNext = there.find_first_not_of(" \t", nFed);
  if (nNext == std::string_view::npos || there[nNext] == ';') return nFed;
  const size_t nDigits = there.find_first_not_of("0123456789abcdefABCDEF", nFed);
  return nDigits > nFed ? std::min(nDigits, nEnd) : nEnd;
}

std::string_view stRequestParse::BehindBody() const {
  const size_t nFrom = std::max(nHead, nBodyEnd);
  return received.substr(nFrom, nLength - nFrom);
}
