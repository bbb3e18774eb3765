#!/usr/bin/env bash
# run.sh: installs, upgrades, stops, starts and removes the packages where nothing else is.
#
#   systemd    the .deb in a Debian made by debootstrap, with systemd as its process 1
#   sysvinit   the same without, so that the init script does the work
#   recorder   the ARM archive in a root that has a busybox and nothing else
#
# Needs root. The bare Debian is made once and kept in build/packaging. The roots have networks and
# process numbers of their own; nothing of them is left when this ends.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$0")/../../scripts/common.sh"

work=$root/build/packaging
bare=$work/debian.tar
packages=net-tools,libtinyxml2.6.2v5,libmd0,systemd,systemd-sysv

make_bare_debian() {
  local mirror
  [ ! -f "$bare" ] || return 0
  say "making a bare Debian"
  mirror=$(sed -n 's/^URIs: *//p; s/^deb \(\[.*\] \)\?\(http[^ ]*\).*/\2/p' \
    /etc/apt/sources.list /etc/apt/sources.list.d/debian.sources 2>/dev/null | head -n 1 || true)
  rm -rf "$work/debian"
  debootstrap --variant=minbase --include=$packages bookworm "$work/debian" \
    "${mirror:-http://deb.debian.org/debian}" >"$work/debootstrap.log" 2>&1 ||
    fail "no bare Debian (no network?): $(tail -n 1 "$work/debootstrap.log")"
  rm -f "$work"/debian/var/cache/apt/archives/*.deb "$work"/debian/var/lib/apt/lists/*_*
  tar -C "$work/debian" -cf "$bare.new" .
  mv "$bare.new" "$bare"
  rm -rf "$work/debian"
}

# The same files under a later version.
make_upgrade() {
  rm -rf "$work/upgrade"
  cpack --config "$root/build/release/CPackConfig.cmake" -G DEB -D CPACK_PACKAGE_VERSION=99.0.0 \
    -B "$work/upgrade" >"$work/upgrade.log" 2>&1 || fail "no upgrade, see $work/upgrade.log"
}

# The .deb for ARM has the archive's files, and needs nothing that is not on every ARM.
check_arm_deb() {
  local deb=("$root"/build/armhf/packages/webctrl_*_armhf.deb)
  rm -rf "$work/arm"
  mkdir -p "$work/arm/deb" "$work/arm/tar"
  dpkg-deb -x "${deb[0]}" "$work/arm/deb"
  tar -C "$work/arm/tar" -xf "$root"/build/armhf/packages/webctrl-*-linux-armhf.tar.gz
  diff -r "$work/arm/deb/opt" "$work/arm/tar/opt" || fail "the ARM packages differ"
  [ "$(dpkg-deb -f "${deb[0]}" Architecture Depends)" = $'Architecture: armhf\nDepends: net-tools' ] ||
    fail "the ARM .deb needs other things: $(dpkg-deb -f "${deb[0]}" Architecture Depends)"
  for file in lib/systemd/system/webctrl.service etc/init.d/webctrl; do
    [ -f "$work/arm/deb/$file" ] || fail "the ARM .deb has no $file"
  done
}

run_case() {
  local status=0
  say "$1"
  unshare --net --mount --pid --fork --kill-child --mount-proc \
    "$root/tests/packaging/case.sh" "$1" "$work/$1" || status=$?
  rm -rf --one-file-system "${work:?}/$1"
  case $status in
    0) record passed "$1" ;;
    77) record skipped "$1" "this machine cannot run it" ;;
    *)
      record failed "$1"
      tail -n 20 "$work/$1.log" 2>/dev/null
      return 1
      ;;
  esac
}

[ "$(id -u)" = 0 ] || fail "making a root takes root"
"$root/scripts/package.sh" release armhf
mkdir -p "$work"
make_bare_debian
make_upgrade
groff -mandoc -ww -z -Tutf8 "$root/packaging/webctrl.8" 2>&1 | tee "$work/man.log"
[ ! -s "$work/man.log" ] || fail "the manual page has faults"
check_arm_deb
failed=
for name in systemd sysvinit recorder; do
  run_case "$name" || failed+=" $name"
done
[ -z "$failed" ] || fail "failed:$failed"
say "all of it works"
