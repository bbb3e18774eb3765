#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/unit/WebCtrl/HttpConn.h"
#include "tests/unit/WebCtrl/OneRequest.h"
#include "tests/unit/control/NetSpace.h"

namespace {

using testing::HasSubstr;

constexpr char kNeedsNetSpace[] = "no private network namespace";
constexpr char kQuery[] = R"(<VariCfgSec Action="DEVICE_QUERY"></VariCfgSec>)";
constexpr char kRefusal[] = R"(<VariCfgSec Action="DEVICE_SET" Result="1"/>)";

std::string Repeat(const char* pszText, size_t nTimes) {
  std::string strAll;
  for (size_t i = 0; i < nTimes; ++i) strAll += pszText;
  return strAll;
}

TEST(ExportCfgFile, SendsTheConfigurationInUtf8Unescaped) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    const stOutcome outcome = Ask(Post("/export_CfgFile", ""),
                                  "<VariCfgSec Action=\"x\"><a b=\"\xD6\xD0\\\n\"/></VariCfgSec>");
    EXPECT_EQ(std::vector<std::string>{kQuery}, outcome.requests);
    EXPECT_EQ((std::vector<std::string>{
                  "{ \"strFD_CfgPara\": \"<VariCfgSec Action=\"x\"><a b=\"\xE4\xB8\xAD\\\n\"/>"
                  "</VariCfgSec>\"",
                  ", \"result\": 1 }"}),
              TakeReply(outcome.strSent).chunks);
    EXPECT_THAT(outcome.strPrinted, HasSubstr("\nstrXmlData*************49\n"));
    EXPECT_THAT(outcome.strPrinted,
                HasSubstr("\033[32m\033[1m----------------bResult = 1\n\033[0m"));
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

TEST(ExportCfgFile, EndsBehindAnUnassignedCode) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    const stOutcome outcome =
        Ask(Post("/export_CfgFile", ""), "<VariCfgSec Action=\"x\"/>\xA2\xA0\xA2\xA0");
    EXPECT_EQ("{ \"strFD_CfgPara\": \"<VariCfgSec Action=\"x\"/>\x01\x01\", \"result\": 1 }",
              TakeReply(outcome.strSent).Body());
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

TEST(ExportCfgFile, AnswersAFailedFetchWithAnEmptyText) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    for (const char* pszReply :
         {"not XML", "<Other Action=\"x\"/>", "<VariCfgSec Result=\"0\"/>"}) {
      const stOutcome outcome = Ask(Post("/export_CfgFile", ""), pszReply);
      EXPECT_EQ("{ \"strFD_CfgPara\": \"\", \"result\": 0 }", TakeReply(outcome.strSent).Body())
          << pszReply;
    }
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

// The conversion requires room for the longest character each time, so the buffer counts as full
// before its last byte, and the text sent is always terminated.
TEST(ExportCfgFile, LeavesAFullBufferUnanswered) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    const std::string strHead = "<VariCfgSec Action=\"\">";
    constexpr size_t kHanzi = 1000;
    for (const size_t nUtf8 : {30716, 30717, 30718, 30719, 30720, 30721}) {
      const std::string strLatin(nUtf8 - strHead.size() - 3 * kHanzi, 'x');
      const stOutcome outcome =
          Ask(Post("/export_CfgFile", ""), strHead + strLatin + Repeat("\xD6\xD0", kHanzi));
      if (nUtf8 <= 30717) {
        EXPECT_EQ("{ \"strFD_CfgPara\": \"" + strHead + strLatin + Repeat("\xE4\xB8\xAD", kHanzi) +
                      "\", \"result\": 1 }",
                  TakeReply(outcome.strSent).Body())
            << outcome.strPrinted;
      } else {
        EXPECT_EQ("", outcome.strSent) << nUtf8;
        EXPECT_THAT(outcome.strPrinted, HasSubstr("GBK to utf8 failed!ret2 = 1, ret3 = 2\n"));
      }
    }
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

TEST(ExportCfgFile, LeavesWhatIsNoGbkUnanswered) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    const stOutcome outcome = Ask(Post("/export_CfgFile", ""),
                                  "<VariCfgSec Action=\"\"><a b=\"\xFF\xFF\"/></VariCfgSec>");
    EXPECT_EQ("", outcome.strSent);
    EXPECT_THAT(outcome.strPrinted, HasSubstr("GBK to utf8 failed!ret2 = 0, ret3 = "));
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

TEST(ImportCfgFile, SendsACompactGbkSet) {
  const struct {
    std::string strPosted;
    std::string strDatagram;
  } rows[] = {
      {"<VariCfgSec Action=\"DEVICE_QUERY\" Result=\"0\"><a/></VariCfgSec>",
       "<VariCfgSec Action=\"DEVICE_SET\"><a /></VariCfgSec>"},
      {"<VariCfgSec><a b=\"1\">\n  <c />\n</a></VariCfgSec>",
       "<VariCfgSec Action=\"DEVICE_SET\"><a b=\"1\"><c /></a></VariCfgSec>"},
      {"<?xml version=\"1.0\"?>junk<x/><VariCfgSec/>", "<VariCfgSec Action=\"DEVICE_SET\" />"},
      {"<VariCfgSec a=\"\xE4\xB8\xAD\"/>", "<VariCfgSec a=\"\xD6\xD0\" Action=\"DEVICE_SET\" />"},
      // Bytes of the longer UTF-8 text after the GBK text are not parsed.
      {"<VariCfgSec a=\"" + Repeat("\xE4\xB8\xAD", 40) + "\"/>",
       "<VariCfgSec a=\"" + Repeat("\xD6\xD0", 40) + "\" Action=\"DEVICE_SET\" />"},
      {"<VariCfgSec/><VariCfgSec/>", "<VariCfgSec Action=\"DEVICE_SET\" /><VariCfgSec />"},
      // Cut by the form reader; the rest parses as far as it goes.
      {"<VariCfgSec/>" + std::string(31000, ' '), "<VariCfgSec Action=\"DEVICE_SET\" />"},
  };
  const bool bRan = RunInNetSpace(Eth0::kNone, [&] {
    for (const auto& row : rows) {
      const stOutcome outcome =
          Ask(Post("/import_CfgFile", "strFD_CfgPara=" + row.strPosted), kRefusal);
      EXPECT_EQ(std::vector<std::string>{row.strDatagram}, outcome.requests);
      // A refusal only suppresses the restart.
      EXPECT_EQ(std::vector<std::string>{"{\"result\": 1 }"}, TakeReply(outcome.strSent).chunks);
    }
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

TEST(ImportCfgFile, LeavesAnUnusableTextUnanswered) {
  const struct {
    std::string strForm;
    const char* pszPrinted;
  } rows[] = {
      {"", "\nCWebCtrl::import_CfgFile, Invalid format.\n"},
      {"strFD_CfgPara=", "\nCWebCtrl::import_CfgFile, Invalid format.\n"},
      {"strFD_CfgPara=<varicfgsec/>", "\nCWebCtrl::import_CfgFile, Invalid format.\n"},
      {"strFD_CfgPara=<VariCfgSecX/>",
       "\nCWebCtrl::import_CfgFile, xmlDoc.FirstChildElement failed.\n"},
      {"strFD_CfgPara=" + Repeat("<VariCfgSec>", 33),
       "\nCWebCtrl::import_CfgFile, xmlDoc.FirstChildElement failed.\n"},
      {"strFD_CfgPara=<VariCfgSec a=\"%C3%80\"/>", "\nutf8 to GBK failed!\n"},
      {"strFD_CfgPara=<VariCfgSec a=\"%FF\"/>", "\nutf8 to GBK failed!\n"},
  };
  const bool bRan = RunInNetSpace(Eth0::kNone, [&] {
    for (const auto& row : rows) {
      const stOutcome outcome = Ask(Post("/import_CfgFile", row.strForm), kRefusal);
      EXPECT_EQ(std::vector<std::string>{}, outcome.requests) << row.strForm;
      EXPECT_EQ("", outcome.strSent) << row.strForm;
      EXPECT_THAT(outcome.strPrinted, HasSubstr(row.pszPrinted)) << row.strForm;
    }
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

TEST(ImportCfgFile, TellsAFailedTransaction) {
  const bool bRan = RunInNetSpace(Eth0::kNone, [] {
    const stOutcome outcome = Ask(Post("/import_CfgFile", "strFD_CfgPara=<VariCfgSec/>"),
                                  R"(<VariCfgSec Action="DEVICE_SET"/>)");
    EXPECT_EQ("{\"result\": 0 }", TakeReply(outcome.strSent).Body());
  });
  if (!bRan) GTEST_SKIP() << kNeedsNetSpace;
}

}  // namespace
