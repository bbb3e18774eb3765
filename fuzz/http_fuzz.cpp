// Bytes from the network through the HTTP library, the event handler and the router, before a
// scripted device. The input is a stream of bytes, then the device's replies, in this order:
//   0x1E  begins the next reply of the device
//   0x1F  ends a piece: what stands before it arrives at once
//   0x1D  the client goes away and another one comes
//   0x1C  the client reads what it has been sent, as it does before it goes away
//   0x1B  the client goes away at once, whatever it has been sent
// Whatever arrives: endpoints answer only whole requests, with well-formed replies; only the
// endpoints that set send a DEVICE_SET; what waits to be sent is bounded; no file outside the
// document root gets out.
#include <unistd.h>

#include <algorithm>

#include "CBB/WebCtrl/HttpLoop.h"
#include "CBB/WebCtrl/WebCtrl.h"
#include "fuzz/HeadModel.h"
#include "fuzz/Input.h"
#include "fuzz/ReplyCheck.h"
#include "fuzz/ScriptedDevice.h"
#include "fuzz/ScriptedNet.h"

namespace {

constexpr char kReplyMark = '\x1E';
constexpr char kPieceMark = '\x1F';
constexpr char kClientMark = '\x1D';
constexpr char kReadMark = '\x1C';
constexpr char kAbortMark = '\x1B';

// What stands in the file beside the document root.
constexpr std::string_view kOutsideText = "not for browsers";
// A client that does not read is closed before more than this waits for it.
constexpr size_t kMostUnread = 1024 * 1024 + 128 * 1024;

// The endpoints and how many replies each gives.
constexpr struct {
  std::string_view uri;
  size_t nFewest;
  size_t nMost;
} kEndpoints[] = {
    {"/set_Login", 2, 2},        {"/export_CfgFile", 0, 1}, {"/import_CfgFile", 0, 1},
    {"/cmp_UserSecurity", 1, 1}, {"/get_", 1, 1},           {"/set_", 1, 1},
};

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

// Exactly the 35 names: a longer or shorter one is a file's.
bool IsEndpoint(std::string_view uri) {
  static constexpr std::string_view kNames[] = {
      "get_LangInfo",       "set_LangInfo",       "get_BaseInfo",      "set_BaseInfo",
      "get_UserSecurity",   "set_UserSecurity",   "cmp_UserSecurity",  "get_LockOfPassword",
      "set_LockOfPassword", "set_DeviceNo",       "get_MirrorInfo",    "set_MirrorInfo",
      "get_MainStreamInfo", "set_MainStreamInfo", "get_SubStreamInfo", "set_SubStreamInfo",
      "get_NetWModeInfo",   "set_NetWModeInfo",   "get_VCmsInfo",      "set_VCmsInfo",
      "get_WifiInfo",       "set_WifiInfo",       "get_GNetInfo",      "set_GNetInfo",
      "get_GB28181Info",    "set_GB28181Info",    "get_cpu_usage",     "get_VersionInfo",
      "get_SystemInfo",     "set_Login",          "get_Login",         "get_LocalNetInfo",
      "set_LocalNetInfo",   "export_CfgFile",     "import_CfgFile",
  };
  return !uri.empty() && uri.front() == '/' &&
         std::find(std::begin(kNames), std::end(kNames), uri.substr(1)) != std::end(kNames);
}

bool MaySet(std::string_view uri) {
  return StartsWith(uri, "/set_") || uri == "/import_CfgFile" || uri == "/get_LockOfPassword";
}

bool IsWithin(const mg_str& part, const mbuf& whole) {
  return part.p >= whole.buf && part.p + part.len <= whole.buf + whole.len;
}

// The request that is being handled: no other may cause a datagram.
struct {
  const mg_connection* pConn;
  const http_message* pMsg;
  std::string strUri;
  std::string strHead;
} g_request;

void CheckDatagram(std::string_view message) {
  Require(g_request.pConn != nullptr);
  const http_message& msg = *g_request.pMsg;
  Require(IsWithin(msg.message, g_request.pConn->recv_mbuf) &&
          IsWithin(msg.body, g_request.pConn->recv_mbuf));
  Require(IsPossibleBody(g_request.strHead, msg.body.len));
  if (message.find("\"DEVICE_QUERY\"") == std::string_view::npos) {
    Require(MaySet(g_request.strUri));
  }
}

void CheckReplies(std::string_view sent, bool bRefused) {
  const size_t nReplies = TakeReplies(sent).size();
  for (const auto& endpoint : kEndpoints) {
    if (!StartsWith(g_request.strUri, endpoint.uri)) continue;
    Require(nReplies <= endpoint.nMost && (nReplies >= endpoint.nFewest || bRefused));
    return;
  }
}

bool MayRefuse(const http_message& msg) {
  return std::string_view(msg.message.p, msg.message.len).find("time") != std::string_view::npos;
}

void HandleRequest(mg_connection* pConn, http_message* pMsg) {
  g_request = {pConn, pMsg, std::string(pMsg->uri.p, pMsg->uri.len),
               std::string(pMsg->message.p, static_cast<size_t>(pMsg->body.p - pMsg->message.p))};
  const size_t nBefore = pConn->send_mbuf.len;
  const bool bMayRefuse = MayRefuse(*pMsg);
  HttpEvent(pConn, MG_EV_HTTP_REQUEST, pMsg);
  const bool bClosed = (pConn->flags & MG_F_CLOSE_IMMEDIATELY) != 0;
  const std::string_view sent(pConn->send_mbuf.buf + nBefore, pConn->send_mbuf.len - nBefore);
  if (IsEndpoint(g_request.strUri)) {
    CheckReplies(sent, bClosed || bMayRefuse);
  } else {
    Require(StartsWith(sent, "HTTP/1.1 ") || bClosed || bMayRefuse);
  }
  g_request = {};
}

void Probe(mg_connection* pConn, int nEvent, void* pData) {
  if (nEvent == MG_EV_HTTP_REQUEST) {
    HandleRequest(pConn, static_cast<http_message*>(pData));
  } else {
    HttpEvent(pConn, nEvent, pData);
  }
}

bool HasOutsideText(std::string_view text) {
  return text.find(kOutsideText) != std::string_view::npos;
}

void ReceivePieces(CScriptedNet& net, std::string_view bytes) {
  for (const std::string_view piece : Split(bytes, kPieceMark)) {
    net.Receive(piece);
    Require(net.Unread() <= kMostUnread);
  }
}

void PlayClient(CScriptedNet& net, std::string_view stream, bool bMayEcho) {
  net.Connect();
  for (const std::string_view part : Split(stream, kReadMark)) {
    const size_t nAbort = part.find(kAbortMark);
    ReceivePieces(net, part.substr(0, nAbort));
    if (nAbort != std::string_view::npos) break;
    Require(!HasOutsideText(net.Read()) || bMayEcho);
  }
  net.Disconnect();
}

int NextDescriptor() {
  const int nNext = dup(STDERR_FILENO);
  close(nNext);
  return nNext;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  SilenceTraces();
  StartServiceOnce();
  HttpOptions().document_root = FUZZ_SITE "/root";
  SetDatagramCheck(CheckDatagram);
  CWebCtrl::Instance().Sessions() = CSessions();

  const std::string_view input = AsText(pData, nSize);
  std::vector<std::string_view> replies = Split(input, kReplyMark);
  const std::string_view stream = replies.front();
  replies.erase(replies.begin());
  SetDeviceScript(replies);
  CScriptedNet net(Probe);
  const int nDescriptor = NextDescriptor();
  for (const std::string_view client : Split(stream, kClientMark)) {
    PlayClient(net, client, HasOutsideText(input));
    Require(NextDescriptor() == nDescriptor);  // every file is closed again
  }
  return 0;
}
