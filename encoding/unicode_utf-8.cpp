// The conversions. Each direction is an inline single-character function; the exported one adds the
// assertions (a compiler must not inline an exported function into position-independent code), and
// the array and string functions run it in one of two loops. Each has a twin named Either..., which
// converts ASCII and the most common other characters without a branch: see Turns.h.
#include "encoding/unicode_utf-8.h"

#include <stddef.h>
#include <string.h>

#include "encoding/Assert.h"
#include "encoding/Loops.h"
#include "encoding/alg_table.h"
#include "encoding/gbk_table.h"

namespace {

constexpr char kTextArrays[] = "pInput != ((void *)0) && pOutput != ((void *)0)";
constexpr int kUtf8Max = 6;
constexpr int kGbkMax = 2;

alg_table* tab_UCS2_to_GBK;

inline int GbkPair(uint32_t uiGbk, uint32_t* pUcs) {
  if (uiGbk < 0x8000) {
    *pUcs = uiGbk >> 8;
    return 1;
  }
  if (uiGbk < kGbkFirst || uiGbk > kGbkLast) return 0;
  *pUcs = kGbkTable[uiGbk - kGbkFirst].usUcs2;  // Deliberate: unassigned codes pass as U+0001.
  return 2;
}

// The byte after a lead byte is read without checking the length: at the end of the text it is the
// terminator.
inline int GbkCharacter(const char* pInput, uint32_t* pUcs) {
  const uint32_t uiLead = ByteAt(pInput, 0);
  return GbkPair(uiLead << 8 | (uiLead < 0x80 ? 0 : ByteAt(pInput, 1)), pUcs);
}

inline int EitherGbk(const char* pInput, uint32_t* pUcs) {
  const uint32_t uiLead = ByteAt(pInput, 0), uiMask = NotAscii(uiLead);
  const uint32_t uiIndex = ((uiLead << 8 | ByteAt(pInput, 1)) - kGbkFirst) & uiMask;
  if (uiIndex >= kGbkCodes) return 0;
  *pUcs = Choose(uiMask, kGbkTable[uiIndex].usUcs2, uiLead);
  return static_cast<int>(1 + (uiMask & 1));
}

inline bool Continues(uint32_t uiByte) { return (uiByte & 0xC0) == 0x80; }

// The sequences of four to six bytes, which are rare.
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

// One sequence; *pUnic is only written on success. Three bytes come first, because all of Chinese
// needs them. Deliberate: overlong forms and surrogates pass.
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

inline int EitherUtf8(const char* pInput, uint32_t* pUnic) {
  const uint32_t uiLead = ByteAt(pInput, 0), uiMask = NotAscii(uiLead);
  const uint32_t uiSecond = ByteAt(pInput, 1) ^ 0x80, uiThird = ByteAt(pInput, 2) ^ 0x80;
  if ((((uiLead ^ 0xE0) & 0xF0) | ((uiSecond | uiThird) & 0xC0)) & uiMask) return 0;
  *pUnic = Choose(uiMask, (uiLead & 0x0F) << 12 | uiSecond << 6 | uiThird, uiLead);
  return static_cast<int>(1 + (uiMask & 2));
}

// One code point of two bytes or of four to six, which are rare.
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

// The bytes after an ASCII character keep their values.
inline int PutEitherUtf8(uint32_t uiUnic, char* pOutput) {
  const uint32_t uiMask = NotAscii(uiUnic);
  if (((uiUnic - 0x800) & uiMask) >= 0x10000 - 0x800) return 0;
  pOutput[0] = static_cast<char>(Choose(uiMask, 0xE0 | uiUnic >> 12, uiUnic));
  pOutput[1] = static_cast<char>(Choose(uiMask, 0x80 | (uiUnic >> 6 & 0x3F), ByteAt(pOutput, 1)));
  pOutput[2] = static_cast<char>(Choose(uiMask, 0x80 | (uiUnic & 0x3F), ByteAt(pOutput, 2)));
  return static_cast<int>(1 + (uiMask & 2));
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

// For ASCII the result of a lookup is ignored. The byte after an ASCII character keeps its value.
inline int PutEitherGbk(uint32_t uiUnic, char* pOutput) {
  constexpr uint32_t kThere = 0x4E00;
  if (tab_UCS2_to_GBK == nullptr) return 0;
  const uint32_t uiMask = NotAscii(uiUnic);
  const uint32_t uiGbk = Table_get<HashCodePoint>(tab_UCS2_to_GBK, Choose(uiMask, uiUnic, kThere));
  if (uiGbk == 0) return 0;
  pOutput[0] = static_cast<char>(Choose(uiMask, uiGbk >> 8, uiUnic));
  pOutput[1] = static_cast<char>(Choose(uiMask, uiGbk, ByteAt(pOutput, 1)));
  return static_cast<int>(1 + (uiMask & 1));
}

}  // namespace

int enc_GBK_to_unicode_one(uint16_t usGbk, uint32_t* pUcs) {
  ENC_ASSERT(pUcs != nullptr, "ucs != ((void *)0)");
  return GbkPair(usGbk, pUcs);
}

int enc_GBK_to_unicode(const char* pInput, int nLen, uint32_t* pOutput, int* nMembOut) {
  ENC_ASSERT(pInput != nullptr && pOutput != nullptr, kTextArrays);
  ENC_ASSERT(nMembOut != nullptr && *nMembOut >= 1, "*nMembOut >= 1");
  return ToCodePoints<2>(pInput, nLen, pOutput, nMembOut, GbkCharacter, EitherGbk);
}

int enc_GBK_to_unicode_str(const char* pInput, uint32_t* pOutput, int* nMembOut) {
  ENC_ASSERT(pInput != nullptr && pOutput != nullptr, kTextArrays);
  return enc_GBK_to_unicode(pInput, static_cast<int>(strlen(pInput)), pOutput, nMembOut);
}

int enc_utf8_to_unicode_one(const char* pInput, uint32_t* pUnic) {
  ENC_ASSERT(pInput != nullptr && pUnic != nullptr, "pInput != ((void *)0) && Unic != ((void *)0)");
  *pUnic = 0;
  return Utf8Character(pInput, pUnic);
}

int enc_utf8_to_unicode(const char* pInput, int nLen, uint32_t* pOutput, int* nMembOut) {
  ENC_ASSERT(pInput != nullptr && pOutput != nullptr, kTextArrays);
  ENC_ASSERT(nMembOut != nullptr && *nMembOut >= 1, "*nMembOut >= 1");
  return ToCodePoints<3>(pInput, nLen, pOutput, nMembOut, Utf8Character, EitherUtf8);
}

int enc_utf8_to_unicode_str(const char* pInput, uint32_t* pOutput, int* nMembOut) {
  ENC_ASSERT(pInput != nullptr && pOutput != nullptr, kTextArrays);
  return enc_utf8_to_unicode(pInput, static_cast<int>(strlen(pInput)), pOutput, nMembOut);
}

int enc_unicode_to_utf8_one(uint32_t uiUnic, char* pOutput, int nOutSize) {
  ENC_ASSERT(pOutput != nullptr, "pOutput != ((void *)0)");
  ENC_ASSERT(nOutSize >= kUtf8Max, "outSize >= 6");
  return PutUtf8Character(uiUnic, pOutput);
}

int enc_unicode_to_utf8_str(const uint32_t* pInput, char* pOutput, int* nMembOut) {
  ENC_ASSERT(pInput != nullptr && pOutput != nullptr, kTextArrays);
  ENC_ASSERT(nMembOut != nullptr && *nMembOut >= kUtf8Max, "*nMembOut >= 6");
  return FromCodePoints<kUtf8Max>(pInput, pOutput, nMembOut, PutUtf8Character, PutEitherUtf8);
}

int enc_stc_unicode_to_GBK_init() {
  ENC_ASSERT(tab_UCS2_to_GBK == nullptr, "tab_UCS2_to_GBK == ((void *)0)");
  tab_UCS2_to_GBK = Table_new(kGbkAssigned, CompareCodePoints, HashCodePoint);
  if (tab_UCS2_to_GBK == nullptr) return 0;
  for (const stGbkCode& code : kGbkTable) {
    if (code.usUcs2 == kGbkUnassigned) continue;
    // Deliberate: the table stays in use, filled as far as it got.
    if (Table_put(tab_UCS2_to_GBK, code.usUcs2, code.usGbk) != -1) return 0;
  }
  return 1;
}

int enc_unicode_to_GBK_one(uint32_t uiUnic, uint16_t* pGbk) {
  ENC_ASSERT(pGbk != nullptr, "gbk != ((void *)0)");
  return GbkOf(uiUnic, pGbk);
}

int enc_unicode_to_GBK_str(const uint32_t* pInput, char* pOutput, int* nMembOut) {
  ENC_ASSERT(pInput != nullptr && pOutput != nullptr, kTextArrays);
  ENC_ASSERT(nMembOut != nullptr && *nMembOut >= kGbkMax, "*nMembOut >= 2");
  return FromCodePoints<kGbkMax>(pInput, pOutput, nMembOut, PutGbkCharacter, PutEitherGbk);
}
