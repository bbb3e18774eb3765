// Clients whose turn comes, the first in front. The queue is linked through the connections, so
// that it takes no memory; one is in no more than one queue. HTTP server thread only.
#pragma once

class CConnection;

class CTurnQueue {
 public:
  bool IsEmpty() const { return m_pFirst == nullptr; }
  void Append(CConnection& conn);

  // Takes the first one out; null when there is none.
  CConnection* Take();

  // Takes one out, wherever it stands, if it does.
  void Remove(const CConnection& conn);

  // Moves all of another queue behind this one's.
  void Join(CTurnQueue& other);

 private:
  CConnection* m_pFirst = nullptr;
  CConnection* m_pLast = nullptr;
};
