// The C library's converter, the reference for these tests. One object converts in one direction.
#pragma once

#include <iconv.h>
#include <string.h>

#include <string>
#include <vector>

class CIconv {
 public:
  CIconv(const char* pszTo, const char* pszFrom) : m_pConverter(iconv_open(pszTo, pszFrom)) {}
  ~CIconv() { iconv_close(m_pConverter); }
  CIconv(const CIconv&) = delete;
  CIconv& operator=(const CIconv&) = delete;

  // False when iconv refuses the input.
  bool Convert(std::string input, std::string& output) {
    std::vector<char> room(input.size() * 6 + 16);
    char *pIn = &input[0], *pOut = room.data();
    size_t nIn = input.size(), nOut = room.size();
    iconv(m_pConverter, nullptr, nullptr, nullptr, nullptr);
    const bool bOk = iconv(m_pConverter, &pIn, &nIn, &pOut, &nOut) != static_cast<size_t>(-1);
    output.assign(room.data(), room.size() - nOut);
    return bOk && nIn == 0;
  }

 private:
  iconv_t m_pConverter;
};

// A code point as the bytes of iconv's "WCHAR_T", which is this machine's UCS-4.
inline std::string Ucs4(uint32_t uiCode) {
  std::string bytes(sizeof(uiCode), '\0');
  memcpy(&bytes[0], &uiCode, sizeof(uiCode));
  return bytes;
}

inline std::vector<uint32_t> CodePoints(const std::string& ucs4) {
  std::vector<uint32_t> codes(ucs4.size() / sizeof(uint32_t));
  if (!codes.empty()) memcpy(codes.data(), ucs4.data(), codes.size() * sizeof(uint32_t));
  return codes;
}
