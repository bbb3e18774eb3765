// The HTTP server: it binds, waits, gives each client its turn, and decides which one to disconnect
// when clients use too many connections or too much memory. Everything runs on the polling thread.
#pragma once

#include <mongoose.h>

#include <cstdint>
#include <vector>

#include "CBB/Http/Connection.h"
#include "CBB/Http/Events.h"
#include "CBB/Http/TurnQueue.h"

// The most open connections, as far as the process's descriptor limit allows.
constexpr int kMaxConnections = 2000;

// The most memory that all clients together may hold in incomplete requests and unread replies.
// Beyond it the client that holds most is closed.
constexpr size_t kMaxHeldBytes = 8U << 20;

class CServer : private CWatcher, private CHost {
 public:
  // pfnHandler is called with event 100 for each whole request, and with the library's events that
  // occur while it is being answered.
  explicit CServer(mg_event_handler_t pfnHandler);
  CServer(const CServer&) = delete;
  CServer& operator=(const CServer&) = delete;

  // Listens for HTTP clients on pszAddress, such as "80" or "127.0.0.1:8080". Called once. Returns
  // 0, or -1 when the address cannot be bound; the manager then stays as it is.
  int Bind(const char* pszAddress);

  // Waits at most nWaitMs for events and handles them: one request of each client that has sent
  // one. Returns early when a request took long, so that the caller can do its own work. Returns
  // whether memory ran out; all clients have then been disconnected.
  bool Poll(int nWaitMs);

  // Inside a handler that is about to wait for long: sends the finished replies of this round,
  // which otherwise leave together at its end. Printed traces are flushed first, so that they are
  // there when a client has its reply.
  void SendReplies();

  // Closes everything. No destructor calls it: a failed server is left as it is.
  void Close();

  size_t Connections() const { return m_nConnections; }

  // The port in use.
  int Port() const;

 private:
  static void OnEvent(mg_connection* pConn, int nEvent, void* pData);
  void Open(mg_connection& conn);
  void Forget(CConnection& conn);

  void Enqueue(CConnection& conn) override;
  void Parting(CConnection& conn) override;
  CEvents& Events() override { return m_events; }
  uint64_t NowMs() const override;
  uint64_t NextUse() override { return ++m_nUses; }
  http_message& Message() override { return m_message; }

  void Accepted(mg_connection& conn) override;
  void CannotAccept() override;
  void Readable(mg_connection& conn) override;
  void Writable(mg_connection& conn) override;
  void Broken(mg_connection& conn) override;

  void Settle(mg_connection& conn);
  void ServeTurns();
  void SettleAnswered();
  int WaitMs(int nWaitMs) const;
  void CloseLate();
  void ReturnHeld();
  void MakeRoom();
  void LimitHeld();
  void CloseAll();
  bool CloseFirst();
  template <class F>
  void ForEach(F pfnCall);

  mg_event_handler_t m_pfnHandler;
  CEvents m_events{*this};
  mg_mgr m_mgr{};
  mg_connection* m_pListener = nullptr;
  http_message m_message{};
  int m_nPlaces = 0;
  size_t m_nConnections = 0;
  size_t m_nFiles = 0;  // being sent to clients
  size_t m_nHeld = 0;
  size_t m_nMostHeld = 0;  // since memory was given back
  uint64_t m_nNowMs = 0;
  uint64_t m_nUses = 0;
  CTurnQueue m_turns;    // clients that have a request now
  CTurnQueue m_further;  // clients that have had their turn in this round
  bool m_bServing = false;
  std::vector<CConnection*> m_answered;  // served in this round; null: gone
  size_t m_nSent = 0;                    // how many of their replies are sent or being sent
  uint64_t m_nAcceptMs = 0;              // when to listen again; 0 while listening
  std::vector<CConnection*> m_parting;   // in the order of their deadlines
};
