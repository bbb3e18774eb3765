#include "CBB/Http/TurnQueue.h"

#include "CBB/Http/Connection.h"

void CTurnQueue::Append(CConnection& conn) {
  conn.pNext = nullptr;
  (m_pLast != nullptr ? m_pLast->pNext : m_pFirst) = &conn;
  m_pLast = &conn;
}

CConnection* CTurnQueue::Take() {
  CConnection* const pTaken = m_pFirst;
  if (pTaken != nullptr) Remove(*pTaken);
  return pTaken;
}

void CTurnQueue::Remove(const CConnection& conn) {
  CConnection* pBefore = nullptr;
  for (CConnection* p = m_pFirst; p != nullptr; pBefore = p, p = p->pNext) {
    if (p != &conn) continue;
    (pBefore != nullptr ? pBefore->pNext : m_pFirst) = p->pNext;
    if (m_pLast == p) m_pLast = pBefore;
    return;
  }
}

void CTurnQueue::Join(CTurnQueue& other) {
  if (other.m_pFirst == nullptr) return;
  (m_pLast != nullptr ? m_pLast->pNext : m_pFirst) = other.m_pFirst;
  m_pLast = other.m_pLast;
  other = CTurnQueue();
}
