#!/usr/bin/env bash
# package.sh [preset]...: builds the packages of these presets (release and armhf without arguments)
# into build/<preset>/packages: a .deb and an archive for a recorder's file system.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$(readlink -f -- "$0")")/common.sh"

package() {
  local preset=$1 out=build/$1/packages
  say "building $preset"
  # A folder that test.sh has configured keeps its tests.
  local tests=(-DWEBCTRL_BUILD_TESTS=OFF)
  [ ! -f "build/$preset/CMakeCache.txt" ] || tests=()
  mkdir -p "$out"
  if ! (cmake --preset "$preset" "${tests[@]}" &&
    cmake --build --preset "$preset" --target webctrl web_root -j "$(nproc)" &&
    cpack --config "build/$preset/CPackConfig.cmake") >"$out/package.log" 2>&1; then
    tail -n 20 "$out/package.log" >&2
    fail "no packages of $preset, see $out/package.log"
  fi
  rm -rf "$out/_CPack_Packages"
  ls -l "$out"/*.deb "$out"/*.tar.gz
}

[ $# -gt 0 ] || set -- release armhf
purposes="build package"
[[ " $* " != *" armhf "* ]] || purposes+=" cross"
# shellcheck disable=SC2086  # a list of words
"$root/scripts/install-deps.sh" $purposes
cd "$root"
for preset in "$@"; do
  package "$preset"
done
