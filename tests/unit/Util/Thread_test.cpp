#include "CBB/Util/Thread.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <future>
#include <iterator>
#include <thread>

#include "tests/unit/Util/NoMemory.h"

namespace {

size_t OwnStackSize() {
  pthread_attr_t attr;
  size_t nSize = 0;
  pthread_getattr_np(pthread_self(), &attr);
  pthread_attr_getstacksize(&attr, &nSize);
  pthread_attr_destroy(&attr);
  return nSize;
}

void* StoreStackSize(void* pArg) {
  static_cast<std::promise<size_t>*>(pArg)->set_value(OwnStackSize());
  return nullptr;
}

struct CWaiter {
  std::promise<void> running;
  bool bUnwound = false;
};

void* WaitForCancel(void* pArg) {
  struct CUnwinding {
    ~CUnwinding() { bFlag = true; }
    bool& bFlag;
  };
  auto* const pWaiter = static_cast<CWaiter*>(pArg);
  const CUnwinding unwinding{pWaiter->bUnwound};
  pWaiter->running.set_value();
  for (;;) pause();
}

TEST(ThreadCreate, RunsTheBodyJoinableOnAStackOfTheGivenSize) {
  const struct {
    size_t nAsked;
    size_t nExpected;
  } kCases[] = {{0, 131072}, {262144, 262144}};
  for (const auto& row : kCases) {
    std::promise<size_t> size;
    stThread* pThread = nullptr;
    ASSERT_EQ(0, ThreadCreate(StoreStackSize, &size, &pThread, row.nAsked));
    ASSERT_NE(nullptr, pThread);
#ifdef __SANITIZE_THREAD__
    EXPECT_LE(row.nExpected, size.get_future().get()) << "the sanitizer enlarges stacks";
#else
    EXPECT_EQ(row.nExpected, size.get_future().get());
#endif
    int nState = -1;
    pthread_attr_getdetachstate(&pThread->attr, &nState);
    EXPECT_EQ(PTHREAD_CREATE_JOINABLE, nState);
    ThreadStop(pThread);
  }
}

TEST(ThreadCreate, RefusesAnImpossibleStackWith1) {
  stThread other{};
  stThread* const pUntouched = &other;
  for (const size_t nSize : {size_t{1}, ~size_t{0}}) {
    stThread* pThread = pUntouched;
    std::promise<size_t> size;
    EXPECT_EQ(1, ThreadCreate(StoreStackSize, &size, &pThread, nSize)) << nSize;
    EXPECT_EQ(pUntouched, pThread);
  }
}

TEST(ThreadCreate, ReportsMissingMemoryWith3) {
  stThread* pThread = nullptr;
  std::promise<size_t> size;
  const CNoMemory noMemory;
  EXPECT_EQ(3, ThreadCreate(StoreStackSize, &size, &pThread, 0));
  EXPECT_EQ(nullptr, pThread);
}

TEST(ThreadStop, CancelsAWaitingThreadAndJoinsIt) {
  CWaiter waiter;
  stThread* pThread = nullptr;
  ASSERT_EQ(0, ThreadCreate(WaitForCancel, &waiter, &pThread, 0));
  waiter.running.get_future().wait();
  ThreadStop(pThread);
  EXPECT_TRUE(waiter.bUnwound);
}

size_t CountThreads() {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return static_cast<size_t>(std::distance(begin(tasks), end(tasks)));
}

TEST(PrepareThreadStop, LeavesNoThread) {
  const size_t nBefore = CountThreads();
  PrepareThreadStop();
  EXPECT_EQ(nBefore, CountThreads());
}

struct CSelfStop {
  std::promise<stThread*> block;
  std::atomic<bool> bRanOn{false};
};

void* StopSelf(void* pArg) {
  auto* const pSelf = static_cast<CSelfStop*>(pArg);
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
  ThreadStop(pSelf->block.get_future().get());
  pSelf->bRanOn = true;
  return nullptr;
}

TEST(ThreadStop, LeavesAThreadThatStopsItselfRunning) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "ThreadSanitizer forgets a thread that tried to join itself";
#endif
  CSelfStop self;
  stThread* pThread = nullptr;
  ASSERT_EQ(0, ThreadCreate(StopSelf, &self, &pThread, 0));
  const pthread_t tid = pThread->tid;
  self.block.set_value(pThread);
  EXPECT_EQ(0, pthread_join(tid, nullptr));
  EXPECT_TRUE(self.bRanOn);
}

TEST(AutoLock, HoldsTheMutexForItsScope) {
  CMutex mutex;
  int nShared = 0;
  const auto Count = [&] {
    for (int i = 0; i < 50000; ++i) {
      const AutoLock lock(mutex);
      nShared = nShared + 1;
    }
  };
  std::thread first(Count);
  std::thread second(Count);
  first.join();
  second.join();
  EXPECT_EQ(100000, nShared);
}

TEST(AutoLock, KeepsOthersOutUntilItsEnd) {
  CMutex mutex;
  std::atomic<bool> bReleased{false};
  std::thread other;
  {
    const AutoLock lock(mutex);
    other = std::thread([&] {
      const AutoLock inner(mutex);
      EXPECT_TRUE(bReleased);
    });
    std::this_thread::yield();
    bReleased = true;
  }
  other.join();
}

}  // namespace
