/* Linked only into the programs of a coverage build: a program that is ended by SIGTERM, like the
   daemon in tests, or by a failed assertion writes its counts before it exits. */
#include <signal.h>

void __gcov_dump(void); /* NOLINT: the compiler's */

static void write_and_go(int signal_number) {
  __gcov_dump(); /* NOLINT: at worst the counts of a test are lost */
  signal(signal_number, SIG_DFL);
  raise(signal_number);
}

__attribute__((constructor)) static void take_signals(void) {
  signal(SIGTERM, write_and_go);
  signal(SIGABRT, write_and_go);
}
