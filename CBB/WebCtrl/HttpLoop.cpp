#include "CBB/WebCtrl/HttpLoop.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>

#include "CBB/Util/Descriptors.h"
#include "CBB/Util/Print.h"
#include "CBB/Util/ReserveMemory.h"
#include "CBB/WebCtrl/WebCtrl.h"
#include "cmake/MongooseBuild.h"

namespace {

constexpr const char* kPort = "80";
constexpr int kPollMs = 1000;
constexpr size_t kMaxRequestBytes = 1U << 20;
constexpr size_t kMaxUnreadBytes = 1U << 20;
constexpr int kNewcomersFirst = 3;     // polls with other events, between two turns
constexpr int kOtherDescriptors = 16;  // streams, listener, exchange, the newest connection

// What is noted of a connection in the flags that the library leaves alone.
constexpr unsigned long kUnseen = MG_F_USER_1;         // more may have arrived than was looked at
constexpr unsigned long kEnded = MG_F_USER_2;          // the client has sent all that it will
constexpr unsigned long kClosing = MG_F_USER_3;        // the last reply closes the connection
constexpr unsigned long kFinal = MG_F_SEND_AND_CLOSE;  // the library's own: closed once all is sent

constexpr int kTurn = 99;  // an event of our own: the next request of a connection may be served

mg_event_handler_t g_pfnLibrary;  // the library's own handler of the protocol

// What the include calls of the pages print.
char setting1[100] = "value1";
char setting2[100] = "value2";

void PrintSetting(mg_connection* pConn, const char* pszName) {
  if (strcmp(pszName, "setting1") == 0) mg_printf_html_escape(pConn, "%s", setting1);
  if (strcmp(pszName, "setting2") == 0) mg_printf_html_escape(pConn, "%s", setting2);
}

// A client that asks on and on without reading the replies must not fill the memory.
void HandleRequest(mg_connection* pConn, http_message* pMsg) {
  const bool bUnread = pConn->send_mbuf.len > kMaxUnreadBytes;
  if (bUnread) pConn->flags |= MG_F_CLOSE_IMMEDIATELY;
  if (!bUnread) CWebCtrl::Instance().DoHttpRequeset(pConn, pMsg);
}

// A connection's user data tell when it last had traffic, in steps of one event: many clients fit
// into a second of the library's clock, which the system's time moves, too.
uintptr_t g_nEvents;

// Whether one connection's traffic is older than another's; the number of events may wrap.
bool IsIdler(const mg_connection& one, const mg_connection& other) {
  return static_cast<intptr_t>(reinterpret_cast<uintptr_t>(one.user_data) -
                               reinterpret_cast<uintptr_t>(other.user_data)) < 0;
}

// Shows the library the first of the received requests, once it is whole, and no other: it would
// carry out all that have arrived before any other client has a turn, take those behind a body in
// chunks for a part of it, and begin the next reply before a file is sent.
void ServeNext(mg_connection* pConn) {
  mbuf& received = pConn->recv_mbuf;
  if ((pConn->flags & (kUnseen | MG_F_CLOSE_IMMEDIATELY)) != kUnseen || IsSendingFile(pConn))
    return;
  const ptrdiff_t nLength = FirstRequestLength(&received);
  const size_t nBehind = nLength > 0 ? received.len - static_cast<size_t>(nLength) : 0;
  if (nBehind == 0) pConn->flags &= ~kUnseen;
  if (nLength == kRequestBroken) pConn->flags |= kFinal;
  // The library must have met the request before it can take the end of its body.
  if (nLength == kRequestToTheEnd) g_pfnLibrary(pConn, MG_EV_RECV, nullptr);
  if (nLength <= 0) return;
  received.len = static_cast<size_t>(nLength);
  g_pfnLibrary(pConn, MG_EV_RECV, nullptr);
  memmove(received.buf, received.buf + nLength, nBehind);
  received.len = nBehind;
}

// Stands between the connection and the library's handler of the protocol. Around it kFinal tells
// that the client has ended; within, that the service closes the connection behind its reply.
void HttpProtocol(mg_connection* pConn, int nEvent, void* pData) {
  const bool bReceived = nEvent == MG_EV_RECV, bClosed = nEvent == MG_EV_CLOSE;
  const bool bEnded = (pConn->flags & (kEnded | kClosing)) == kEnded;
  const unsigned long ulFinal = pConn->flags & kFinal;
  pConn->flags &= ~kFinal;
  // The library takes whatever is left for a request; only a body may end with its connection.
  if (bClosed && (!bEnded || FirstRequestLength(&pConn->recv_mbuf) != kRequestToTheEnd))
    pConn->recv_mbuf.len = 0;
  if (bReceived && (pConn->flags & kClosing) == 0) pConn->flags |= kUnseen;
  (bReceived ? &HttpEvent : g_pfnLibrary)(pConn, nEvent, pData);
  if (bReceived || nEvent == kTurn) ServeNext(pConn);
  if ((pConn->flags & (kFinal | kClosing)) != 0) {
    pConn->flags = (pConn->flags & ~(kFinal | kUnseen)) | kClosing;
    pConn->recv_mbuf.len = 0;
  }
  pConn->flags |= ulFinal;
  // A file that has become shorter meanwhile never ends.
  const bool bStuck = IsSendingFile(pConn) && pConn->send_mbuf.len == 0;
  if (nEvent == MG_EV_POLL && bStuck) pConn->flags |= MG_F_CLOSE_IMMEDIATELY;
}

}  // namespace

mg_serve_http_opts& HttpOptions() {
  static mg_serve_http_opts opts{};
  return opts;
}

