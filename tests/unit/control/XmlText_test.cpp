#include "control/XmlText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "tests/unit/Util/NoMemory.h"

namespace {

// The deepest nesting of elements that the parser has built, errors or not.
int Depth(const TiXmlNode& node) {
  int nDeepest = 0;
  for (const TiXmlNode* p = node.FirstChild(); p != nullptr; p = p->NextSibling())
    nDeepest = std::max(nDeepest, Depth(*p) + (p->ToElement() != nullptr ? 1 : 0));
  return nDeepest;
}

std::string Repeat(const char* pszText, int nCount) {
  std::string strAll;
  for (int i = 0; i < nCount; ++i) strAll += pszText;
  return strAll;
}

std::string Nested(int nDepth, const std::string& strInner = "") {
  return Repeat("<a>", nDepth) + strInner + Repeat("</a>", nDepth);
}

int Parse(const std::string& strText) {
  TiXmlDocument doc;
  return ParseXml(doc, strText.c_str());
}

TEST(ParseXml, ParsesUpTo32LevelsAndRefusesMore) {
  const std::string kHeads[] = {"",
                                "<?xml version=\"1.0\"?>",
                                "<?xml version='1.0' encoding='gbk'?>",
                                "<?xml version='1.0' encoding='UTF-8' standalone='no'?>",
                                "\xEF\xBB\xBF",
                                "\xEF\xBB\xBF<?xml encoding='gbk'?>",
                                "<!-- <a><a> --><!DOCTYPE a>"};
  for (const std::string& strHead : kHeads) {
    TiXmlDocument doc;
    EXPECT_EQ(0, ParseXml(doc, (strHead + Nested(32)).c_str())) << strHead;
    EXPECT_FALSE(doc.Error()) << strHead;
    EXPECT_EQ(32, Depth(doc)) << strHead;
    EXPECT_EQ(-1, ParseXml(doc, (strHead + Nested(33)).c_str())) << strHead;
    EXPECT_EQ(nullptr, doc.FirstChild()) << strHead;
  }
}

TEST(ParseXml, CountsDepthNotElements) {
  TiXmlDocument doc;
  EXPECT_EQ(0, ParseXml(doc, ("<r>" + Repeat("<a x='1'><b/>t</a>", 5000) + "</r>").c_str()));
  EXPECT_FALSE(doc.Error());
  EXPECT_EQ(3, Depth(doc));
  EXPECT_EQ(0, Parse(Repeat("<a>", 31) + Repeat("<b/>", 100)));
  EXPECT_EQ(0, Parse(Repeat("<a></a>", 100)));
}

TEST(ParseXml, IgnoresWhatOnlyLooksLikeElements) {
  const std::string strFalse = Repeat("<a>", 100);
  for (const std::string& strText :
       {"<r><!--" + strFalse + "--></r>", "<r><![CDATA[" + strFalse + "]]></r>",
        "<r x='" + strFalse + "'/>", "<r x=\"" + strFalse + "\"></r>"}) {
    TiXmlDocument doc;
    EXPECT_EQ(0, ParseXml(doc, strText.c_str())) << strText.substr(0, 16);
    EXPECT_FALSE(doc.Error()) << strText.substr(0, 16);
    EXPECT_EQ(1, Depth(doc)) << strText.substr(0, 16);
  }
}

TEST(ParseXml, IsNotFooledIntoMissingElements) {
  const std::string strDeep = Repeat("<a>", 33);
  for (const char* pszHead :
       {"<r><!-- x -->", "<r><![CDATA[x]]>", "<r x='\"'>", "<r x=\"'\">", "<r x=y>",
        "<?xml encoding='UTF-8'?><r x='\xC3' '>", "<?xml encoding='&#85;TF-8'?>\xEF\xBB\xBF",
        "<?xml x?>\xEF\xBF\xBE", "<r><!x>", "<r><?xml y>", "<r>text"})
    EXPECT_EQ(-1, Parse(pszHead + strDeep)) << pszHead;
  for (const char* pszTag : {"<a >", "<a x='1'>", "<_>", "<a\n>", "<\x7F>", "<\x80>", "<a x=1 >",
                             "<a x='>'>", "<b/><a>"})
    EXPECT_EQ(-1, Parse(Repeat(pszTag, 33))) << pszTag;
}

TEST(ParseXml, IsNotFooledByTagsThatSeemEmpty) {
  for (const char* pszTag :
       {"<a b='/>'>", "<a b=\"/>\">", "<a b='\"' c='/>' d='\"'>", "<a b='/>' c=\"\">",
        "<a b=\"'\" c='/>\"'>", "<a b=\"/\">", "<a b=\"</a\">"}) {
    EXPECT_EQ(0, Parse(Repeat(pszTag, 32))) << pszTag;
    EXPECT_EQ(-1, Parse(Repeat(pszTag, 33))) << pszTag;
  }
}

TEST(ParseXml, RefusesWithoutMemory) {
  const CNoMemory noMemory;
  EXPECT_EQ(-1, Parse("<a/>"));
}

TEST(ParseXml, RefusesAHugeDepth) { EXPECT_EQ(-1, Parse(Repeat("<a>", 300000))); }

TEST(ParseXml, StopsWhereTheParserStops) {
  // The error comes before the depth: nothing deep is ever built.
  for (const char* pszStop : {"</b>", "<1>", "<a", "x='1'></a><a =>"}) {
    TiXmlDocument doc;
    const std::string strText = "<a>" + std::string(pszStop) + Repeat("<a>", 20);
    EXPECT_EQ(0, ParseXml(doc, strText.c_str())) << pszStop;
    EXPECT_TRUE(doc.Error()) << pszStop;
  }
}

TEST(ParseXml, SurvivesTextsCutInsideACharacter) {
  for (const char* pszHead : {"\xEF\xBB\xBF", "<?xml version='1.0'?>"})
    for (const char* pszPlace : {"", "<", "<a", "<a>", "<a>t", "<a x", "<a x='", "<a x=", "<!--",
                                 "<![CDATA[", "</", "<?xml ", "<?xml encoding='"})
      for (const char* pszCut :
           {"\xC3", "\xEF", "\xEF\xBB", "\xF0", "\xF0\x9F", "\xF0\x9F\x98", "&", "&#", "&#x"}) {
        TiXmlDocument doc;
        EXPECT_EQ(0, ParseXml(doc, (std::string(pszHead) + pszPlace + pszCut).c_str()));
        EXPECT_LE(Depth(doc), 1);
      }
}

// The parts of the random texts.
const char* const kHeads[] = {
    "",
    "\xEF\xBB\xBF",
    "<?xml version='1.0'?>",
    "<?xml version='1.0' encoding='gbk'?>",
    "<?xml encoding=\"utf-8\" ?>",
    "<?xml encoding='U&#84;F8'?>",
};
const char* const kNesting[] = {"<a>", "<b x='1'>", "<a y=\"t\" >"};
const char* const kTokens[] = {
    "<a>",
    "</a>",
    "<b>",
    "</b>",
    "</a >",
    "<a ",
    "<a",
    "<_>",
    "<\xC4>",
    "<\xEF\xBB\xBF",
    "<A x='1'>",
    "x=\"",
    "x='",
    "x=1",
    "y",
    "=",
    "'",
    "\"",
    " ",
    ">",
    "/>",
    "/",
    "<",
    "<!",
    "<!--",
    "-->",
    "<![CDATA[",
    "]]>",
    "<?xml ",
    "<?xml",
    "?>",
    "encoding",
    "version=",
    "encoding='UTF-8'",
    "encoding='gbk'",
    "\xEF\xBB\xBF",
    "\xEF\xBF\xBE",
    "\xEF",
    "\xC3",
    "\xE4",
    "\xF0",
    "\xF5",
    "\x80",
    "&",
    "&#",
    "&#x",
    "&#x26;",
    "&amp;",
    ";",
    "t",
    "\n",
};

// One random text of tags and fragments. Half of the tags only nest, so that many texts are deep.
std::string RandomText(std::mt19937& random) {
  const auto Below = [&](size_t n) {
    return std::uniform_int_distribution<size_t>(0, n - 1)(random);
  };
  std::string strText = kHeads[Below(std::size(kHeads))];
  const char* const pszNesting = kNesting[Below(std::size(kNesting))];
  const size_t nNestingPercent = Below(100);
  for (size_t n = Below(120); n > 0; --n)
    strText += Below(100) < nNestingPercent ? pszNesting : kTokens[Below(std::size(kTokens))];
  return strText;
}

TEST(ParseXml, JudgesRandomTextsAsTheParserBuildsThem) {
  int nDeep = 0;
  int nErrorFree = 0;
  for (const unsigned uiSeed : {1u, 2u, 3u, 4u}) {
    std::mt19937 random(uiSeed);
    for (int i = 0; i < 15000; ++i) {
      const std::string strText = RandomText(random);
      TiXmlDocument doc;
      const int nRet = ParseXml(doc, strText.c_str());
      ASSERT_LE(Depth(doc), kXmlDepthMax) << strText;
      // What the parser would have built from it, on this thread's large stack.
      TiXmlDocument free;
      free.Parse((strText + std::string(8, '\0')).c_str());
      if (nRet == 0) {
        ASSERT_EQ(Depth(free), Depth(doc)) << strText;
      } else {
        ASSERT_TRUE(free.Error() || Depth(free) > kXmlDepthMax)
            << "refused for nothing: " << strText;
      }
      nDeep += static_cast<int>(Depth(free) > kXmlDepthMax);
      nErrorFree += static_cast<int>(!free.Error());
    }
  }
  // Both kinds of text occur often.
  EXPECT_GT(nDeep, 3000);
  EXPECT_GT(nErrorFree, 3000);
}

// The outermost level as parsed: each node's kind and value, each tag's attributes.
std::string Outside(const TiXmlDocument& doc) {
  std::string strAll;
  for (const TiXmlNode* p = doc.FirstChild(); p != nullptr; p = p->NextSibling()) {
    strAll += std::to_string(p->Type()) + p->Value();
    if (p->ToElement() == nullptr) continue;
    for (const TiXmlAttribute* pAttr = p->ToElement()->FirstAttribute(); pAttr != nullptr;
         pAttr = pAttr->Next())
      strAll += std::string(" ") + pAttr->Name() + "=" + pAttr->Value();
  }
  return strAll;
}

// An error inside an element stops the parser; without the inside, what follows is parsed.
TEST(OutermostXml, KeepsWhatTheParserMakesOfTheOutermostLevel) {
  int nInside = 0;
  std::mt19937 random(5);
  for (int i = 0; i < 15000; ++i) {
    const std::string strText = RandomText(random);
    TiXmlDocument whole;
    whole.Parse((strText + std::string(8, '\0')).c_str());
    const std::string strOutermost = OutermostXml(strText.c_str());
    TiXmlDocument outermost;
    outermost.Parse((strOutermost + std::string(8, '\0')).c_str());
    const std::string strSame = Outside(outermost).substr(0, Outside(whole).size());
    ASSERT_EQ(Outside(whole), strSame) << strText << "\n" << strOutermost;
    ASSERT_TRUE(whole.Error() || Outside(outermost) == strSame) << strText << "\n" << strOutermost;
    ASSERT_LE(Depth(outermost), 1) << strText << "\n" << strOutermost;
    nInside += static_cast<int>(Depth(whole) > 1);
  }
  EXPECT_GT(nInside, 3000);  // the texts are worth the name
}

}  // namespace
