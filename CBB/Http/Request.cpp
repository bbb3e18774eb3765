#include "CBB/Http/Request.h"

#include <llhttp/llhttp.h>

#include <algorithm>
#include <new>
#include <string>

#include "CBB/Http/HeadRules.h"
#include "CBB/Http/LibraryMemory.h"

namespace {

// A piece of the received bytes, which may move while a request arrives.
struct stSpan {
  uint16_t usAt = 0;
  uint16_t usSize = 0;

  std::string_view In(const char* pReceived) const { return {pReceived + usAt, usSize}; }
};

std::string_view TrimEnd(std::string_view text) {
  return text.substr(0, text.find_last_not_of(" \t") + 1);
}

mg_str ToLibrary(std::string_view text) { return {text.data(), text.size()}; }

}  // namespace

// A head is short, so two bytes tell where something is in it.
static_assert(kMaxHeadBytes <= UINT16_MAX, "a span's size");

struct CRequest::stParse {
  llhttp_t parser;
  std::string_view received;  // of the call under way
  size_t nFed = 0;
  size_t nHead = 0;    // bytes of the head; 0 as long as it is not there as a whole
  size_t nLength = 0;  // bytes of the whole request, once it is there
  size_t nBodyEnd = 0;
  int nRefusal = 0;
  bool bHasLength = false;
  bool bChunked = false;
  bool bExpects = false;
  bool bKeepsOpen = false;
  stSpan target;
  size_t nFields = 0;
  stSpan names[kMaxFieldLines];
  stSpan values[kMaxFieldLines];
  std::string strBody;  // a body in chunks, without their frames

  size_t Limit() const {
    if (nHead == 0) return kMaxHeadBytes;
    const size_t nBody = nHead + kMaxBodyBytes;
    return bChunked ? std::min(nBody, std::max(nHead, nBodyEnd) + kMaxHeadBytes) : nBody;
  }

  // Why no request is longer than Limit.
  int LimitStatus() const {
    if (nHead != 0) return nFed < nHead + kMaxBodyBytes ? 431 : 413;
    return Head(nFed).find('\n') == std::string_view::npos ? 414 : 431;
  }

  std::string_view Head(size_t nSize) const { return received.substr(0, nSize); }
  std::string_view Head() const { return Head(nHead); }
  std::string_view Method() const {
    return llhttp_method_name(static_cast<llhttp_method_t>(parser.method));
  }
  stField Field(size_t i, const char* pReceived) const {
    return {names[i].In(pReceived), TrimEnd(values[i].In(pReceived))};
  }
};

// What the parser calls. A piece of text may come in several pieces, each where the one before
// ended. Nothing here throws, as the parser's frames lie between.
struct stParserCalls {
  using stParse = CRequest::stParse;

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
    if (pParser->http_major == 1) return 0;
    return Refuse(Of(pParser), pParser->http_major == 0 ? 400 : 505);
  }

  // Fields behind a body in chunks are read and forgotten.
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
    if (!IsTrailer(parse)) ++parse.nFields;
    return 0;
  }

  static int OnHead(llhttp_t* pParser) {
    stParse& parse = Of(pParser);
    constexpr std::string_view kEnd = "\r\n\r\n";
    const size_t nEnd = parse.received.find(kEnd);
    if (nEnd == std::string_view::npos) return Refuse(parse, 400);
    parse.nHead = nEnd + kEnd.size();
    parse.bHasLength = (pParser->flags & F_CONTENT_LENGTH) != 0;
    parse.bChunked = (pParser->flags & F_CHUNKED) != 0;
    pParser->upgrade = 0;  // to another protocol: not here
    const int nStatus = Judge(parse);
    return nStatus == 0 ? 0 : Refuse(parse, nStatus);
  }

  static int Judge(stParse& parse) {
    stField fields[kMaxFieldLines];
    for (size_t i = 0; i < parse.nFields; ++i) {
      fields[i] = parse.Field(i, parse.received.data());
      if (IsSameName(fields[i].name, "Expect")) parse.bExpects = parse.parser.http_minor > 0;
    }
    stHead head;
    head.text = parse.Head();
    head.method = parse.Method();
    head.target = parse.target.In(parse.received.data());
    head.pFields = fields;
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

  // The bytes behind belong to the next request, which has its own reading.
  static int OnEnd(llhttp_t* /*pParser*/) { return HPE_PAUSED; }

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
    settings.on_body = &OnBody;
    settings.on_message_complete = &OnEnd;
    return settings;
  }
};

CRequest::CRequest() = default;
CRequest::~CRequest() = default;

size_t EmptyLines(std::string_view received) {
  size_t nAt = 0;
  while (received.substr(nAt, 2) == "\r\n") nAt += 2;
  return nAt;
}

