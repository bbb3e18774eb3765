#!/usr/bin/env bash
# fuzz.sh [seconds [target]...]: builds the fuzz targets with clang and the address and undefined
# behaviour sanitizers and runs each for the given time (30 s) from its corpus, two at a time. Any
# finding is a failure; its input is kept in build/fuzz/findings. Targets: fuzz/<name>_fuzz.cpp.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$(readlink -f -- "$0")")/common.sh"

build=$root/build/fuzz
seconds=${1:-30}
[[ $seconds =~ ^[1-9][0-9]*$ ]] || fail "\"$seconds\" is no number of seconds"
shift || true

all_targets() {
  local file
  for file in "$root"/fuzz/*_fuzz.cpp; do
    basename -- "$file" _fuzz.cpp
  done
}

configure_and_build() {
  # Optimised for debugging and with assertions: an assertion that input can reach is a finding.
  cmake -S "$root" -B "$build" -G Ninja -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_BUILD_TYPE=Fuzz -DCMAKE_C_FLAGS_FUZZ="-O1 -g1" -DCMAKE_CXX_FLAGS_FUZZ="-O1 -g1" \
    -DWEBCTRL_BUILD_FUZZ=ON -DWEBCTRL_BUILD_TESTS=OFF &&
    cmake --build "$build" -j "$(nproc)" --target "${targets[@]/#/fuzz_}"
}

# The words of a target: those of HTTP are also the endpoints, from the daemon's own table.
words_of() {
  cat "$root/fuzz/dict/$1.dict" || return
  [ "$1" != http ] || grep -oE '^ +\{"/\w+"' "$root/CBB/WebCtrl/Routes.h" | tr -d ' {'
}

# New inputs beyond the corpus are kept for the next run in build/fuzz/corpus.
run_target() {
  local name=$1 log=$build/$1.log found=$build/corpus/$1 dict=()
  mkdir -p "$found" "$build/findings"
  if [ -f "$root/fuzz/dict/$name.dict" ]; then
    words_of "$name" >"$build/$name.dict" || fail "$name: no words to fuzz with"
    dict=(-dict="$build/$name.dict")
  fi
  if "$build/bin/fuzz_$name" "${dict[@]}" -max_total_time="$seconds" -timeout=5 -max_len=16384 \
    -rss_limit_mb=2048 -print_final_stats=1 -artifact_prefix="$build/findings/$name-" \
    "$found" "$root/fuzz/corpus/$name" >"$log" 2>&1; then
    say "$name: $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") runs, nothing found"
    record passed "$name"
  else
    record failed "$name"
    say "$name: FOUND SOMETHING, see $log: $(grep -m 1 -E 'ERROR|SUMMARY' "$log" || true)" >&2
    grep '^Base64:' "$log" >&2 || true  # the input, where only what was printed is kept
    return 1
  fi
}

if [ $# -gt 0 ]; then
  targets=("$@")
else
  mapfile -t targets < <(all_targets)
fi
for name in "${targets[@]}"; do
  [ -f "$root/fuzz/${name}_fuzz.cpp" ] || fail "no target \"$name\"; there are: $(all_targets | xargs)"
done
"$root/scripts/install-deps.sh" build fuzz
mkdir -p "$build"
say "building ${#targets[@]} targets"
configure_and_build >"$build/build.log" 2>&1 ||
  fail "the build failed: $(grep -m 1 -E 'rror' "$build/build.log" || tail -n 1 "$build/build.log")"

status=0
for ((i = 0; i < ${#targets[@]}; i += 2)); do
  pids=()
  for name in "${targets[@]:i:2}"; do
    run_target "$name" &
    pids+=($!)
  done
  for pid in "${pids[@]}"; do
    wait "$pid" || status=1
  done
done
exit $status
