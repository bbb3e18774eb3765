#include "CBB/Http/FileCache.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "CBB/Http/LibraryFiles.h"
#include "tests/unit/Http/Clock.h"
#include "tests/unit/Http/WebRoot.h"

namespace {

class FileCacheTest : public testing::Test {
 protected:
  FileCacheTest() { BeginFiles(m_strRoot.c_str()); }

  void Write(const std::string& strName, const std::string& strText) const {
    m_root.Write("root/" + strName, strText);
  }
  void SetTime(const std::string& strName, time_t time) const {
    const timespec times[2] = {{time, 0}, {time, 0}};
    ASSERT_EQ(0, utimensat(AT_FDCWD, m_root.Path("root/" + strName).c_str(), times, 0));
  }
  // Keeps a file under its name, unless bKeep is false.
  std::shared_ptr<const stFile> Add(const std::string& strName, bool bKeep = true) {
    const std::string strPath = m_root.Path("root/" + strName);
    const int nFd = open(strPath.c_str(), O_RDONLY | O_CLOEXEC);
    const auto pFile = m_cache.Add(bKeep ? strName : "", strPath, nFd);
    close(nFd);
    return pFile;
  }
  // The text kept under a name, or "-".
  std::string Kept(const std::string& strName) {
    const auto pFile = m_cache.Find(strName);
    if (pFile == nullptr) return "-";
    return pFile->plain.pText == nullptr ? "lent" : *pFile->plain.pText;
  }

