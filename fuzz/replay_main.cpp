// Runs a fuzz target over the files in folders, with any compiler, so that the corpora are ordinary
// tests. usage: replay_<target> <file or folder>... Fails when there is no file, and ends by
// SIGALRM when one input takes too long.
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize);

namespace {

constexpr unsigned kMostSecondsEach = 20;

std::vector<std::string> ListFiles(const std::string& strPath) {
  if (!std::filesystem::is_directory(strPath)) return {strPath};
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(strPath)) {
    if (entry.is_regular_file()) files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

bool Replay(const std::string& strFile) {
  std::ifstream file(strFile, std::ios::binary);
  if (!file) {
    fprintf(stderr, "cannot read %s\n", strFile.c_str());
    return false;
  }
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  // Prints the name first: a finding ends the process.
  fprintf(stderr, "%s\n", strFile.c_str());
  alarm(kMostSecondsEach);
  LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  alarm(0);
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  size_t nFiles = 0;
  for (int i = 1; i < argc; ++i) {
    for (const std::string& strFile : ListFiles(argv[i])) {
      if (!Replay(strFile)) return 1;
      ++nFiles;
    }
  }
  fprintf(stderr, "%zu inputs replayed\n", nFiles);
  return nFiles > 0 ? 0 : 1;
}
