// Text in pages that the system lends to sockets instead of copying them. lighttpd and others do
// this with a file's own pages; here it is a copy that nobody writes to, so that a reply never
// mixes two versions of a file. HTTP server thread only.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <memory>
#include <string_view>

class CLentText {
 public:
  // Opens the file that holds all texts, so that the first text does not have to. Call once.
  static void Prepare();

  // A copy of the text, which must not be empty. Null when memory is short, and where the system
  // has no such pages or shares one large page between texts.
  static std::shared_ptr<const CLentText> Make(std::string_view text);

  CLentText(off_t nAt, size_t nSize) : m_nAt(nAt), m_nSize(nSize) {}
  CLentText(const CLentText&) = delete;
  CLentText& operator=(const CLentText&) = delete;

  // Gives the pages back once no socket needs them.
  ~CLentText();

  size_t Size() const { return m_nSize; }

  // Sends some of the nSize bytes starting at nAt, like sendfile.
  ssize_t SendTo(int nSock, size_t nAt, size_t nSize) const;

 private:
  off_t m_nAt;
  size_t m_nSize;
};
