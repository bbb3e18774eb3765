// The network of the HTTP target: the service's own server with one client at a time, over local
// sockets. What one side sends reaches the other at once, and nothing depends on the clock, so an
// input always gives the same run. One object at a time.
#pragma once

#include <mongoose.h>

#include <string>
#include <string_view>

#include "CBB/Http/Server.h"

class CScriptedNet {
 public:
  // Listens with the service's handler of whole requests, or with a wrapper around it.
  explicit CScriptedNet(mg_event_handler_t pfnHandler);
  ~CScriptedNet();
  CScriptedNet(const CScriptedNet&) = delete;
  CScriptedNet& operator=(const CScriptedNet&) = delete;

  // A client connects; the previous one has gone.
  void Connect();
  // Bytes from the client arrive together, and the service does all that it can. Bytes that come
  // after the service has closed the connection are lost.
  void Receive(std::string_view bytes);
  // The client reads what it has been sent so far and returns it.
  std::string Read();
  // The client ends its stream; returns what it is still sent. The service must then close.
  std::string Disconnect();
  // The client disconnects at once. The service must then close.
  void Abort();

 private:
  struct stSigns;

  stSigns Look() const;
  void Settle();

  CServer m_server;
  int m_nClient = -1;
};
