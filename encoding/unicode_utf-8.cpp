// The conversions. Each direction is one static inline single-character function; the exported one
// adds the assertions (a compiler must not inline an exported function into position-independent
// code), and the array and string functions run it in one of two loops.
#include "encoding/unicode_utf-8.h"

#include <stddef.h>
#include <string.h>
#include <wchar.h>

#include <algorithm>

#include "encoding/Assert.h"
#include "encoding/alg_table.h"
#include "encoding/gbk_table.h"

namespace {

constexpr char kTextArrays[] = "pInput != ((void *)0) && pOutput != ((void *)0)";
constexpr int kUtf8Max = 6;
constexpr int kGbkMax = 2;

alg_table* tab_UCS2_to_GBK;

inline uint32_t ByteAt(const char* pText, ptrdiff_t nIndex) {
  return static_cast<unsigned char>(pText[nIndex]);
}

// Copies the ASCII characters at the front, at most nMost of them, from bytes to code points or the
// other way; returns their number. Configurations are mostly runs of ASCII, and blocks of this
// length, looked at and then copied, are what a compiler makes vectors of. Unit is the type of the
// input without its sign.
template <class Unit, class TIn, class TOut>
inline ptrdiff_t CopyAscii(const TIn* __restrict pInput, ptrdiff_t nMost,
                           TOut* __restrict pOutput) {
  constexpr int kBlock = 32;
  ptrdiff_t n = 0;
  for (; nMost - n >= kBlock; n += kBlock) {
    Unit all = 0;
    for (int i = 0; i < kBlock; ++i) all |= static_cast<Unit>(pInput[n + i]);
    if (all >= 0x80) break;
    for (int i = 0; i < kBlock; ++i)
      pOutput[n + i] = static_cast<TOut>(static_cast<Unit>(pInput[n + i]));
  }
  for (; n < nMost && static_cast<Unit>(pInput[n]) < 0x80; ++n) {
    pOutput[n] = static_cast<TOut>(static_cast<Unit>(pInput[n]));
  }
  return n;
}

// pfnOne(const char*, uint32_t*) converts one character and returns the bytes it took, or 0.
template <class F>
int ToCodePoints(const char* pInput, ptrdiff_t nLen, uint32_t* pOutput, int* nMembOut, F pfnOne) {
  const ptrdiff_t nCapacity = *nMembOut;
  int nRet = 1;
  ptrdiff_t nIn = 0, nOut = 0;
  while (nIn < nLen) {
    if (nOut == nCapacity) {
      nRet = 2;
      break;
    }
    if (ByteAt(pInput, nIn) < 0x80) {
      const ptrdiff_t nMost = std::min(nLen - nIn, nCapacity - nOut);
      const ptrdiff_t nAscii = CopyAscii<unsigned char>(pInput + nIn, nMost, pOutput + nOut);
      nIn += nAscii;
      nOut += nAscii;
      continue;
    }
    const int nTaken = pfnOne(pInput + nIn, &pOutput[nOut]);
    if (nTaken == 0) {
      nRet = 0;
      break;
    }
    nIn += nTaken;
    ++nOut;
  }
  *nMembOut = static_cast<int>(nOut);
  return nRet;
}

// pfnOne(uint32_t, char*) writes one character of at most nMax bytes and returns their number or 0.
template <int nMax, class F>
int FromCodePoints(const uint32_t* pInput, char* pOutput, int* nMembOut, F pfnOne) {
  static_assert(sizeof(wchar_t) == sizeof(uint32_t));
  const uint32_t* const pEnd = pInput + wcslen(reinterpret_cast<const wchar_t*>(pInput));
  char* pOut = pOutput;
  char* const pLast = pOutput + *nMembOut - nMax;  // the last place where a character may begin
  int nRet = 1;
  while (pInput != pEnd) {
    if (pOut > pLast) {
      nRet = 2;
      break;
    }
    if (*pInput < 0x80) {
      const ptrdiff_t nAscii =
          CopyAscii<uint32_t>(pInput, std::min(pEnd - pInput, pLast - pOut + 1), pOut);
      pInput += nAscii;
      pOut += nAscii;
      continue;
    }
    const int nWritten = pfnOne(*pInput, pOut);
    if (nWritten == 0) {
      nRet = 0;
      break;
    }
    ++pInput;
    pOut += nWritten;
  }
  *nMembOut = static_cast<int>(pOut - pOutput);
  return nRet;
}

inline int GbkPair(uint32_t uiGbk, uint32_t* pUcs) {
  if (uiGbk < 0x8000) {
    *pUcs = uiGbk >> 8;
    return 1;
  }
  if (uiGbk < kGbkFirst || uiGbk > kGbkLast) return 0;
  *pUcs = kGbkTable[uiGbk - kGbkFirst].usUcs2;  // Deliberate: unassigned codes pass as U+0001.
  return 2;
}

// The byte behind a lead byte is read without a look at the length: at the end it is the
// terminator.
inline int GbkCharacter(const char* pInput, uint32_t* pUcs) {
  const uint32_t uiLead = ByteAt(pInput, 0);
  return GbkPair(uiLead << 8 | (uiLead < 0x80 ? 0 : ByteAt(pInput, 1)), pUcs);
}

inline bool Continues(uint32_t uiByte) { return (uiByte & 0xC0) == 0x80; }

// The sequences of four to six bytes, seldom seen.
int LongUtf8Character(const char* pInput, uint32_t* pUnic) {
  const uint32_t uiLead = ByteAt(pInput, 0);
  const int nLen = uiLead < 0xF8 ? 4 : uiLead < 0xFC ? 5 : 6;
  if (uiLead >= 0xFE) return 0;
  uint32_t uiValue = nLen == 4 ? uiLead & 0x07 : nLen == 6 ? uiLead & 0x01 : 0;
  for (int i = 1; i < nLen; ++i) {
    if (!Continues(ByteAt(pInput, i))) return 0;
    uiValue = uiValue << 6 | (ByteAt(pInput, i) & 0x3F);
  }
  // Deliberate: five-byte sequences carry their lead bits at 30-31, not at 24-25.
  if (nLen == 5) uiValue |= (uiLead & 0x03) << 30;
  *pUnic = uiValue;
  return nLen;
}

// One sequence; *pUnic is only written on success. Three bytes, as all of Chinese has, come first.
// Deliberate: overlong forms and surrogates pass.
inline int Utf8Character(const char* pInput, uint32_t* pUnic) {
  const uint32_t uiLead = ByteAt(pInput, 0);
  if ((uiLead & 0xF0) == 0xE0) {
    if (!Continues(ByteAt(pInput, 1)) || !Continues(ByteAt(pInput, 2))) return 0;
    *pUnic = (uiLead & 0x0F) << 12 | (ByteAt(pInput, 1) & 0x3F) << 6 | (ByteAt(pInput, 2) & 0x3F);
    return 3;
  }
  if (uiLead < 0x80) {
    *pUnic = uiLead;
    return 1;
  }
  if (uiLead < 0xC0) return 0;
  if (uiLead >= 0xF0) return LongUtf8Character(pInput, pUnic);
  // Deliberate: only 0x80 to 0x9F may follow here, so half of the two-byte forms are refused.
  if ((ByteAt(pInput, 1) & 0xE0) != 0x80) return 0;
  *pUnic = (uiLead & 0x1F) << 6 | (ByteAt(pInput, 1) & 0x3F);
  return 2;
}

// One code point of two bytes or of four to six, seldom seen.
int PutOtherUtf8(uint32_t uiUnic, char* pOutput) {
  if (uiUnic >= 0x80000000) return 0;
  const int nLen = uiUnic < 0x800 ? 2 : uiUnic < 0x200000 ? 4 : uiUnic < 0x4000000 ? 5 : 6;
  uint32_t uiRest = uiUnic;
  for (int i = nLen - 1; i > 0; --i, uiRest >>= 6)
    pOutput[i] = static_cast<char>(0x80 | (uiRest & 0x3F));
  pOutput[0] = static_cast<char>((0xFF00u >> nLen & 0xFF) | uiRest);
  return nLen;
}

inline int PutUtf8Character(uint32_t uiUnic, char* pOutput) {
  if (uiUnic < 0x80) {
    pOutput[0] = static_cast<char>(uiUnic);
    return 1;
  }
  if (uiUnic < 0x800 || uiUnic >= 0x10000) return PutOtherUtf8(uiUnic, pOutput);
  pOutput[0] = static_cast<char>(0xE0 | uiUnic >> 12);
  pOutput[1] = static_cast<char>(0x80 | (uiUnic >> 6 & 0x3F));
  pOutput[2] = static_cast<char>(0x80 | (uiUnic & 0x3F));
  return 3;
}

int CompareCodePoints(uint32_t uiLeft, uint32_t uiRight) {
  return static_cast<int>(uiLeft != uiRight);
}
uint16_t HashCodePoint(uint32_t uiKey) { return static_cast<uint16_t>(uiKey); }

inline int GbkOf(uint32_t uiUnic, uint16_t* pGbk) {
  if (uiUnic < 0x80) {
    *pGbk = static_cast<uint16_t>(uiUnic);
    return 1;
  }
  if (tab_UCS2_to_GBK == nullptr && enc_stc_unicode_to_GBK_init() == 0) return 0;
  const uint32_t uiCode = Table_get<HashCodePoint>(tab_UCS2_to_GBK, uiUnic);
  if (uiCode == 0) return 0;
  *pGbk = static_cast<uint16_t>(uiCode);
  return 2;
}

inline int PutGbkCharacter(uint32_t uiUnic, char* pOutput) {
  uint16_t usGbk = 0;
  const int nLen = GbkOf(uiUnic, &usGbk);
  if (nLen == 1) {
    pOutput[0] = static_cast<char>(usGbk);
  } else if (nLen == 2) {
    pOutput[0] = static_cast<char>(usGbk >> 8);
    pOutput[1] = static_cast<char>(usGbk & 0xFF);
  } else {
    ENC_ASSERT(nLen == 0, "0");
  }
  return nLen;
}

}  // namespace

