#!/usr/bin/env bash
# What cppcheck says about every C++ source of the project. Needs a configured build/release.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$0")/../common.sh"

cd "$root"
[ -f build/release/compile_commands.json ] || fail "configure first: cmake --preset release"
mkdir -p build/cppcheck
# The library's sources are its authors' business. Where unit tests include a source through the
# public interface only, a function may well be unused in one file.
cppcheck --project=build/release/compile_commands.json -i.deps -j "$(nproc)" \
  --cppcheck-build-dir=build/cppcheck --enable=warning,performance,portability,style \
  --std=c++17 --library=posix --library=googletest --inline-suppr --quiet --error-exitcode=1 \
  --suppress=missingIncludeSystem --suppress='*:*/.deps/*' --suppress='*:/usr/include/*' ||
  fail "findings, see above"
say "no finding"
