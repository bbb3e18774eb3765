#include "CBB/Util/Logger.h"

#include <dirent.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "CBB/Util/DebugPrint.h"
#include "tests/unit/Util/Printed.h"

namespace {

using testing::MatchesRegex;

constexpr uint32_t kLinesPerFile = 120000;

Logger& Log() { return Logger::Instance(); }

// Every test works in its own directory, which is removed afterwards.
class LoggerTest : public testing::Test {
 protected:
  void SetUp() override {
    char szTemplate[] = "/tmp/webctrl_log_XXXXXX";
    ASSERT_NE(nullptr, mkdtemp(szTemplate));
    m_strRoot = szTemplate;
    m_strDir = m_strRoot + "/log/";
    ASSERT_EQ(0, mkdir(m_strDir.c_str(), 0755));
  }
  void TearDown() override {
    // Leaves the logger without a file, as the next test expects.
    Printed([&] { Log().init("x", (m_strRoot + "/none/").c_str()); });
    ASSERT_EQ(0, system(("rm -rf " + m_strRoot).c_str()));
  }

  std::set<std::string> Names() const {
    std::set<std::string> names;
    DIR* const pDir = opendir(m_strDir.c_str());
    if (pDir == nullptr) return names;
    while (const dirent* pEntry = readdir(pDir))
      if (pEntry->d_name[0] != '.') names.insert(pEntry->d_name);
    closedir(pDir);
    return names;
  }
  void Touch(const std::string& strName) const { std::ofstream(m_strDir + strName) << "old"; }
  void TouchMany(int nCount) const {
    for (int i = 0; i < nCount; ++i) {
      char szName[32];
      snprintf(szName, sizeof(szName), "web_20200101_0000%02d", i);
      Touch(szName);
    }
  }
  std::string Read(const std::string& strName) const {
    std::ostringstream text;
    text << std::ifstream(m_strDir + strName).rdbuf();
    return text.str();
  }
  // Writes lines until the next one starts a new file.
  static void FillFile() {
    while (Log().LineCount() % kLinesPerFile) Log().log("%s", "filler\n");
  }