int enc_GBK_to_unicode_one(uint16_t usGbk, uint32_t* pUcs) {
  ENC_ASSERT(pUcs, "ucs != ((void *)0)");
  return GbkPair(usGbk, pUcs);
}

int enc_GBK_to_unicode(const char* pInput, int nLen, uint32_t* pOutput, int* nMembOut) {
  ENC_ASSERT(pInput && pOutput, kTextArrays);
  ENC_ASSERT(nMembOut && *nMembOut >= 1, "*nMembOut >= 1");
  return ToCodePoints(pInput, nLen, pOutput, nMembOut, GbkCharacter);
}

int enc_GBK_to_unicode_str(const char* pInput, uint32_t* pOutput, int* nMembOut) {
  ENC_ASSERT(pInput && pOutput, kTextArrays);
  return enc_GBK_to_unicode(pInput, static_cast<int>(strlen(pInput)), pOutput, nMembOut);
}

int enc_utf8_to_unicode_one(const char* pInput, uint32_t* pUnic) {
  ENC_ASSERT(pInput && pUnic, "pInput != ((void *)0) && Unic != ((void *)0)");
  *pUnic = 0;
  return Utf8Character(pInput, pUnic);
}

int enc_utf8_to_unicode(const char* pInput, int nLen, uint32_t* pOutput, int* nMembOut) {
  ENC_ASSERT(pInput && pOutput, kTextArrays);
  ENC_ASSERT(nMembOut && *nMembOut >= 1, "*nMembOut >= 1");
  return ToCodePoints(pInput, nLen, pOutput, nMembOut, Utf8Character);
}

