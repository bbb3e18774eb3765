// The GB28181 identifier lists as the pages send them: "*id0*id1*...*". Pure functions.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

// Splits a list from its end towards its start: the last identifier belongs to sub-device
// uiChannels - 1, the one before it to the sub-device below, and so on; surplus identifiers get a
// negative index. Calls pfnItem(index, identifier) for each. strList without its closing "*" must
// be longer than 2 characters, otherwise it counts as empty. The traces begin with pszListTrace and
// pszItemTrace.
void SplitIdList(std::string strList, uint32_t uiChannels, const char* pszListTrace,
                 const char* pszItemTrace,
                 const std::function<void(int64_t nIndex, const std::string& strId)>& pfnItem);
