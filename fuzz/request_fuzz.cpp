// The bytes of a connection through the parsing of requests, as a connection of the HTTP edge does
// it. In the input the byte 0x1F marks a cut: the bytes before it arrive first. However the bytes
// are cut, the same requests are delivered and reading ends in the same way. A second parser,
// RequestModel, agrees on where each request ends, on its body, and on what is refused or
// incomplete.
#include <mongoose.h>

#include <algorithm>

#include "CBB/Http/HeadRules.h"
#include "CBB/Http/Request.h"
#include "fuzz/Input.h"
#include "fuzz/RequestModel.h"

namespace {

constexpr char kCutMark = '\x1F';
constexpr size_t kMostByteByByte = 600;
// The record of a head, and a chunked body with the buffer that it grew into.
constexpr size_t kMostHeld = 8192 + 2 * kMaxBodyBytes;

// Everything about a delivered request, as text to compare.
std::string Describe(const CRequest& request, const http_message& msg) {
  std::string strAll;
  const auto Add = [&](const mg_str& text) {
    strAll += std::to_string(text.len) + ":";
    strAll.append(text.p, text.len);
  };
  for (const mg_str* pText : {&msg.method, &msg.uri, &msg.proto, &msg.query_string, &msg.body})
    Add(*pText);
  for (size_t i = 0; i < kMaxFieldLines && msg.header_names[i].len > 0; ++i) {
    Add(msg.header_names[i]);
    Add(msg.header_values[i]);
  }
  return strAll + (request.KeepsOpen() ? "K" : "") + (request.IsHead() ? "H" : "") +
         (request.AwaitsContinue() ? "C" : "");
}

// Whether some continuation turns what has arrived into a request that the service must accept.
// Tries only likely ones, so "no" may be wrong.
bool MayBecomeRequest(std::string_view received) {
  static constexpr std::string_view kRest[] = {
      "",
      "GET / HTTP/1.1\r\n\r\n",
      " / HTTP/1.1\r\n\r\n",
      "/ HTTP/1.1\r\n\r\n",
      " HTTP/1.1\r\n\r\n",
      "HTTP/1.1\r\n\r\n",
      "TP/1.1\r\n\r\n",
      "1.1\r\n\r\n",
      ".1\r\n\r\n",
      "1\r\n\r\n",
      "\r\n\r\n",
      "\n\r\n",
      "\r\n",
      "\n",
      "x:\r\n\r\n",
      ":\r\n\r\n",
      "0\r\n\r\n",
      "\n0\r\n\r\n",
      "\r\n0\r\n\r\n",
      "x\r\n\r\n",
      "\"\r\n\r\n",
      "\r\nContent-Length: 0\r\n\r\n",
      "\nContent-Length: 0\r\n\r\n",
      "Content-Length: 0\r\n\r\n",
  };
  return std::any_of(std::begin(kRest), std::end(kRest), [&](std::string_view rest) {
    const stModelRequest request = ReadModel(std::string(received) + std::string(rest));
    return (request.verdict == Verdict::kWhole || request.bInBody) && !request.bMayRefuse;
  });
}

// Reads one connection.
class CReader {
 public:
  // Bytes arrive: complete requests are delivered.
  void Receive(std::string_view bytes) {
    m_strReceived += bytes;
    while (ReadOne()) {
    }
  }

  bool operator==(const CReader& other) const {
    return m_delivered == other.m_delivered && m_strReceived == other.m_strReceived &&
           m_request.State() == other.m_request.State() &&
           m_request.Refusal() == other.m_request.Refusal() &&
           m_request.AwaitsContinue() == other.m_request.AwaitsContinue();
  }

 private:
  bool ReadOne() {
    if (m_request.State() == Reading::kRefused) return false;
    if (m_request.Held() == 0) m_strReceived.erase(0, EmptyLines(m_strReceived));
    // A new place each time, and exactly this long: connections move what they hold.
    const std::unique_ptr<char[]> pCopy = ExactCopy(m_strReceived, false);
    const Reading reading = m_request.Read({pCopy.get(), m_strReceived.size()});
    Require(m_request.Held() <= kMostHeld);
    const stModelRequest model = ReadModel(m_strReceived);
    Compare(reading, model);
    if (reading != Reading::kWhole) return false;
    http_message msg;
    m_request.Fill(pCopy.get(), msg);
    Require(m_request.Length() == model.nLength);
    Require(std::string_view(msg.body.p, msg.body.len) == model.strBody);
    m_delivered.push_back(Describe(m_request, msg));
    m_strReceived.erase(0, model.nLength);
    m_request.Clear();
    return true;
  }

  void Compare(Reading reading, const stModelRequest& model) const {
    switch (reading) {
      case Reading::kWhole:
        Require(model.verdict == Verdict::kWhole);
        break;
      case Reading::kPartial:
        Require(model.verdict == Verdict::kPartial);
        break;
      case Reading::kRefused:
        // The model reads whole lines only.
        Require(model.verdict == Verdict::kRefused || model.bMayRefuse ||
                (model.verdict == Verdict::kPartial && !MayBecomeRequest(m_strReceived)));
        break;
    }
  }

  std::string m_strReceived;
  CRequest m_request;
  std::vector<std::string> m_delivered;
};

void ReadInPieces(CReader& reader, std::string_view stream, size_t nPiece) {
  for (; !stream.empty(); stream.remove_prefix(std::min(nPiece, stream.size())))
    reader.Receive(stream.substr(0, nPiece));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  std::string strStream;
  CReader cut;
  for (const std::string_view piece : Split(AsText(pData, nSize), kCutMark)) {
    cut.Receive(piece);
    strStream += piece;
  }
  CReader whole;
  whole.Receive(strStream);
  Require(cut == whole);
  if (strStream.size() <= kMostByteByByte) {
    CReader bytes;
    ReadInPieces(bytes, strStream, 1);
    Require(bytes == whole);
  }
  return 0;
}