int enc_utf8_to_unicode_str(const char* pInput, uint32_t* pOutput, int* nMembOut) {
  ENC_ASSERT(pInput && pOutput, kTextArrays);
  return enc_utf8_to_unicode(pInput, static_cast<int>(strlen(pInput)), pOutput, nMembOut);
}

int enc_unicode_to_utf8_one(uint32_t uiUnic, char* pOutput, int nOutSize) {
  ENC_ASSERT(pOutput, "pOutput != ((void *)0)");
  ENC_ASSERT(nOutSize >= kUtf8Max, "outSize >= 6");
  return PutUtf8Character(uiUnic, pOutput);
}

int enc_unicode_to_utf8_str(const uint32_t* pInput, char* pOutput, int* nMembOut) {
  ENC_ASSERT(pInput && pOutput, kTextArrays);
  ENC_ASSERT(nMembOut && *nMembOut >= kUtf8Max, "*nMembOut >= 6");
  return FromCodePoints<kUtf8Max>(pInput, pOutput, nMembOut, PutUtf8Character);
}

int enc_stc_unicode_to_GBK_init() {
  ENC_ASSERT(tab_UCS2_to_GBK == nullptr, "tab_UCS2_to_GBK == ((void *)0)");
  tab_UCS2_to_GBK = Table_new(kGbkAssigned, CompareCodePoints, HashCodePoint);
  if (tab_UCS2_to_GBK == nullptr) return 0;
  for (const stGbkCode& code : kGbkTable) {
    if (code.usUcs2 == kGbkUnassigned) continue;
    // Deliberate: the table stays in use as far as it is filled.
    if (Table_put(tab_UCS2_to_GBK, code.usUcs2, code.usGbk) != -1) return 0;
  }
  return 1;
}

int enc_unicode_to_GBK_one(uint32_t uiUnic, uint16_t* pGbk) {
  ENC_ASSERT(pGbk, "gbk != ((void *)0)");
  return GbkOf(uiUnic, pGbk);
}

int enc_unicode_to_GBK_str(const uint32_t* pInput, char* pOutput, int* nMembOut) {
  ENC_ASSERT(pInput && pOutput, kTextArrays);
  ENC_ASSERT(nMembOut && *nMembOut >= kGbkMax, "*nMembOut >= 2");
  return FromCodePoints<kGbkMax>(pInput, pOutput, nMembOut, PutGbkCharacter);
}
