#!/usr/bin/env bash
# twice.sh [preset]...: builds the packages of these presets (release and armhf without arguments) again,
# in another folder and in other surroundings, and compares.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$0")/../../scripts/common.sh"

copy=$(mktemp -d "${TMPDIR:-/tmp}/another place.XXXXXX")
trap 'rm -rf "$copy"' EXIT

[ $# -gt 0 ] || set -- release armhf
cd "$root"
for preset in "$@"; do
  cp "build/$preset/packages/SHA256SUMS" "$copy/$preset.sums"
done
umask 077
git ls-files -z | xargs -0 cp -P --parents -t "$copy"
cp -r .deps "$copy"
cp -r web/node_modules "$copy/web"
# A compiler's cache would bring back what was built here.
env -u SOURCE_DATE_EPOCH CCACHE_DISABLE=1 TZ=Pacific/Apia LC_ALL=C.UTF-8 HOME="$copy" \
  "$copy/scripts/package.sh" "$@" >"$copy/log" 2>&1 || {
  tail -n 20 "$copy/log" >&2
  fail "they cannot be built in another folder"
}
for preset in "$@"; do
  diff "$copy/$preset.sums" "$copy/build/$preset/packages/SHA256SUMS" ||
    fail "the packages of $preset depend on where they are built"
done
say "the same bytes from $root and \"$copy\""
