#!/usr/bin/env bash
# bench.sh [--slices N] [--seconds S] [--spread]: how fast the daemon is, as ratios in one run: the
# conversions compared with the C library's, then requests compared with the floor and other
# servers, then instructions per request. Builds what it measures. The machine should be idle
# otherwise. Exits with 1 when a conversion misses its target or a reply was not the expected one.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$(readlink -f -- "$0")")/common.sh"

build() {
  cmake -S . -B build/bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DWEBCTRL_BUILD_BENCH=ON \
    -DWEBCTRL_BUILD_TESTS=OFF && cmake --build build/bench -j "$(nproc)"
}

"$root/scripts/install-deps.sh" build run bench
cd "$root"
mkdir -p build
build >build/bench.log 2>&1 || fail "the build failed: $(tail -n 20 build/bench.log)"
status=0
build/bench/bin/encoding_bench 2>&1 | sed -n '/ours us/,$p' || status=1
/usr/bin/python3 bench/speed/run.py "$@" || status=1
/usr/bin/python3 bench/speed/run.py --instructions || status=1
exit "$status"
