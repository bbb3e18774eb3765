// Replaces the two calls that create the HTTP library's listener; the linker then omits the
// platform's. What the library takes for a TCP socket is a local one with its own name.
#include "fuzz/ScriptedNet.h"

#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>

#include "fuzz/Input.h"

namespace {

// After this many rounds without an event nothing more will happen. A round may change only what
// the service waits for.
constexpr int kQuietRounds = 3;

sockaddr_un g_listener;
socklen_t g_nListener = 0;

}  // namespace

extern "C" {
int socket(int nDomain, int nType, int nProtocol) noexcept {
  const bool bListener = nDomain == AF_INET && nType == SOCK_STREAM;
  return static_cast<int>(syscall(SYS_socket, bListener ? AF_UNIX : nDomain, nType, nProtocol));
}

int bind(int nSock, const sockaddr* /*pAddress*/, socklen_t /*nSize*/) noexcept {
  const sockaddr any = {AF_UNIX, {}};
  // An address this short asks for any free name.
  if (syscall(SYS_bind, nSock, &any, sizeof(any.sa_family)) != 0) return -1;
  g_nListener = sizeof(g_listener);
  return getsockname(nSock, reinterpret_cast<sockaddr*>(&g_listener), &g_nListener);
}
}

// What a client can observe of the service at its socket.
struct CScriptedNet::stSigns {
  int nUnread = 0;      // by the client
  int nUnreceived = 0;  // by the service
  size_t nClients = 0;

  bool operator==(const stSigns& other) const {
    return nUnread == other.nUnread && nUnreceived == other.nUnreceived &&
           nClients == other.nClients;
  }
};

CScriptedNet::CScriptedNet(mg_event_handler_t pfnHandler) : m_server(pfnHandler) {
  Require(m_server.Bind("80") == 0);
}

CScriptedNet::~CScriptedNet() {
  if (m_nClient >= 0) Abort();
  m_server.Close();
}

CScriptedNet::stSigns CScriptedNet::Look() const {
  stSigns signs;
  if (m_nClient >= 0) ioctl(m_nClient, FIONREAD, &signs.nUnread);
  if (m_nClient >= 0) ioctl(m_nClient, SIOCOUTQ, &signs.nUnreceived);
  signs.nClients = m_server.Connections();
  return signs;
}

void CScriptedNet::Settle() {
  stSigns before = Look();
  for (int nQuiet = 0; nQuiet < kQuietRounds; ++nQuiet) {
    m_server.Poll(0);
    const stSigns now = Look();
    if (!(now == before)) nQuiet = 0;
    before = now;
  }
}

void CScriptedNet::Connect() {
  Require(m_nClient < 0);
  m_nClient = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  Require(connect(m_nClient, reinterpret_cast<const sockaddr*>(&g_listener), g_nListener) == 0);
  Settle();
  Require(m_server.Connections() == 1);
}

void CScriptedNet::Receive(std::string_view bytes) {
  const ssize_t nSent = send(m_nClient, bytes.data(), bytes.size(), MSG_NOSIGNAL);
  Require(nSent == static_cast<ssize_t>(bytes.size()) || errno == EPIPE || errno == ECONNRESET);
  Settle();
}

std::string CScriptedNet::Read() {
  std::string strTaken;
  char buffer[16384];
  ssize_t nGot;
  while ((nGot = recv(m_nClient, buffer, sizeof(buffer), 0)) > 0) {
    strTaken.append(buffer, static_cast<size_t>(nGot));
    Settle();
  }
  return strTaken;
}

std::string CScriptedNet::Disconnect() {
  shutdown(m_nClient, SHUT_WR);
  Settle();
  std::string strTaken = Read();
  Require(m_server.Connections() == 0);
  Abort();
  return strTaken;
}

void CScriptedNet::Abort() {
  const int nClient = m_nClient;
  m_nClient = -1;
  close(nClient);
  Settle();
  Require(m_server.Connections() == 0);
}
