#!/usr/bin/env bash
# contents.sh: checks the content of the packages made by scripts/package.sh, without installing
# them.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$0")/../../scripts/common.sh"

version=$(cat "$root/VERSION")
work=$root/build/packaging/contents

# has <what> <pattern> <text>
has() { grep -Eq -- "$2" <<<"$3" || fail "$1 lacks \"$2\""; }

unpack() {
  local preset=$1 out=$root/build/$1/packages name
  name=$(dpkg-deb -f "$out"/webctrl_*.deb Architecture)
  rm -rf "${work:?}/$preset"
  mkdir -p "$work/$preset"/{deb,tar,debug}
  dpkg-deb -x "$out/webctrl_${version}_$name.deb" "$work/$preset/deb"
  tar -C "$work/$preset/tar" -xf "$out/webctrl-$version-linux-$name.tar.gz"
  tar -C "$work/$preset/debug" -xf "$out/webctrl-$version-linux-$name-debug.tar.gz"
}

# Both packages have the same daemon and pages; each has what starts it.
check_files() {
  local tree=$work/$1 file
  diff -r "$tree/deb/opt/webctrl/bin" "$tree/tar/opt/webctrl/bin" || fail "the packages of $1 differ"
  for file in lib/systemd/system/webctrl{.service,-health.service,-health.timer} etc/init.d/webctrl; do
    [ -f "$tree/deb/$file" ] || fail "the .deb of $1 has no $file"
  done
  [ -x "$tree/deb/opt/webctrl/libexec/webctrl-check" ] || fail "the .deb of $1 has no check"
  [ -x "$tree/tar/etc/init.d/S90webctrl" ] || fail "the archive of $1 has no init script"
}

check_sums() {
  local out=$root/build/$1/packages
  (cd "$out" && sha256sum --quiet --check SHA256SUMS) || fail "the sums of $1 are wrong"
  diff <(cd "$out" && printf '%s\n' *.deb *.gz) <(sed 's/.*  //' "$out/SHA256SUMS") ||
    fail "the sums of $1 are those of other files"
}

# Every version is that of the file VERSION.
check_version() {
  local tree=$work/$1 deb
  deb=$(echo "$root/build/$1/packages"/webctrl_*.deb)
  [ "$(dpkg-deb -f "$deb" Version)" = "$version" ] || fail "$deb has another version"
  has "the manual page" "^\.Os webctrl $version\$" "$(zcat "$tree/deb/usr/share/man/man8/webctrl.8.gz")"
  has "the changelog" "^webctrl \($version\)" "$(zcat "$tree/deb/usr/share/doc/webctrl/changelog.gz")"
  has "the executable" "^webctrl $version\$" "$(strings "$tree/tar/opt/webctrl/bin/webctrl")"
  zcat "$tree/deb/usr/share/doc/webctrl/changelog.gz" | dpkg-parsechangelog -l - >/dev/null ||
    fail "the changelog has faults"
}

# Each library that is linked in or bundled with the pages, with its copyright holder and licence.
check_notices() {
  local plain all
  plain=$(cat "$work/$1/deb/usr/share/doc/webctrl/copyright")
  all=$(zcat "$work/$1/tar/opt/webctrl/share/copyright.gz")
  for text in "$plain" "$all"; do
    has "the notices of $1" "^SPDX-License-Identifier: GPL-2.0-only" "$text"
    has "the notices of $1" "Cesanta Software Limited" "$text"
    has "the notices of $1" "General Public License version 2" "$text"
    has "the notices of $1" "Copyright.*Fedor Indutny" "$text"
    has "the notices of $1" "Copyright.*Jason Miller" "$text"
    has "the notices of $1" "Copyright.*David Evans" "$text"
    has "the notices of $1" "Permission is hereby granted, free of charge" "$text"
    has "the notices of $1" "apache.org/licenses/LICENSE-2.0" "$text"
  done
  has "the notices of $1" "GNU GENERAL PUBLIC LICENSE" "$all"
  has "the notices of $1" "Version 2.0, January 2004" "$all"
  [ "$1" = release ] || check_static_notices "$plain" "$all"
}

check_static_notices() {
  local text
  for text in "$@"; do
    has "the notices" "Lee Thomason" "$text"
    has "the notices" "Guillem Jover" "$text"
    has "the notices" "GNU C Library is free software" "$text"
    has "the notices" "GCC Runtime Library Exception|RUNTIME LIBRARY EXCEPTION" "$text"
  done
  has "the notices" "GNU LESSER GENERAL PUBLIC LICENSE" "$2"
}

# The symbols belong to the executable in the packages, which has none itself.
check_symbols() {
  local program=$work/$1/tar/opt/webctrl/bin/webctrl id file
  id=$(readelf -n "$program" | sed -n 's/^ *Build ID: //p')
  file=$work/$1/debug/usr/lib/debug/.build-id/${id:0:2}/${id:2}.debug
  [ -f "$file" ] || fail "no symbols of $1 for $id"
  has "the symbols of $1" "DW_AT_name.*main.cpp" "$(readelf --debug-dump=info --dwarf-depth=1 "$file" 2>/dev/null)"
  ! readelf -SW "$program" | grep -q ' \.debug_\| \.symtab' || fail "the executable of $1 has symbols"
}

check_arm_needs() {
  local deb=$root/build/armhf/packages/webctrl_${version}_armhf.deb
  [ "$(dpkg-deb -f "$deb" Architecture Depends)" = $'Architecture: armhf\nDepends: net-tools' ] ||
    fail "the ARM .deb needs other things: $(dpkg-deb -f "$deb" Architecture Depends)"
}

# Errors and warnings; packaging/deb/lintian-overrides has the accepted ones, with reasons.
check_lintian() {
  lintian --no-cfg --allow-root --fail-on error,warning "$root/build/$1/packages"/*.deb ||
    fail "lintian finds faults in the .deb of $1"
}

groff -mandoc -ww -z -Tutf8 "$root/build/release/packaging/webctrl.8" 2>&1 | diff /dev/null - ||
  fail "the manual page has faults"
for preset in release armhf; do
  unpack $preset
  for check in files sums version notices symbols lintian; do
    "check_$check" $preset
  done
done
check_arm_needs
say "as they should be"
