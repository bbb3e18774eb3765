// Converts text to numbers, for XML attributes and form values alike; TextToInt does the integers.
// Pure functions, safe for any terminated text and any thread; text that is not a number gives 0.
#pragma once

#include <cstdint>

#include "CBB/Util/OtherFun.h"

// The floating-point number at the start of the text, like atof; out of range it is infinity or 0.
float TextToFloat(const char* pszText);

// A time of day "hours:minutes:seconds" in seconds since midnight (0 to 86401). At most 22
// characters are read; a text of any other form gives 0.
uint32_t TextToTimeOfDay(const char* pszText);

// An address in one of its spellings: dotted text (stored as inet_addr gives it, network byte
// order), "0x" hexadecimal or decimal (the plain number). Any other text leaves uiValue unchanged.
// Deliberate: the last dotted group is not checked, so "1.2.3.999" stores inet_addr's all-ones.
// Returns 0; -1 on a character that is not a hexadecimal digit.
int ConvertAddressValue(const char* pszText, uint32_t& uiValue);
