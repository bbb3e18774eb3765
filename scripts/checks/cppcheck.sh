#!/usr/bin/env bash
# Checks the product's sources and tools with cppcheck and cppcheck.suppressions. Needs a configured
# build/release.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$0")/../common.sh"

cd "$root"
[ -f build/release/compile_commands.json ] || fail "configure first: cmake --preset release"
mkdir -p build/cppcheck
# The library's sources are not ours; the tests have the sanitizers.
cppcheck --project=build/release/compile_commands.json -i.deps -itests -j "$(nproc)" \
  --cppcheck-build-dir=build/cppcheck --enable=warning,performance,portability,style \
  --std=c++17 --library=posix --suppressions-list=scripts/checks/cppcheck.suppressions \
  --inline-suppr --quiet --error-exitcode=1 || fail "findings, see above"
say "no finding"
