#include "CBB/Util/Thread.h"

#include <unistd.h>

#include <cassert>
#include <memory>
#include <new>

namespace {

int Launch(stThread& thread, void* (*pfnBody)(void*), void* pArg, size_t nStackSize) {
  if (pthread_attr_init(&thread.attr)) return 1;
  if (!pthread_attr_setdetachstate(&thread.attr, PTHREAD_CREATE_JOINABLE) &&
      !pthread_attr_setstacksize(&thread.attr, nStackSize ? nStackSize : kDefaultStackSize) &&
      !pthread_create(&thread.tid, &thread.attr, pfnBody, pArg))
    return 0;
  pthread_attr_destroy(&thread.attr);
  return 1;
}

void* Sleep(void* /*pArg*/) {
  for (;;) pause();
}

}  // namespace

int ThreadCreate(void* (*pfnBody)(void*), void* pArg, stThread** ppThread, size_t nStackSize) {
  assert(pfnBody != nullptr && ppThread != nullptr);
  std::unique_ptr<stThread> pThread(new (std::nothrow) stThread{});
  if (pThread == nullptr) return 3;
  // Stored before the thread runs, because the thread may stop itself.
  stThread* const pBefore = *ppThread;
  *ppThread = pThread.get();
  if (const int nRet = Launch(*pThread, pfnBody, pArg, nStackSize)) {
    *ppThread = pBefore;
    return nRet;
  }
  static_cast<void>(pThread.release());
  return 0;
}

void ThreadStop(stThread* pThread) {
  assert(pThread != nullptr);
  pthread_cancel(pThread->tid);
  pthread_join(pThread->tid, nullptr);
  pthread_attr_destroy(&pThread->attr);
  delete pThread;
}

void PrepareThreadStop() {
  stThread* pThread = nullptr;
  if (ThreadCreate(&Sleep, nullptr, &pThread, 0) == 0) ThreadStop(pThread);
}
