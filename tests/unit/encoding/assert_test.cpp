// The assertions of the conversions, by their texts: they hold in every build.
#include <gmock/gmock.h>
#include <signal.h>

#include <string>

#include "encoding/unicode_utf-8.h"

namespace {

const char kArrays[] = "pInput != ((void *)0) && pOutput != ((void *)0)";

const char* g_pszNoText = nullptr;
char* g_pNoBytes = nullptr;
uint32_t* g_pNoCodes = nullptr;
uint16_t* g_pNoGbk = nullptr;
uint32_t g_codes[8] = {'a'};
char g_szBytes[8];
int g_nOne = 1, g_nFive = 5, g_nZero = 0, g_nEnough = 8;

const struct {
  const char* pszText;
  void (*pfnBreak)();
} kRows[] = {
    {"ucs != ((void *)0)", [] { enc_GBK_to_unicode_one(0x4141, g_pNoCodes); }},
    {kArrays, [] { enc_GBK_to_unicode(g_pszNoText, 1, g_codes, &g_nEnough); }},
    {kArrays, [] { enc_GBK_to_unicode("a", 1, g_pNoCodes, &g_nEnough); }},
    {"*nMembOut >= 1", [] { enc_GBK_to_unicode("a", 1, g_codes, &g_nZero); }},
    {"*nMembOut >= 1", [] { enc_GBK_to_unicode("a", 1, g_codes, nullptr); }},
    {kArrays, [] { enc_GBK_to_unicode_str(g_pszNoText, g_codes, &g_nEnough); }},
    {kArrays, [] { enc_GBK_to_unicode_str("a", g_pNoCodes, &g_nEnough); }},
    {"*nMembOut >= 1", [] { enc_GBK_to_unicode_str("", g_codes, &g_nZero); }},
    {"pInput != ((void *)0) && Unic != ((void *)0)",
     [] { enc_utf8_to_unicode_one(g_pszNoText, g_codes); }},
    {"pInput != ((void *)0) && Unic != ((void *)0)",
     [] { enc_utf8_to_unicode_one("a", g_pNoCodes); }},
    {kArrays, [] { enc_utf8_to_unicode(g_pszNoText, 1, g_codes, &g_nEnough); }},
    {kArrays, [] { enc_utf8_to_unicode("a", 1, g_pNoCodes, &g_nEnough); }},
    {"*nMembOut >= 1", [] { enc_utf8_to_unicode("a", 1, g_codes, &g_nZero); }},
    {kArrays, [] { enc_utf8_to_unicode_str(g_pszNoText, g_codes, &g_nEnough); }},
    {kArrays, [] { enc_utf8_to_unicode_str("a", g_pNoCodes, &g_nEnough); }},
    {"*nMembOut >= 1", [] { enc_utf8_to_unicode_str("", g_codes, &g_nZero); }},
    {"pOutput != ((void *)0)", [] { enc_unicode_to_utf8_one('a', g_pNoBytes, 6); }},
    {"outSize >= 6", [] { enc_unicode_to_utf8_one('a', g_szBytes, 5); }},
    {kArrays, [] { enc_unicode_to_utf8_str(g_pNoCodes, g_szBytes, &g_nEnough); }},
    {kArrays, [] { enc_unicode_to_utf8_str(g_codes, g_pNoBytes, &g_nEnough); }},
    {"*nMembOut >= 6", [] { enc_unicode_to_utf8_str(g_codes, g_szBytes, &g_nFive); }},
    {"*nMembOut >= 6", [] { enc_unicode_to_utf8_str(g_codes, g_szBytes, nullptr); }},
    {"gbk != ((void *)0)", [] { enc_unicode_to_GBK_one('a', g_pNoGbk); }},
    {kArrays, [] { enc_unicode_to_GBK_str(g_pNoCodes, g_szBytes, &g_nEnough); }},
    {kArrays, [] { enc_unicode_to_GBK_str(g_codes, g_pNoBytes, &g_nEnough); }},
    {"*nMembOut >= 2", [] { enc_unicode_to_GBK_str(g_codes, g_szBytes, &g_nOne); }},
};

}  // namespace

TEST(AssertionDeathTest, AbortsWithItsText) {
  int nRow = 0;
  for (const auto& row : kRows) {
    SCOPED_TRACE(nRow++);
    EXPECT_EXIT(row.pfnBreak(), testing::KilledBySignal(SIGABRT),
                testing::HasSubstr(std::string("Assertion `") + row.pszText + "' failed."));
  }
}
