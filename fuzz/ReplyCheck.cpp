#include "fuzz/ReplyCheck.h"

#include <cctype>

#include "fuzz/Input.h"

namespace {

constexpr std::string_view kHeads[] = {
    "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n",
    "HTTP/1.1 200 OK\r\nContent-Type:applicaion/json;charset=UTF-8\r\n"
    "Transfer-Encoding: chunked\r\n\r\n",
};

void Skip(std::string_view& rest, std::string_view wanted) {
  Require(rest.substr(0, wanted.size()) == wanted);
  rest.remove_prefix(wanted.size());
}

void SkipHead(std::string_view& rest) {
  for (const std::string_view head : kHeads) {
    if (rest.substr(0, head.size()) == head) {
      rest.remove_prefix(head.size());
      return;
    }
  }
  Require(false);
}

size_t TakeChunkSize(std::string_view& rest) {
  size_t nSize = 0;
  size_t nDigits = 0;
  for (; nDigits < rest.size() && isxdigit(static_cast<unsigned char>(rest[nDigits])); ++nDigits) {
    const char c = rest[nDigits];
    nSize = nSize * 16 + static_cast<size_t>(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
  }
  Require(nDigits > 0 && nDigits < 8);
  rest.remove_prefix(nDigits);
  Skip(rest, "\r\n");
  return nSize;
}

std::string TakeBody(std::string_view& rest) {
  std::string strBody;
  for (;;) {
    const size_t nSize = TakeChunkSize(rest);
    Require(nSize <= rest.size());
    strBody += rest.substr(0, nSize);
    rest.remove_prefix(nSize);
    Skip(rest, "\r\n");
    if (nSize == 0) return strBody;
  }
}

}  // namespace

std::vector<std::string> TakeReplies(std::string_view sent) {
  std::vector<std::string> bodies;
  while (!sent.empty()) {
    SkipHead(sent);
    bodies.push_back(TakeBody(sent));
    const std::string& strBody = bodies.back();
    Require(strBody.size() > 2 && strBody.front() == '{' && strBody.back() == '}');
    Require(strBody.find("\"result\": ") != std::string::npos);
  }
  return bodies;
}