void HttpEvent(mg_connection* pConn, int nEvent, void* pData) {
  const bool bTraffic = nEvent == MG_EV_ACCEPT || nEvent == MG_EV_RECV || nEvent == MG_EV_SEND;
  if (bTraffic) pConn->user_data = reinterpret_cast<void*>(++g_nEvents);
  try {
    if (nEvent == MG_EV_RECV) pConn->recv_mbuf_limit = 0;  // until the others have had their turn
    if (nEvent == MG_EV_HTTP_REQUEST) HandleRequest(pConn, static_cast<http_message*>(pData));
    if (nEvent == MG_EV_SSI_CALL) PrintSetting(pConn, static_cast<const char*>(pData));
  } catch (const std::bad_alloc&) {
    NoteMemoryShortage();
  }
  // What is to be sent may have a gap. No byte of it leaves.
  if (IsMemoryShort() && pConn->listener != nullptr) pConn->flags |= MG_F_CLOSE_IMMEDIATELY;
}

void ServeHttp(mg_connection* pListener) {
  const int nOn = 1;
  setsockopt(pListener->sock, IPPROTO_TCP, TCP_NODELAY, &nOn, sizeof(nOn));
  setsockopt(pListener->sock, SOL_SOCKET, SO_OOBINLINE, &nOn, sizeof(nOn));
  pListener->recv_mbuf_limit = kMaxRequestBytes;
  mg_set_protocol_http_websocket(pListener);
  g_pfnLibrary = pListener->proto_handler;
  pListener->proto_handler = &HttpProtocol;
}

void ServeWaiting(mg_mgr& mgr) {
  for (mg_connection* p = mgr.active_connections; p != nullptr; p = p->next) {
    if ((p->flags & kUnseen) == 0) continue;
    HttpProtocol(p, kTurn, nullptr);
    if (p->recv_mbuf.len == 0 && p->recv_mbuf.size > MG_TCP_IO_SIZE) mbuf_trim(&p->recv_mbuf);
  }
}

bool ResumeReceiving(mg_mgr& mgr) {
  bool bAtOnce = false;
  for (mg_connection* p = mgr.active_connections; p != nullptr; p = p->next) {
    const bool bSending = IsSendingFile(p), bUnseen = (p->flags & kUnseen) != 0;
    const bool bSent = p->send_mbuf.len == 0;
    // Not one that is closed for lack of memory: of that, too, the library receives nothing more.
    if ((p->flags & (kFinal | MG_F_CLOSE_IMMEDIATELY)) == kFinal) p->flags |= kEnded;
    const bool bEnded = (p->flags & kEnded) != 0;
    p->recv_mbuf_limit = bEnded ? 0 : kMaxRequestBytes;  // at its end a socket is always ready
    if (p->recv_mbuf.len >= kMaxRequestBytes) p->flags |= MG_F_CLOSE_IMMEDIATELY;
    p->flags &= ~kFinal;
    const bool bLast = (bEnded || (p->flags & kClosing) != 0) && bSent && !bSending && !bUnseen;
    if (bLast) p->flags |= kFinal;
    bAtOnce |= bLast || (p->flags & MG_F_CLOSE_IMMEDIATELY) != 0 || (bUnseen && !bSending) ||
               (bSending && bSent);
  }
  return bAtOnce;
}

int ConnectionLimit() {
  // Each has its socket and, at times, a file.
  return std::clamp((DescriptorLimit() - kOtherDescriptors) / 2, 1, kMaxConnections);
}

void CloseIdleConnections(mg_mgr& mgr, int nLimit) {
  for (;;) {
    int nOpen = 0;
    mg_connection* pIdlest = nullptr;
    for (mg_connection* p = mgr.active_connections; p != nullptr; p = p->next) {
      if (p->listener == nullptr || (p->flags & MG_F_CLOSE_IMMEDIATELY) != 0) continue;
      ++nOpen;
      if (pIdlest == nullptr || IsIdler(*p, *pIdlest)) pIdlest = p;
    }
    if (nOpen <= nLimit) return;
    pIdlest->flags |= MG_F_CLOSE_IMMEDIATELY;
  }
}

int RunHttpLoop(const char* pszWebRoot) {
  mg_mgr mgr;
  mg_mgr_init(&mgr, nullptr);
  // Deliberate: the failure paths below leave the manager as it is.
  mg_connection* const pListener = mg_bind(&mgr, kPort, &HttpEvent);
  if (pListener == nullptr) {
    fprintf(stderr, "Cannot bind to %s\n", kPort);
    return -1;
  }
  ServeHttp(pListener);
  HttpOptions().document_root = pszWebRoot;
  struct stat st {};
  if (stat(pszWebRoot, &st) != 0) {
    fputs("Cannot find web_root directory, exiting\n", stderr);
    return -1;
  }
  printf("Starting web server on port %s\n", kPort);
  const int nLimit = ConnectionLimit();
  int nBefore = 0;  // polls since somebody waits for his turn: newcomers go first, within bounds
  for (int nWaitMs = kPollMs;;) {
    FlushPrinted();
    nBefore = nWaitMs == 0 && nBefore <= kNewcomersFirst ? nBefore + 1 : 0;
    if (mg_mgr_poll(&mgr, nWaitMs) == 0 || nBefore > kNewcomersFirst) ServeWaiting(mgr);
    const bool bShort = TakeMemoryShortage();
    if (bShort) puts("CWebCtrl::DetectSvc, out of memory, all connections are closed.");
    CloseIdleConnections(mgr, bShort ? 0 : nLimit);
    nWaitMs = ResumeReceiving(mgr) ? 0 : kPollMs;
  }
}
