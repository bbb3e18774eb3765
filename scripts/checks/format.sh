#!/usr/bin/env bash
# Checks that every C and C++ file of the project is formatted as .clang-format says.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$0")/../common.sh"

cd "$root"
mapfile -t files < <(git ls-files '*.cpp' '*.c' '*.h')
[ ${#files[@]} -gt 0 ] || fail "found no C or C++ file to look at"
clang-format --dry-run -Werror "${files[@]}"
say "${#files[@]} files are laid out as they should be"