  std::string m_strRoot;
  std::string m_strDir;
};

std::string ErrorLine(const std::string& strCaller, const std::string& strMessage) {
  return "\033\\[31m\033\\[1m\\[Logger          \\]<ERROR@" + strCaller +
         ", L[0-9]+>:" + strMessage + "\n\033\\[0m";
}

// First in the file: sees the logger in its initial state.
TEST(Logger, WithoutInitPrintsAnErrorAndCountsNothing) {
  EXPECT_THAT(Printed([] { Log().log("text %d\n", 1); }),
              MatchesRegex(ErrorLine("log", "CLogger not init\\.")));
  EXPECT_EQ(0u, Log().LineCount());
}

TEST(Logger, WithoutInitClearsNothing) {
  int nRet = 0;
  // The shell would complain about a mkdir without a name.
  testing::internal::CaptureStderr();
  EXPECT_THAT(
      Printed([&] { nRet = Log().clearLog(0); }),
      MatchesRegex(ErrorLine("clearLog", "open dir:\\[\\] error:No such file or directory\\.")));
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
  EXPECT_EQ(-1, nRet);
}

// All seconds from one on to now as the C library writes them, as a regular expression.
std::string Times(const char* pszFormat, time_t from) {
  std::string strTimes;
  for (time_t at = from; at <= time(nullptr); ++at) {
    tm parts{};
    char szText[32];
    strftime(szText, sizeof(szText), pszFormat, localtime_r(&at, &parts));
    strTimes += (strTimes.empty() ? "(" : "|") + std::string(szText);
  }
  return strTimes + ")";
}

TEST_F(LoggerTest, InitOpensAFileNamedByPrefixAndTime) {
  const time_t before = time(nullptr);
  ASSERT_EQ(0, Log().init("web", m_strDir.c_str()));
  ASSERT_EQ(1u, Names().size());
  EXPECT_THAT(*Names().begin(), MatchesRegex("web_" + Times("%Y%m%d_%H%M%S", before)));
}

TEST_F(LoggerTest, JoinsADirectoryWithoutSlash) {
  ASSERT_EQ(0, Log().init("web", m_strDir.substr(0, m_strDir.size() - 1).c_str()));
  EXPECT_EQ(1u, Names().size());
}

TEST_F(LoggerTest, TakesTheLogFolderWhereItStandsWhenNoneIsGiven) {
  char szOld[4096];
  ASSERT_NE(nullptr, getcwd(szOld, sizeof(szOld)));
  ASSERT_EQ(0, chdir(m_strRoot.c_str()));
  EXPECT_EQ(0, Log().init("web", nullptr));
  ASSERT_EQ(0, chdir(szOld));
  EXPECT_EQ(1u, Names().size());
}

TEST_F(LoggerTest, InitReportsAFileThatCannotBeOpened) {
  const std::string strBad = m_strRoot + "/none/";
  int nRet = 0;
  EXPECT_THAT(Printed([&] { nRet = Log().init("web", strBad.c_str()); }),
              MatchesRegex(ErrorLine("init", "Can't open log file:" + strBad + "web_[0-9_]+\\.")));
  EXPECT_EQ(-1, nRet);
  EXPECT_THAT(Printed([] { Log().log("x"); }),
              MatchesRegex(ErrorLine("log", "CLogger not init\\.")));
}

TEST_F(LoggerTest, InitRefusesNamesThatDoNotFit) {
  const std::string strLong(300, 'd');
  for (const auto& [strPrefix, strDir] : {std::pair<std::string, std::string>{"web", "/" + strLong},
                                          {std::string(64, 'p'), m_strDir}}) {
    int nRet = 0;
    EXPECT_THAT(
        Printed([&, &p = strPrefix, &d = strDir] { nRet = Log().init(p.c_str(), d.c_str()); }),
        MatchesRegex(ErrorLine("init", "Can't open log file:.*\\.")));
    EXPECT_EQ(-1, nRet);
  }
  EXPECT_TRUE(Names().empty());
}

TEST_F(LoggerTest, HeadsEachLineWithNumberAndTime) {
  ASSERT_EQ(0, Log().init("web", m_strDir.c_str()));
  FillFile();
  for (const std::string& strName : Names()) unlink((m_strDir + strName).c_str());
  const uint32_t uiFirst = Log().LineCount();
  const time_t before = time(nullptr);
  Log().log("one %s\n", "text");
  Log().log("no line end");
  EXPECT_EQ(uiFirst + 2, Log().LineCount());
  ASSERT_EQ(1u, Names().size());
  const std::string strTime = " \\[" + Times("%Y-%m-%d %H:%M:%S", before) + "\\]:";
  EXPECT_THAT(Read(*Names().begin()),
              MatchesRegex("<L" + std::to_string(uiFirst) + ">" + strTime + "one text\n<L" +
                           std::to_string(uiFirst + 1) + ">" + strTime + "no line end"));
}

TEST_F(LoggerTest, WritesLinesOfAnyLengthWhole) {
  ASSERT_EQ(0, Log().init("web", m_strDir.c_str()));
  FillFile();
  for (const std::string& strName : Names()) unlink((m_strDir + strName).c_str());
  std::string strPattern;
  for (const size_t nLen : {2000, 2047, 2048, 5000, 100000}) {
    const std::string strLong(nLen, static_cast<char>('a' + nLen % 7));
    Log().log("%s\n", strLong.c_str());
    strPattern += "<L[0-9]+> \\[[0-9: -]+\\]:" + strLong + "\n";
  }
  ASSERT_EQ(1u, Names().size());
  EXPECT_TRUE(testing::Value(Read(*Names().begin()), MatchesRegex(strPattern)));
}

TEST_F(LoggerTest, FirstLineOfAFileClearsOldFiles) {
  ASSERT_EQ(0, Log().init("web", m_strDir.c_str()));
  FillFile();
  TouchMany(31);
  Printed([] { Log().log("starts a file\n"); });
  // 31 old ones and init's, minus the two smallest names, plus the new one, which has the same name
  // as init's when no second has passed.
  const std::set<std::string> names = Names();
  EXPECT_EQ(0u, names.count("web_20200101_000000"));
  EXPECT_EQ(0u, names.count("web_20200101_000001"));
  EXPECT_EQ(1u, names.count("web_20200101_000002"));
  Log().log("goes on\n");
  TouchMany(2);
  Log().log("clears nothing\n");
  EXPECT_EQ(1u, Names().count("web_20200101_000000"));
}

TEST_F(LoggerTest, ReportsANewFileThatCannotBeOpened) {
  ASSERT_EQ(0, Log().init("web", m_strDir.c_str()));
  FillFile();
  ASSERT_EQ(0, system(("rm -rf " + m_strDir + " && touch " + m_strRoot + "/log").c_str()));
  const uint32_t uiBefore = Log().LineCount();
  const std::string strOut = Printed([] { Log().log("lost\n"); });
  EXPECT_THAT(strOut,
              MatchesRegex(ErrorLine("clearLog",
                                     "open dir:\\[" + m_strDir + "\\] error:Not a directory\\.") +
                           ErrorLine("log", "Can't open log file:" + m_strDir + "web_[0-9_]+\\.")));
  EXPECT_EQ(uiBefore, Log().LineCount());
}

TEST_F(LoggerTest, ClearLogKeepsTheNewest) {
  ASSERT_EQ(0, Log().init("web", m_strDir.c_str()));
  for (const std::string& strName : Names()) unlink((m_strDir + strName).c_str());
  TouchMany(32);
  Touch("other_20200101_000000");
  EXPECT_EQ("\033[32m\033[1mLogger::clearLog, [rm -rf " + m_strDir +
                "web_20200101_000000]\n\033[0m\033[32m\033[1mLogger::clearLog, [rm -rf " +
                m_strDir + "web_20200101_000001]\n\033[0m",
            Printed([] { EXPECT_EQ(0, Log().clearLog(30)); }));
  EXPECT_EQ(31u, Names().size());
  EXPECT_EQ(0u, Names().count("web_20200101_000001"));
  EXPECT_EQ(1u, Names().count("web_20200101_000002"));
  EXPECT_EQ("", Printed([] { EXPECT_EQ(0, Log().clearLog(30)); }));
}

TEST_F(LoggerTest, ClearLogTakesANegativeCountAsNone) {
  ASSERT_EQ(0, Log().init("web", m_strDir.c_str()));
  TouchMany(3);
  Touch("other");
  SetDebugLevel(2);
  EXPECT_EQ("", Printed([] { EXPECT_EQ(0, Log().clearLog(-5)); })) << "told at the lowest level";
  SetDebugLevel(1);
  EXPECT_EQ(std::set<std::string>{"other"}, Names());
}

TEST_F(LoggerTest, ClearLogCreatesAMissingDirectory) {
  ASSERT_EQ(0, Log().init("web", m_strDir.c_str()));
  ASSERT_EQ(0, system(("rm -rf " + m_strDir).c_str()));
  EXPECT_EQ("", Printed([] { EXPECT_EQ(0, Log().clearLog(30)); }));
  struct stat info {};
  EXPECT_EQ(0, stat(m_strDir.c_str(), &info));
}

TEST_F(LoggerTest, ClearLogCreatesADirectoryOfOneLetter) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(m_strRoot);
  std::filesystem::create_directory("d");
  EXPECT_EQ(0, Log().init("web", "d"));
  std::filesystem::remove_all("d");
  EXPECT_EQ("", Printed([] { EXPECT_EQ(0, Log().clearLog(30)); }));
  EXPECT_TRUE(std::filesystem::is_directory("d"));
  std::filesystem::current_path(before);
}

