// The HTTP library's event interface over epoll: sockets that nothing happens to cost nothing,
// however many there are, and a client's reset is known as soon as it arrives. What happens is told
// to one watcher, which does the rest with the library's own calls. One thread.
#pragma once

#include <mongoose.h>
#include <sys/epoll.h>

#include <cstdint>
#include <vector>

// What may happen to a socket. A connection that is closed meanwhile is told nothing more.
class CWatcher {
 public:
  virtual void Accepted(mg_connection& conn) = 0;
  virtual void CannotAccept() = 0;  // no descriptor, or no memory, for a client that waits
  virtual void Readable(mg_connection& conn) = 0;
  virtual void Writable(mg_connection& conn) = 0;
  virtual void EndOfStream(mg_connection& conn) = 0;  // while being read
  virtual void Broken(mg_connection& conn) = 0;       // reset, or closed from both sides

 protected:
  ~CWatcher() = default;
};

class CEvents {
 public:
  explicit CEvents(CWatcher& watcher) : m_watcher(watcher) {}
  CEvents(const CEvents&) = delete;
  CEvents& operator=(const CEvents&) = delete;

  // Initialises mgr as a manager over this interface, which must outlive its use. The system's poll
  // object is made with the first socket and closed with the manager, so that a manager that gets
  // no socket leaves nothing open.
  void InitManager(mg_mgr& mgr);

  // What the watcher wants to be told of a connection from now on, beside a break, which is always
  // told. bExactly: not even once more what is not wanted; else what is not wanted may still come.
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
  int m_nEvents = 0;  // of the poll under way
  epoll_event m_events[kMaxEvents];
  std::vector<uint32_t> m_wanted;  // by socket
};