Reading CRequest::Read(std::string_view received) {
  if (m_reading != Reading::kPartial || received.empty() || received == "\r") return m_reading;
  if (received.front() == '\r' || received.front() == '\n') {
    Refuse(400);
    return m_reading;
  }
  if (m_pParse == nullptr) {
    static const llhttp_settings_t s_settings = stParserCalls::Settings();
    m_pParse = std::make_unique<stParse>();
    llhttp_init(&m_pParse->parser, HTTP_REQUEST, &s_settings);
    // Which versions and codings are taken is decided here, with a status of its own for each.
    m_pParse->parser.lenient_flags = LENIENT_VERSION | LENIENT_TRANSFER_ENCODING;
    m_pParse->parser.data = m_pParse.get();
  }
  m_pParse->received = received;
  Feed(received);
  return m_reading;
}

// Feeds no further than a limit that does not depend on how the bytes were cut: of the head, of the
// body, and of what stands between the pieces of a body in chunks, with the lines behind it.
void CRequest::Feed(std::string_view received) {
  stParse& parse = *m_pParse;
  for (;;) {
    const size_t nLimit = parse.Limit();
    const size_t nEnd = std::min(received.size(), nLimit);
    if (parse.nFed >= nEnd) {
      if (received.size() > nLimit) Refuse(parse.LimitStatus());
      return;
    }
    const char* const pFrom = received.data() + parse.nFed;
    const llhttp_errno_t error = llhttp_execute(&parse.parser, pFrom, nEnd - parse.nFed);
    if (error != HPE_OK) {
      Conclude(error);
      return;
    }
    parse.nFed = nEnd;
  }
}

// The parser has stopped: at the request's end, at what our rules refuse, or at what it does not
// take itself.
void CRequest::Conclude(int nError) {
  stParse& parse = *m_pParse;
  const std::string_view received = parse.received;
  if (nError == HPE_PAUSED) {
    const char* const pEnd = llhttp_get_error_pos(&parse.parser);
    parse.nLength = static_cast<size_t>(pEnd - received.data());
    const size_t nBody = std::max(parse.nHead, parse.nBodyEnd);
    // Behind the last byte of a body in chunks.
    if (parse.bChunked && !AreLinesWhole(received.substr(nBody, parse.nLength - nBody))) {
      Refuse(400);
      return;
    }
    m_reading = Reading::kWhole;
    return;
  }
  const bool bMethod = nError == HPE_INVALID_METHOD || nError == HPE_INVALID_CONSTANT;
  if (!bMethod) {
    Refuse(parse.nRefusal != 0 ? parse.nRefusal : 400);
    return;
  }
  const std::string_view line = received.substr(0, kMaxHeadBytes);
  if (const int nStatus = JudgeUnknownMethod(line)) {
    Refuse(nStatus);
  } else if (received.size() > kMaxHeadBytes) {
    Refuse(414);
  }
}

void CRequest::Refuse(int nStatus) {
  m_reading = Reading::kRefused;
  m_nRefusal = nStatus;
  m_pParse.reset();
}

size_t CRequest::Length() const { return m_pParse->nLength; }

bool CRequest::AwaitsContinue() const {
  return m_pParse != nullptr && m_pParse->bExpects && m_pParse->nHead != 0;
}

bool CRequest::KeepsOpen() const { return m_pParse->bKeepsOpen; }

bool CRequest::IsHead() const { return m_pParse->parser.method == HTTP_HEAD; }

void CRequest::Fill(char* pReceived, http_message& msg) const {
  static char s_szRoot[] = "/";  // the library may write into a path
  const stParse& parse = *m_pParse;
  const std::string_view received(pReceived, parse.nLength);
  msg = {};
  msg.message = ToLibrary(received);
  msg.method = ToLibrary(received.substr(0, parse.Method().size()));
  std::string_view target = parse.target.In(pReceived);
  msg.proto = {target.data() + target.size() + 1, sizeof("HTTP/1.1") - 1};
  target.remove_prefix(PathBegin(target));
  const size_t nQuery = std::min(target.find('?'), target.size());
  msg.uri = nQuery == 0 ? mg_str{s_szRoot, 1} : ToLibrary(target.substr(0, nQuery));
  if (nQuery < target.size()) msg.query_string = ToLibrary(target.substr(nQuery + 1));
  msg.body = parse.bChunked ? ToLibrary(parse.strBody) : ToLibrary(received.substr(parse.nHead));
  size_t nTaken = 0;
  for (size_t i = 0; i < parse.nFields; ++i) {
    const stField field = parse.Field(i, pReceived);
    if (field.value.empty()) continue;  // the library's own reading leaves these out as well
    msg.header_names[nTaken] = ToLibrary(field.name);
    msg.header_values[nTaken++] = ToLibrary(field.value);
  }
}

void CRequest::Clear() {
  m_pParse.reset();
  m_reading = Reading::kPartial;
  m_nRefusal = 0;
}

size_t CRequest::Held() const {
  return m_pParse == nullptr ? 0 : sizeof(stParse) + m_pParse->strBody.capacity();
}
