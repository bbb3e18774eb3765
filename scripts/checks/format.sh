#!/usr/bin/env bash
# Every C++ file of the project is laid out as .clang-format says.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$0")/../common.sh"

cd "$root"
mapfile -t files < <(git ls-files '*.cpp' '*.h')
[ ${#files[@]} -gt 0 ] || fail "found no C++ file to look at"
clang-format --dry-run -Werror "${files[@]}"
say "${#files[@]} files are laid out as they should be"
