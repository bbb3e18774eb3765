#!/usr/bin/env bash
# Checks every shell script of the project, found by its first line and not by its name.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$0")/../common.sh"

cd "$root"
mapfile -t files < <(git grep -lIE '^#!/(usr/)?bin/(env )?(ba)?sh' -- . | sort)
[ ${#files[@]} -gt 0 ] || fail "found no script to look at"
shellcheck --external-sources "${files[@]}" scripts/common.sh scripts/watched.sh \
  tests/packaging/truth.sh
say "${#files[@]} scripts without a finding"
