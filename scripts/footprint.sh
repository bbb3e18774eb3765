#!/usr/bin/env bash
# footprint.sh [--requests N] [--objects N]: how much disk, memory, stack and heap the daemon uses
# on a recorder, as tables. Builds what it measures.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$(readlink -f -- "$0")")/common.sh"

out=$root/build/footprint
jobs=$(nproc)

build() {
  cmake --preset release -DWEBCTRL_BUILD_TESTS=ON &&
    cmake --build --preset release -j "$jobs" --target webctrl devsim webctrl_stack_test &&
    cmake -S . -B "$out/static" -G Ninja -DCMAKE_BUILD_TYPE=Release -DWEBCTRL_STATIC=ON \
      -DWEBCTRL_BUILD_TESTS=OFF &&
    cmake --build "$out/static" -j "$jobs" --target webctrl &&
    cmake --preset armhf && cmake --build --preset armhf -j "$jobs" --target webctrl web_root &&
    cmake --install build/armhf --strip --prefix build/armhf/image/opt/webctrl &&
    g++ -std=c++17 -O2 -Wall -Wextra -Wpedantic -Werror -shared -fPIC \
      -o "$out/libheap_count.so" bench/footprint/heap_count.cpp
}

"$root/scripts/install-deps.sh" build cross test
cd "$root"
mkdir -p "$out"
build >"$out/build.log" 2>&1 || fail "the build failed: $(tail -n 20 "$out/build.log")"
exec /usr/bin/python3 bench/footprint/run.py "$@"
