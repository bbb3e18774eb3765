#!/usr/bin/env bash
# shellcheck disable=SC2317  # the stages are called by their names
#
# test.sh [--may-skip <file>] [stage]...: installs what is missing, builds, and runs every test and
# check. Works on a bare Debian 12 and from any folder. Without a stage all run in order; one that fails
# does not stop the later ones, except that nothing runs without the packages and the build. The stage
# quick is by hand only: what a minute can tell of a change, after the stage build.
#
# The summary counts what passed, failed and was skipped, with every reason. With --may-skip a test that
# was skipped and is not in the file is a failure.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$(readlink -f -- "$0")")/common.sh"

stages="deps build test format asan tsan static fuzz cross package"
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

stage_deps() { scripts/install-deps.sh build run test ui check; }
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

# A quarter of a minute for each target, beside the replay of their corpora in the other stages.
stage_fuzz() { scripts/fuzz.sh 15; }

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

runner=()
case ${1-} in -h | --help) usage && exit ;; esac
if [ "${1-}" = --may-skip ]; then
  [ -r "${2-}" ] || fail "--may-skip takes a file"
  allowed=$(readlink -f -- "$2")
  shift 2
fi
# shellcheck disable=SC2086  # a list of words
[ $# -gt 0 ] || set -- $stages
for stage in "$@"; do
  grep -qw -- "$stage" <<<"$stages $by_hand" ||
    fail "no stage \"$stage\"; there are: $stages $by_hand"
done
cd "$root"
rm -rf "$results"
mkdir -p "$results"
for stage in "$@"; do
  run_stage || case $stage in deps | build) break ;; esac
done
scripts/results/summary.sh "$results" "$allowed"
