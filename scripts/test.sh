#!/usr/bin/env bash
# shellcheck disable=SC2317  # the stages are called by their names
#
# test.sh [stage]...: installs what is missing, builds, and runs every test and check. Works on a
# bare Debian 12 and from any folder. Without arguments all stages run in order; a stage that fails
# does not stop the later ones, except that nothing runs without the packages and the build.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$0")/common.sh"

stages="deps build test format asan tsan static fuzz cross package"
jobs=$(nproc)
results=()
failed=0

# configure_and_build <preset> [target]...: all targets by default.
configure_and_build() {
  local preset=$1
  shift
  cmake --preset "$preset" -DWEBCTRL_BUILD_TESTS=ON &&
    cmake --build --preset "$preset" -j "$jobs" --target "${@:-all}"
}

# No test at all is a failure, not a success.
run_ctest() {
  local preset=$1
  shift
  "${runner[@]}" ctest --test-dir "build/$preset" -j "$jobs" --output-on-failure \
    --no-tests=error "$@"
}

stage_deps() { scripts/install-deps.sh build run test ui check; }
stage_build() { configure_and_build release; }
stage_test() { run_ctest release; }
stage_format() { scripts/checks/format.sh; }

# The instrumented builds repeat what drives our C++ and leaves its memory and threads alone.
stage_asan() { configure_and_build asan && run_ctest asan -R '^(unit|blackbox|fuzz)\.'; }

# Only the running daemon: some unit tests look at what ThreadSanitizer itself changes (stacks,
# joins). It wants its shadow at fixed addresses, which too random a layout can hit.
stage_tsan() {
  local runner=(setarch -R)
  "${runner[@]}" true 2>/dev/null || runner=()
  configure_and_build tsan webctrl devsim web_root && run_ctest tsan -R '^blackbox\.'
}

stage_static() {
  local check status=0
  for check in shellcheck cppcheck clang-tidy; do
    "scripts/checks/$check.sh" || status=1
  done
  return "$status"
}

# Half a minute for each target, beside the replay of their corpora in the other stages.
stage_fuzz() { scripts/fuzz.sh 30; }

# For a recorder's processor, and the black-box tests under an emulator.
stage_cross() { scripts/cross.sh; }
stage_package() { tests/packaging/run.sh; }

run_stage() {
  local start=$SECONDS outcome=passed
  printf '\n=== %s\n' "$1"
  "stage_$1" || outcome=FAILED
  [ $outcome = passed ] || failed=1
  results+=("$(printf '%-8s %-7s %4d s' "$1" $outcome $((SECONDS - start)))")
  [ $outcome = passed ]
}

summary() {
  printf '\n=== Stages\n'
  printf '%s\n' "${results[@]}"
  printf '%-8s %-7s %4d s\n' all "$([ $failed = 0 ] && echo passed || echo FAILED)" $SECONDS
  exit $failed
}

cd "$root"
runner=()
# shellcheck disable=SC2086  # a list of words
[ $# -gt 0 ] || set -- $stages
for stage in "$@"; do
  grep -qw -- "$stage" <<<"$stages" || fail "no stage \"$stage\"; there are: $stages"
done
for stage in "$@"; do
  run_stage "$stage" || case $stage in deps | build) summary ;; esac
done
summary
