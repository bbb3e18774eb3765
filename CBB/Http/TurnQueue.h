// The queue of clients waiting for their turn. It is linked through the connections, so it needs no
// memory; a connection is in at most one queue. HTTP server thread only.
#pragma once

class CConnection;

class CTurnQueue {
 public:
  bool IsEmpty() const { return m_pFirst == nullptr; }
  void Append(CConnection& conn);

  // Removes and returns the first one; null when there is none.
  CConnection* Take();

  // Removes one, wherever it is in the queue, if it is there.
  void Remove(const CConnection& conn);

  // Appends all of another queue to this one.
  void Join(CTurnQueue& other);

 private:
  CConnection* m_pFirst = nullptr;
  CConnection* m_pLast = nullptr;
};
