// Threads and scoped locks over POSIX threads.
//
// The block of a running thread belongs to its creator until ThreadStop. Mutexes are not recursive:
// a thread must not lock one twice.
#pragma once

#include <pthread.h>

#include <cstddef>

// Default stack size of a thread, in bytes.
constexpr size_t kDefaultStackSize = 0x20000;

// A POSIX mutex, usable from process start even as a global.
class CMutex {
 public:
  constexpr CMutex() = default;
  ~CMutex() { pthread_mutex_destroy(&m_mutex); }
  CMutex(const CMutex&) = delete;
  CMutex& operator=(const CMutex&) = delete;

  // Waits until no other thread holds the mutex, then locks it.
  void Lock() { pthread_mutex_lock(&m_mutex); }
  // Unlocks it; only the thread that locked it may call this.
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
// for the block; 1 when the system refuses the attributes or the thread. *ppThread is set before
// the thread runs, and is unchanged on failure.
int ThreadCreate(void* (*pfnBody)(void*), void* pArg, stThread** ppThread, size_t nStackSize);

// Cancels the thread, waits for it to end and frees the block. If the thread has disabled
// cancellation, the wait lasts until it ends by itself. A thread may stop itself (with cancellation
// disabled): the join then fails at once, only the block is freed and the thread runs on.
void ThreadStop(stThread* pThread);

// Starts and stops a dummy thread. The C library loads its support for cancellation at the first
// cancel, and ends the process if there is no memory for it: so this is called while there is.
void PrepareThreadStop();
