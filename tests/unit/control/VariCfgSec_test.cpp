#include "control/VariCfgSec.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>

#include "tests/unit/Util/Printed.h"

namespace {

constexpr char kNoAttribute[] = "CWebCtrl::GetParaCmdType, get first pAttribute failed.\n";
constexpr char kNotAction[] = "CWebCtrl::GetParaCmdType, first attribute name is not Action.\n";
constexpr char kNoRoot[] =
    "CWebCtrl::GetParaCmdType, xmlDoc.FirstChildElement[VariCfgSec] failed.\n";
constexpr char kIsReply[] = "CWebCtrl::GetParaCmdType, is resp msg, do't handle.\n";

std::string Nested(int nDepth) {
  std::string strText = "<VariCfgSec Action=\"DEVICE_QUERY\">";
  for (int i = 1; i < nDepth; ++i) strText += "<a>";
  for (int i = 1; i < nDepth; ++i) strText += "</a>";
  return strText + "</VariCfgSec>";
}

// Messages that fail the common check, and what it prints.
const struct {
  std::string strText;
  bool bHasRoot;
  const char* pszPrinted;
} kUnusable[] = {
    {"", false, ""},
    {"   \r\n", false, ""},
    {"not XML", false, ""},
    {"<", false, ""},
    {"<Other Action=\"DEVICE_QUERY\"><stDisplay /></Other>", false, ""},
    {"<Other><VariCfgSec Action=\"DEVICE_QUERY\"><stDisplay /></VariCfgSec></Other>", false, ""},
    {"<varicfgsec Action=\"DEVICE_QUERY\"><stDisplay /></varicfgsec>", false, ""},
    {Nested(33), false, ""},
    {"<VariCfgSec><stDisplay /></VariCfgSec>", true, kNoAttribute},
    {"<VariCfgSec Result=\"0\" Action=\"DEVICE_SET\"><stDisplay /></VariCfgSec>", true, kNotAction},
    {"<VariCfgSec action=\"DEVICE_SET\" Result=\"0\"><stDisplay /></VariCfgSec>", true, kNotAction},
};

TEST(CheckMessage, TellsAMissingRootFromAWrongOne) {
  for (const auto& row : kUnusable) {
    TiXmlDocument doc;
    TiXmlElement* pRoot = nullptr;
    EXPECT_EQ(row.pszPrinted, Printed([&] {
                EXPECT_EQ(row.bHasRoot ? -1 : -2, CheckMessage(row.strText.c_str(), doc, pRoot))
                    << row.strText;
              }));
    EXPECT_EQ(nullptr, pRoot);
  }
}

TEST(CheckMessage, GivesTheRoot) {
  TiXmlDocument doc;
  TiXmlElement* pRoot = nullptr;
  ASSERT_EQ(0,
            CheckMessage("<?xml version=\"1.0\"?><!-- c --><VariCfgSec Action=\"\"/>", doc, pRoot));
  EXPECT_STREQ("VariCfgSec", pRoot->Value());
  EXPECT_EQ(&doc, pRoot->GetDocument());
}

TEST(CheckRoot, JudgesAsTheWholeMessageIsJudged) {
  for (const auto& row : kUnusable) {
    if (row.strText == Nested(33)) continue;
    EXPECT_EQ(row.pszPrinted, Printed([&] {
                EXPECT_EQ(row.bHasRoot ? -1 : -2, CheckRoot(row.strText.c_str())) << row.strText;
              }));
  }
  for (const char* pszText :
       {"<VariCfgSec Action=\"&#x\"><a b=\"x41;\">", "<VariCfgSec Action=\"\"/>",
        "<VariCfgSec Action='>'><a/>", "<VariCfgSec Action=\"&gt;\">", "<VariCfgSec Action=\">\">",
        "<Other/><VariCfgSec Action=\"\"/>", " <VariCfgSec Action=x>",
        "<VariCfgSecs/><VariCfgSec Action=\"\">",
        "<?xml version=\"1.0\"?><VariCfgSec Action=\"\">"}) {
    EXPECT_EQ(0, CheckRoot(pszText)) << pszText;
  }
}

TEST(CheckRoot, LooksNoDeeperThanTheRoot) {
  EXPECT_EQ(0, CheckRoot(Nested(33).c_str()));
  EXPECT_EQ(0, CheckRoot(Nested(300000).c_str()));
}

// Far too deep for the parser, before the root as well as below it.
TEST(CheckRoot, LetsTheRootAloneDecide) {
  std::string strDeep;
  for (int i = 0; i < 100; ++i) strDeep += "<a b='>'>";
  for (int i = 0; i < 100; ++i) strDeep += "</a>";
  for (const std::string& strHead :
       {std::string("<!-- <VariCfgSec> -->"), std::string("<?xml version=\"1.0\"?>"),
        std::string("\xEF\xBB\xBF<?xml encoding='UTF-8'?>\r\n<!DOCTYPE x>"), strDeep, strDeep + " ",
        "<Other/>" + strDeep}) {
    EXPECT_EQ(0, CheckRoot((strHead + Nested(100)).c_str())) << strHead;
    EXPECT_EQ(0, CheckRoot((strHead + "<VariCfgSec Action='>'>" + strDeep).c_str())) << strHead;
    EXPECT_EQ(0, CheckRoot((strHead + "<VariCfgSec Action=x/>" + strDeep).c_str())) << strHead;
    EXPECT_EQ(kNotAction, Printed([&] {
                EXPECT_EQ(-1, CheckRoot((strHead + "<VariCfgSec a=''>" + strDeep).c_str()));
              }));
    EXPECT_EQ(-2, CheckRoot((strHead + "<Other>" + strDeep + Nested(1)).c_str())) << strHead;
  }
}

TEST(CheckRoot, JudgesRandomTextsAsTheWholeMessageIsJudged) {
  constexpr const char* kTokens[] = {"<VariCfgSec", " Action", "=", "\"",   "'",
                                     ">",           "/>",      "<", "/",    " ",
                                     "x",           "&#65",    ";", "&lt;", "</VariCfgSec>",
                                     "<a>",         "\xb0",    "="};
  std::mt19937 random(1);
  std::uniform_int_distribution<size_t> token(0, std::size(kTokens) - 1);
  int nGood = 0;
  Printed([&] {
    for (int i = 0; i < 100000; ++i) {
      std::string strText = i % 2 != 0 ? "<VariCfgSec Action=" : "<VariCfgSec ";
      for (int n = 0; n < 12; ++n) strText += kTokens[token(random)];
      TiXmlDocument doc;
      TiXmlElement* pRoot = nullptr;
      const int nRet = CheckMessage(strText.c_str(), doc, pRoot);
      ASSERT_EQ(nRet, CheckRoot(strText.c_str())) << strText;
      nGood += static_cast<int>(nRet == 0);
    }
  });
  EXPECT_GT(nGood, 1000);  // enough of the texts are of either kind
}

TEST(GetParaSection, RefusesUnusableReplies) {
  for (const auto& row : kUnusable) {
    TiXmlDocument doc;
    TiXmlElement* pSection = nullptr;
    EXPECT_EQ(row.pszPrinted, Printed([&] {
                EXPECT_EQ(-1, GetParaSection(row.strText.c_str(), doc, pSection)) << row.strText;
              }));
    EXPECT_EQ(nullptr, pSection);
  }
}

TEST(GetParaSection, FindsTheFirstChildElement) {
  const struct {
    const char* pszReply;
    const char* pszSection;
  } kCases[] = {
      {"<VariCfgSec Action=\"DEVICE_QUERY\"><stDisplay a=\"1\" /></VariCfgSec>", "stDisplay"},
      {"<VariCfgSec Action=\"x\" Result=\"7\"><stVersion/><stDisplay/></VariCfgSec>", "stVersion"},
      {"<VariCfgSec Action=\"x\">text<!-- c --><stCMS><i/></stCMS></VariCfgSec>", "stCMS"},
      {"<VariCfgSec Action=\"x\"><stDisplay a=\"1\"></VariCfgSec>", "stDisplay"},
      {"<VariCfgSec Action=\"x\"><stDisplay a=\"1\"/>", "stDisplay"},
  };
  for (const auto& row : kCases) {
    TiXmlDocument doc;
    TiXmlElement* pSection = nullptr;
    EXPECT_EQ("", Printed([&] { EXPECT_EQ(0, GetParaSection(row.pszReply, doc, pSection)); }));
    ASSERT_NE(nullptr, pSection) << row.pszReply;
    EXPECT_STREQ(row.pszSection, pSection->Value());
  }
}

TEST(GetParaSection, RefusesARootWithoutSection) {
  for (const char* pszReply :
       {"<VariCfgSec Action=\"DEVICE_QUERY\"></VariCfgSec>", "<VariCfgSec Action=\"x\" />",
        "<VariCfgSec Action=\"x\">text<!-- c --></VariCfgSec>"}) {
    TiXmlDocument doc;
    TiXmlElement* pSection = nullptr;
    EXPECT_EQ("", Printed([&] { EXPECT_EQ(-1, GetParaSection(pszReply, doc, pSection)); }));
    EXPECT_EQ(nullptr, pSection);
  }
}

TEST(GetParaSection, DropsWhatTheDocumentHeld) {
  TiXmlDocument doc;
  TiXmlElement* pSection = nullptr;
  ASSERT_EQ(0, GetParaSection("<VariCfgSec Action=\"x\"><stOld/></VariCfgSec>", doc, pSection));
  EXPECT_EQ(-1, GetParaSection("garbage", doc, pSection));
  ASSERT_EQ(0, GetParaSection("<VariCfgSec Action=\"x\"><stNew/></VariCfgSec>", doc, pSection));
  EXPECT_STREQ("stNew", pSection->Value());
}

// The value of an attribute read with the given capacity; "-1" when there is none.
std::string Attr(const std::string& strReply, const char* pszName, size_t nCapacity = 64) {
  std::string strBuf(nCapacity + 8, '#');
  if (GetParaAttr(strReply.c_str(), pszName, strBuf.data(), nCapacity)) {
    EXPECT_EQ(std::string::npos, strBuf.find_first_not_of('#')) << "buffer touched";
    return "-1";
  }
  EXPECT_EQ("########", strBuf.substr(nCapacity)) << "written beyond the room";
  return strBuf.c_str();
}

TEST(GetParaAttr, WalksAllAttributesOfTheRoot) {
  const std::string strReply =
      "<VariCfgSec Action=\"DEVICE_SET\" Result=\"3\" last='&lt;x&gt;'><stX "
      "inner=\"1\"/></VariCfgSec>";
  EXPECT_EQ("DEVICE_SET", Attr(strReply, "Action"));
  EXPECT_EQ("3", Attr(strReply, "Result"));
  EXPECT_EQ("<x>", Attr(strReply, "last"));
  EXPECT_EQ("-1", Attr(strReply, "result"));
  EXPECT_EQ("-1", Attr(strReply, "Res"));
  EXPECT_EQ("-1", Attr(strReply, "inner"));
}

TEST(GetParaAttr, CutsAValueAtTheRoom) {
  const std::string strReply = "<VariCfgSec Action=\"DEVICE_SET\" Result=\"123456789\"/>";
  EXPECT_EQ("123456789", Attr(strReply, "Result", 10));
  EXPECT_EQ("12345678", Attr(strReply, "Result", 9));
  EXPECT_EQ("", Attr(strReply, "Result", 1));
}

TEST(GetParaAttr, RefusesUnusableReplies) {
  for (const auto& row : kUnusable)
    EXPECT_EQ(row.pszPrinted,
              Printed([&] { EXPECT_EQ("-1", Attr(row.strText, "Action")) << row.strText; }));
}

constexpr int kNoCode = 99;

// The code of a message, kNoCode when it was refused; and what was printed after the message text.
int Classify(const std::string& strText, std::string& strPrinted) {
  int nCode = kNoCode;
  int nRet = 0;
  strPrinted = Printed([&] { nRet = GetParaCmdType(strText.c_str(), nCode); });
  const std::string strHead =
      "----------------------CWebCtrl::GetParaCmdType, data:" + strText + ".\n";
  EXPECT_EQ(strHead, strPrinted.substr(0, strHead.size()));
  strPrinted.erase(0, strHead.size());
  EXPECT_EQ(nRet == 0, nCode != kNoCode) << strText;
  return nCode;
}

TEST(GetParaCmdType, NumbersTheActions) {
  const struct {
    const char* pszAction;
    int nCode;
  } kCases[] = {
      {"BROAD_SEARCH", 0},  {"DEVICE_QUERY", 1}, {"DEVICE_SET", 2}, {"DEVICE_REBOOT", 3},
      {"DEVICE_FORMAT", 4}, {"DEVICE_OTHER", 5}, {"", 5},           {"device_set", 5},
      {"DEVICE_SET ", 5},   {"DEVICE_SE", 5},
  };
  for (const auto& row : kCases) {
    std::string strPrinted;
    EXPECT_EQ(row.nCode,
              Classify("<VariCfgSec Action=\"" + std::string(row.pszAction) + "\"/>", strPrinted))
        << row.pszAction;
    EXPECT_EQ("CWebCtrl::GetParaCmdType, support cmd:" + std::string(row.pszAction) + ".\n",
              strPrinted);
  }
}

TEST(GetParaCmdType, RefusesRepliesByTheirSecondAttribute) {
  const struct {
    const char* pszText;
    int nCode;
    const char* pszPrinted;
  } kCases[] = {
      {"<VariCfgSec Action=\"DEVICE_SET\" Result=\"0\"/>", kNoCode, kIsReply},
      {"<VariCfgSec Action=\"BROAD_SEARCH\" Result=\"\" x=\"1\"/>", kNoCode, kIsReply},
      {"<VariCfgSec Action=\"DEVICE_SET\" x=\"1\" Result=\"0\"/>", 2,
       "CWebCtrl::GetParaCmdType, support cmd:DEVICE_SET.\n"},
  };
  for (const auto& row : kCases) {
    std::string strPrinted;
    EXPECT_EQ(row.nCode, Classify(row.pszText, strPrinted));
    EXPECT_EQ(row.pszPrinted, strPrinted);
  }
}

TEST(GetParaCmdType, RefusesUnusableMessages) {
  for (const auto& row : kUnusable) {
    std::string strPrinted;
    EXPECT_EQ(kNoCode, Classify(row.strText, strPrinted));
    EXPECT_EQ(row.bHasRoot ? row.pszPrinted : kNoRoot, strPrinted) << row.strText;
  }
}

}  // namespace
