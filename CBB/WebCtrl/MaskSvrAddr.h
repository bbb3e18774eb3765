// Hides the platform servers' real addresses from the pages: the device stores the real ones, the
// pages show and send placeholders. Pure; any thread.
#pragma once

constexpr int kMask = 1;    // real address -> placeholder
constexpr int kUnmask = 0;  // placeholder -> real address

// Copies pszSrc to pszDst and replaces an address of the table by its counterpart in the given
// direction (non-zero masks, 0 unmasks). Any other text is copied unchanged. pszDst must have room
// for 16 bytes or strlen(pszSrc) + 1, whichever is more; the two must not overlap. Always returns
// 0.
int MaskSvrAddr(int nDirection, const char* pszSrc, char* pszDst);
