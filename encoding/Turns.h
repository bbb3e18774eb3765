// Makes conversion fast for every kind of text: runs of ASCII are copied in blocks, and where ASCII
// and other characters alternate at random, characters are converted without a branch. For the
// loops of the conversions only; nothing here keeps state.
#pragma once

#include <stddef.h>
#include <stdint.h>

inline uint32_t ByteAt(const char* pText, ptrdiff_t nIndex) {
  return static_cast<unsigned char>(pText[nIndex]);
}

// Copies the leading ASCII characters, at most nMost of them, from bytes to code points or back;
// returns their number. Configurations are mostly runs of ASCII, and compilers vectorise blocks of
// this length that are checked and then copied. Unit is the unsigned type of the input.
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

// Where ASCII and other characters alternate at random, the processor mispredicts every second
// branch, and a misprediction costs more than a character. Then a burst of characters is converted
// without branches, each as if it were of either kind.
constexpr int kBurst = 32;            // characters
constexpr int kManyTurns = 8;         // this many in a burst: the next one is a burst, too
constexpr ptrdiff_t kShortTurn = 12;  // input units from one run of ASCII to the next
constexpr int kShortTurns = 3;        // in a row: a burst begins

// Notes where runs of ASCII begin and detects when they have become short.
class CTurns {
 public:
  bool AreShort(ptrdiff_t nIn) {
    m_nShort = nIn - m_nLast < kShortTurn ? m_nShort + 1 : 0;
    m_nLast = nIn;
    return m_nShort >= kShortTurns;
  }

 private:
  ptrdiff_t m_nLast = -kShortTurn;
  int m_nShort = 0;
};

// Converts bursts with pfnEither(pInput, pOutput), which returns the units consumed or written, or
// 0 for what it leaves to others. fnFits says whether one more burst fits; fnStep moves on.
template <class Fits, class Step>
void Burst(Fits fnFits, Step fnStep) {
  for (int nTurns = kManyTurns; nTurns >= kManyTurns && fnFits();) {
    int nBefore = 0;
    nTurns = 0;
    for (int i = 0; i < kBurst; ++i) {
      const int nUnits = fnStep();
      if (nUnits == 0) return;
      nTurns += static_cast<int>(nUnits != nBefore);
      nBefore = nUnits;
    }
  }
}

// All bits set when the unit is not ASCII, otherwise none.
inline uint32_t NotAscii(uint32_t uiUnit) { return 0U - static_cast<uint32_t>(uiUnit >= 0x80); }

// Selects the bits of one where the mask is set, of the other where it is not.
inline uint32_t Choose(uint32_t uiMask, uint32_t uiIfSet, uint32_t uiIfNot) {
  return (uiIfSet & uiMask) | (uiIfNot & ~uiMask);
}
