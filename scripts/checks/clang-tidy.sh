#!/usr/bin/env bash
# clang-tidy.sh [file...]: checks the product's sources and every C file (default: all of them) with
# clang-tidy and .clang-tidy. Needs a configured build/release for the compiler's options.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$0")/../common.sh"

cd "$root"
[ -f build/release/compile_commands.json ] || fail "configure first: cmake --preset release"
[ $# -gt 0 ] ||
  mapfile -t files < <(git ls-files CBB config control encoding tools '*.c' | grep -E '\.(cpp|c)$')
[ $# = 0 ] || files=("$@")
[ ${#files[@]} -gt 0 ] || fail "found no source to look at"
# It counts the warnings in system headers on standard error; that is noise.
printf '%s\0' "${files[@]}" |
  xargs -0 -n 1 -P "$(nproc)" clang-tidy --quiet -p build/release 2>/dev/null ||
  fail "findings, see above"
say "${#files[@]} sources without a finding"
