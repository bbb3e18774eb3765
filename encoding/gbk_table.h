// The GBK forward table: code page 936 from 0x8140 to 0xFE4F, one entry per code without gaps, so
// that code c is at index c - kGbkFirst. Constant data; any thread. The numbers are in
// gbk_table.inc, which tools/gbk_table writes; never edit that file by hand.
#pragma once

#include <stdint.h>

struct stGbkCode {
  uint16_t usGbk;   // the code itself, lead byte high
  uint16_t usUcs2;  // its UCS-2 value, or kGbkUnassigned
};

constexpr int kGbkFirst = 0x8140;
constexpr int kGbkLast = 0xFE4F;
constexpr int kGbkCodes = kGbkLast - kGbkFirst + 1;
constexpr int kGbkAssigned = 21791;  // entries with a value of their own; no value occurs twice
constexpr uint16_t kGbkUnassigned = 0x0001;

extern const stGbkCode kGbkTable[kGbkCodes];
