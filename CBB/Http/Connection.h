// One client's connection: its state, the incoming request, the outgoing reply, and its end.
// Turns.h draws the states and decides what may happen. An object lives from the library's accept
// event to its close event and is owned by the library's record of the connection. HTTP server
// thread only.
#pragma once

#include <mongoose.h>

#include <cstdint>
#include <string_view>
#include <utility>

#include "CBB/Http/Body.h"
#include "CBB/Http/Events.h"
#include "CBB/Http/Request.h"
#include "CBB/Http/Turns.h"

class CConnection;

// What a connection needs from its server.
class CHost {
 public:
  // A complete request has arrived: its client gets a turn. Called once per turn.
  virtual void Enqueue(CConnection& conn) = 0;

  // The exchange is over: the connection is closed at its PartMs at the latest.
  virtual void Parting(CConnection& conn) = 0;

  virtual CEvents& Events() = 0;
  virtual uint64_t NowMs() const = 0;   // of a clock that cannot be set
  virtual uint64_t NextUse() = 0;       // larger than every number before
  virtual http_message& Message() = 0;  // for the request that is being answered

 protected:
  ~CHost() = default;
};

class CConnection {
 public:
  CConnection(CHost& host, mg_connection& conn);
  CConnection(const CConnection&) = delete;
  CConnection& operator=(const CConnection&) = delete;

  // The object that belongs to an accepted connection of the library.
  static CConnection& Of(const mg_connection& conn);

  // Events of the socket.
  void OnReadable();
  void OnWritable();

  // Its turn has come: passes the request to the service's handler. Send sends the reply.
  void Serve();

  // Sends what the socket accepts, up to a limit, and continues once everything is sent.
  void Send();

  // Inside a request's handler: whether the client wants to keep the connection.
  bool KeepsOpen() const { return m_request.KeepsOpen(); }

  // Inside a request's handler: sets the body to send after the current content of the send buffer.
  void SetBody(CBody body) { m_body = std::move(body); }

  // Removes it from every list; the server closes it.
  void Close();

  // The last reply is sent, and the client has had its time to read it.
  bool IsLate(uint64_t nNowMs) const { return m_nPartMs != 0 && nNowMs >= m_nPartMs; }
  uint64_t PartMs() const { return m_nPartMs; }

  stPlace Place(uint64_t nNowMs) const {
    return {m_bServed, nNowMs - m_nAcceptMs, nNowMs - m_nUsedMs, m_nLastUse};
  }

  // What it holds for its client: memory in bytes, open files.
  size_t Held() const;
  size_t HeldFiles() const { return m_body.HoldsFile() ? 1 : 0; }

  mg_connection& Library() { return m_conn; }

  // Its link in the server's queue of turns, and what the server has counted for it.
  CConnection* pNext = nullptr;
  bool bQueued = false;
  size_t nHeldCounted = 0;
  size_t nFilesCounted = 0;

 private:
  bool AllSent() const { return m_conn.send_mbuf.len == 0 && m_body.Left() == 0; }
  bool WantsBytes() const;
  void Watch();
  std::string_view Receive();
  void EndOfStream();
  void Advance();
  void Act(stTurn turn);
  void Continue();
  void Refuse(int nStatus);
  void Part();
  void Answer();
  ssize_t SendSome();
  void Sent();

  CHost& m_host;
  mg_connection& m_conn;
  State m_state = State::kReading;
  CRequest m_request;
  CBody m_body;
  bool m_bContinued = false;  // the client was told to send the body of this request
  bool m_bServed = false;
  bool m_bEnded = false;   // the client has ended its stream
  bool m_bSilent = false;  // its last request gets no answer, and no later one does
  uint64_t m_nAcceptMs;
  uint64_t m_nUsedMs;
  uint64_t m_nLastUse;
  uint64_t m_nPartMs = 0;  // 0: not parting
};
