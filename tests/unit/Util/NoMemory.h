// Makes "new (std::nothrow)" fail as long as an object lives. One at a time.
#pragma once

class CNoMemory {
 public:
  CNoMemory();
  ~CNoMemory();
  CNoMemory(const CNoMemory&) = delete;
  CNoMemory& operator=(const CNoMemory&) = delete;
};
