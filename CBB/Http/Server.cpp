#include "CBB/Http/Server.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <new>

#include "CBB/Http/Descriptors.h"
#include "CBB/Http/Library.h"
#include "CBB/Http/LibraryMemory.h"
#include "CBB/Util/Print.h"

namespace {

constexpr uint64_t kRoundMs = 2;  // of requests, before the network is checked again
// Replies that leave together. More would cost less each, but the clients would idle meanwhile.
constexpr size_t kTogether = 4;
constexpr size_t kMuchHeld = 1U << 20;    // given back once it is free
constexpr uint64_t kAcceptPauseMs = 100;  // when a client could not be accepted

uint64_t ClockMs() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<uint64_t>(now.tv_sec) * 1000 + static_cast<uint64_t>(now.tv_nsec) / 1000000;
}

}  // namespace

CServer::CServer(mg_event_handler_t pfnHandler) : m_pfnHandler(pfnHandler) {}

int CServer::Bind(const char* pszAddress) {
  m_events.InitManager(m_mgr);
  m_pListener = mg_bind(&m_mgr, pszAddress, m_pfnHandler);
  const bool bNoPoll = m_pListener != nullptr && (m_pListener->flags & MG_F_CLOSE_IMMEDIATELY) != 0;
  if (m_pListener == nullptr || bNoPoll) return -1;
  mg_set_protocol_http_websocket(m_pListener);
  // Requests are read here and passed on as the library would.
  m_pListener->proto_handler = &OnEvent;
  m_pListener->user_data = this;
  const int nOn = 1;
  setsockopt(m_pListener->sock, IPPROTO_TCP, TCP_NODELAY, &nOn, sizeof(nOn));
  setsockopt(m_pListener->sock, SOL_SOCKET, SO_OOBINLINE, &nOn, sizeof(nOn));
  CLentText::Prepare();
  m_nPlaces = std::min(ClientDescriptors(), kMaxConnections);
  m_parting.reserve(static_cast<size_t>(m_nPlaces) + 1);
  m_answered.reserve(static_cast<size_t>(m_nPlaces) + 1);
  m_nNowMs = ClockMs();
  return 0;
}

void CServer::Close() { mg_mgr_free(&m_mgr); }

int CServer::Port() const {
  sockaddr_in address{};
  socklen_t nSize = sizeof(address);
  getsockname(m_pListener->sock, reinterpret_cast<sockaddr*>(&address), &nSize);
  return ntohs(address.sin_port);
}

bool CServer::Poll(int nWaitMs) {
  mg_mgr_poll(&m_mgr, WaitMs(nWaitMs));
  m_nNowMs = ClockMs();
  // Newcomers go before those that have been served.
  m_turns.Join(m_further);
  ServeTurns();
  CloseLate();
  const bool bShort = TakeMemoryShortage();
  if (bShort) CloseAll();
  return bShort;
}

int CServer::WaitMs(int nWaitMs) const {
  if (!m_turns.IsEmpty() || !m_further.IsEmpty()) return 0;
  uint64_t nUntil = m_nNowMs + static_cast<uint64_t>(nWaitMs);
  if (!m_parting.empty()) nUntil = std::min(nUntil, m_parting.front()->PartMs());
  if (m_nAcceptMs != 0) nUntil = std::min(nUntil, m_nAcceptMs);
  const uint64_t nNow = ClockMs();
  return nUntil <= nNow ? 0 : static_cast<int>(nUntil - nNow);
}

void CServer::ServeTurns() {
  const uint64_t nEnd = m_nNowMs + kRoundMs;
  m_bServing = true;
  while (CConnection* const pConn = m_turns.Take()) {
    pConn->bQueued = false;
    pConn->Serve();
    m_answered.push_back(pConn);
    m_nNowMs = ClockMs();
    Settle(pConn->Library());
    if (m_answered.size() - m_nSent >= kTogether) SendReplies();
    if (m_nNowMs >= nEnd || IsMemoryShort()) break;
  }
  SendReplies();
  SettleAnswered();
  m_bServing = false;
}

// A handler may be running, so nothing is closed here.
void CServer::SendReplies() {
  FlushPrinted();
  while (m_nSent < m_answered.size()) {
    if (CConnection* const pConn = m_answered[m_nSent++]) pConn->Send();
  }
}

void CServer::SettleAnswered() {
  for (size_t i = 0; i < m_answered.size(); ++i) {
    if (m_answered[i] != nullptr) Settle(m_answered[i]->Library());
  }
  m_answered.clear();
  m_nSent = 0;
}

void CServer::Enqueue(CConnection& conn) {
  if (conn.bQueued) return;
  conn.bQueued = true;
  (m_bServing ? m_further : m_turns).Append(conn);
}

uint64_t CServer::NowMs() const { return ClockMs(); }

void CServer::Parting(CConnection& conn) { m_parting.push_back(&conn); }

