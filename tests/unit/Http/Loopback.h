// A server on a loopback port and its clients, all on the test's thread: the server acts only while
// it is polled, and a client knows when its bytes have reached the server's socket.
#pragma once

#include <mongoose.h>

#include <functional>
#include <string>
#include <string_view>

#include "CBB/Http/Server.h"

class CTestServer {
 public:
  // nPlaces: how many clients it has room for; 0 for as many as the process allows.
  explicit CTestServer(mg_event_handler_t pfnHandler, int nPlaces = 0);
  ~CTestServer();
  CTestServer(const CTestServer&) = delete;
  CTestServer& operator=(const CTestServer&) = delete;

  bool Poll(int nWaitMs = 0) { return m_server.Poll(nWaitMs); }

  // Polls until pfnDone returns true. Records a failure if that takes too long.
  void PollUntil(const std::function<bool()>& pfnDone);

  size_t Connections() const { return m_server.Connections(); }
  int Port() const { return m_server.Port(); }

 private:
  CServer m_server;
};

class CTestClient {
 public:
  // Connects, and waits until the server has accepted. nRoom: the size of its receive buffer.
  explicit CTestClient(CTestServer& server, int nRoom = 0);
  ~CTestClient();
  CTestClient(const CTestClient&) = delete;
  CTestClient& operator=(const CTestClient&) = delete;

  // Sends without polling: the bytes have arrived, but the server has not seen them yet.
  void Send(std::string_view bytes);

  // Sends while the server reads. It may read less than everything and end the connection.
  void SendAll(std::string_view bytes);

  // Sends one byte that the system marks as urgent.
  void SendUrgent(char cByte);

  void End();    // ends the stream
  void Reset();  // resets the connection

  // Everything received so far.
  const std::string& Received();

  // Polls until this many bytes have come, or the server has ended the stream.
  const std::string& Await(size_t nBytes);
  const std::string& AwaitEnd();

  // Whether the server has ended the stream, and whether it did so with a reset.
  bool IsOver();
  bool IsBroken();

 private:
  bool HasArrived() const;

  CTestServer& m_server;
  int m_nSock;
  std::string m_strReceived;
  bool m_bOver = false;
  bool m_bBroken = false;
};

// What a client gets that sends only these bytes, up to the end of the connection.
std::string Exchange(CTestServer& server, std::string_view bytes);