  CWebRoot m_root;
  const std::string m_strRoot = m_root.Path("root");
  CFileCache m_cache;
};

TEST_F(FileCacheTest, KeepsWhatWasRead) {
  Write("a.css", "text");
  EXPECT_EQ("-", Kept("a.css"));
  const auto pFile = Add("a.css");
  ASSERT_NE(nullptr, pFile);
  EXPECT_EQ("text", *pFile->plain.pText);
  EXPECT_EQ(pFile, m_cache.Find("a.css"));
  EXPECT_EQ(nullptr, m_cache.Find("a.cs"));
  EXPECT_EQ(4U, m_cache.Bytes());
}

TEST_F(FileCacheTest, ReadsWithoutKeeping) {
  Write("a.css", "text");
  EXPECT_EQ("text", *Add("a.css", false)->plain.pText);
  EXPECT_EQ("-", Kept("a.css"));
  EXPECT_EQ("-", Kept(""));
  EXPECT_EQ(0U, m_cache.Bytes());
}

TEST_F(FileCacheTest, LooksAgainInTheNextSecond) {
  const struct {
    const char* pszChange;
    void (*pfnChange)(const std::string& strPath);
  } rows[] = {
      {"replaced", [](const std::string& s) { std::filesystem::rename(s + ".new", s); }},
      {"grown", [](const std::string& s) { std::filesystem::resize_file(s, 9); }},
      {"truncated", [](const std::string& s) { std::filesystem::resize_file(s, 1); }},
      {"removed", [](const std::string& s) { std::filesystem::remove(s); }},
      {"touched", [](const std::string& s) { chmod(s.c_str(), 0600); }},
      {"a link to outside",
       [](const std::string& s) {
         std::filesystem::remove(s);
         std::filesystem::create_symlink("../outside/a.css", s);
       }},
  };
  m_root.Write("outside/a.css", "text");
  for (const auto& row : rows) {
    std::filesystem::remove(m_root.Path("root/a.css"));
    Write("a.css", "text");
    Write("a.css.new", "text");
    Add("a.css");
    AwaitNextTimeStamp();
    row.pfnChange(m_root.Path("root/a.css"));
    EXPECT_EQ("text", Kept("a.css")) << row.pszChange;
    NextSecond();
    EXPECT_EQ("-", Kept("a.css")) << row.pszChange;
    EXPECT_EQ(0U, m_cache.Bytes()) << row.pszChange;
  }
}

TEST_F(FileCacheTest, GoesOnKeepingWhatHasNotChanged) {
  Write("a.css", "text");
  Write("a.css.gz", "gz");
  Add("a.css");
  NextSecond();
  EXPECT_EQ("text", Kept("a.css"));
  EXPECT_EQ(6U, m_cache.Bytes());
}

TEST_F(FileCacheTest, TakesThePackedFormBeside) {
  constexpr time_t kTime = 1456790400;
  const struct {
    const char* pszCase;
    time_t plain;
    time_t packed;  // 0: none
    bool bHasPacked;
  } rows[] = {{"none", kTime, 0, false},
              {"as old", kTime, kTime, true},
              {"younger", kTime, kTime + 1, true},
              {"older", kTime, kTime - 1, false}};
  for (const auto& row : rows) {
    Write("a.css", "text");
    SetTime("a.css", row.plain);
    if (row.packed != 0) {
      Write("a.css.gz", "gz");
      SetTime("a.css.gz", row.packed);
    }
    const auto pFile = Add("a.css", false);
    ASSERT_EQ(row.bHasPacked, pFile->bHasPacked) << row.pszCase;
    EXPECT_EQ(row.bHasPacked ? 6U : 4U, pFile->Bytes()) << row.pszCase;
    EXPECT_EQ("\"56d4db80.4.bde64e3e\"", pFile->plain.strTag);
    EXPECT_NE(pFile->plain.strTag, pFile->packed.strTag);
  }
}

TEST_F(FileCacheTest, HoldsNothingOfAPackedFormThatIsOlder) {
  Write("a.css", "text");
  for (const size_t nSize : {kLentFrom - 1, kLentFrom}) {
    Write("a.css.gz", std::string(nSize, 'z'));
    SetTime("a.css.gz", 1);
    EXPECT_EQ(4U, Add("a.css", false)->Bytes()) << nSize;
  }
}

TEST_F(FileCacheTest, NoticesThatAPackedFormComesAndGoes) {
  Write("a.css", "text");
  Add("a.css");
  Write("a.css.gz", "gz");
  NextSecond();
  EXPECT_EQ("-", Kept("a.css"));
  EXPECT_TRUE(Add("a.css")->bHasPacked);
  std::filesystem::remove(m_root.Path("root/a.css.gz"));
  NextSecond();
  EXPECT_EQ("-", Kept("a.css"));
  EXPECT_FALSE(Add("a.css")->bHasPacked);
}

TEST_F(FileCacheTest, KeepsNoPackedFormThatIsOutsideOrTooLarge) {
  Write("a.css", "text");
  m_root.Write("outside/a.gz", "gz");
  m_root.Link("../outside/a.gz", "root/a.css.gz");
  EXPECT_FALSE(Add("a.css", false)->bHasPacked);
  Write("b.css", "text");
  Write("b.css.gz", std::string(kMaxCachedFile + 1, 'x'));
  EXPECT_FALSE(Add("b.css", false)->bHasPacked);
}

TEST_F(FileCacheTest, LendsWhatIsNotSmall) {
  Write("a.css", std::string(kLentFrom - 1, 'x'));
  Write("b.css", std::string(kLentFrom, 'x'));
  EXPECT_EQ(nullptr, Add("a.css")->plain.pLent);
  const auto pLent = Add("b.css")->plain.pLent;
  ASSERT_NE(nullptr, pLent);
  EXPECT_EQ(kLentFrom, pLent->Size());
  EXPECT_EQ(2 * kLentFrom - 1, m_cache.Bytes());
  Write("c.css", "text");
  Write("c.css.gz", std::string(kLentFrom, 'z'));
  EXPECT_NE(nullptr, Add("c.css")->packed.pLent);
}

TEST_F(FileCacheTest, KeepsNoLargeFile) {
  Write("a.css", std::string(kMaxCachedFile, 'x'));
  Write("b.css", std::string(kMaxCachedFile + 1, 'x'));
  EXPECT_EQ(kMaxCachedFile, Add("a.css")->plain.Bytes());
  const auto pLarge = Add("b.css");
  EXPECT_FALSE(pLarge->plain.IsKept());
  EXPECT_EQ(static_cast<off_t>(kMaxCachedFile + 1), pLarge->plain.stat.st_size);
  EXPECT_EQ(nullptr, m_cache.Find("b.css"));
  EXPECT_EQ(kMaxCachedFile, m_cache.Bytes());
}

// A socket may hold lent pages long after the text has gone, and nobody can count them.
TEST_F(FileCacheTest, LendsOnlyWhatItKeeps) {
  Write("a.css", std::string(kLentFrom, 'x'));
  Write("a.css.gz", std::string(kLentFrom, 'z'));
  const auto pFile = Add("a.css", false);
  EXPECT_NE(nullptr, pFile->plain.pText);
  EXPECT_NE(nullptr, pFile->packed.pText);
  Write("b.css", std::string(kMaxCachedFile + 1, 'x'));
  Write("b.css.gz", std::string(kLentFrom, 'z'));
  EXPECT_NE(nullptr, Add("b.css")->packed.pText);
  std::vector<std::shared_ptr<const std::string>> sent;
  for (size_t i = 0; i < kMaxCacheBytes / kLentFrom; ++i) {
    Write(std::to_string(i), std::string(kLentFrom - 1, 'x'));
    sent.push_back(Add(std::to_string(i))->plain.pText);
  }
  EXPECT_NE(nullptr, Add("a.css")->plain.pText);
}

TEST_F(FileCacheTest, LetsNoLentTextGoForAnother) {
  const std::string strLent(kMaxLentBytes / 4, 'x');
  for (const char* pszName : {"a", "b", "c", "d"}) {
    Write(pszName, strLent);
    Add(pszName);
  }
  for (const char* pszName : {"e", "f", "g", "h"}) {
    Write(pszName, std::string(kMaxCachedFile, 'x'));
    EXPECT_NE(nullptr, Add(pszName)->plain.pText);
  }
  for (const char* pszName : {"a", "b", "c", "d"}) EXPECT_EQ("lent", Kept(pszName));
  EXPECT_EQ(nullptr, m_cache.Find("e"));
  EXPECT_EQ(kMaxCacheBytes, m_cache.Bytes());
  AwaitNextTimeStamp();
  Write("a", strLent + "x");
  NextSecond();
  EXPECT_EQ("-", Kept("a"));
  EXPECT_EQ(nullptr, Add("a")->plain.pLent);
  Write("i", strLent);
  EXPECT_NE(nullptr, Add("i")->plain.pLent);
}

// Several clients hold such a text together, so it counts for none of them.
TEST_F(FileCacheTest, GoesOnKeepingWhatIsBeingSent) {
  const std::string strQuarter(kMaxCacheBytes / 4, 'x');
  std::vector<std::shared_ptr<const std::string>> sent;
  for (const char* pszName : {"lent", "lent too", "a"}) {
    Write(pszName, strQuarter);
    sent.push_back(Add(pszName)->plain.pText);
  }
  Write("b", "");
  Write("b.gz", strQuarter);
  sent.push_back(Add("b")->packed.pText);
  for (const char* pszName : {"c", "d"}) {
    Write(pszName, strQuarter);
    EXPECT_NE(nullptr, Add(pszName)->plain.pText);
    EXPECT_EQ(nullptr, m_cache.Find(pszName));
  }
  EXPECT_NE(nullptr, m_cache.Find("a"));
  sent.clear();
  Add("c");
  EXPECT_NE(nullptr, m_cache.Find("c"));
  EXPECT_EQ(nullptr, m_cache.Find("b"));
}

TEST_F(FileCacheTest, LetsTheLongestUnusedGo) {
  const std::string strQuarter(kMaxCacheBytes / 4, 'x');
  for (const char* pszName : {"lent", "lent too", "a", "b"}) {
    Write(pszName, strQuarter);
    Add(pszName);
  }
  EXPECT_EQ(kMaxCacheBytes, m_cache.Bytes());
  EXPECT_NE("-", Kept("a"));
  Write("c", "x");
  Add("c");
  EXPECT_EQ("-", Kept("b"));
  for (const char* pszName : {"lent", "lent too", "a", "c"}) EXPECT_NE("-", Kept(pszName));
  EXPECT_EQ(kMaxCacheBytes * 3 / 4 + 1, m_cache.Bytes());
}

TEST_F(FileCacheTest, KeepsNoMoreFilesThanItHasPlacesFor) {
  for (int i = 0; i < 257; ++i) {
    Write(std::to_string(i), "");
    Add(std::to_string(i));
  }
  EXPECT_EQ("-", Kept("0"));
  EXPECT_EQ("", Kept("1"));
}

TEST_F(FileCacheTest, LeavesNoDescriptorOpen) {
  Write("a.css", "text");
  Write("a.css.gz", "gz");
  const size_t nBefore = OpenDescriptors();
  Add("a.css");
  NextSecond();
  EXPECT_EQ("text", Kept("a.css"));
  EXPECT_EQ(nBefore, OpenDescriptors());
}

TEST_F(FileCacheTest, TellsVersionsOfOneLengthAndDateApart) {
  std::string strBefore;
  for (const char* pszText : {"old!", "new!"}) {
    Write("a.css", pszText);
    SetTime("a.css", 1456790400);
    const std::string strTag = Add("a.css", false)->plain.strTag;
    EXPECT_NE(strBefore, strTag);
    strBefore = strTag;
  }
}

}  // namespace
