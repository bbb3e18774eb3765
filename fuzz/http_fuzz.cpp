// Bytes from the network through the HTTP edge, the event handler and the router, with a scripted
// device. The input is a stream of bytes, followed by the device's replies, with these marks:
//   0x1E  begins the next reply of the device
//   0x1F  ends a piece: the bytes before it arrive at once
//   0x1D  the client disconnects and another one connects
//   0x1C  the client reads what it has been sent, as it does before it disconnects
//   0x1B  the client disconnects at once without reading
// For every input: every complete request is answered in order, up to one that closes, and nothing
// else is; endpoints send well-formed replies; only those that set send a DEVICE_SET; waiting
// output is bounded; no file outside the document root is sent; every client is released, every
// file closed; and neither the datagrams nor the replies depend on the pieces.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>

#include "CBB/Http/HeadRules.h"
#include "CBB/WebCtrl/HttpLoop.h"
#include "CBB/WebCtrl/HttpOptions.h"
#include "CBB/WebCtrl/Routes.h"
#include "fuzz/Input.h"
#include "fuzz/ReplyCheck.h"
#include "fuzz/RequestModel.h"
#include "fuzz/ScriptedDevice.h"
#include "fuzz/ScriptedNet.h"

namespace {

constexpr char kReplyMark = '\x1E';
constexpr char kPieceMark = '\x1F';
constexpr char kClientMark = '\x1D';
constexpr char kReadMark = '\x1C';
constexpr char kAbortMark = '\x1B';

// The content of the file beside the document root.
constexpr std::string_view kOutsideText = "not for browsers";
// No reply is longer. At most one is waiting: a client that does not read gets no other.
constexpr size_t kLongestReply = 128U << 10;
constexpr size_t kMostReceived = kMaxHeadBytes + kMaxBodyBytes + MG_TCP_IO_SIZE;
// A client is told to send its body only if the body has not already come.
constexpr std::string_view kContinue = "HTTP/1.1 100 Continue\r\n\r\n";

// The endpoints and how many replies each gives.
constexpr struct {
  std::string_view uri;
  size_t nFewest;
  size_t nMost;
} kReplies[] = {
    {"/set_Login", 2, 2},        {"/export_CfgFile", 0, 1}, {"/import_CfgFile", 0, 1},
    {"/cmp_UserSecurity", 1, 1}, {"/get_", 1, 1},           {"/set_", 1, 1},
};

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

// Exactly these names: a longer or shorter one is a file.
bool IsEndpoint(std::string_view uri) {
  return std::any_of(std::begin(kRoutes), std::end(kRoutes),
                     [&](const stRoute& route) { return route.strUri == uri; });
}

bool MaySet(std::string_view uri) {
  return StartsWith(uri, "/set_") || uri == "/import_CfgFile" || uri == "/get_LockOfPassword";
}

std::string_view Text(const mg_str& text) { return {text.p, text.len}; }
std::string_view Text(const mbuf& buffer) { return {buffer.buf, buffer.len}; }

// The URI of the request being handled: datagrams may be sent at no other time.
const std::string* g_pUri = nullptr;

// The requests of one client that were handled, as received, and whether the last one closes.
struct stHandled {
  std::vector<std::string> requests;
  bool bCloses = false;
};
stHandled g_handled;

// The results of one run of the input.
struct stPlayed {
  std::vector<std::string> datagrams;
  std::string strReplies;
};
stPlayed* g_pPlayed = nullptr;

void CheckDatagram(std::string_view message) {
  Require(g_pUri != nullptr);
  if (message.find("\"DEVICE_QUERY\"") == std::string_view::npos) Require(MaySet(*g_pUri));
  g_pPlayed->datagrams.emplace_back(message);
}

// Only a complete request with all of its body is executed, and only when no part of an earlier
// reply is waiting.
void CheckRequest(const mg_connection& conn, const http_message& msg) {
  const std::string_view received = Text(conn.recv_mbuf);
  const stModelRequest model = ReadModel(received);
  Require(model.verdict == Verdict::kWhole);
  Require(Text(msg.message).data() == received.data() && msg.message.len == model.nLength);
  Require(Text(msg.body) == model.strBody);
  Require(received.size() <= kMostReceived && conn.send_mbuf.len == 0);
}

void CheckReplies(std::string_view sent, bool bRefused) {
  const size_t nReplies = TakeReplies(sent).size();
  for (const auto& endpoint : kReplies) {
    if (!StartsWith(*g_pUri, endpoint.uri)) continue;
    Require(nReplies <= endpoint.nMost && (nReplies >= endpoint.nFewest || bRefused));
    return;
  }
}

bool MayRefuse(const http_message& msg) {
  return Text(msg.message).find("time") != std::string_view::npos;
}

void HandleRequest(mg_connection* pConn, http_message* pMsg) {
  Require(!g_handled.bCloses);
  CheckRequest(*pConn, *pMsg);
  const std::string strUri(Text(pMsg->uri));
  const bool bMayRefuse = MayRefuse(*pMsg);
  g_pUri = &strUri;
  g_handled.requests.emplace_back(Text(pMsg->message));
  HttpEvent(pConn, MG_EV_HTTP_REQUEST, pMsg);
  const bool bEnds = (pConn->flags & MG_F_SEND_AND_CLOSE) != 0;
  g_handled.bCloses = bEnds || !CConnection::Of(*pConn).KeepsOpen();
  const std::string_view sent = Text(pConn->send_mbuf);
  Require(sent.size() <= kLongestReply);
  if (IsEndpoint(strUri)) {
    CheckReplies(sent, bMayRefuse);
  } else {
    Require(StartsWith(sent, "HTTP/1.1 ") || (bMayRefuse && sent.empty()));
  }
  g_pUri = nullptr;
}

void Probe(mg_connection* pConn, int nEvent, void* pData) {
  if (nEvent == MG_EV_HTTP_REQUEST) {
    HandleRequest(pConn, static_cast<http_message*>(pData));
  } else {
    HttpEvent(pConn, nEvent, pData);
  }
}

std::string Without(std::string strText, std::string_view part) {
  for (size_t nAt = 0; (nAt = strText.find(part, nAt)) != std::string::npos;)
    strText.erase(nAt, part.size());
  return strText;
}

// Every complete request of a client was handled in order, unless one before it closes the
// connection; the last ones of a disconnected client may be missing.
void CheckHandled(std::string_view stream, bool bGone) {
  for (const std::string& strRequest : g_handled.requests) {
    stream.remove_prefix(EmptyLines(stream));
    Require(StartsWith(stream, strRequest));
    stream.remove_prefix(strRequest.size());
  }
  if (g_handled.bCloses || bGone) return;
  stream.remove_prefix(EmptyLines(stream));
  const stModelRequest next = ReadModel(stream);
  Require(next.verdict != Verdict::kWhole || next.bMayRefuse);
}

// Sends what the client sends before it reads. Returns it without the marks.
std::string Send(CScriptedNet& net, std::string_view bytes, bool bInPieces) {
  std::string strAll = Without(std::string(bytes), std::string_view(&kPieceMark, 1));
  for (const std::string_view piece : Split(bInPieces ? bytes : strAll, kPieceMark))
    net.Receive(piece);
  return strAll;
}

// Returns what the client has read.
std::string PlayClient(CScriptedNet& net, std::string_view stream, bool bInPieces) {
  std::string strSent, strRead;
  g_handled = {};
  net.Connect();
  bool bGone = false;
  for (const std::string_view part : Split(stream, kReadMark)) {
    const size_t nAbort = part.find(kAbortMark);
    strSent += Send(net, part.substr(0, nAbort), bInPieces);
    bGone = nAbort != std::string_view::npos;
    if (bGone) break;
    strRead += net.Read();
  }
  if (bGone) {
    net.Abort();
  } else {
    strRead += net.Disconnect();
  }
  CheckHandled(strSent, bGone);
  return strRead;
}

ptrdiff_t CountDescriptors() {
  const std::filesystem::directory_iterator first("/proc/self/fd");
  return std::distance(first, std::filesystem::directory_iterator());
}

stPlayed Play(std::string_view input, bool bInPieces) {
  stPlayed played;
  g_pPlayed = &played;
  CWebCtrl::Instance().Sessions() = CSessions();
  srand(1);  // NOLINT: the same numbers in each run
  std::vector<std::string_view> replies = Split(input, kReplyMark);
  const std::string_view stream = replies.front();
  replies.erase(replies.begin());
  SetDeviceScript(replies);
  CScriptedNet net(Probe);
  const ptrdiff_t nDescriptors = CountDescriptors();
  for (const std::string_view client : Split(stream, kClientMark)) {
    played.strReplies += Without(PlayClient(net, client, bInPieces), kContinue);
  }
  Require(CountDescriptors() == nDescriptors);  // every file is closed again
  return played;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  SilenceTraces();
  StartServiceOnce();
  HttpOptions().document_root = FUZZ_SITE "/root";
  SetDatagramCheck(CheckDatagram);

  const std::string_view input = AsText(pData, nSize);
  const stPlayed played = Play(input, true);
  const bool bMayEcho = input.find(kOutsideText) != std::string_view::npos;
  Require(bMayEcho || played.strReplies.find(kOutsideText) == std::string::npos);
  if (input.find(kPieceMark) != std::string_view::npos) {
    const stPlayed whole = Play(input, false);
    Require(whole.datagrams == played.datagrams && whole.strReplies == played.strReplies);
  }
  return 0;
}
