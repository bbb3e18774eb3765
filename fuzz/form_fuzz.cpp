// Form bodies through the form reader, compared with an independent decoder. The input's first byte
// selects the variable, the second the rule and the buffer; the rest is the body.
#include <cstring>
#include <optional>
#include <string>

#include "CBB/WebCtrl/FormReader.h"
#include "fuzz/Input.h"

namespace {

constexpr const char* kNames[] = {"a", "time", "strFD_SSID", "strFD_CfgPara", "ucFD_NetType"};
constexpr Presence kRules[] = {Presence::kLengthAbove0, Presence::kNonEmpty, Presence::kAlways};

struct stDecoded {
  std::string strText;  // what was decoded before the buffer was full or the encoding broken
  bool bWhole = false;
};

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char cLower = static_cast<char>(c | 0x20);
  return cLower >= 'a' && cLower <= 'f' ? cLower - 'a' + 10 : -1;
}

stDecoded Decode(std::string_view value, size_t nRoom) {
  stDecoded decoded;
  while (!value.empty() && decoded.strText.size() < nRoom) {
    char c = value.front() == '+' ? ' ' : value.front();
    size_t nTaken = 1;
    if (c == '%') {
      if (value.size() < 3 || HexValue(value[1]) < 0 || HexValue(value[2]) < 0) return decoded;
      c = static_cast<char>(HexValue(value[1]) * 16 + HexValue(value[2]));
      nTaken = 3;
    }
    decoded.strText += c;
    value.remove_prefix(nTaken);
  }
  decoded.bWhole = value.empty();
  return decoded;
}

bool IsNamed(std::string_view pair, std::string_view name) {
  return pair.size() > name.size() && pair[name.size()] == '=' &&
         strncasecmp(pair.data(), name.data(), name.size()) == 0;
}

// What the reader should return: nothing when the rule counts the variable as missing.
std::optional<std::string> Expected(std::string_view body, std::string_view name, Presence rule,
                                    size_t nSize) {
  stDecoded decoded;
  for (const std::string_view pair : Split(body, '&')) {
    if (!IsNamed(pair, name)) continue;
    decoded = Decode(pair.substr(name.size() + 1), nSize - 1);
    break;
  }
  const std::string strText = decoded.strText.c_str();  // the reader's text ends at a 0
  if (rule == Presence::kLengthAbove0 && (!decoded.bWhole || decoded.strText.empty())) return {};
  if (rule == Presence::kNonEmpty && strText.empty()) return {};
  return strText;
}

template <size_t N>
void Check(std::string_view body, const char* pszName, Presence rule) {
  http_message msg{};
  const auto pBody = ExactCopy(body, false);
  msg.body = {pBody.get(), body.size()};
  CFormReader<N> form(msg);
  for (int i = 0; i < 2; ++i) {  // a second reading gives the same
    const char* const pszText = form.Get(pszName, rule);
    const auto expected = Expected(body, pszName, rule, N);
    Require((pszText != nullptr) == expected.has_value());
    Require(pszText == nullptr || *expected == pszText);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  if (nSize < 2) return 0;
  const char* const pszName = kNames[pData[0] % (sizeof(kNames) / sizeof(kNames[0]))];
  const Presence rule = kRules[pData[1] % 3];
  const std::string_view body = AsText(pData + 2, nSize - 2);
  switch (pData[1] / 3 % 3) {
    case 0:
      Check<8>(body, pszName, rule);
      break;
    case 1:
      Check<64>(body, pszName, rule);
      break;
    default:
      Check<512>(body, pszName, rule);
      break;
  }
  return 0;
}
