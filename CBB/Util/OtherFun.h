// Tests and converters for numbers and addresses written as text, as they arrive from the device
// application. Pure functions, for any thread. A null text fails every test.
#pragma once

#include <cstdint>

// Returns 1 when the text consists of digits and exactly three dots and no group before a dot is
// above 255, else 0. Groups may be empty and the last one is not limited: what passes is meant for
// inet_addr, which has the last word.
int IsIpAddrStr(const char* pszText);

// Returns 1 when the text is "0x" or "0X" and at least one hexadecimal digit, else 0.
int IsHexStr(const char* pszText);

// Returns 1 when the text is an optional minus sign and any number of digits, else 0. The empty
// text and a lone minus sign pass: they convert to 0.
int IsDecStr(const char* pszText);

// Returns the decimal integer at the start of the text, blanks before it skipped, like atoi, but
// the same on every machine: a number that does not fit keeps the low 32 bits of its 64-bit value,
// which itself stops at the ends of its range (so "4294967297" is 1 and twenty digits 9 are -1).
// What is no number gives 0. The text is not null.
int TextToInt(const char* pszText);

// Converts nCount characters of hexadecimal digits (no "0x"), most significant first, modulo 2^32.
// Returns 0 with the number in uiValue (0 for a count below 1); -1 at the first other character,
// with what the digits before it are worth.
int HexStrToUInt(const char* pszHex, int nCount, uint32_t& uiValue);

// Converts nHexLen hexadecimal digits to bytes, two digits each; the missing last digit of an odd
// length counts as 0. nOutLen gives the room in pOut and receives the number of bytes written.
// Returns 0; -1 when the room is too small or a character is no hexadecimal digit, with nothing
// written. Deliberate: an odd length needs room for its last byte as well. Half the length rounded
// down would let it pass and write one byte beyond the room.
int HexStrToBytes(const char* pszHex, int nHexLen, uint8_t* pOut, int& nOutLen);
