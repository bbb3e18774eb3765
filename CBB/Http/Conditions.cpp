#include "CBB/Http/Conditions.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "CBB/Http/HeadRules.h"

namespace {

std::string_view Text(const mg_str& text) { return {text.p, text.len}; }

// All lines with one name, as one list: joined in strJoined if there are several.
std::string_view FieldList(const http_message& msg, std::string_view name, std::string& strJoined) {
  std::string_view list;
  for (size_t i = 0; msg.header_names[i].len > 0; ++i) {
    if (!IsSameName(Text(msg.header_names[i]), name)) continue;
    if (list.empty()) {
      list = Text(msg.header_values[i]);
    } else {
      strJoined = std::string(list).append(", ").append(Text(msg.header_values[i]));
      list = strJoined;
    }
  }
  return list;
}

// Takes a number off the front of text; false if there is none. A number above any file's size
// counts as the largest one.
bool TakeNumber(std::string_view& text, size_t& nValue) {
  constexpr size_t kLargest = std::numeric_limits<size_t>::max() / 16;
  const size_t nDigits = std::min(text.find_first_not_of("0123456789"), text.size());
  nValue = 0;
  for (const char c : text.substr(0, nDigits))
    nValue = std::min(nValue * 10 + static_cast<size_t>(c - '0'), kLargest);
  text.remove_prefix(nDigits);
  return nDigits != 0;
}

// Whether a list of entity tags contains the tag or is "*". bWeak: weak and strong tags compare
// equal.
bool HasTag(std::string_view list, std::string_view tag, bool bWeak) {
  if (list == "*") return true;
  while (!list.empty()) {
    const std::string_view rest =
        list.substr(std::min(list.find_first_not_of(" \t,"), list.size()));
    const bool bIsWeak = rest.substr(0, 2) == "W/";
    const std::string_view quoted = rest.substr(bIsWeak ? 2 : 0);
    if (quoted.empty() || quoted.front() != '"') return false;
    const size_t nEnd = quoted.find('"', 1);
    if (nEnd == std::string_view::npos) return false;
    if (quoted.substr(0, nEnd + 1) == tag && (bWeak || !bIsWeak)) return true;
    list = quoted.substr(nEnd + 1);
  }
  return false;
}

// Most requests have none.
bool HasPrecondition(const http_message& msg) {
  for (size_t i = 0; msg.header_names[i].len > 0; ++i) {
    if (IsSameName(Text(msg.header_names[i]).substr(0, 3), "If-")) return true;
  }
  return false;
}

// 200 to continue, otherwise 304 or 412.
int JudgePreconditions(const http_message& msg, const stRepresentation& file) {
  if (!HasPrecondition(msg)) return 200;
  std::string strMatch, strNone;
  const std::string_view match = FieldList(msg, "If-Match", strMatch);
  const std::string_view none = FieldList(msg, "If-None-Match", strNone);
  const time_t until = ParseHttpDate(FieldValue(msg, "If-Unmodified-Since"));
  if (!match.empty() ? !HasTag(match, file.tag, false) : until != -1 && file.modified > until)
    return 412;
  if (!none.empty()) return HasTag(none, file.tag, true) ? 304 : 200;
  const time_t since = ParseHttpDate(FieldValue(msg, "If-Modified-Since"));
  return since != -1 && file.modified <= since ? 304 : 200;
}

// The range belongs to another version of the file.
bool IsRangeOutdated(const http_message& msg, const stRepresentation& file) {
  const std::string_view wanted = FieldValue(msg, "If-Range");
  if (wanted.empty()) return false;
  if (wanted.front() == '"') return wanted != file.tag;
  return ParseHttpDate(wanted) != file.modified;
}

stSelection SelectRange(std::string_view range, size_t nSize) {
  const stSelection all = {200, 0, nSize};
  constexpr std::string_view kUnit = "bytes=";
  if (!IsSameName(range.substr(0, kUnit.size()), kUnit)) return all;
  range.remove_prefix(kUnit.size());
  size_t nFirst = 0, nLast = nSize;
  const bool bFirst = TakeNumber(range, nFirst);
  if (range.empty() || range.front() != '-') return all;
  range.remove_prefix(1);
  const bool bLast = TakeNumber(range, nLast);
  if (!range.empty() || (!bFirst && !bLast) || (bFirst && bLast && nLast < nFirst)) return all;
  if (!bFirst) {
    nFirst = nSize - std::min(nLast, nSize);
    nLast = nLast == 0 ? 0 : nSize;
    if (nLast == 0) return {416, 0, 0};
  }
  if (nFirst >= nSize) return {416, 0, 0};
  return {206, nFirst, std::min(bFirst && bLast ? nLast + 1 : nSize, nSize) - nFirst};
}

// Whether the parameters of an Accept-Encoding element include a weight of 0.
bool IsRefused(std::string_view parameters) {
  while (!parameters.empty()) {
    parameters.remove_prefix(1);  // the semicolon
    const std::string_view one = parameters.substr(0, parameters.find(';'));
    parameters.remove_prefix(one.size());
    const size_t nValue = std::min(one.find('='), one.size());
    if (!HasListElement(one.substr(0, nValue), "q")) continue;
    const std::string_view value = one.substr(std::min(nValue + 1, one.size()));
    return value.find_first_of("123456789") == std::string_view::npos;
  }
  return false;
}

}  // namespace

