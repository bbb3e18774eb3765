// GB28181 identifier lists through the splitter, compared with one that works from the front. The
// input's first four bytes are the number of channels, the rest is the list.
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "CBB/WebCtrl/Gb28181.h"
#include "fuzz/Input.h"

namespace {

using Items = std::vector<std::pair<int64_t, std::string>>;

Items Expected(std::string_view list, uint32_t uiChannels) {
  if (list.size() < 4) return {};
  list.remove_suffix(1);
  const auto parts = Split(list, '*');
  Items items;
  int64_t nIndex = static_cast<int64_t>(uiChannels) - 1;
  // Text before the first star is not an item.
  for (size_t i = parts.size() - 1; i > 0; --i) items.emplace_back(nIndex--, parts[i]);
  return items;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  SilenceTraces();
  uint32_t uiChannels = 0;
  if (nSize < sizeof(uiChannels)) return 0;
  memcpy(&uiChannels, pData, sizeof(uiChannels));
  const std::string_view list = AsText(pData + sizeof(uiChannels), nSize - sizeof(uiChannels));
  Items items;
  SplitIdList(
      std::string(list), uiChannels, "list", "item",
      [&items](int64_t nIndex, const std::string& strId) { items.emplace_back(nIndex, strId); });
  Require(items == Expected(list, uiChannels));
  return 0;
}
