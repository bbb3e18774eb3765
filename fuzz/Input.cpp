#include "fuzz/Input.h"

#include <cstdio>
#include <cstdlib>

void Require(bool bHolds) {
  if (!bHolds) abort();
}

void SilenceTraces() {
  static const bool s_bSilent = freopen("/dev/null", "w", stdout) != nullptr;
  Require(s_bSilent);
}

std::string_view AsText(const uint8_t* pData, size_t nSize) {
  return {reinterpret_cast<const char*>(pData), nSize};
}

std::vector<std::string_view> Split(std::string_view text, char cMark) {
  std::vector<std::string_view> pieces;
  for (size_t nMark = text.find(cMark); nMark != std::string_view::npos; nMark = text.find(cMark)) {
    pieces.push_back(text.substr(0, nMark));
    text.remove_prefix(nMark + 1);
  }
  pieces.push_back(text);
  return pieces;
}

std::unique_ptr<char[]> ExactCopy(std::string_view text, bool bTerminated) {
  std::unique_ptr<char[]> pCopy(new char[text.size() + (bTerminated ? 1 : 0)]);
  text.copy(pCopy.get(), text.size());
  if (bTerminated) pCopy[text.size()] = '\0';
  return pCopy;
}
