#!/usr/bin/env bash
# package.sh [preset]...: builds the packages of these presets (release and armhf without arguments)
# into build/<preset>/packages: a .deb, an archive for a recorder's file system, an archive with the
# debug symbols of both, and their SHA-256 sums.
#
# The same sources give the same bytes in any folder and at any time: all dates are that of the
# newest version in CHANGELOG.md, or SOURCE_DATE_EPOCH.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$(readlink -f -- "$0")")/common.sh"

version=$(cat "$root/VERSION")

# cached <preset> <variable>: the value that CMake has found.
cached() { sed -n "s/^$2:[A-Z]*=//p" "build/$1/CMakeCache.txt"; }

build() {
  # A folder that test.sh has configured keeps its tests.
  local tests=(-DWEBCTRL_BUILD_TESTS=OFF)
  [ ! -f "build/$1/CMakeCache.txt" ] || tests=()
  cmake --preset "$1" "${tests[@]}" &&
    cmake --build --preset "$1" --target webctrl web_root package_texts -j "$(nproc)" &&
    cpack --config "build/$1/CPackConfig.cmake"
}

# Debian's debuggers look for symbols below /usr/lib/debug, by build ID.
pack_symbols() {
  local out=build/$1/packages program=build/$1/bin/webctrl tree id file
  tree=$(mktemp -d)
  id=$(readelf -n "$program" | sed -n 's/^ *Build ID: //p')
  file=$tree/usr/lib/debug/.build-id/${id:0:2}/${id:2}.debug
  mkdir -p "$(dirname "$file")"
  "$(cached "$1" CMAKE_OBJCOPY)" --only-keep-debug "$program" "$file"
  chmod 644 "$file"
  find "$tree" -type d -exec chmod 755 {} +
  tar -C "$tree" --sort=name --mtime="@$SOURCE_DATE_EPOCH" --owner=0 --group=0 --numeric-owner \
    -cf - usr | gzip -9n >"$out/webctrl-$version-linux-$(dpkg_name "$1")-debug.tar.gz"
  rm -r "$tree"
}

# Debian's name of the architecture that a preset builds for.
dpkg_name() { sed -n 's/^set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE "\(.*\)")$/\1/p' "build/$1/CPackConfig.cmake"; }

package() {
  local preset=$1 out=build/$1/packages
  say "building $preset"
  rm -rf "$out"
  mkdir -p "$out"
  if ! { build "$preset" && pack_symbols "$preset"; } >"$out/package.log" 2>&1; then
    tail -n 20 "$out/package.log" >&2
    fail "no packages of $preset, see $out/package.log"
  fi
  rm -rf "$out/_CPack_Packages"
  (cd "$out" && sha256sum -- *.deb *.tar.gz >SHA256SUMS)
  ls -l "$out"
}

case ${1-} in -h | --help) usage && exit ;; esac
[ $# -gt 0 ] || set -- release armhf
purposes="build package"
[[ " $* " != *" armhf "* ]] || purposes+=" cross"
# shellcheck disable=SC2086  # a list of words
"$root/scripts/install-deps.sh" $purposes
cd "$root"
umask 022
released=$(sed -n "s/^## $version - //p" CHANGELOG.md)
[ -n "$released" ] || fail "CHANGELOG.md has no date for version $version"
export SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(date -u -d "$released" +%s)}
for preset in "$@"; do
  package "$preset"
done
