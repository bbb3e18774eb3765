#!/usr/bin/env bash
# shellcheck disable=SC2317  # the stages are called by their names
#
# test.sh [--may-skip <file>] [stage]...: installs what is missing, builds, and runs every test and
# check. Works on a bare Debian 12 and from any folder. Stages run in the order given; one that fails
# does not stop the later ones, except that nothing runs without the packages and the build. Without a
# stage all run, and after the build those that mostly wait run beside those that compute; each prints
# what it has to say at its end. The stage quick is by hand only: what a minute can tell of a change,
# after the stage build.
#
# The summary counts what passed, failed and was skipped, with every reason. With --may-skip a test that
# was skipped and is not in the file is a failure.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$(readlink -f -- "$0")")/common.sh"

# The lanes: for browsers, restarts, emulators and systems that start; and for what uses the processor
# meanwhile, with less right to it.
waiting="test cross package"
computing="format static asan tsan fuzz"
stages="deps build $waiting $computing"
by_hand="quick"
jobs=$(nproc)
results=$root/build/results
allowed=

# configure_and_build <preset> [target]...: all targets by default.
configure_and_build() {
  local preset=$1
  shift
  cmake --preset "$preset" -DWEBCTRL_BUILD_TESTS=ON &&
    cmake --build --preset "$preset" -j "$jobs" --target "${@:-all}"
}

run_ctest() {
  local preset=$1
  shift
  "${runner[@]}" scripts/results/ctest.sh "build/$preset" -j $((4 * jobs)) "$@"
}

# Everything at once: two lanes cannot install at a time.
stage_deps() { scripts/install-deps.sh build run test ui check fuzz cross package; }
stage_build() { configure_and_build release; }
stage_test() { run_ctest release; }
stage_quick() { run_ctest release -R '^(unit|fuzz|blackbox)\.' -LE waits; }
stage_format() { scripts/checks/format.sh; }

# The instrumented builds repeat the tests of our C++ that do not change its memory or threads.
stage_asan() { configure_and_build asan && run_ctest asan -R '^(unit|blackbox|fuzz)\.'; }

# Only the running daemon: some unit tests check things that ThreadSanitizer itself changes (stacks,
# joins). Its shadow memory needs fixed addresses, which a very random layout can collide with.
stage_tsan() {
  local runner=(setarch -R)
  "${runner[@]}" true 2>/dev/null || runner=()
  configure_and_build tsan webctrl devsim web_root && run_ctest tsan -R '^blackbox\.'
}

stage_static() {
  local check status=0
  for check in shellcheck cppcheck clang-tidy; do
    if "scripts/checks/$check.sh"; then
      record passed "$check"
    else
      record failed "$check"
      status=1
    fi
  done
  return "$status"
}

# Five seconds for each target, beside the replay of their corpora in the other stages; whoever changes
# what a target drives gives it longer.
stage_fuzz() { scripts/fuzz.sh 5; }

# For a recorder's processor, and the black-box tests under an emulator.
stage_cross() { scripts/cross.sh; }
stage_package() { tests/packaging/run.sh; }

# A stage that reports no tests counts as one itself, and so does one that fails without a failed
# test.
run_stage() {
  local start=$SECONDS outcome=passed
  export WEBCTRL_RESULTS=$results/$stage.tsv
  : >"$WEBCTRL_RESULTS"
  printf '\n=== %s\n' "$stage"
  "stage_$stage" || outcome=FAILED
  case $outcome in
    passed) [ -s "$WEBCTRL_RESULTS" ] || record passed "$stage" ;;
    *) grep -q $'\tfailed\t' "$WEBCTRL_RESULTS" || record failed "$stage" ;;
  esac
  echo "$stage $outcome $((SECONDS - start))" >>"$results/stages"
  [ $outcome = passed ]
}

# run_stages <stage>...: fails when nothing more can run.
run_stages() {
  for stage in "$@"; do
    run_stage || case $stage in deps | build) return 1 ;; esac
  done
}

# Calls itself, so that Ctrl-C ends both lanes: what a script puts in the background ignores it. When
# a lane is killed, xargs would not wait for the other one; and what it left out has failed.
run_all() {
  run_stages deps build || return 0
  # shellcheck disable=SC2016  # for the inner shell
  printf '%s\0' "$waiting" "$computing" |
    xargs -0 -n 1 -P 2 sh -c '"$0" --lane "$1" || exit 1' "$self_path" || true
  for stage in $waiting $computing; do
    grep -q "^$stage " "$results/stages" || not_ended
  done
}

not_ended() {
  WEBCTRL_RESULTS=$results/$stage.tsv record failed "$stage"
  echo "$stage FAILED 0" >>"$results/stages"
}

# One lane of run_all. Two stages do not print at a time.
run_lane() {
  [ "$1" = "$waiting" ] || renice -n 10 $$ >"$results/renice.log"
  for stage in $1; do
    say "$stage begins"
    run_stage >"$results/$stage.log" 2>&1 || true
    flock "$results" cat "$results/$stage.log"
  done
}

runner=()
self_path=$(readlink -f -- "$0")
case ${1-} in -h | --help) usage && exit ;; esac
if [ "${1-}" = --lane ]; then
  cd "$root"
  run_lane "$2"
  exit
fi
if [ "${1-}" = --may-skip ]; then
  [ -r "${2-}" ] || fail "--may-skip takes a file"
  allowed=$(readlink -f -- "$2")
  shift 2
fi
for stage in "$@"; do
  grep -qw -- "$stage" <<<"$stages $by_hand" ||
    fail "no stage \"$stage\"; there are: $stages $by_hand"
done
cd "$root"
rm -rf "$results"
mkdir -p "$results"
if [ $# -gt 0 ]; then
  run_stages "$@" || true
else
  run_all
fi
scripts/results/summary.sh "$results" $SECONDS "$allowed"
