// Conversion of text between GBK, code points and UTF-8, over the caller's buffers.
// A code point is an unsigned 32-bit value; GBK and UTF-8 are bytes. No function writes a
// terminating 0. The functions keep nothing but the reverse GBK table, which the first conversion
// of a non-ASCII code point to GBK builds (256 KiB, kept for the life of the process, not
// locked: with several threads call enc_stc_unicode_to_GBK_init before sharing).
#pragma once

#include <stdint.h>

// Null pointers and capacities below the stated minimum are the caller's mistakes: they abort with
// an assertion in every build. nMembOut holds the capacity of the output in its units (code points
// or bytes) on entry, and how many were written on return. The array and string functions return
//   1  the whole input was converted;
//   2  the output is full, the rest was not converted;
//   0  a character cannot be converted; the text before it was written and is counted.

// --- GBK to code points -------------------------------------------------------------------------

// usGbk: the next two bytes, lead byte high. Returns 1 for ASCII (the lead byte alone), 2 for a
// two-byte character, 0 for anything else (*pUcs unchanged). An unassigned code gives U+0001.
int enc_GBK_to_unicode_one(uint16_t usGbk, uint32_t* pUcs);

// nLen in bytes; 0 or less converts nothing. Capacity: at least 1 code point. A lead byte at the
// end is paired with the byte after the input, which must be readable.
int enc_GBK_to_unicode(const char* pInput, int nLen, uint32_t* pOutput, int* nMembOut);

// The same for a terminated string.
int enc_GBK_to_unicode_str(const char* pInput, uint32_t* pOutput, int* nMembOut);

// --- UTF-8 to code points -----------------------------------------------------------------------

// One sequence of up to six bytes. Returns the bytes consumed, or 0 when it is not a sequence
// (*pUnic is then 0). Reads no further than the first byte that cannot continue the sequence, so a
// terminator stops it. Overlong forms and surrogates pass; a two-byte sequence whose second byte is
// 0xA0 to 0xBF does not; five-byte sequences put the lead byte's two bits at bits 30-31.
int enc_utf8_to_unicode_one(const char* pInput, uint32_t* pUnic);

// nLen in bytes; 0 or less converts nothing. Capacity: at least 1 code point. A sequence that
// starts inside the input may end after it: a byte that continues no sequence (a 0) must follow.
int enc_utf8_to_unicode(const char* pInput, int nLen, uint32_t* pOutput, int* nMembOut);

// The same for a terminated string.
int enc_utf8_to_unicode_str(const char* pInput, uint32_t* pOutput, int* nMembOut);

// --- Code points to UTF-8 -----------------------------------------------------------------------

// Returns the bytes written (1 to 6), 0 for a value from 0x80000000 on. nOutSize: at least 6,
// whatever the value.
int enc_unicode_to_utf8_one(uint32_t uiUnic, char* pOutput, int nOutSize);

// 0-terminated code points. Capacity: at least 6 bytes; with fewer than 6 left the output counts as
// full.
int enc_unicode_to_utf8_str(const uint32_t* pInput, char* pOutput, int* nMembOut);

// --- Code points to GBK -------------------------------------------------------------------------

// Builds the reverse table; a second call is an assertion failure. Returns 1 when built, 0 on
// failure (no memory, or a value twice in the forward table; what was entered before stays).
int enc_stc_unicode_to_GBK_init();

// Returns 1 for ASCII, 2 for a two-byte code (lead byte high), 0 when GBK has no such character or
// the reverse table could not be built (*pGbk unchanged).
int enc_unicode_to_GBK_one(uint32_t uiUnic, uint16_t* pGbk);

// 0-terminated code points. Capacity: at least 2 bytes; with fewer than 2 left the output counts as
// full.
int enc_unicode_to_GBK_str(const uint32_t* pInput, char* pOutput, int* nMembOut);
