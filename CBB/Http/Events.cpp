#include "CBB/Http/Events.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <new>

#include "CBB/Http/Descriptors.h"
#include "CBB/Http/Library.h"
#include "CBB/Http/LibraryMemory.h"

namespace {

CEvents* g_pEvents = nullptr;  // of the manager that is being initialised

}  // namespace

// What the library calls. The rest comes from its own interface.
struct stEventCalls {
  static CEvents& Of(mg_iface* pIface) { return *static_cast<CEvents*>(pIface->data); }

  static void Init(mg_iface* pIface) { pIface->data = g_pEvents; }

  static void Free(mg_iface* pIface) {
    CEvents& events = Of(pIface);
    if (events.m_nPoll >= 0) close(events.m_nPoll);
    events.m_nPoll = -1;
  }

  static void AddConn(mg_connection* /*pConn*/) {}

  static void RemoveConn(mg_connection* pConn) { Of(pConn->iface).Forget(*pConn); }

  static time_t Poll(mg_iface* pIface, int nTimeoutMs) {
    Of(pIface).Poll(nTimeoutMs);
    return time(nullptr);
  }

  static void SetSocket(mg_connection* pConn, sock_t sock) {
    pConn->sock = sock;
    if (pConn->listener == nullptr) fcntl(sock, F_SETFD, FD_CLOEXEC);
    if (!Of(pConn->iface).Add(*pConn)) pConn->flags |= MG_F_CLOSE_IMMEDIATELY;
  }

  static mg_iface_vtable Table() {
    mg_iface_vtable table = mg_socket_iface_vtable;
    table.init = &Init;
    table._free = &Free;
    table.add_conn = &AddConn;
    table.remove_conn = &RemoveConn;
    table.poll = &Poll;
    table.sock_set = &SetSocket;
    return table;
  }
};

void CEvents::InitManager(mg_mgr& mgr) {
  static const mg_iface_vtable s_table = stEventCalls::Table();
  g_pEvents = this;
  // Other managers in the process keep the library's own interface.
  const mg_iface_vtable* const pOwn = mg_ifaces[MG_MAIN_IFACE];
  mg_ifaces[MG_MAIN_IFACE] = &s_table;
  mg_mgr_init(&mgr, nullptr);
  mg_ifaces[MG_MAIN_IFACE] = pOwn;
  g_pEvents = nullptr;
}

bool CEvents::Add(const mg_connection& conn) {
  try {
    if (m_nPoll < 0) m_nPoll = epoll_create1(EPOLL_CLOEXEC);
    const auto nAt = static_cast<size_t>(conn.sock);
    if (nAt >= m_wanted.size()) m_wanted.resize(nAt + 64);
    m_wanted[nAt] = EPOLLIN;
  } catch (const std::bad_alloc&) {
    NoteMemoryShortage();
    return false;
  }
  epoll_event event{};
  event.events = EPOLLIN;
  event.data.ptr = const_cast<mg_connection*>(&conn);
  return epoll_ctl(m_nPoll, EPOLL_CTL_ADD, conn.sock, &event) == 0;
}

// The socket is closed next, which removes it from the poll object.
void CEvents::Forget(const mg_connection& conn) {
  for (int i = 0; i < m_nEvents; ++i) {
    if (m_events[i].data.ptr == &conn) m_events[i].data.ptr = nullptr;
  }
}

void CEvents::Want(const mg_connection& conn, bool bReadable, bool bWritable, bool bExactly) {
  uint32_t& uiWanted = m_wanted[static_cast<size_t>(conn.sock)];
  uint32_t uiNow = (bReadable ? EPOLLIN : 0U) | (bWritable ? EPOLLOUT : 0U);
  if (!bExactly) uiNow |= uiWanted & EPOLLIN;
  if (uiNow == uiWanted) return;
  uiWanted = uiNow;
  epoll_event event{};
  event.events = uiNow;
  event.data.ptr = const_cast<mg_connection*>(&conn);
  epoll_ctl(m_nPoll, EPOLL_CTL_MOD, conn.sock, &event);
}

// Collects every event before anybody has a turn: a reset must not wait behind other clients'
// bytes. The system reports ready sockets in rotation, so as many calls as there are sockets see
// each one.
void CEvents::Poll(int nTimeoutMs) {
  size_t nLooks = m_wanted.size() / kMaxEvents + 1;
  do {
    m_nEvents = epoll_wait(m_nPoll, m_events, kMaxEvents, nTimeoutMs);
    const bool bMore = m_nEvents == kMaxEvents;
    for (int i = 0; i < m_nEvents; ++i) {
      const epoll_event event = m_events[i];
      if (event.data.ptr != nullptr) Tell(*static_cast<mg_connection*>(event.data.ptr), event, i);
    }
    m_nEvents = 0;
    nTimeoutMs = 0;
    nLooks = bMore && !IsMemoryShort() ? nLooks - 1 : 0;
  } while (nLooks > 0);
}

void CEvents::Tell(mg_connection& conn, const epoll_event& event, int nAt) {
  if ((conn.flags & MG_F_LISTENING) != 0) {
    Accept(conn);
    return;
  }
  // There may be unread bytes before an orderly end; left in the socket they would cause a reset.
  const bool bEnded = (event.events & (EPOLLHUP | EPOLLIN)) == EPOLLHUP;
  if ((event.events & EPOLLERR) != 0 || bEnded) {
    m_watcher.Broken(conn);
    return;
  }
  if ((event.events & EPOLLIN) != 0) m_watcher.Readable(conn);
  const bool bStillThere = m_events[nAt].data.ptr != nullptr;
  if (bStillThere && (event.events & EPOLLOUT) != 0) m_watcher.Writable(conn);
}

// Accepts none while memory is short: all present clients are about to be disconnected, and one
// that reconnects at once must queue behind those that wait.
void CEvents::Accept(mg_connection& listener) {
  for (int i = 0; i < kMaxAccepts && !IsMemoryShort(); ++i) {
    socket_address address{};
    socklen_t nSize = sizeof(address);
    int nSock = accept4(listener.sock, &address.sa, &nSize, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (nSock < 0 && errno != EMFILE && errno != ENFILE && errno != ENOBUFS && errno != ENOMEM)
      return;
    nSock = MoveUp(nSock);
    mg_connection* const pConn = nSock < 0 ? nullptr : mg_if_accept_new_conn(&listener);
    if (pConn == nullptr) {
      if (nSock >= 0) close(nSock);
      m_watcher.CannotAccept();
      return;
    }
    stEventCalls::SetSocket(pConn, nSock);
    mg_if_accept_tcp_cb(pConn, &address, nSize);
    m_watcher.Accepted(*pConn);
  }
}
