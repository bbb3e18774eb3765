// The network of the HTTP target, in the place of sockets: one client at a time, whose bytes arrive
// in the pieces that the target gives. Everything above the socket calls is the HTTP library's own.
// One object at a time.
#pragma once

#include <mongoose.h>

#include <string>
#include <string_view>

class CScriptedNet {
 public:
  // Listens with the event handler of the service's listener, or one around it.
  explicit CScriptedNet(void (*pfnHandler)(mg_connection* pConn, int nEvent, void* pData));
  ~CScriptedNet();
  CScriptedNet(const CScriptedNet&) = delete;
  CScriptedNet& operator=(const CScriptedNet&) = delete;

  // A client comes, the one before it having gone.
  void Connect();
  // Bytes arrive together. Nothing happens once the service has closed the connection.
  void Receive(std::string_view piece);
  // The client takes what it has been sent so far, files included, and returns it.
  std::string Read();
  // The client goes away.
  void Disconnect();

  // Bytes that wait to be sent.
  size_t Unread() const;

 private:
  void Poll();

  mg_mgr m_mgr;
  mg_connection* m_pListener;
};
