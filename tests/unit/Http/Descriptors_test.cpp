#include "CBB/Http/Descriptors.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <functional>
#include <string>

namespace {

constexpr int kStreams[] = {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO};

// Runs a check in its own process, whose streams it may break. Returns its result, or the negative
// number of the signal that ended it.
int InChild(const std::function<int()>& fn) {
  const pid_t nPid = fork();
  if (nPid == 0) _exit(fn());
  int nStatus = 0;
  waitpid(nPid, &nStatus, 0);
  return WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -WTERMSIG(nStatus);
}

bool IsNull(int nFd) {
  struct stat st {};
  struct stat null {};
  return fstat(nFd, &st) == 0 && stat("/dev/null", &null) == 0 && st.st_rdev == null.st_rdev;
}

// Writes far more than any pipe or socket holds until a write fails, and returns the reason.
int WriteUntilRefused(int nFd) {
  const std::string strText(4096, 'x');
  for (int i = 0; i < 4096; ++i) {
    if (write(nFd, strText.data(), strText.size()) < 0) return errno;
  }
  return 0;
}

TEST(GuardStdStreams, OpensClosedStreamsOnTheNullDevice) {
  for (const int nClosed : kStreams) {
    EXPECT_EQ(0, InChild([nClosed] {
                close(nClosed);
                GuardStdStreams();
                if (!IsNull(nClosed)) return 1;
                return open("/dev/null", O_RDONLY) > STDERR_FILENO ? 0 : 2;
              }))
        << nClosed;
  }
  EXPECT_EQ(0, InChild([] {
              for (const int nFd : kStreams) close(nFd);
              GuardStdStreams();
              for (const int nFd : kStreams) {
                if (!IsNull(nFd)) return 1;
              }
              return 0;
            }));
}

TEST(GuardStdStreams, LeavesNoDescriptorOpen) {
  int fds[2];
  ASSERT_EQ(0, pipe(fds));
  EXPECT_EQ(0, InChild([&fds] {
              dup2(fds[1], STDOUT_FILENO);
              const int nNext = dup(STDIN_FILENO);
              close(nNext);
              GuardStdStreams();
              return dup(STDIN_FILENO) - nNext;
            }));
  close(fds[0]);
  close(fds[1]);
}

TEST(GuardStdStreams, LosesTextInAFullPipe) {
  for (const int nStream : {STDOUT_FILENO, STDERR_FILENO}) {
    int fds[2];
    ASSERT_EQ(0, pipe(fds));
    EXPECT_EQ(EAGAIN, InChild([nStream, &fds] {
                dup2(fds[1], nStream);
                GuardStdStreams();
                return WriteUntilRefused(nStream);
              }));
    EXPECT_EQ(0, fcntl(fds[1], F_GETFL) & O_NONBLOCK) << "the pipe's other users are disturbed";
    close(fds[0]);
    close(fds[1]);
  }
}

// Another user's pipe cannot be reopened.
TEST(GuardStdStreams, LosesTextInAFullPipeThatItMayNotOpen) {
  if (InChild([] { return setuid(65534); }) != 0) GTEST_SKIP() << "may not become another user";
  int fds[2];
  ASSERT_EQ(0, pipe(fds));
  EXPECT_EQ(EAGAIN, InChild([&fds] {
              dup2(fds[1], STDOUT_FILENO);
              if (setuid(65534) != 0) return 1;
              GuardStdStreams();
              return WriteUntilRefused(STDOUT_FILENO);
            }));
  close(fds[0]);
  close(fds[1]);
}

TEST(GuardStdStreams, LosesTextInAFullSocket) {
  int fds[2];
  ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM, 0, fds));
  EXPECT_EQ(EAGAIN, InChild([&fds] {
              dup2(fds[1], STDOUT_FILENO);
              GuardStdStreams();
              return WriteUntilRefused(STDOUT_FILENO);
            }));
  close(fds[0]);
  close(fds[1]);
}

TEST(GuardStdStreams, OutlivesAReaderThatHasGone) {
  int fds[2];
  ASSERT_EQ(0, pipe(fds));
  close(fds[0]);
  EXPECT_EQ(EPIPE, InChild([&fds] {
              signal(SIGPIPE, SIG_DFL);
              dup2(fds[1], STDOUT_FILENO);
              GuardStdStreams();
              return WriteUntilRefused(STDOUT_FILENO);
            }));
  close(fds[1]);
}

