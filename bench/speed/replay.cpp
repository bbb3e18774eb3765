#include "bench/speed/replay.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    fprintf(stderr, "cannot read %s\n", path.c_str());
    exit(1);
  }
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> Lines(const std::string& strText) {
  std::vector<std::string> lines;
  for (size_t nAt = 0; nAt < strText.size();) {
    const size_t nEnd = strText.find('\n', nAt);
    const size_t nNext = nEnd == std::string::npos ? strText.size() : nEnd + 1;
    lines.push_back(strText.substr(nAt, nNext - nAt));
    nAt = nNext;
  }
  return lines;
}

void SplitReply(const std::string& strReply, stReplay& replay) {
  size_t nAt = strReply.find("\r\n\r\n") + 4;
  replay.strHead = strReply.substr(0, nAt);
  for (;;) {
    const size_t nLen = strtoul(strReply.c_str() + nAt, nullptr, 16);
    if (nLen == 0) return;
    nAt = strReply.find("\r\n", nAt) + 2;
    replay.chunks.push_back(strReply.substr(nAt, nLen));
    nAt += nLen + 2;
  }
}

}  // namespace

std::map<std::string, stReplay> LoadReplays(const std::string& strFolder) {
  std::map<std::string, stReplay> replays;
  for (const auto& entry : std::filesystem::directory_iterator(strFolder)) {
    stReplay& replay = replays["/" + entry.path().filename().string()];
    replay.strRequest = ReadFile(entry.path() / "request");
    replay.lines = Lines(ReadFile(entry.path() / "trace"));
    SplitReply(ReadFile(entry.path() / "reply"), replay);
  }
  return replays;
}

std::string Body(const stReplay& replay) {
  std::string strBody;
  for (const std::string& strChunk : replay.chunks) strBody += strChunk;
  return strBody;
}
