#include "fuzz/ScriptedNet.h"

#include <algorithm>
#include <cstring>

#include "CBB/WebCtrl/HttpLoop.h"
#include "fuzz/Input.h"

namespace {

constexpr sock_t kSock = 0;  // stands for the client's; nothing reads or writes it

mg_connection* g_pClient = nullptr;  // null once the service has closed it
std::string_view g_arriving;
std::string g_strTaken;
bool g_bReads = false;
bool g_bGone = false;

socket_address ClientAddress() {
  socket_address address{};
  address.sin.sin_family = AF_INET;
  return address;
}

bool CanRead(const mg_connection& conn) {
  return conn.recv_mbuf.len < conn.recv_mbuf_limit && (!g_arriving.empty() || g_bGone);
}

time_t PollAll(mg_iface* pIface, int /*nTimeoutMs*/) {
  const double dNow = mg_time();
  mg_connection* pNext = nullptr;
  for (mg_connection* p = pIface->mgr->active_connections; p != nullptr; p = pNext) {
    pNext = p->next;
    if (mg_if_poll(p, dNow) == 0 || p != g_pClient) continue;
    if (CanRead(*p)) mg_if_can_recv_cb(p);
    if (g_bReads && p->send_mbuf.len > 0) mg_if_can_send_cb(p);
  }
  return static_cast<time_t>(dNow);
}

// As the library's own: -1 when the peer has gone, 0 when there is nothing for now.
int TcpRecv(mg_connection* /*pConn*/, void* pBuf, size_t nLen) {
  if (g_arriving.empty()) return g_bGone ? -1 : 0;
  const size_t nGot = g_arriving.copy(static_cast<char*>(pBuf), nLen);
  g_arriving.remove_prefix(nGot);
  return static_cast<int>(nGot);
}

int TcpSend(mg_connection* /*pConn*/, const void* pBuf, size_t nLen) {
  g_strTaken.append(static_cast<const char*>(pBuf), nLen);
  return static_cast<int>(nLen);
}

void DestroyConn(mg_connection* pConn) {
  if (pConn == g_pClient) g_pClient = nullptr;
  pConn->sock = INVALID_SOCKET;
}

mg_iface_vtable MakeInterface() {
  mg_iface_vtable table{};
  table.init = table._free = [](mg_iface*) {};
  table.add_conn = table.remove_conn = [](mg_connection*) {};
  table.poll = PollAll;
  table.listen_tcp = [](mg_connection*, socket_address*) { return 0; };
  table.tcp_send = TcpSend;
  table.tcp_recv = TcpRecv;
  table.create_conn = [](mg_connection*) { return 1; };
  table.destroy_conn = DestroyConn;
  table.get_conn_addr = [](mg_connection*, int, socket_address* pAddr) {
    *pAddr = ClientAddress();
  };
  return table;
}

}  // namespace

CScriptedNet::CScriptedNet(void (*pfnHandler)(mg_connection*, int, void*)) {
  static const mg_iface_vtable s_interface = MakeInterface();
  mg_mgr_init_opts opts{};
  opts.main_iface = &s_interface;
  mg_mgr_init_opt(&m_mgr, nullptr, opts);
  m_pListener = mg_bind(&m_mgr, "80", pfnHandler);
  Require(m_pListener != nullptr);
  ResumeReceiving(m_mgr);
  ServeHttp(m_pListener);
}

CScriptedNet::~CScriptedNet() {
  Disconnect();
  mg_mgr_free(&m_mgr);
}

void CScriptedNet::Connect() {
  Disconnect();
  g_bGone = false;
  g_pClient = mg_if_accept_new_conn(m_pListener);
  Require(g_pClient != nullptr);
  g_pClient->sock = kSock;
  socket_address address = ClientAddress();
  mg_if_accept_tcp_cb(g_pClient, &address, sizeof(address.sin));
}

void CScriptedNet::Poll() {
  mg_mgr_poll(&m_mgr, 0);
  ServeWaiting(m_mgr);
  CloseIdleConnections(m_mgr);
  ResumeReceiving(m_mgr);
}

void CScriptedNet::Receive(std::string_view piece) {
  g_arriving = piece;
  // A connection that takes no more for now gets the rest lost; its client would wait.
  for (size_t nLeft = piece.size() + 1; g_pClient != nullptr && g_arriving.size() < nLeft;) {
    nLeft = g_arriving.size();
    Poll();
  }
  g_arriving = {};
}

std::string CScriptedNet::Read() {
  g_bReads = true;
  g_strTaken.clear();
  // A file comes in several pieces; the round without one is the last.
  for (size_t nTaken = ~static_cast<size_t>(0);
       g_pClient != nullptr && nTaken != g_strTaken.size();) {
    nTaken = g_strTaken.size();
    Poll();
    Poll();
  }
  g_bReads = false;
  return g_strTaken;
}

void CScriptedNet::Disconnect() {
  g_bGone = true;
  // Closing may be put off for a connection that takes no more.
  for (int i = 0; i < 4 && g_pClient != nullptr; ++i) Poll();
  if (g_pClient != nullptr) g_pClient->flags |= MG_F_CLOSE_IMMEDIATELY;
  if (g_pClient != nullptr) Poll();
  Require(g_pClient == nullptr);
}

size_t CScriptedNet::Unread() const { return g_pClient != nullptr ? g_pClient->send_mbuf.len : 0; }
