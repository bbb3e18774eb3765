#!/usr/bin/env bash
# coverage.sh [ctest option]...: which lines and branches of the product its tests reach.
#
# Builds with coverage counters in build/coverage, runs the unit, black-box and fault tests (or
# those that the options select), and reports on the four folders of the product. Fails below 95 %
# of lines. build/coverage/coverage.txt lists every line that no test reaches;
# build/coverage/html/index.html shows the sources with their counts.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$(readlink -f -- "$0")")/common.sh"

least=95
build=$root/build/coverage
product=(CBB control config encoding)
jobs=$(nproc)

# Uses the common list of packages; a machine that has the program needs nothing.
command -v gcovr >/dev/null || "$root/scripts/install-deps.sh" coverage

mkdir -p "$build"
# Named after its content: a change makes the programs link again.
flush=$build/flush-$(sha256sum <"$root/scripts/coverage/flush.c" | cut -c1-8).o
gcc -O2 -c "$root/scripts/coverage/flush.c" -o "$flush"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DWEBCTRL_BUILD_TESTS=ON \
  -DCMAKE_CXX_FLAGS="--coverage -fprofile-update=atomic" \
  -DCMAKE_EXE_LINKER_FLAGS="--coverage $flush" >"$build/configure.log"
cmake --build "$build" -j "$jobs" >"$build/build.log" || fail "the build failed, see $build/build.log"

# Counts of an earlier run would add up.
find "$build" -name '*.gcda' -delete
[ $# -gt 0 ] || set -- -LE 'ui|checks|docs|soak|fuzz'
ctest --test-dir "$build" -j "$jobs" --output-on-failure --no-tests=error "$@" ||
  say "some tests failed; the report shows what ran"

filters=()
for folder in "${product[@]}"; do
  filters+=(--filter "$root/$folder/")
done
mkdir -p "$build/html"
cd "$root"
gcovr --root "$root" "${filters[@]}" --exclude-throw-branches --exclude-unreachable-branches \
  --print-summary --txt "$build/coverage.txt" --html-details "$build/html/index.html" \
  --fail-under-line "$least" "$build"
