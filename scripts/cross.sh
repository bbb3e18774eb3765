#!/usr/bin/env bash
# cross.sh: builds for a recorder's processor, checks the result, and tests it here.
#
# The executable is static and runs on any ARMv7-A with Linux 3.2 or later. Every black-box test of
# the daemon runs against it under an emulator. The result is the folder build/armhf/image.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$(readlink -f -- "$0")")/common.sh"

build=$root/build/armhf
program=$build/image/opt/webctrl/bin/webctrl
most_bytes=1200000
runner=qemu-arm-static
left_out=(devsim)

build_all() {
  cmake --preset armhf && cmake --build --preset armhf --target webctrl web_root -j "$(nproc)" &&
    cmake --install build/armhf --strip --prefix "$build/image/opt/webctrl"
}

# expect <what> <pattern> <text>: the text must match the pattern.
expect() {
  grep -Eq -- "$2" <<<"$3" || fail "the executable is not $1: $3"
  say "$1: yes"
}

look_at_it() {
  local kind size
  kind=$(file -b "$program")
  expect "a 32-bit ARM executable" "ELF 32-bit LSB executable, ARM, EABI5" "$kind"
  expect "static" "statically linked" "$kind"
  expect "stripped" ", stripped" "$kind"
  expect "content with a kernel 3.4" "GNU/Linux 3\.[0-4]\." "$kind"
  kind=$(readelf --arch-specific --wide "$program")
  expect "for ARMv7-A" 'Tag_CPU_arch: v7$' "$kind"
  expect "for hard float" "Tag_ABI_VFP_args: VFP registers" "$kind"
  kind=$(readelf --program-headers --wide "$program" | grep GNU_STACK || true)
  expect "without an executable stack" " RW +0x" "$kind"
  size=$(stat -c %s "$program")
  [ "$size" -lt $most_bytes ] || fail "$size bytes, at most $most_bytes are wanted"
  say "$size bytes"
}

# Each file of tests has its own process and its own network.
test_file() {
  local name=$1 status=0 log=$build/blackbox/$1.log
  timeout 900 /usr/bin/python3 -m pytest -q -rs -p no:cacheprovider --basetemp "$scratch/$name" \
    "tests/blackbox/test_$name.py" >"$log" 2>&1 || status=$?
  [ -z "${WEBCTRL_RESULTS-}" ] ||
    "$root/scripts/results/read.py" output "blackbox.$name" $status "$log" >>"$WEBCTRL_RESULTS"
  case $status in
    0) say "$name: $(tail -n 1 "$log")" ;;
    77) say "$name: skipped, the machine allows no network namespace" ;;
    *) say "$name: FAILED, see $log" && tail -n 30 "$log" ;;
  esac
  [ $status = 0 ] || [ $status = 77 ]
}

# Tests mostly wait, also under the emulator: run more of them than there are processors.
test_all() {
  local path names=()
  for path in tests/blackbox/test_*.py; do
    path=${path##*/test_}
    [[ " ${left_out[*]} " == *" ${path%.py} "* ]] || names+=("${path%.py}")
  done
  [ ${#names[@]} -gt 0 ] || fail "found no tests"
  mkdir -p "$build/blackbox"
  # Not pytest's usual folder, which other programs' sessions share and clean up, and not below the
  # build, because the daemon accepts only short paths.
  scratch=$(mktemp -d)
  trap 'rm -rf "$scratch"' EXIT
  export -f test_file say
  export build root self scratch WEBCTRL_BIN=$program WEBCTRL_RUNNER=$runner
  # The longest ones come last in the alphabet and must start first.
  printf '%s\n' "${names[@]}" | sort -r | xargs -P "$((2 * $(nproc)))" -I {} bash -c 'test_file {}'
}

[ $# = 0 ] || fail "usage: cross.sh"
"$root/scripts/install-deps.sh" build cross test
cd "$root"
mkdir -p "$build"
build_all >"$build/build.log" 2>&1 || fail "the build failed: $(tail -n 20 "$build/build.log")"
look_at_it
record passed executable
test_all || fail "the tests above failed"
