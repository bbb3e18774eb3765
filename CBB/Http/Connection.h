// One client's connection: its state, the request that arrives on it, the reply that leaves, and
// its end. Turns.h draws the states; what may happen is decided there and nowhere else. An object
// lives from the library's accept event to its close event and is owned by the library's record of
// the connection. HTTP server thread only.
#pragma once

#include <mongoose.h>

#include <cstdint>
#include <utility>

#include "CBB/Http/Body.h"
#include "CBB/Http/Events.h"
#include "CBB/Http/Request.h"
#include "CBB/Http/Turns.h"

class CConnection;

// What a connection needs of the server that it belongs to.
class CHost {
 public:
  // A request has arrived whole: its client gets a turn. Once until the turn has come.
  virtual void Enqueue(CConnection& conn) = 0;

  // All is said: the connection is closed at its PartMs, if it is not before.
  virtual void Parting(CConnection& conn) = 0;

  virtual CEvents& Events() = 0;
  virtual uint64_t NowMs() const = 0;   // of a clock that nobody sets
  virtual uint64_t NextUse() = 0;       // a number larger than all before
  virtual http_message& Message() = 0;  // for the request that is being answered

 protected:
  ~CHost() = default;
};

class CConnection {
 public:
  CConnection(CHost& host, mg_connection& conn);
  CConnection(const CConnection&) = delete;
  CConnection& operator=(const CConnection&) = delete;

  // The object of one of the library's connections that a server has accepted.
  static CConnection& Of(const mg_connection& conn);

  // What happens to it: the socket has bytes; the library has received some; the socket takes
  // bytes; the client sends no more.
  void OnReadable();
  void OnReceived();
  void OnWritable();
  void OnEndOfStream();

  // Its turn has come: hands the request over to the service's handler. The reply leaves by Send.
  void Serve();

  // Sends what the socket takes, within bounds, and goes on once all has left.
  void Send();

  // Within the handler of a request: whether the client would go on using the connection.
  bool KeepsOpen() const { return m_request.KeepsOpen(); }

  // Within the handler of a request: what is to be sent behind what stands in the send buffer then.
  void SetBody(CBody body) { m_body = std::move(body); }

  // Takes it out of everything; the server closes it.
  void Close();

  // It has said all, and the client has had its time to read it.
  bool IsLate(uint64_t nNowMs) const { return m_nPartMs != 0 && nNowMs >= m_nPartMs; }
  uint64_t PartMs() const { return m_nPartMs; }

  stPlace Place(uint64_t nNowMs) const {
    return {m_bServed, nNowMs - m_nAcceptMs, nNowMs - m_nUsedMs, m_nLastUse};
  }

  // What it holds for its client: bytes of memory, open files.
  size_t Held() const;
  size_t HeldFiles() const { return m_body.HoldsFile() ? 1 : 0; }

  mg_connection& Library() { return m_conn; }

  // The server's queue of turns, and what it has counted of it.
  CConnection* pNext = nullptr;
  bool bQueued = false;
  size_t nHeldCounted = 0;
  size_t nFilesCounted = 0;

 private:
  bool AllSent() const { return m_conn.send_mbuf.len == 0 && m_body.Left() == 0; }
  bool WantsBytes() const;
  void Watch();
  void Advance();
  void Act(stTurn turn);
  void Continue();
  void Refuse(int nStatus);
  void Part();
  void Answer();
  void ForgetReceived(size_t nSize);
  void Drop();
  ssize_t SendSome();
  ssize_t SendWithBody();
  void Sent();

  CHost& m_host;
  mg_connection& m_conn;
  State m_state = State::kReading;
  CRequest m_request;
  CBody m_body;
  bool m_bContinued = false;  // the client was told to send the body of this request
  bool m_bServed = false;
  bool m_bEnded = false;   // the client sends no more
  bool m_bSilent = false;  // its last request got no answer, and nothing more does
  uint64_t m_nAcceptMs;
  uint64_t m_nUsedMs;
  uint64_t m_nLastUse;
  uint64_t m_nPartMs = 0;  // 0: not parting
};
