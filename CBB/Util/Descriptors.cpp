#include "CBB/Util/Descriptors.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <csignal>
#include <cstdio>

namespace {

void OpenClosedStreams() {
  int nFd = STDIN_FILENO;
  while (nFd >= STDIN_FILENO && nFd <= STDERR_FILENO) nFd = open("/dev/null", O_RDWR);
  if (nFd > STDERR_FILENO) close(nFd);
}

// The mode belongs to the open file, which other processes may share: a pipe is opened a second
// time where that is allowed, so that only this process's writes change. A socket cannot be.
void StopWaitingForReader(int nFd) {
  char szPath[32];
  snprintf(szPath, sizeof(szPath), "/proc/self/fd/%d", nFd);
  const int nOwn = open(szPath, O_WRONLY | O_NONBLOCK | O_CLOEXEC);
  if (nOwn < 0) {
    fcntl(nFd, F_SETFL, fcntl(nFd, F_GETFL) | O_NONBLOCK);
    return;
  }
  dup2(nOwn, nFd);
  close(nOwn);
}

void GuardOutput(int nFd) {
  struct stat st {};
  if (fstat(nFd, &st) != 0) return;
  if (S_ISFIFO(st.st_mode) || S_ISSOCK(st.st_mode)) StopWaitingForReader(nFd);
}

}  // namespace

void GuardStdStreams() {
  signal(SIGPIPE, SIG_IGN);
  OpenClosedStreams();
  GuardOutput(STDOUT_FILENO);
  GuardOutput(STDERR_FILENO);
}

void CapDescriptors() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur <= FD_SETSIZE) return;
  limit.rlim_cur = FD_SETSIZE;
  setrlimit(RLIMIT_NOFILE, &limit);
}

int DescriptorLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return INT_MAX;
  return static_cast<int>(std::min<rlim_t>(limit.rlim_cur, INT_MAX));
}
