#include "fuzz/HeadModel.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace {

constexpr size_t kMostLines = 20;
constexpr size_t kMostDigits = 9;

// Takes the next line without its end; false when there is none that ends well.
bool TakeLine(std::string_view& rest, std::string_view& line) {
  const size_t nEnd = rest.find("\r\n");
  if (nEnd == std::string_view::npos) return false;
  line = rest.substr(0, nEnd);
  rest.remove_prefix(nEnd + 2);
  return std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c < 0x7F; });
}

std::string Lower(std::string_view text) {
  std::string strLower(text);
  for (char& c : strLower) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
  return strLower;
}

// Method, target and protocol with one blank between them.
bool IsRequestLine(std::string_view line) {
  const size_t nFirst = line.find(' ');
  const size_t nLast = line.rfind(' ');
  return nFirst != std::string_view::npos && nFirst > 0 && nFirst + 1 < nLast &&
         nLast + 1 < line.size() && line.find(' ', nFirst + 1) == nLast;
}

bool IsToken(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
    return isalnum(static_cast<unsigned char>(c)) || c == '-';
  });
}

bool IsShortNumber(std::string_view text) {
  return !text.empty() && text.size() <= kMostDigits &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Reads the field lines. False when the head says nothing.
bool FindLength(std::string_view rest, std::string& strLength) {
  std::string_view line;
  for (size_t nLines = 0; nLines < kMostLines && TakeLine(rest, line); nLines++) {
    if (line.empty()) return !strLength.empty() && rest.empty();
    const size_t nColon = line.find(": ");
    if (nColon == std::string_view::npos || !IsToken(line.substr(0, nColon))) return false;
    const std::string strName = Lower(line.substr(0, nColon));
    const std::string_view value = line.substr(nColon + 2);
    if (value.empty() || value.front() == ' ' || value.front() == ':') return false;
    if (strName == "transfer-encoding") return false;
    if (strName.compare(0, 14, "content-length") != 0) continue;
    if (strName.size() != 14 || !strLength.empty() || !IsShortNumber(value)) return false;
    strLength = value;
  }
  return false;
}

}  // namespace

bool IsPossibleBody(std::string_view head, size_t nBody) {
  std::string_view line;
  std::string strLength;
  if (!TakeLine(head, line) || !IsRequestLine(line)) return true;
  if (!FindLength(head, strLength)) return true;
  return std::stoul(strLength) == nBody;
}
