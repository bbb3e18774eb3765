#include "CBB/Http/LibraryFiles.h"

#include <gtest/gtest.h>
#include <mongoose.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "tests/unit/Http/WebRoot.h"

namespace {

constexpr char kPage[] = "a page";

class LibraryFilesTest : public testing::Test {
 protected:
  LibraryFilesTest() {
    m_root.Write("root/page.css", kPage);
    m_root.Write("root/page.shtml", kPage);
    m_root.Write("outside/secret.css", "a secret");
    BeginFiles(m_strRoot.c_str());
  }

  CWebRoot m_root;
  const std::string m_strRoot = m_root.Path("root");
  const std::string m_strFile = m_root.Path("root/page.css");
  const std::string m_strPage = m_root.Path("root/page.shtml");
};

TEST_F(LibraryFilesTest, KeepsWhatItWasToldOfAFileUntilTheNextRequest) {
  cs_stat_t told{};
  ASSERT_EQ(0, mg_stat(m_strFile.c_str(), &told));
  std::filesystem::remove(m_strFile);
  EXPECT_EQ(0, mg_stat(m_strFile.c_str(), &told));
  EXPECT_EQ(static_cast<off_t>(strlen(kPage)), told.st_size);
  BeginFiles(m_strRoot.c_str());
  EXPECT_EQ(-1, mg_stat(m_strFile.c_str(), &told));
  EXPECT_EQ(-1, mg_stat("", &told));
}

TEST_F(LibraryFilesTest, RemembersTheFirstFileThatWasOpened) {
  EXPECT_STREQ("", OpenedFile().pszPath);
  EXPECT_EQ(nullptr, mg_fopen(m_root.Path("outside/secret.css").c_str(), "rb"));
  EXPECT_STREQ("", OpenedFile().pszPath);
  for (const std::string& strPath : {m_strFile, m_strPage}) fclose(mg_fopen(strPath.c_str(), "rb"));
  EXPECT_EQ(m_strFile, OpenedFile().pszPath);
  EXPECT_EQ(static_cast<off_t>(strlen(kPage)), OpenedFile().stat.st_size);
  BeginFiles(m_strRoot.c_str());
  EXPECT_STREQ("", OpenedFile().pszPath);
}

TEST_F(LibraryFilesTest, ReadsPagesForTheLibraryAndNoOtherFile) {
  char szText[32] = "";
  FILE* const pPage = mg_fopen(m_strPage.c_str(), "rb");
  EXPECT_EQ(strlen(kPage), mg_fread(szText, 1, sizeof(szText), pPage));
  EXPECT_STREQ(kPage, szText);
  fclose(pPage);
  BeginFiles(m_strRoot.c_str());
  FILE* const pFile = mg_fopen(m_strFile.c_str(), "rb");
  EXPECT_EQ(0U, mg_fread(szText, 1, sizeof(szText), pFile));
  fclose(pFile);
}

TEST_F(LibraryFilesTest, GivesAnEmptyTextForAnIncludeThatMustNotBeOpened) {
  FILE* const pPage = mg_fopen(m_strPage.c_str(), "rb");
  FILE* const pInclude = mg_fopen(m_root.Path("outside/secret.css").c_str(), "rb");
  ASSERT_NE(nullptr, pInclude);
  char cFirst = 0;
  EXPECT_EQ(0U, mg_fread(&cFirst, 1, 1, pInclude));
  fclose(pInclude);
  fclose(pPage);
}

TEST_F(LibraryFilesTest, WritesNothing) {
  FILE* const pFile = mg_fopen(m_strFile.c_str(), "w+b");
  ASSERT_NE(nullptr, pFile);
  EXPECT_EQ(0U, mg_fwrite("x", 1, 1, pFile));
  fclose(pFile);
  EXPECT_EQ(strlen(kPage), std::filesystem::file_size(m_strFile));
}

TEST(IsPage, TellsPagesByTheirName) {
  const struct {
    const char* pszPath;
    bool bPage;
  } rows[] = {{"/a.shtml", true}, {"/a.SHTM", true}, {"/a.shtml.css", false},
              {"/a.html", false}, {"/shtml", false}, {"", false}};
  for (const auto& row : rows) EXPECT_EQ(row.bPage, IsPage(row.pszPath)) << row.pszPath;
}

}  // namespace
