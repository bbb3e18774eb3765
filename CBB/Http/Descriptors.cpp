#include "CBB/Http/Descriptors.h"

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

// Standard streams, listener, poll object, lent texts, an exchange, a file about to be sent, the
// newest client.
constexpr int kOtherDescriptors = 12;
constexpr int kFirstClient = 32;

// The lowest number for a client; 0 where no number is too high for select.
int FirstClient() { return DescriptorLimit() > FD_SETSIZE ? kFirstClient : 0; }

void OpenClosedStreams() {
  int nFd = STDIN_FILENO;
  while (nFd >= STDIN_FILENO && nFd <= STDERR_FILENO) nFd = open("/dev/null", O_RDWR);
  if (nFd > STDERR_FILENO) close(nFd);
}

// The mode belongs to the open file, which other processes may share. So a pipe is opened a second
// time where possible, and only this process's writes change. A socket cannot be reopened.
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
  signal(SIGXFSZ, SIG_IGN);
  OpenClosedStreams();
  GuardOutput(STDOUT_FILENO);
  GuardOutput(STDERR_FILENO);
}

int DescriptorLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return INT_MAX;
  return static_cast<int>(std::min<rlim_t>(limit.rlim_cur, INT_MAX));
}

void RaiseDescriptorLimit(int nWanted) {
  rlimit limit{};
  const auto wanted = static_cast<rlim_t>(nWanted);
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= wanted) return;
  limit.rlim_cur = std::min(limit.rlim_max, wanted);
  setrlimit(RLIMIT_NOFILE, &limit);
}

int MoveUp(int nFd) {
  const int nFirst = FirstClient();
  if (nFd < 0 || nFd >= nFirst) return nFd;
  const int nMoved = fcntl(nFd, F_DUPFD_CLOEXEC, nFirst);
  close(nFd);
  return nMoved;
}

int Duplicate(int nFd) { return fcntl(nFd, F_DUPFD_CLOEXEC, FirstClient()); }

int ClientDescriptors() {
  return std::max(DescriptorLimit() - std::max(FirstClient(), kOtherDescriptors), 1);
}

COwnedFd::~COwnedFd() {
  if (m_nFd >= 0) close(m_nFd);
}
