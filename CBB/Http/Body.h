// What a reply consists of behind its head when that is a file: text that others share, in memory
// or in pages that the system lends to sockets, or an open file. An object belongs to one
// connection.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <ctime>
#include <memory>
#include <string>

#include "CBB/Http/LentText.h"

class CBody {
 public:
  CBody() = default;  // nothing

  // A part of a text: nSize bytes from nAt on.
  CBody(std::shared_ptr<const std::string> pText, size_t nAt, size_t nSize);

  CBody(std::shared_ptr<const CLentText> pLent, size_t nAt, size_t nSize);

  // A part of an open file, which is closed with the object. Once the file is another one than at
  // changed, no byte of it is sent any more.
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
  bool IsInMemory() const { return m_pText != nullptr; }

  // The bytes of a text that nobody else has any more.
  size_t Held() const;

  // Of a text in memory: where what is left begins.
  const char* Text() const { return m_pText->data() + m_nAt; }

  // nSize bytes of what is left were sent.
  void Skip(size_t nSize);

  // Of anything else: sends some of what is left to the socket. Returns how much; 0 when the socket
  // takes nothing now; -1 when nothing more can come, as the client is gone or the file has
  // changed.
  ssize_t SendTo(int nSock);

 private:
  void Swap(CBody& other);
  bool IsUnchanged() const;

  ssize_t SendCopy(int nSock);

  std::shared_ptr<const std::string> m_pText;
  std::shared_ptr<const CLentText> m_pLent;
  int m_nFd = -1;
  timespec m_changed{};
  size_t m_nAt = 0;
  size_t m_nLeft = 0;
};