// Receives the library's events in place of its own protocol handler, which would read requests.
void CServer::OnEvent(mg_connection* pConn, int nEvent, void* pData) {
  switch (nEvent) {
    case MG_EV_ACCEPT:
      static_cast<CServer*>(pConn->listener->user_data)->Open(*pConn);
      break;
    case MG_EV_CLOSE:
      if (pConn->listener != nullptr && pConn->user_data != nullptr)
        static_cast<CServer*>(pConn->listener->user_data)->Forget(CConnection::Of(*pConn));
      break;
    default:
      pConn->handler(pConn, nEvent, pData);
  }
}

void CServer::Open(mg_connection& conn) {
  conn.user_data = new (std::nothrow) CConnection(*this, conn);
  if (conn.user_data == nullptr) {
    NoteMemoryShortage();
    conn.flags |= MG_F_CLOSE_IMMEDIATELY;
    return;
  }
  ++m_nConnections;
}

void CServer::Forget(CConnection& conn) {
  m_turns.Remove(conn);
  m_further.Remove(conn);
  std::replace(m_answered.begin(), m_answered.end(), &conn, static_cast<CConnection*>(nullptr));
  m_parting.erase(std::remove(m_parting.begin(), m_parting.end(), &conn), m_parting.end());
  m_nHeld -= conn.nHeldCounted;
  m_nFiles -= conn.nFilesCounted;
  --m_nConnections;
  conn.Library().user_data = nullptr;
  delete &conn;
}

void CServer::Accepted(mg_connection& conn) {
  Settle(conn);
  MakeRoom();
}

// Another client is closed to make room, or accepting pauses: the listener would wake every poll.
void CServer::CannotAccept() {
  if (CloseFirst()) return;
  m_events.Want(*m_pListener, false, false, true);
  m_nAcceptMs = ClockMs() + kAcceptPauseMs;
}

void CServer::Readable(mg_connection& conn) {
  CConnection::Of(conn).OnReadable();
  Settle(conn);
}

void CServer::Writable(mg_connection& conn) {
  CConnection::Of(conn).OnWritable();
  Settle(conn);
}

void CServer::Broken(mg_connection& conn) {
  CConnection::Of(conn).Close();
  Settle(conn);
}

// Called after everything that a connection does: closes it when it has ended, counts what it
// holds.
void CServer::Settle(mg_connection& conn) {
  if ((conn.flags & MG_F_CLOSE_IMMEDIATELY) != 0) {
    LibraryClose(&conn);
    return;
  }
  CConnection& own = CConnection::Of(conn);
  m_nHeld += own.Held() - own.nHeldCounted;
  own.nHeldCounted = own.Held();
  m_nFiles += own.HeldFiles() - own.nFilesCounted;
  own.nFilesCounted = own.HeldFiles();
  LimitHeld();
  MakeRoom();
}

void CServer::CloseLate() {
  while (!m_parting.empty() && m_parting.front()->IsLate(m_nNowMs)) {
    mg_connection& conn = m_parting.front()->Library();
    conn.flags |= MG_F_CLOSE_IMMEDIATELY;
    LibraryClose(&conn);
  }
  ReturnHeld();
  if (m_nAcceptMs == 0 || m_nNowMs < m_nAcceptMs) return;
  m_nAcceptMs = 0;
  m_events.Want(*m_pListener, true, false, true);
}

// Memory that a crowd of clients held goes back to the system when they are gone.
void CServer::ReturnHeld() {
  m_nMostHeld = std::max(m_nMostHeld, m_nHeld);
  if (m_nMostHeld < kMuchHeld || m_nHeld > m_nMostHeld / 4) return;
  ReturnMemory();
  m_nMostHeld = m_nHeld;
}

void CServer::MakeRoom() {
  while (m_nConnections + m_nFiles > static_cast<size_t>(m_nPlaces) && CloseFirst()) {
  }
}

// Calls pfnCall for every client; the call must not close it.
template <class F>
void CServer::ForEach(F pfnCall) {
  for (mg_connection* p = m_mgr.active_connections; p != nullptr; p = p->next) {
    if (p->listener != nullptr && p->user_data != nullptr) pfnCall(CConnection::Of(*p));
  }
}

// Closes the client that needs its connection least. Returns false when there is none.
bool CServer::CloseFirst() {
  const uint64_t nNowMs = ClockMs();
  CConnection* pFirst = nullptr;
  ForEach([&](CConnection& conn) {
    if (pFirst == nullptr || GoesBefore(conn.Place(nNowMs), pFirst->Place(nNowMs))) pFirst = &conn;
  });
  if (pFirst == nullptr) return false;
  pFirst->Close();
  LibraryClose(&pFirst->Library());
  return true;
}

void CServer::LimitHeld() {
  while (m_nHeld > kMaxHeldBytes) {
    CConnection* pMost = nullptr;
    ForEach([&](CConnection& conn) {
      if (pMost == nullptr || conn.nHeldCounted > pMost->nHeldCounted) pMost = &conn;
    });
    pMost->Close();
    LibraryClose(&pMost->Library());
  }
}

void CServer::CloseAll() {
  while (CloseFirst()) {
  }
}