std::string_view FieldValue(const http_message& msg, std::string_view name) {
  for (size_t i = 0; msg.header_names[i].len > 0; ++i) {
    if (IsSameName(Text(msg.header_names[i]), name)) return Text(msg.header_values[i]);
  }
  return {};
}

time_t ParseHttpDate(std::string_view text) {
  static constexpr const char* kForms[] = {"%a, %d %b %Y %H:%M:%S GMT", "%A, %d-%b-%y %H:%M:%S GMT",
                                           "%a %b %d %H:%M:%S %Y"};
  char szText[kHttpDateSize] = {};
  if (text.empty() || text.size() >= sizeof(szText)) return -1;
  memcpy(szText, text.data(), text.size());
  for (const char* pszForm : kForms) {
    tm parts{};
    const char* const pEnd = strptime(szText, pszForm, &parts);
    if (pEnd != nullptr && *pEnd == '\0') return timegm(&parts);
  }
  return -1;
}

void FormatHttpDate(time_t time, char* pszText) {
  tm parts{};
  gmtime_r(&time, &parts);
  strftime(pszText, kHttpDateSize, "%a, %d %b %Y %H:%M:%S GMT", &parts);
}

bool AcceptsGzip(const http_message& msg) {
  std::string strJoined;
  std::string_view list = FieldList(msg, "Accept-Encoding", strJoined);
  bool bAny = false;
  while (!list.empty()) {
    const std::string_view element = list.substr(0, list.find(','));
    list.remove_prefix(std::min(element.size() + 1, list.size()));
    const size_t nParameters = std::min(element.find(';'), element.size());
    const std::string_view name = element.substr(0, nParameters);
    const bool bTaken = !IsRefused(element.substr(nParameters));
    if (HasListElement(name, "gzip")) return bTaken;
    if (HasListElement(name, "*")) bAny = bTaken;
  }
  return bAny;
}

stSelection Select(const http_message& msg, const stRepresentation& file) {
  const std::string_view method = Text(msg.method);
  if (method != "GET" && method != "HEAD") return {200, 0, file.nSize};
  const int nStatus = JudgePreconditions(msg, file);
  if (nStatus != 200) return {nStatus, 0, 0};
  const std::string_view range = FieldValue(msg, "Range");
  if (method == "HEAD" || range.empty() || IsRangeOutdated(msg, file)) return {200, 0, file.nSize};
  return SelectRange(range, file.nSize);
}
