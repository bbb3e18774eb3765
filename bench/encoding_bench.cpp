// Compares the conversions with the C library's iconv in the same run. A round converts 256
// different texts of about 20 KB each, first with one side and then with the other: the branch
// predictor learns a single text, and then everything looks fast. Prints the median of the rounds'
// ratios for each kind of text, then the cost of the reverse table. Exits with 1 when a ratio or
// the cost misses its target.
#include <iconv.h>
#include <malloc.h>
#include <stdio.h>
#include <time.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "encoding/unicode_utf-8.h"

namespace {

constexpr size_t kTextBytes = size_t{20} * 1024;
constexpr size_t kRoom = 3 * kTextBytes;
constexpr int kTexts = 256;
constexpr int kRounds = 15;

// --- Texts (GBK) --------------------------------------------------------------------------------

using Random = std::mt19937;

// One of the 3,755 everyday characters: rows B0 to D7, without the five unassigned codes.
std::string ChineseWord(Random& random, int nCharacters) {
  std::string strWord;
  for (int i = 0; i < nCharacters; ++i) {
    const auto uiRow = 0xB0 + random() % 40;
    strWord += static_cast<char>(uiRow);
    strWord += static_cast<char>(0xA1 + random() % (uiRow == 0xD7 ? 89 : 94));
  }
  return strWord;
}

std::string Configuration(Random& random) {
  std::string strText = "<VariCfgSec Action=\"DEVICE_QUERY\">\r\n";
  while (strText.size() < kTextBytes)
    strText += "  <stDisplay strFD_DeviceName=\"" + ChineseWord(random, 8) + "\" strFD_Plate=\"" +
               ChineseWord(random, 2) + std::to_string(random() % 100000) + "\" strFD_Driver=\"" +
               ChineseWord(random, 12) + "\" ucFD_Note=\"" + ChineseWord(random, 16) + "\" />\r\n";
  return strText + "</VariCfgSec>\r\n";
}

std::string Ascii(Random& random) {
  std::string strText;
  while (strText.size() < kTextBytes)
    strText += "  <stSubStream ucFD_EncodeMode=\"1\" ucFD_FrameRate=\"25\" uiFD_BitRate=\"" +
               std::to_string(random()) + "\" />\r\n";
  return strText;
}

std::string Chinese(Random& random) { return ChineseWord(random, kTextBytes / 2); }

// Nothing is harder to predict.
std::string Alternating(Random& random) {
  std::string strText;
  while (strText.size() < kTextBytes)
    strText += random() % 2 != 0 ? ChineseWord(random, 1)
                                 : std::string(1, static_cast<char>('0' + random() % 64));
  return strText;
}

// --- One conversion of a text, ours and iconv's -----------------------------------------------

uint32_t g_codePoints[kRoom];

int OurGbkToUtf8(const std::string& strInput, char* pOutput) {
  int nCodePoints = kRoom - 1, nBytes = kRoom;
  if (enc_GBK_to_unicode_str(strInput.c_str(), g_codePoints, &nCodePoints) != 1) return -1;
  g_codePoints[nCodePoints] = 0;
  return enc_unicode_to_utf8_str(g_codePoints, pOutput, &nBytes) == 1 ? nBytes : -1;
}

int OurUtf8ToGbk(const std::string& strInput, char* pOutput) {
  int nCodePoints = kRoom - 1, nBytes = kRoom;
  if (enc_utf8_to_unicode_str(strInput.c_str(), g_codePoints, &nCodePoints) != 1) return -1;
  g_codePoints[nCodePoints] = 0;
  return enc_unicode_to_GBK_str(g_codePoints, pOutput, &nBytes) == 1 ? nBytes : -1;
}

int RunIconv(iconv_t pConverter, const std::string& strInput, char* pOutput) {
  char* pIn = const_cast<char*>(strInput.c_str());
  size_t nLen = strInput.size(), nRoom = kRoom;
  if (iconv(pConverter, &pIn, &nLen, &pOutput, &nRoom) == static_cast<size_t>(-1)) return -1;
  return static_cast<int>(kRoom - nRoom);
}

int IconvGbkToUtf8(const std::string& strInput, char* pOutput) {
  static const iconv_t s_pConverter = iconv_open("UTF-8", "CP936");
  return RunIconv(s_pConverter, strInput, pOutput);
}

int IconvUtf8ToGbk(const std::string& strInput, char* pOutput) {
  static const iconv_t s_pConverter = iconv_open("CP936", "UTF-8");
  return RunIconv(s_pConverter, strInput, pOutput);
}

// --- The comparisons ----------------------------------------------------------------------------

using Conversion = int (*)(const std::string& strInput, char* pOutput);
using Texts = std::vector<std::string>;

const struct stComparison {
  const char* pszName;
  Conversion pfnOurs, pfnIconv;
  std::string (*pfnText)(Random& random);
  bool bFromUtf8;
  double dLeastRatio;
} kComparisons[] = {
    {"gbk_to_utf8/configuration", OurGbkToUtf8, IconvGbkToUtf8, Configuration, false, 1.3},
    {"gbk_to_utf8/ascii", OurGbkToUtf8, IconvGbkToUtf8, Ascii, false, 1},
    {"gbk_to_utf8/chinese", OurGbkToUtf8, IconvGbkToUtf8, Chinese, false, 1},
    {"gbk_to_utf8/alternating", OurGbkToUtf8, IconvGbkToUtf8, Alternating, false, 1},
    {"utf8_to_gbk/configuration", OurUtf8ToGbk, IconvUtf8ToGbk, Configuration, true, 1.4},
    {"utf8_to_gbk/ascii", OurUtf8ToGbk, IconvUtf8ToGbk, Ascii, true, 1},
    {"utf8_to_gbk/chinese", OurUtf8ToGbk, IconvUtf8ToGbk, Chinese, true, 1},
    {"utf8_to_gbk/alternating", OurUtf8ToGbk, IconvUtf8ToGbk, Alternating, true, 1},
};

Texts MakeTexts(const stComparison& row) {
  Random random(1);
  Texts texts;
  std::vector<char> output(kRoom);
  for (int i = 0; i < kTexts; ++i) {
    std::string strText = row.pfnText(random);
    if (row.bFromUtf8) {
      const int nLen = IconvGbkToUtf8(strText, output.data());
      strText.assign(output.data(), static_cast<size_t>(std::max(nLen, 0)));
    }
    texts.push_back(strText);
  }
  return texts;
}

// Microseconds of processor time per text; negative when one was not converted.
double RoundUs(Conversion pfnConvert, const Texts& texts) {
  static char s_output[kRoom];
  const auto Now = [] {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return 1e6 * static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e3;
  };
  const double dStart = Now();
  for (const std::string& strText : texts)
    if (pfnConvert(strText, s_output) <= 0) return -1;
  return (Now() - dStart) / kTexts;
}

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Other load on the machine slows both sides of a round equally.
bool Compare(const stComparison& row) {
  const Texts texts = MakeTexts(row);
  std::vector<double> ours, theirs, ratios;
  for (int i = 0; i < kRounds; ++i) {
    ours.push_back(RoundUs(row.pfnOurs, texts));
    theirs.push_back(RoundUs(row.pfnIconv, texts));
    if (ours.back() < 0 || theirs.back() < 0) return false;
    ratios.push_back(theirs.back() / ours.back());
  }
  const double dRatio = Median(ratios);
  printf("%-26s %10.1f %10.1f %8.2f %8.1f\n", row.pszName, Median(ours), Median(theirs), dRatio,
         row.dLeastRatio);
  return dRatio >= row.dLeastRatio;
}

// --- The reverse table --------------------------------------------------------------------------

constexpr double kMostBuildMs = 2;
constexpr size_t kMostHeapBytes = size_t{600} * 1024;

size_t HeapBytes() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

bool BuildReverseTable() {
  const size_t nHeapBefore = HeapBytes();
  const clock_t start = clock();
  if (enc_stc_unicode_to_GBK_init() != 1) return false;
  const double dBuildMs = 1000.0 * static_cast<double>(clock() - start) / CLOCKS_PER_SEC;
  const size_t nHeap = HeapBytes() - nHeapBefore;
  printf(
      "reverse table: built in %.3f ms of processor time (at most %.0f), %zu bytes of heap (at "
      "most %zu)\n",
      dBuildMs, kMostBuildMs, nHeap, kMostHeapBytes);
  return dBuildMs <= kMostBuildMs && nHeap <= kMostHeapBytes;
}

}  // namespace

// With an argument, only the comparisons whose names contain it.
int main(int argc, char** argv) {
  bool bGood = BuildReverseTable();
  printf("%-26s %10s %10s %8s %8s\n", "", "ours us", "iconv us", "ratio", "at least");
  for (const stComparison& row : kComparisons)
    if (argc < 2 || std::string(row.pszName).find(argv[1]) != std::string::npos)
      bGood = Compare(row) && bGood;
  return bGood ? 0 : 1;
}
