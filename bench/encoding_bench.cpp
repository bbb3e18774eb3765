// The conversions beside the C library's iconv in the same run, on texts of about 20 KB: a
// configuration of Chinese and ASCII, ASCII alone, Chinese alone. Prints the ratios behind the
// usual table, then what the reverse table costs. Exit status 1: a ratio or the cost is off its
// mark.
#include <benchmark/benchmark.h>
#include <iconv.h>
#include <malloc.h>
#include <stdio.h>
#include <time.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "encoding/unicode_utf-8.h"

namespace {

constexpr int kTextBytes = 20 * 1024;
constexpr int kRoom = 3 * kTextBytes;

// --- Texts (GBK) --------------------------------------------------------------------------------

std::string ChineseWord(std::mt19937& random, int nCharacters) {
  std::string word;  // The 3,755 everyday characters: rows B0 to D7, without the five unassigned.
  for (int i = 0; i < nCharacters; ++i) {
    word += static_cast<char>(0xB0 + random() % 39);
    word += static_cast<char>(0xA1 + random() % 94);
  }
  return word;
}

std::string MixedText() {
  std::mt19937 random(1);
  std::string text = "<VariCfgSec Action=\"DEVICE_QUERY\">\r\n";
  while (text.size() < kTextBytes)
    text += "  <stDisplay strFD_DeviceName=\"" + ChineseWord(random, 8) + "\" strFD_Plate=\"" +
            ChineseWord(random, 2) + "A12345\" strFD_Driver=\"" + ChineseWord(random, 12) +
            "\" ucFD_Note=\"" + ChineseWord(random, 16) + "\" />\r\n";
  return text + "</VariCfgSec>\r\n";
}

std::string AsciiText() {
  std::string text;
  while (text.size() < kTextBytes)
    text +=
        "  <stSubStream ucFD_EncodeMode=\"1\" ucFD_FrameRate=\"25\" uiFD_BitRate=\"1024\" />\r\n";
  return text;
}

std::string ChineseText() {
  std::mt19937 random(2);
  return ChineseWord(random, kTextBytes / 2);
}

// --- One conversion of a text, by us and by iconv -----------------------------------------------

uint32_t g_codePoints[kRoom];

int OurGbkToUtf8(const char* pInput, size_t, char* pOutput) {
  int nCodePoints = kRoom - 1, nBytes = kRoom;
  if (enc_GBK_to_unicode_str(pInput, g_codePoints, &nCodePoints) != 1) return -1;
  g_codePoints[nCodePoints] = 0;
  return enc_unicode_to_utf8_str(g_codePoints, pOutput, &nBytes) == 1 ? nBytes : -1;
}

int OurUtf8ToGbk(const char* pInput, size_t, char* pOutput) {
  int nCodePoints = kRoom - 1, nBytes = kRoom;
  if (enc_utf8_to_unicode_str(pInput, g_codePoints, &nCodePoints) != 1) return -1;
  g_codePoints[nCodePoints] = 0;
  return enc_unicode_to_GBK_str(g_codePoints, pOutput, &nBytes) == 1 ? nBytes : -1;
}

int RunIconv(iconv_t pConverter, const char* pInput, size_t nLen, char* pOutput) {
  char* pIn = const_cast<char*>(pInput);
  size_t nRoom = kRoom;
  if (iconv(pConverter, &pIn, &nLen, &pOutput, &nRoom) == static_cast<size_t>(-1)) return -1;
  return kRoom - static_cast<int>(nRoom);
}

int IconvGbkToUtf8(const char* pInput, size_t nLen, char* pOutput) {
  static const iconv_t s_pConverter = iconv_open("UTF-8", "CP936");
  return RunIconv(s_pConverter, pInput, nLen, pOutput);
}

int IconvUtf8ToGbk(const char* pInput, size_t nLen, char* pOutput) {
  static const iconv_t s_pConverter = iconv_open("CP936", "UTF-8");
  return RunIconv(s_pConverter, pInput, nLen, pOutput);
}

using Conversion = int (*)(const char* pInput, size_t nLen, char* pOutput);

std::string Converted(Conversion pfnConvert, const std::string& input) {
  std::string output(kRoom, '\0');
  const int nLen = pfnConvert(input.c_str(), input.size(), output.data());
  output.resize(static_cast<size_t>(std::max(nLen, 0)));
  return output;
}

void Convert(benchmark::State& state, Conversion pfnConvert, const std::string& input) {
  std::vector<char> output(kRoom);
  for (auto _ : state) {
    if (pfnConvert(input.c_str(), input.size(), output.data()) <= 0) {
      state.SkipWithError("not converted");
      break;
    }
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(input.size()));
}

// --- The comparisons ----------------------------------------------------------------------------

struct stComparison {
  const char* pszName;
  Conversion pfnOurs;
  Conversion pfnIconv;
  std::string (*pfnText)();
  bool bFromUtf8;
  double dLeastRatio;
};

const stComparison kComparisons[] = {
    {"gbk_to_utf8/mixed", OurGbkToUtf8, IconvGbkToUtf8, MixedText, false, 1.2},
    {"gbk_to_utf8/ascii", OurGbkToUtf8, IconvGbkToUtf8, AsciiText, false, 1.0},
    {"gbk_to_utf8/chinese", OurGbkToUtf8, IconvGbkToUtf8, ChineseText, false, 1.0},
    {"utf8_to_gbk/mixed", OurUtf8ToGbk, IconvUtf8ToGbk, MixedText, true, 1.4},
    {"utf8_to_gbk/ascii", OurUtf8ToGbk, IconvUtf8ToGbk, AsciiText, true, 1.0},
    {"utf8_to_gbk/chinese", OurUtf8ToGbk, IconvUtf8ToGbk, ChineseText, true, 1.0},
};

// The machine's other work only ever adds time, so the least of many short repetitions is compared.
constexpr char kLeast[] = "least";
constexpr int kRepetitions = 40;
constexpr double kRepetitionSec = 0.01;

double Least(const std::vector<double>& times) {
  return *std::min_element(times.begin(), times.end());
}

// Prints as usual and keeps the least time of each benchmark.
class CLeastReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs)
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name == kLeast)
        m_times[run.run_name.function_name] = run.GetAdjustedCPUTime();
    ConsoleReporter::ReportRuns(runs);
  }

  // In nanoseconds; 0 when the benchmark did not run.
  double TimeOf(const std::string& name) const {
    const auto it = m_times.find(name);
    return it == m_times.end() ? 0 : it->second;
  }

 private:
  std::map<std::string, double> m_times;
};

