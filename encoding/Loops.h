// The two loops of the conversions, bytes to code points and back. They use the caller's buffers
// only.
#pragma once

#include <stdint.h>
#include <wchar.h>

#include <algorithm>

#include "encoding/Turns.h"

// pfnOne(const char*, uint32_t*) converts one character and returns the bytes it consumed, or 0.
// pfnEither does the same without a branch for ASCII and the most common other characters, and
// returns 0 for what it leaves to pfnOne; it may read nMax bytes.
template <int nMax, class F, class G>
int ToCodePoints(const char* pInput, ptrdiff_t nLen, uint32_t* pOutput, int* nMembOut, F pfnOne,
                 G pfnEither) {
  const ptrdiff_t nCapacity = *nMembOut;
  ptrdiff_t nIn = 0, nOut = 0;
  const auto Fits = [&] {
    return nLen - nIn >= ptrdiff_t{kBurst} * nMax && nCapacity - nOut >= kBurst;
  };
  const auto Step = [&] {
    const int nTaken = pfnEither(pInput + nIn, &pOutput[nOut]);
    nIn += nTaken;
    nOut += static_cast<ptrdiff_t>(nTaken != 0);
    return nTaken;
  };
  bool bGood = true;
  for (CTurns turns; bGood && nIn < nLen && nOut < nCapacity;) {
    if (ByteAt(pInput, nIn) < 0x80) {
      if (turns.AreShort(nIn)) Burst(Fits, Step);
      const ptrdiff_t nMost = std::min(nLen - nIn, nCapacity - nOut);
      const ptrdiff_t nAscii = CopyAscii<unsigned char>(pInput + nIn, nMost, pOutput + nOut);
      nIn += nAscii;
      nOut += nAscii;
    } else {
      const int nTaken = pfnOne(pInput + nIn, &pOutput[nOut]);
      bGood = nTaken != 0;
      nIn += nTaken;
      nOut += static_cast<ptrdiff_t>(bGood);
    }
  }
  *nMembOut = static_cast<int>(nOut);
  return !bGood ? 0 : nIn < nLen ? 2 : 1;
}

// pfnOne(uint32_t, char*) writes one character of at most nMax bytes and returns their number or 0.
// pfnEither does the same without a branch for ASCII and the most common other characters, and
// returns 0 for what it leaves to pfnOne; it may write nMax bytes.
template <int nMax, class F, class G>
int FromCodePoints(const uint32_t* pInput, char* pOutput, int* nMembOut, F pfnOne, G pfnEither) {
  static_assert(sizeof(wchar_t) == sizeof(uint32_t));
  const uint32_t* const pBegin = pInput;
  const uint32_t* const pEnd = pInput + wcslen(reinterpret_cast<const wchar_t*>(pInput));
  char* pOut = pOutput;
  char* const pLast = pOutput + *nMembOut - nMax;  // the last place where a character may begin
  const auto Fits = [&] {
    return pEnd - pInput >= kBurst && pLast - pOut >= ptrdiff_t{kBurst} * nMax;
  };
  const auto Step = [&] {
    const int nWritten = pfnEither(*pInput, pOut);
    pInput += static_cast<ptrdiff_t>(nWritten != 0);
    pOut += nWritten;
    return nWritten;
  };
  bool bGood = true;
  for (CTurns turns; bGood && pInput != pEnd && pOut <= pLast;) {
    if (*pInput < 0x80) {
      if (turns.AreShort(pInput - pBegin)) Burst(Fits, Step);
      const ptrdiff_t nMost = std::min(pEnd - pInput, pLast - pOut + 1);
      const ptrdiff_t nAscii = CopyAscii<uint32_t>(pInput, nMost, pOut);
      pInput += nAscii;
      pOut += nAscii;
    } else {
      const int nWritten = pfnOne(*pInput, pOut);
      bGood = nWritten != 0;
      pInput += static_cast<ptrdiff_t>(bGood);
      pOut += nWritten;
    }
  }
  *nMembOut = static_cast<int>(pOut - pOutput);
  return !bGood ? 0 : pInput != pEnd ? 2 : 1;
}
