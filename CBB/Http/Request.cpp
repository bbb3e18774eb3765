#include "CBB/Http/Request.h"

#include <algorithm>
#include <new>
#include <string>

#include "CBB/Http/HeadRules.h"
#include "CBB/Http/LibraryMemory.h"
#include "CBB/Http/RequestParse.h"

namespace {

mg_str ToLibrary(std::string_view text) { return {text.data(), text.size()}; }

}  // namespace

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
    m_pParse.reset(new (std::nothrow) stRequestParse);
  }
  if (m_pParse == nullptr) {
    NoteMemoryShortage();
    Refuse(503);
    return m_reading;
  }
  m_pParse->received = received;
  Feed(received);
  return m_reading;
}

// Feeds the parser no further than a limit that does not depend on how the bytes were cut: one for
// the head, one for the body, and one for what stands between the chunks of a body and after it.
void CRequest::Feed(std::string_view received) {
  stRequestParse& parse = *m_pParse;
  while (m_reading == Reading::kPartial) {
    const size_t nLimit = parse.Limit();
    const size_t nEnd = std::min(received.size(), nLimit);
    if (parse.nFed < nEnd && parse.bSizeLine && SkipExtension(received.substr(0, nEnd))) continue;
    const size_t nUpTo = parse.nUpTo = parse.UpTo(nEnd);
    if (parse.nFed >= nUpTo) {
      if (received.size() > nLimit) Refuse(parse.LimitStatus());
      return;
    }
    const char* const pFrom = received.data() + parse.nFed;
    const llhttp_errno_t error = llhttp_execute(&parse.parser, pFrom, nUpTo - parse.nFed);
    if (error == HPE_OK) {
      parse.nFed = nUpTo;
      // What follows ends the line, or is an error that the parser must see: not an extension.
      if (received[nUpTo - 1] == '\r') parse.bSizeLine = false;
    } else if (error == HPE_PAUSED && !parse.bEnded) {
      parse.nFed = static_cast<size_t>(llhttp_get_error_pos(&parse.parser) - received.data());
      llhttp_resume(&parse.parser);
    } else if (!Conclude(error)) {
      return;
    }
  }
}

// Hides a chunk's extensions, from its size to the end of the line, from the parser, which handles
// only one. Returns whether there were any.
bool CRequest::SkipExtension(std::string_view received) {
  stRequestParse& parse = *m_pParse;
  const size_t nFirst = received.find_first_not_of(" \t", parse.nFed);
  if (nFirst == std::string_view::npos || received[nFirst] != ';') return false;
  const size_t nEnd = received.find_first_of("\r\n", nFirst);
  if (nEnd == std::string_view::npos) return false;
  const std::string_view text = received.substr(nFirst, nEnd - nFirst);
  const bool bPlain = std::all_of(text.begin(), text.end(), [](char c) {
    return c == '\t' || (static_cast<unsigned char>(c) >= ' ' && c != 0x7F);
  });
  if (bPlain) {
    parse.nFed = nEnd;
  } else {
    Refuse(400);
  }
  return true;
}

// The parser has stopped: at the request's end, at something our rules refuse, or at something it
// rejects itself. Returns whether that settles the request.
bool CRequest::Conclude(int nError) {
  stRequestParse& parse = *m_pParse;
  if (nError == HPE_PAUSED) {
    parse.nLength =
        static_cast<size_t>(llhttp_get_error_pos(&parse.parser) - parse.received.data());
    m_reading = Reading::kWhole;
    if (parse.bChunked && !AreLinesWhole(parse.BehindBody())) Refuse(400);
  } else if (nError == HPE_INVALID_METHOD || nError == HPE_INVALID_CONSTANT) {
    const bool bTooLong = parse.received.size() > kMaxHeadBytes;
    const int nStatus = JudgeUnknownMethod(parse.Head(kMaxHeadBytes));
    if (nStatus != 0 || bTooLong) Refuse(nStatus != 0 ? nStatus : 414);
  } else {
    Refuse(parse.RefusalFor(nError));
  }
  return m_reading != Reading::kPartial;
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
  const stRequestParse& parse = *m_pParse;
  const std::string_view received(pReceived, parse.nLength);
  msg.message = ToLibrary(received);
  msg.method = ToLibrary(received.substr(0, parse.Method().size()));
  std::string_view target = parse.target.In(pReceived);
  msg.proto = {target.data() + target.size() + 1, sizeof("HTTP/1.1") - 1};
  target.remove_prefix(PathBegin(target));
  const size_t nQuery = std::min(target.find('?'), target.size());
  msg.uri = nQuery == 0 ? mg_str{s_szRoot, 1} : ToLibrary(target.substr(0, nQuery));
  msg.query_string = nQuery < target.size() ? ToLibrary(target.substr(nQuery + 1)) : mg_str{};
  msg.body = parse.bChunked ? ToLibrary(parse.strBody) : ToLibrary(received.substr(parse.nHead));
  size_t nTaken = 0;
  for (size_t i = 0; i < parse.nFields; ++i) {
    const stFieldLine field = parse.Field(i, pReceived);
    if (field.value.empty()) continue;  // the library's own parser leaves these out as well
    msg.header_names[nTaken] = ToLibrary(field.name);
    msg.header_values[nTaken++] = ToLibrary(field.value);
  }
  // The list ends at a name of no length; what lies behind is not looked at.
  msg.header_names[nTaken] = msg.header_values[nTaken] = mg_str{};
}

void CRequest::Clear() {
  m_pParse.reset();
  m_reading = Reading::kPartial;
  m_nRefusal = 0;
}

size_t CRequest::Held() const {
  return m_pParse == nullptr ? 0 : sizeof(stRequestParse) + m_pParse->strBody.capacity();
}
