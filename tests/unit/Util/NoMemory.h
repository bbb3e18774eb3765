// Takes the memory away from "new (std::nothrow)", for as long as an object lives. One at a time.
#ifndef TESTS_UNIT_UTIL_NOMEMORY_H_
#define TESTS_UNIT_UTIL_NOMEMORY_H_

class CNoMemory {
 public:
  CNoMemory();
  ~CNoMemory();
  CNoMemory(const CNoMemory&) = delete;
  CNoMemory& operator=(const CNoMemory&) = delete;
};

#endif  // TESTS_UNIT_UTIL_NOMEMORY_H_
