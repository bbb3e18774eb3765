// Text into numbers, for XML attributes and form values alike. Pure functions, safe on any
// terminated text and from any thread; what is no number gives 0.
#pragma once

#include <cstdint>

// The decimal integer at the start of the text, blanks before it skipped, like atoi. Never
// undefined: a number that does not fit keeps the low 32 bits of its 64-bit value, which itself
// stops at the ends of its range (so "4294967297" is 1 and twenty digits 9 are -1).
int TextToInt(const char* pszText);

// The floating-point number at the start of the text, like atof; beyond the range, an infinity or
// 0.
float TextToFloat(const char* pszText);

// A time of day "hours:minutes:seconds" in seconds since midnight (0 to 86401). At most 22
// characters are read; a text of another form is 0.
uint32_t TextToTimeOfDay(const char* pszText);

// An address in one of its spellings: dotted text (stored as inet_addr gives it, network byte
// order), "0x" hexadecimal or decimal (the number as it stands). Any other text leaves uiValue as
// it is.
// Deliberate: the last dotted group is not checked, so "1.2.3.999" stores inet_addr's all-ones.
// Returns 0; -1 on a character that is no hexadecimal digit.
int ConvertAddressValue(const char* pszText, uint32_t& uiValue);
