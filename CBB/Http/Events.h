// The HTTP library's event interface over epoll: idle sockets cost nothing, however many there are,
// and a client's reset is noticed as soon as it arrives. One watcher is told of every event and
// does the rest with the library's own calls. One thread.
#pragma once

#include <mongoose.h>
#include <sys/epoll.h>

#include <cstdint>
#include <vector>

// What may happen to a socket. A connection that has been closed gets no more events.
class CWatcher {
 public:
  virtual void Accepted(mg_connection& conn) = 0;
  virtual void CannotAccept() = 0;  // no descriptor or no memory for a waiting client
  virtual void Readable(mg_connection& conn) = 0;
  virtual void Writable(mg_connection& conn) = 0;
  virtual void Broken(mg_connection& conn) = 0;  // reset, or closed by both sides

 protected:
  ~CWatcher() = default;
};

class CEvents {
 public:
  explicit CEvents(CWatcher& watcher) : m_watcher(watcher) {}
  CEvents(const CEvents&) = delete;
  CEvents& operator=(const CEvents&) = delete;

  // Initialises mgr as a manager over this interface, which must outlive it. The epoll object is
  // created with the first socket and closed with the manager, so a manager that never gets a
  // socket leaves nothing open.
  void InitManager(mg_mgr& mgr);

  // Sets which events of a connection the watcher wants from now on; a break is always reported.
  // bExactly: unwanted events stop at once; otherwise they may still be reported.
  void Want(const mg_connection& conn, bool bReadable, bool bWritable, bool bExactly);

 private:
  friend struct stEventCalls;
  static constexpr int kMaxEvents = 64;
  static constexpr int kMaxAccepts = 16;  // a poll

  bool Add(const mg_connection& conn);
  void Forget(const mg_connection& conn);
  void Poll(int nTimeoutMs);
  void Accept(mg_connection& listener);
  void Tell(mg_connection& conn, const epoll_event& event, int nAt);

  CWatcher& m_watcher;
  int m_nPoll = -1;
  int m_nEvents = 0;  // of the current poll
  epoll_event m_events[kMaxEvents];
  std::vector<uint32_t> m_wanted;  // by socket
};
