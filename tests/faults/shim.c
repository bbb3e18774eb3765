/* Preloaded into the daemon by tests: makes allocations fail and the system time jump, and reports
   how much of the heap is in use. Tests control it through a small file, named by FAULT_SHIM, that
   both map. It affects only the program itself, not what that starts. Layout: tests/faults/shim.py.
 */
#define _GNU_SOURCE /* NOLINT: the C library's switch */
#include <errno.h>
#include <fcntl.h>
#include <malloc.h>
#include <stdatomic.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

struct shared {
  _Atomic int64_t until_failure; /* allocations that still succeed; -1: all */
  _Atomic int64_t to_fail;       /* how many fail then; -1: all */
  _Atomic int64_t failed;        /* how many have failed */
  _Atomic int64_t seconds_ahead; /* added to the system time */
  _Atomic int64_t heap_in_use;   /* bytes, at the start of the last sleep */
  _Atomic int64_t sleeps;        /* how often the program has gone to sleep */
};

static struct shared* g_shared;

extern void* __libc_malloc(size_t size);               /* NOLINT: its name */
extern void* __libc_calloc(size_t count, size_t size); /* NOLINT: its name */
extern void* __libc_realloc(void* block, size_t size); /* NOLINT: its name */

__attribute__((constructor)) static void map_shared(void) {
  const char* path = getenv("FAULT_SHIM");
  if (path == NULL || strcmp(program_invocation_short_name, "webctrl") != 0) return;
  int fd = open(path, O_RDWR | O_CLOEXEC);
  if (fd < 0) return;
  void* at = mmap(NULL, sizeof(struct shared), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  close(fd);
  if (at != MAP_FAILED) g_shared = at;
}

static int fails(void) {
  if (g_shared == NULL || g_shared->until_failure < 0) return 0;
  if (g_shared->until_failure > 0) {
    --g_shared->until_failure;
    return 0;
  }
  if (g_shared->to_fail == 0) return 0;
  if (g_shared->to_fail > 0) --g_shared->to_fail;
  ++g_shared->failed;
  errno = ENOMEM;
  return 1;
}

void* malloc(size_t size) { return fails() ? NULL : __libc_malloc(size); }
void* calloc(size_t count, size_t size) { return fails() ? NULL : __libc_calloc(count, size); }
void* realloc(void* block, size_t size) { return fails() ? NULL : __libc_realloc(block, size); }

static time_t ahead(void) { return g_shared != NULL ? (time_t)g_shared->seconds_ahead : 0; }

int clock_gettime(clockid_t clock, struct timespec* now) {
  int ret = (int)syscall(SYS_clock_gettime, clock, now);
  if (ret == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE)) {
    now->tv_sec += ahead();
  }
  return ret;
}

time_t time(time_t* out) {
  struct timespec now;
  clock_gettime(CLOCK_REALTIME_COARSE, &now);
  if (out != NULL) *out = now.tv_sec;
  return now.tv_sec;
}

int gettimeofday(struct timeval* restrict now, void* restrict zone) {
  struct timespec precise;
  (void)zone;
  clock_gettime(CLOCK_REALTIME, &precise);
  now->tv_sec = precise.tv_sec;
  now->tv_usec = precise.tv_nsec / 1000;
  return 0;
}

unsigned sleep(unsigned seconds) {
  struct timespec left = {seconds, 0};
  if (g_shared != NULL) {
    struct mallinfo2 info = mallinfo2();
    g_shared->heap_in_use = (int64_t)(info.uordblks + info.hblkhd);
    ++g_shared->sleeps;
  }
  return nanosleep(&left, &left) == 0 ? 0 : (unsigned)left.tv_sec;
}
