// The network of the HTTP target: the service's own server with one client at a time, over sockets
// of this machine alone. What one side sends is there for the other at once, and nothing depends on
// the clock, so that an input always plays the same. One object at a time.
#pragma once

#include <mongoose.h>

#include <string>
#include <string_view>

#include "CBB/Http/Server.h"

class CScriptedNet {
 public:
  // Listens with the service's handler of whole requests, or one around it.
  explicit CScriptedNet(mg_event_handler_t pfnHandler);
  ~CScriptedNet();
  CScriptedNet(const CScriptedNet&) = delete;
  CScriptedNet& operator=(const CScriptedNet&) = delete;

  // A client comes, the one before it having gone.
  void Connect();
  // Bytes of the client arrive together, and the service does all that it can. What comes once the
  // service has closed the connection is lost.
  void Receive(std::string_view bytes);
  // The client takes what it has been sent so far and returns it.
  std::string Read();
  // The client sends no more; returns what it is still sent. The service must close then.
  std::string Disconnect();
  // The client goes away at once. The service must close then.
  void Abort();

 private:
  struct stSigns;

  stSigns Look() const;
  void Settle();

  CServer m_server;
  int m_nClient = -1;
};
