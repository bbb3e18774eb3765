// gbk_table: writes encoding/gbk_table.inc, the GBK forward table, from the C library's iconv.
// Usage: gbk_table <file>. Nothing is written unless the mapping has exactly the known number of
// assigned codes and no value twice. Exit status 0: written, 1: refused.
#include "encoding/gbk_table.h"

#include <errno.h>
#include <iconv.h>
#include <stdio.h>

#include <bitset>
#include <string>

namespace {

constexpr int kCodesPerLine = 5;

// The UCS-2 value of a two-byte code, or kGbkUnassigned where iconv has none. -1: iconv returned
// something that a table of single UCS-2 values cannot hold.
int Ucs2Of(iconv_t pConverter, int nCode) {
  char szIn[] = {static_cast<char>(nCode >> 8), static_cast<char>(nCode & 0xFF)};
  unsigned char szOut[8];
  char* pIn = szIn;
  char* pOut = reinterpret_cast<char*>(szOut);
  size_t nIn = sizeof(szIn), nOut = sizeof(szOut);
  iconv(pConverter, nullptr, nullptr, nullptr, nullptr);
  if (iconv(pConverter, &pIn, &nIn, &pOut, &nOut) == static_cast<size_t>(-1))
    return errno == EILSEQ || errno == EINVAL ? kGbkUnassigned : -1;
  if (nIn != 0 || nOut != sizeof(szOut) - 2) return -1;
  return szOut[0] << 8 | szOut[1];
}

}  // namespace

struct stMapping {
  stGbkCode codes[kGbkCodes];
  int nAssigned;
};

namespace {

// Returns 0, or -1 after naming the code that breaks the rules.
int ReadMapping(iconv_t pConverter, stMapping& mapping) {
  std::bitset<65536> seen;
  mapping.nAssigned = 0;
  for (int nCode = kGbkFirst; nCode <= kGbkLast; ++nCode) {
    const int nUcs2 = Ucs2Of(pConverter, nCode);
    if (nUcs2 < 0 || (nUcs2 != kGbkUnassigned && seen[static_cast<size_t>(nUcs2)])) {
      fprintf(stderr, "gbk_table: 0x%04X: no UCS-2 value, or one that was seen before\n", nCode);
      return -1;
    }
    if (nUcs2 != kGbkUnassigned) {
      seen.set(static_cast<size_t>(nUcs2));
      ++mapping.nAssigned;
    }
    mapping.codes[nCode - kGbkFirst] = {static_cast<uint16_t>(nCode), static_cast<uint16_t>(nUcs2)};
  }
  return 0;
}

std::string Format(const stMapping& mapping) {
  std::string text = "// Written by tools/gbk_table from the C library's CP936. Do not edit.\n";
  for (int i = 0; i < kGbkCodes; ++i) {
    char szEntry[32];
    snprintf(szEntry, sizeof(szEntry), "{0x%04X, 0x%04X},", mapping.codes[i].usGbk,
             mapping.codes[i].usUcs2);
    text += szEntry;
    text += i % kCodesPerLine == kCodesPerLine - 1 || i == kGbkCodes - 1 ? '\n' : ' ';
  }
  return text;
}

int WriteFile(const char* pszPath, const std::string& text) {
  FILE* pFile = fopen(pszPath, "w");
  if (pFile == nullptr) {
    perror(pszPath);
    return -1;
  }
  const bool bWritten = fwrite(text.data(), 1, text.size(), pFile) == text.size();
  if (fclose(pFile) == 0 && bWritten) return 0;
  perror(pszPath);
  return -1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: gbk_table <file to write>\n");
    return 1;
  }
  const iconv_t pConverter = iconv_open("UCS-2BE", "CP936");
  if (pConverter == reinterpret_cast<iconv_t>(-1)) {
    perror("gbk_table: iconv has no CP936");
    return 1;
  }
  static stMapping mapping;
  const int nRet = ReadMapping(pConverter, mapping);
  iconv_close(pConverter);
  if (nRet != 0) return 1;
  if (mapping.nAssigned != kGbkAssigned) {
    fprintf(stderr, "gbk_table: %d assigned codes and %d others, expected %d and %d\n",
            mapping.nAssigned, kGbkCodes - mapping.nAssigned, kGbkAssigned,
            kGbkCodes - kGbkAssigned);
    return 1;
  }
  return WriteFile(argv[1], Format(mapping)) == 0 ? 0 : 1;
}
