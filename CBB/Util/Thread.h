// Threads and scoped locks over POSIX threads.
//
// The block of a running thread belongs to who created it, until ThreadStop. Mutexes are plain
// (not recursive): locking one twice in a thread is a mistake of ours.
#pragma once

#include <pthread.h>

#include <cstddef>

// Stack of a thread when none is asked for, in bytes.
constexpr size_t kDefaultStackSize = 0x20000;

// A POSIX mutex, ready from the start of the process even as a global.
class CMutex {
 public:
  constexpr CMutex() = default;
  ~CMutex() { pthread_mutex_destroy(&m_mutex); }
  CMutex(const CMutex&) = delete;
  CMutex& operator=(const CMutex&) = delete;

  // Waits until no other thread holds the mutex, and takes it.
  void Lock() { pthread_mutex_lock(&m_mutex); }
  // Gives it back; only for the thread that took it.
  void Unlock() { pthread_mutex_unlock(&m_mutex); }

 private:
  pthread_mutex_t m_mutex = PTHREAD_MUTEX_INITIALIZER;
};

// Holds a mutex from its construction to its destruction. The mutex must outlive it.
class AutoLock {
 public:
  explicit AutoLock(CMutex& mutex) : m_mutex(mutex) { m_mutex.Lock(); }
  ~AutoLock() { m_mutex.Unlock(); }
  AutoLock(const AutoLock&) = delete;
  AutoLock& operator=(const AutoLock&) = delete;

 private:
  CMutex& m_mutex;
};

// The block of one thread: its attributes and its handle.
struct stThread {
  pthread_attr_t attr;
  pthread_t tid;
};

// Starts a joinable thread that runs pfnBody(pArg) on a stack of nStackSize bytes (0: the default).
// Returns 0 and stores the new block, owned by the caller, in *ppThread; 3 when there is no memory
// for the block; 1 when the system refuses the attributes or the thread. *ppThread holds the
// block before the thread runs, and keeps what it held on a failure.
int ThreadCreate(void* (*pfnBody)(void*), void* pArg, stThread** ppThread, size_t nStackSize);

// Cancels the thread, waits for its end and frees the block. A thread that has disabled
// cancellation is waited for until it ends by itself. A thread may stop itself (with cancellation
// disabled): the join then fails at once, only the block is gone and the thread runs on.
void ThreadStop(stThread* pThread);

// Stops a thread made for it. The C library loads what a cancel needs at the first one, and ends
// the process when there is no memory for that: called while there is some.
void PrepareThreadStop();
