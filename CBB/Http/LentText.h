// Text in pages that the system lends to sockets instead of copying it into them: what lighttpd and
// others do with a file's own pages, but of a copy that nobody writes to, so that a reply never
// mixes two versions of a file. HTTP server thread only.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <memory>
#include <string_view>

class CLentText {
 public:
  // Opens the file that all texts lie in, so that it does not come with the first of them. Once.
  static void Prepare();

  // A copy of the text, which is not empty; null where the system has no such pages, or no memory.
  static std::shared_ptr<const CLentText> Make(std::string_view text);

  CLentText(off_t nAt, size_t nSize) : m_nAt(nAt), m_nSize(nSize) {}
  CLentText(const CLentText&) = delete;
  CLentText& operator=(const CLentText&) = delete;

  // Gives the pages back, once sockets need them no more.
  ~CLentText();

  size_t Size() const { return m_nSize; }

  // Sends some of the nSize bytes from nAt on. As sendfile.
  ssize_t SendTo(int nSock, size_t nAt, size_t nSize) const;

 private:
  off_t m_nAt;
  size_t m_nSize;
};