TEST_F(LoggerTest, ClearLogReportsADirectoryThatCannotBeCreated) {
  ASSERT_EQ(0, Log().init("web", m_strDir.c_str()));
  ASSERT_EQ(0, system(("rm -rf " + m_strRoot).c_str()));
  testing::internal::CaptureStderr();
  EXPECT_THAT(Printed([] { EXPECT_EQ(-1, Log().clearLog(30)); }),
              MatchesRegex(ErrorLine("clearLog", "reopen dir:\\[" + m_strDir +
                                                     "\\] error:No such file or directory\\.")));
  EXPECT_NE("", testing::internal::GetCapturedStderr()) << "mkdir says why it failed";
}

// Given without a slash at its end; the files are inside it all the same.
TEST_F(LoggerTest, ClearLogShowsTheDirectoryAsItWasGiven) {
  const std::string strGiven = m_strDir.substr(0, m_strDir.size() - 1);
  ASSERT_EQ(0, Log().init("web", strGiven.c_str()));
  for (const std::string& strName : Names()) unlink((m_strDir + strName).c_str());
  TouchMany(1);
  EXPECT_EQ(
      "\033[32m\033[1mLogger::clearLog, [rm -rf " + m_strDir + "web_20200101_000000]\n\033[0m",
      Printed([] { EXPECT_EQ(0, Log().clearLog(0)); }));
  ASSERT_EQ(0, system(("rm -rf " + m_strDir + " && touch " + m_strRoot + "/log").c_str()));
  EXPECT_THAT(Printed([] { EXPECT_EQ(-1, Log().clearLog(30)); }),
              MatchesRegex(ErrorLine("clearLog",
                                     "open dir:\\[" + strGiven + "\\] error:Not a directory\\.")));
}

TEST_F(LoggerTest, ClearLogNeverRunsAFileNameAsACommand) {
  ASSERT_EQ(0, Log().init("web", m_strDir.c_str()));
  for (const std::string& strName : Names()) unlink((m_strDir + strName).c_str());
  Touch("keep");
  for (const char* pszName : {"web_;rm keep", "web_ keep", "web_$(rm keep)", "web_'; rm keep; '",
                              "web_`rm keep`", "web_*", "web_\nrm keep"})
    Touch(pszName);
  char szOld[4096];
  ASSERT_NE(nullptr, getcwd(szOld, sizeof(szOld)));
  ASSERT_EQ(0, chdir(m_strDir.c_str()));
  Printed([] { EXPECT_EQ(0, Log().clearLog(0)); });
  ASSERT_EQ(0, chdir(szOld));
  EXPECT_EQ(std::set<std::string>{"keep"}, Names());
}

}  // namespace
