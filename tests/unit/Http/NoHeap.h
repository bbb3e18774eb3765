// Makes allocations of one thread fail: malloc, calloc, realloc, new and fdopen fail from the nth
// call on while a function runs. The test program's own heap functions count the calls.
#pragma once

#include <functional>

class CNoHeap {
 public:
  // The nFirst-th allocation is the first one to fail.
  explicit CNoHeap(int nFirst = 1) : m_nFirst(nFirst) {}

  // Runs the function and returns its result.
  void* Run(const std::function<void*()>& fn) const;

  // Runs the function and returns whether an allocation failed.
  bool Meets(const std::function<void()>& fn) const;

 private:
  int m_nFirst;
};
