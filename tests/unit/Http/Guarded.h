// Bytes that end at an unreadable page: a read past them ends the test.
#pragma once

#include <cstddef>
#include <string_view>

class CGuarded {
 public:
  explicit CGuarded(size_t nMost);
  ~CGuarded();
  CGuarded(const CGuarded&) = delete;
  CGuarded& operator=(const CGuarded&) = delete;

  // Puts at most nMost bytes there, replacing those before. Returns where they begin.
  char* Put(std::string_view bytes);

 private:
  size_t m_nData;
  char* m_pPages;
};
