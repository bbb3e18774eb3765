// The body of a reply that is a file: text shared with other replies, in memory or in pages that
// the system lends to sockets, or an open file. An object belongs to one connection.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>

#include "CBB/Http/LentText.h"

class CBody {
 public:
  CBody() = default;  // nothing

  // A part of a text: nSize bytes starting at nAt.
  CBody(std::shared_ptr<const std::string> pText, size_t nAt, size_t nSize);

  CBody(std::shared_ptr<const CLentText> pLent, size_t nAt, size_t nSize);

  // A part of an open file, which is closed with the object. Once the file differs from its state
  // at changed, no more of it is sent.
  CBody(int nFd, off_t nAt, off_t nSize, timespec changed);

  CBody(CBody&& other) noexcept { Swap(other); }
  CBody& operator=(CBody&& other) noexcept {
    Swap(other);
    return *this;
  }
  CBody(const CBody&) = delete;
  CBody& operator=(const CBody&) = delete;
  ~CBody();

  size_t Left() const { return m_nLeft; }
  bool HoldsFile() const { return m_nFd >= 0; }

  // The bytes of a text that only this object still holds.
  size_t Held() const;

  // Sends some of the head and of what is left of the body. Returns how much of both together; 0
  // when the socket is full; -1 when the rest cannot be sent because the client is gone or the file
  // has changed.
  ssize_t SendAfter(std::string_view head, int nSock);

 private:
  void Swap(CBody& other);
  bool IsUnchanged() const;

  ssize_t SendBoth(std::string_view head, int nSock) const;
  ssize_t SendText(std::string_view head, int nSock) const;
  ssize_t SendCopy(int nSock) const;

  std::shared_ptr<const std::string> m_pText;
  std::shared_ptr<const CLentText> m_pLent;
  int m_nFd = -1;
  timespec m_changed{};
  size_t m_nAt = 0;
  size_t m_nLeft = 0;
};
