#!/usr/bin/env bash
# run.sh: looks at the packages, and installs, upgrades, stops, starts and removes them where nothing
# else is.
#
#   contents   what lies in the packages: licences, versions, symbols; lintian
#   systemd    the .deb in a Debian made by debootstrap, with systemd as its process 1
#   sysvinit   the same without, so that the init script does the work
#   recorder   the ARM archive in a root that has a busybox and nothing else
#   twice      the packages built again in another folder: the same bytes
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

# The same files with a later version.
make_upgrade() {
  rm -rf "$work/upgrade"
  cpack --config "$root/build/release/CPackConfig.cmake" -G DEB -D CPACK_PACKAGE_VERSION=99.0.0 \
    -B "$work/upgrade" >"$work/upgrade.log" 2>&1 || fail "no upgrade, see $work/upgrade.log"
}

# ended <part> <status>: 77 means that this machine cannot do it, for the reason in the part's file.
ended() {
  case $2 in
    0) record passed "$1" ;;
    77) record skipped "$1" "$(cat "$work/$1.skipped")" && skipped+=" $1" ;;
    *) record failed "$1" && failed+=" $1" ;;
  esac
}

run_case() {
  local status=0
  unshare --net --mount --pid --fork --kill-child --mount-proc \
    "$root/tests/packaging/case.sh" "$1" "$work/$1" || status=$?
  rm -rf --one-file-system "${work:?}/$1"
  [ $status = 0 ] || [ $status = 77 ] || tail -n 20 "$work/$1.log" 2>/dev/null || true
  return $status
}

# The cases mostly wait, each in its own namespaces; the rest computes meanwhile.
run_parts() {
  local name status
  local -A pids=()
  for name in systemd sysvinit recorder; do
    run_case $name &
    pids[$name]=$!
  done
  for name in contents twice; do
    "$root/tests/packaging/$name.sh" &
    pids[$name]=$!
  done
  for name in "${!pids[@]}"; do
    status=0
    wait "${pids[$name]}" || status=$?
    ended "$name" $status
  done
}

[ "$(id -u)" = 0 ] || fail "making a root takes root"
mkdir -p "$work"
failed=
skipped=
make_bare_debian &
"$root/scripts/package.sh" release armhf
wait $! || fail "there is no Debian to install them in"
make_upgrade
run_parts
[ -z "$failed" ] || fail "failed:$failed"
if [ -n "$skipped" ]; then
  say "passed, but skipped:$skipped"
else
  say "all of it works"
fi
