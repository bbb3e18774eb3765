#include "CBB/WebCtrl/HttpLoop.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>

#include "CBB/Util/Print.h"
#include "CBB/Util/ReserveMemory.h"
#include "CBB/WebCtrl/WebCtrl.h"

namespace {

constexpr const char* kPort = "80";
constexpr int kPollMs = 1000;
constexpr size_t kMaxRequestBytes = 1U << 20;
constexpr size_t kMaxUnreadBytes = 1U << 20;
constexpr rlim_t kOtherDescriptors = 16;  // streams, listener, exchange, the newest connection

// What the include calls of the pages print.
struct {
  char setting1[100];
  char setting2[100];
} g_settings = {"value1", "value2"};

void PrintSetting(mg_connection* pConn, const char* pszName) {
  if (strcmp(pszName, "setting1") == 0) mg_printf_html_escape(pConn, "%s", g_settings.setting1);
  if (strcmp(pszName, "setting2") == 0) mg_printf_html_escape(pConn, "%s", g_settings.setting2);
}

// How long the first request in the received bytes says it is. One whose body ends with the
// connection takes all of them, if it has ended, and else has no end.
size_t AnnouncedLength(const mbuf& received, bool bEnded) {
  constexpr size_t kToTheEnd = ~static_cast<size_t>(0);
  http_message msg;
  if (mg_parse_http(received.buf, static_cast<int>(received.len), &msg, 1) <= 0) return 0;
  const bool bToTheEnd = msg.message.len == kToTheEnd && msg.body.len == kToTheEnd;
  return bToTheEnd && bEnded ? received.len : msg.message.len;
}

// Whether the client ended the connection in order. One that broke, or that was closed here, ends
// no body.
bool IsEndedByClient(const mg_connection& conn) { return (conn.flags & MG_F_SEND_AND_CLOSE) != 0; }

// Cuts the body to the request's own, or returns false when the received bytes do not hold it all.
// The library hands over what follows as well, takes a negative Content-Length for a whole request
// and, when a connection closes, delivers what had arrived until then.
bool TakeBody(const mg_connection& conn, http_message& msg) {
  const mbuf& received = conn.recv_mbuf;
  size_t nWhole = msg.message.len;
  if ((conn.flags & MG_F_CLOSE_IMMEDIATELY) != 0) {
    if (mg_get_http_header(&msg, "Transfer-Encoding") != nullptr) return false;
    nWhole = AnnouncedLength(received, IsEndedByClient(conn));
  }
  const size_t nHead = static_cast<size_t>(msg.body.p - received.buf);
  if (nWhole < nHead || nWhole > received.len) return false;
  msg.body.len = nWhole - nHead;
  return true;
}

// A client that asks on and on without reading the replies must not fill the memory.
bool IsUnread(const mg_connection& conn) { return conn.send_mbuf.len > kMaxUnreadBytes; }

void HandleRequest(mg_connection* pConn, http_message* pMsg) {
  if (IsUnread(*pConn) || !TakeBody(*pConn, *pMsg)) {
    pConn->flags |= MG_F_CLOSE_IMMEDIATELY;
    pMsg->message.len = pConn->recv_mbuf.len;  // or the library would look at the same bytes again
    return;
  }
  CWebCtrl::Instance().DoHttpRequeset(pConn, pMsg);
}

// When the connection last had traffic, in steps of one event: many clients fit into a second of
// the library's clock, which the system's time moves, too.
void NoteTraffic(mg_connection* pConn) {
  static uintptr_t s_nEvents = 0;
  pConn->user_data = reinterpret_cast<void*>(++s_nEvents);
}

// Whether one connection's traffic is older than another's; the number of events may wrap.
bool IsIdler(const mg_connection& one, const mg_connection& other) {
  return static_cast<intptr_t>(reinterpret_cast<uintptr_t>(one.user_data) -
                               reinterpret_cast<uintptr_t>(other.user_data)) < 0;
}

// Replies go out without waiting for acknowledgements; accepted sockets inherit it.
void SetListenerLimits(mg_connection* pListener) {
  const int nOn = 1;
  setsockopt(pListener->sock, IPPROTO_TCP, TCP_NODELAY, &nOn, sizeof(nOn));
  pListener->recv_mbuf_limit = kMaxRequestBytes;
}

}  // namespace

mg_serve_http_opts& HttpOptions() {
  static mg_serve_http_opts opts{};
  return opts;
}

void HttpEvent(mg_connection* pConn, int nEvent, void* pData) {
  const bool bTraffic = nEvent == MG_EV_ACCEPT || nEvent == MG_EV_RECV || nEvent == MG_EV_SEND;
  if (bTraffic) NoteTraffic(pConn);
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

void ResumeReceiving(mg_mgr& mgr) {
  for (mg_connection* p = mgr.active_connections; p != nullptr; p = p->next) {
    p->recv_mbuf_limit = kMaxRequestBytes;
    if (p->recv_mbuf.len >= kMaxRequestBytes) p->flags |= MG_F_CLOSE_IMMEDIATELY;
  }
}

int ConnectionLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return kMaxConnections;
  // Each has its socket and, at times, a file.
  const rlim_t nLeft = std::max(limit.rlim_cur, kOtherDescriptors + 2) - kOtherDescriptors;
  return static_cast<int>(std::min<rlim_t>(nLeft / 2, kMaxConnections));
}

void CloseIdleConnections(mg_mgr& mgr, int nLimit) {
  int nOpen = 0;
  for (mg_connection* p = mgr.active_connections; p != nullptr; p = p->next) {
    if (p->listener != nullptr && (p->flags & MG_F_CLOSE_IMMEDIATELY) == 0) ++nOpen;
  }
  for (; nOpen > nLimit; --nOpen) {
    mg_connection* pIdlest = nullptr;
    for (mg_connection* p = mgr.active_connections; p != nullptr; p = p->next) {
      if (p->listener == nullptr || (p->flags & MG_F_CLOSE_IMMEDIATELY) != 0) continue;
      if (pIdlest == nullptr || IsIdler(*p, *pIdlest)) pIdlest = p;
    }
    if (pIdlest == nullptr) return;
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
  SetListenerLimits(pListener);
  mg_set_protocol_http_websocket(pListener);
  HttpOptions().document_root = pszWebRoot;
  struct stat st {};
  if (stat(pszWebRoot, &st) != 0) {
    fputs("Cannot find web_root directory, exiting\n", stderr);
    return -1;
  }
  printf("Starting web server on port %s\n", kPort);
  const int nLimit = ConnectionLimit();
  for (int nWaitMs = kPollMs;;) {
    FlushPrinted();
    mg_mgr_poll(&mgr, nWaitMs);
    ResumeReceiving(mgr);
    const bool bShort = TakeMemoryShortage();
    if (bShort) puts("CWebCtrl::DetectSvc, out of memory, all connections are closed.");
    CloseIdleConnections(mgr, bShort ? 0 : nLimit);
    nWaitMs = bShort ? 0 : kPollMs;  // what is closed gives its memory back without waiting
  }
}