void RegisterOne(const std::string& name, Conversion pfnConvert, const std::string& input) {
  benchmark::RegisterBenchmark(name.c_str(), Convert, pfnConvert, input)
      ->Repetitions(kRepetitions)
      ->MinTime(kRepetitionSec)
      ->ComputeStatistics(kLeast, Least)
      ->DisplayAggregatesOnly(true);
}

void Register(const stComparison& row) {
  std::string input = row.pfnText();
  if (row.bFromUtf8) input = Converted(IconvGbkToUtf8, input);
  RegisterOne(std::string(row.pszName) + "/ours", row.pfnOurs, input);
  RegisterOne(std::string(row.pszName) + "/iconv", row.pfnIconv, input);
}

int PrintRatios(const CLeastReporter& reporter) {
  int nRet = 0;
  printf("\n%-24s %12s %12s %8s %8s\n", "", "ours us", "iconv us", "ratio", "at least");
  for (const stComparison& row : kComparisons) {
    const double dOurs = reporter.TimeOf(std::string(row.pszName) + "/ours");
    const double dIconv = reporter.TimeOf(std::string(row.pszName) + "/iconv");
    if (dOurs == 0 || dIconv == 0) continue;
    printf("%-24s %12.1f %12.1f %8.2f %8.1f\n", row.pszName, dOurs / 1000, dIconv / 1000,
           dIconv / dOurs, row.dLeastRatio);
    if (dIconv / dOurs < row.dLeastRatio) nRet = 1;
  }
  return nRet;
}

// --- The reverse table --------------------------------------------------------------------------

constexpr double kMostBuildMs = 2;
constexpr size_t kMostHeapBytes = size_t{600} * 1024;

int PrintReverseTable(double dBuildMs, size_t nHeapBytes) {
  printf(
      "\nreverse table: built in %.3f ms of processor time (at most 2), %.1f KiB of heap (below "
      "600)\n",
      dBuildMs, static_cast<double>(nHeapBytes) / 1024);
  return dBuildMs <= kMostBuildMs && nHeapBytes < kMostHeapBytes ? 0 : 1;
}

size_t HeapBytes() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

}  // namespace

int main(int argc, char** argv) {
  const size_t nHeapBefore = HeapBytes();
  const clock_t start = clock();
  if (enc_stc_unicode_to_GBK_init() != 1) return 1;
  const double dBuildMs = 1000.0 * static_cast<double>(clock() - start) / CLOCKS_PER_SEC;
  const size_t nHeap = HeapBytes() - nHeapBefore;

  // Both sides of a comparison see the same machine when their repetitions take turns.
  std::vector<char*> arguments(argv, argv + argc);
  char szInterleave[] = "--benchmark_enable_random_interleaving=true";
  arguments.insert(arguments.begin() + 1, szInterleave);
  int nArguments = static_cast<int>(arguments.size());
  benchmark::Initialize(&nArguments, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(nArguments, arguments.data())) return 1;
  for (const stComparison& row : kComparisons) Register(row);
  CLeastReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  const int nRatios = PrintRatios(reporter);
  return PrintReverseTable(dBuildMs, nHeap) | nRatios;
}