TEST(GuardStdStreams, OutlivesAFileThatMayNotGrow) {
  EXPECT_EQ(EFBIG, InChild([] {
              signal(SIGXFSZ, SIG_DFL);
              const rlimit limit = {8192, 8192};
              setrlimit(RLIMIT_FSIZE, &limit);
              dup2(open("/tmp", O_TMPFILE | O_WRONLY, 0600), STDOUT_FILENO);
              GuardStdStreams();
              return WriteUntilRefused(STDOUT_FILENO);
            }));
}

TEST(GuardStdStreams, LeavesFilesAlone) {
  EXPECT_EQ(0, InChild([] {
              dup2(open("/tmp", O_TMPFILE | O_WRONLY, 0600), STDOUT_FILENO);
              const int nBefore = fcntl(STDOUT_FILENO, F_GETFL);
              GuardStdStreams();
              return fcntl(STDOUT_FILENO, F_GETFL) - nBefore;
            }));
}

TEST(RaiseDescriptorLimit, RaisesAsFarAsItMay) {
  const struct {
    rlim_t nBefore;
    rlim_t nMost;
    int nWanted;
    int nAfter;
  } rows[] = {{64, 200, 128, 128}, {64, 200, 200, 200}, {64, 200, 1000, 200},
              {64, 200, 64, 64},   {128, 200, 64, 128}, {200, 200, 300, 200}};
  for (const auto& row : rows) {
    EXPECT_EQ(row.nAfter, InChild([&row] {
                const rlimit limit = {row.nBefore, row.nMost};
                if (setrlimit(RLIMIT_NOFILE, &limit) != 0) return -1;
                RaiseDescriptorLimit(row.nWanted);
                return DescriptorLimit();
              }))
        << row.nBefore << " of " << row.nMost << ", wanted " << row.nWanted;
  }
}

// Sets the limit of the child process; false when that is not allowed.
bool SetLimit(int nDescriptors) {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = static_cast<rlim_t>(nDescriptors);
  return setrlimit(RLIMIT_NOFILE, &limit) == 0;
}

TEST(ClientDescriptors, AreWhatTheServiceLeaves) {
  const struct {
    int nLimit;
    int nClients;
  } rows[] = {{1, 1}, {12, 1}, {13, 1}, {14, 2}, {1024, 1012}, {1025, 993}, {2100, 2068}};
  for (const auto& row : rows) {
    EXPECT_EQ(0, InChild([&row] {
                if (!SetLimit(row.nLimit)) return 2;
                return ClientDescriptors() == row.nClients ? 0 : 1;
              }))
        << row.nLimit;
  }
}

// Only where some number is too high for select.
TEST(MoveUp, LeavesTheLowestNumbersFree) {
  const struct {
    int nLimit;
    bool bMoves;
  } rows[] = {{64, false}, {FD_SETSIZE, false}, {FD_SETSIZE + 1, true}};
  for (const auto& row : rows) {
    EXPECT_EQ(0, InChild([&row] {
                const int nLow = open("/dev/null", O_RDONLY | O_CLOEXEC);
                if (!SetLimit(row.nLimit)) return 1;
                const int nOther = Duplicate(nLow);
                if ((nOther >= 32) != row.bMoves || !IsNull(nOther)) return 2;
                const int nMoved = MoveUp(nLow);
                if ((nMoved >= 32) != row.bMoves || !IsNull(nMoved)) return 3;
                if ((fcntl(nMoved, F_GETFD) & FD_CLOEXEC) == 0) return 4;
                if (row.bMoves && fcntl(nLow, F_GETFD) != -1) return 5;
                return MoveUp(nMoved) == nMoved && MoveUp(-1) == -1 ? 0 : 6;
              }))
        << row.nLimit;
  }
}

TEST(MoveUp, GivesUpWhatFindsNoPlace) {
  EXPECT_EQ(0, InChild([] {
              const int nLow = open("/dev/null", O_RDONLY | O_CLOEXEC);
              if (!SetLimit(FD_SETSIZE + 1)) return 1;
              while (Duplicate(nLow) >= 0) continue;
              if (MoveUp(nLow) != -1) return 2;
              return fcntl(nLow, F_GETFD) == -1 ? 0 : 3;
            }));
}

TEST(OwnedFd, IsClosedWithItsOwner) {
  const int nFd = open("/dev/null", O_RDONLY | O_CLOEXEC);
  {
    const COwnedFd owner(nFd);
    EXPECT_EQ(nFd, owner.Get());
    EXPECT_TRUE(IsNull(nFd));
    const COwnedFd none(-1);
  }
  EXPECT_EQ(-1, fcntl(nFd, F_GETFD));
}

}  // namespace
