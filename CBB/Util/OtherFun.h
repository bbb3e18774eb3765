// Tests and converters for numbers and addresses as text, as the device application sends them.
// Pure functions, any thread. A null text fails every test.
#pragma once

#include <cstdint>

// Returns 1 when the text consists of digits and exactly three dots and no group before a dot is
// above 255, otherwise 0. Groups may be empty and the last one is not limited: the text then goes
// to inet_addr, which decides.
int IsIpAddrStr(const char* pszText);

// Returns 1 when the text is "0x" or "0X" followed by hexadecimal digits, at least one, otherwise
// 0.
int IsHexStr(const char* pszText);

// Returns 1 when the text is an optional minus sign and any number of digits, otherwise 0. The
// empty text and a lone minus sign pass: they convert to 0.
int IsDecStr(const char* pszText);

// Returns the decimal integer at the start of the text, blanks before it skipped, like atoi, but
// the same on every machine: a number that does not fit keeps the low 32 bits of its 64-bit value,
// which itself saturates (so "4294967297" is 1 and twenty nines are -1). Text that is not a number
// gives 0. The text must not be null.
int TextToInt(const char* pszText);

// Converts nCount characters of hexadecimal digits (no "0x"), most significant first, modulo 2^32.
// Returns 0 with the number in uiValue (0 for a count below 1); -1 at the first other character,
// with the value of the digits before it.
int HexStrToUInt(const char* pszHex, int nCount, uint32_t& uiValue);

// Converts nHexLen hexadecimal digits to bytes, two digits each; the missing last digit of an odd
// length counts as 0. nOutLen gives the room in pOut and receives the number of bytes written.
// Returns 0; -1 when the room is too small or a character is not a hexadecimal digit, with nothing
// written. Deliberate: an odd length needs room for its last byte as well. Checking against half
// the length rounded down would let it pass and write one byte too many.
int HexStrToBytes(const char* pszHex, int nHexLen, uint8_t* pOut, int& nOutLen);
