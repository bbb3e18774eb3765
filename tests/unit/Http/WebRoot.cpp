#include "tests/unit/Http/WebRoot.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>

#include "CBB/Http/Files.h"

namespace {

mg_serve_http_opts g_opts;

timespec StampOfChange(int nFd) {
  struct stat st {};
  EXPECT_EQ(0, fchmod(nFd, 0600));
  EXPECT_EQ(0, fstat(nFd, &st));
  return st.st_ctim;
}

}  // namespace

CWebRoot::CWebRoot() {
  EXPECT_NE(nullptr, mkdtemp(m_szTop));
  for (const char* pszFolder : {"root", "root/sub", "root2", "outside"}) {
    std::filesystem::create_directory(Path(pszFolder));
  }
  ServeFrom("root");
}

CWebRoot::~CWebRoot() { std::filesystem::remove_all(m_szTop); }

void CWebRoot::Write(const std::string& strName, const std::string& strText) const {
  std::ofstream(Path(strName)) << strText;
}

void CWebRoot::Link(const std::string& strTarget, const std::string& strName) const {
  std::filesystem::create_symlink(strTarget, Path(strName));
}

void CWebRoot::ServeFrom(const std::string& strName) {
  m_strRoot = Path(strName);
  g_opts.document_root = m_strRoot.c_str();
}

void CWebRoot::Serve(mg_connection* pConn, int nEvent, void* pData) {
  if (nEvent == MG_EV_HTTP_REQUEST) ServeFile(pConn, static_cast<http_message*>(pData), g_opts);
}

void AwaitNextTimeStamp() {
  const int nFd = open("/tmp", O_TMPFILE | O_RDWR, 0600);
  const timespec before = StampOfChange(nFd);
  for (timespec now = before; now.tv_sec == before.tv_sec && now.tv_nsec == before.tv_nsec;) {
    now = StampOfChange(nFd);
  }
  close(nFd);
}

size_t OpenDescriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return static_cast<size_t>(std::distance(begin(all), end(all)));
}
