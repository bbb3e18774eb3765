#!/usr/bin/env bash
# case.sh systemd|sysvinit|recorder <folder>: one case of run.sh, inside its own namespaces. Ends
# with 77 when the machine cannot do it.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$0")/../../scripts/common.sh"
# shellcheck source=tests/packaging/truth.sh
. "$root/tests/packaging/truth.sh"

name=$1 top=$2
self=packaging/$name
work=$(dirname -- "$top")
log_limit=262144
inside=()

inside() { "${inside[@]}" "$@"; }

# skip <reason>: run.sh reads it from the file.
skip() {
  echo "$1" >"$work/$name.skipped"
  say "skipped: $1"
  exit 77
}

# wait_until <what> <command>...
wait_until() {
  local tries what=$1
  shift
  for ((tries = 0; tries < 300; tries++)); do
    ! "$@" || return 0
    sleep 0.1
  done
  fail "in vain: $what"
}

# The process that listens on port 80; nothing when there is none.
listener() { ss -H -lntp 'sport = :80' | sed -n 's/.*pid=\([0-9]*\).*/\1/p'; }
silent() { [ -z "$(listener)" ]; }

# A new process serves the pages and answers.
is_new_service() {
  local now
  now=$(listener)
  [ -n "$now" ] && [ "$now" != "${last-}" ] &&
    curl -s --max-time 20 http://127.0.0.1/login.html |
    cmp -s - "$top/opt/webctrl/bin/web_root/login.html" &&
    curl -s --max-time 20 http://127.0.0.1/get_cpu_usage | grep -q '"result": [0-9]'
}

expect_new_service() {
  wait_until "a service $1" is_new_service
  last=$(listener)
  say "serves $1"
}

# It restarts by itself after it was killed; "$last" is the dead one until then.
expect_revival() {
  kill -9 "$last"
  expect_new_service "after its death"
}

make_devices() {
  mount -t proc proc "$top/proc"
  mount -t tmpfs tmpfs "$top/dev"
  local device
  for device in null:3 zero:5 full:7 random:8 urandom:9; do
    mknod -m 666 "$top/dev/${device%:*}" c 1 "${device#*:}"
  done
  mknod -m 666 "$top/dev/tty" c 5 0
}

# What a purge must leave unchanged: everything but the package manager's and the journal's own
# files.
files() {
  (cd "$top" && find . -xdev -path ./opt -prune -o -path ./var/lib/dpkg -prune -o \
    -path ./var/log -prune -o -path ./var/lib/systemd -prune -o -path ./root -prune -o \
    -path ./var/cache/apt -prune -o -path ./var/lib/apt -prune -o \
    -path ./tmp -prune -o -path ./var/tmp -prune -o -print | sort)
}

# lifecycle <command>...: runs the commands between the installation and the upgrade.
lifecycle() {
  cp "$root"/build/release/packages/webctrl_*_*.deb "$top/root/first.deb"
  cp "$work"/upgrade/webctrl_99.0.0_*.deb "$top/root/later.deb"
  files >"$work/$name.before"
  inside apt-get install -y /root/first.deb >"$work/$name.log" 2>&1
  expect_new_service "after the installation"
  expect_revival
  "$@"
  inside apt-get install -y /root/later.deb >>"$work/$name.log" 2>&1
  expect_new_service "after the upgrade"
  # shellcheck disable=SC2016  # dpkg-query's own variable
  [ "$(inside dpkg-query -W -f '${Version}' webctrl)" = 99.0.0 ] || fail "not the later version"
  inside service webctrl stop >>"$work/$name.log" 2>&1
  wait_until "the end of the service" silent
  inside service webctrl start >>"$work/$name.log" 2>&1
  expect_new_service "after a stop and a start"
  inside dpkg -r webctrl >>"$work/$name.log" 2>&1
  wait_until "the end of the service" silent
  [ ! -e "$top/opt/webctrl" ] || fail "files are left in /opt"
  inside dpkg -P webctrl >>"$work/$name.log" 2>&1
  files | diff "$work/$name.before" - || fail "a purge leaves other files than there were"
  say "removed without a trace"
}

unpack_debian() {
  rm -rf --one-file-system "$top"
  mkdir -p "$top"
  tar -xf "$work/debian.tar" -C "$top"
  mount --bind "$top" "$top"
}

case_sysvinit() {
  unpack_debian
  rm "$top/bin/systemctl" "$top/sbin/runlevel"
  printf '#!/bin/sh\nexit 0\n' >"$top/usr/sbin/policy-rc.d"
  chmod 755 "$top/usr/sbin/policy-rc.d"
  make_devices
  inside=(env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin chroot "$top")
  lifecycle check_sysvinit
}

check_sysvinit() {
  check_script /etc/init.d/webctrl '^/opt/webctrl/bin/webctrl'
  check_locks /etc/init.d/webctrl
  check_stranger /etc/init.d/webctrl
}

# systemd needs its own control group, which is removed at the end.
enter_group() {
  groups=$work/groups
  mkdir -p "$groups"
  if grep -q name=systemd /proc/self/cgroup; then
    mount -t cgroup -o none,name=systemd systemd "$groups"
  else
    mount -t cgroup2 cgroup2 "$groups"
  fi
  mkdir "$groups/webctrl-packaging" || return 1
  echo $$ >"$groups/webctrl-packaging/cgroup.procs"
}

is_group_empty() {
  [ -z "$(find "$groups/webctrl-packaging" -name cgroup.procs -exec cat {} +)" ]
}

leave_group() {
  echo $$ >"$groups/cgroup.procs"
  kill -9 "$booter" 2>/dev/null || true
  wait "$booter" 2>/dev/null || true
  wait_until "the end of systemd" is_group_empty
  find "$groups/webctrl-packaging" -depth -type d -exec rmdir {} \;
}

has_booted() {
  init=$(pgrep -P "$booter") || return 1
  inside=(nsenter -t "$init" -a env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin)
  case $(inside systemctl is-system-running 2>/dev/null) in
    running | degraded) ;;
    *) return 1 ;;
  esac
}

case_systemd() {
  unpack_debian
  enter_group 2>/dev/null || skip "no control group of its own"
  unshare --mount --pid --fork --kill-child --cgroup --uts --ipc \
    "$root/tests/packaging/boot.sh" "$top" >"$work/$name.boot.log" 2>&1 &
  booter=$!
  trap leave_group EXIT
  (wait_until "a running systemd" has_booted) 2>/dev/null || skip "systemd does not run here"
  has_booted
  lifecycle check_unit
}

# A busybox with its libraries, and the emulator for the recorder's executable.
make_recorder() {
  local applet file
  rm -rf --one-file-system "$top"
  mkdir -p "$top"/{bin,sbin,proc,dev,tmp,var/run,var/log}
  mount --bind "$top" "$top"
  make_devices
  for file in $(ldd /bin/busybox 2>/dev/null | grep -o '/[^ ]*' || true); do
    mkdir -p "$top$(dirname "$file")"
    cp -L "$file" "$top$file"
  done
  cp /bin/busybox "$(command -v qemu-arm-static)" "$top/bin"
  for applet in $(busybox --list); do
    [ "$applet" = busybox ] || ln -s busybox "$top/bin/$applet"
  done
  ln -s ../bin/busybox "$top/sbin/ifconfig"
}

unpack_archive() {
  inside tar -xzf /tmp/webctrl.tar.gz -C /
  mv "$top/opt/webctrl/bin/webctrl" "$top/opt/webctrl/bin/webctrl.arm"
  printf '#!/bin/sh\nexec qemu-arm-static /opt/webctrl/bin/webctrl.arm\n' >"$top/opt/webctrl/bin/webctrl"
  chmod 755 "$top/opt/webctrl/bin/webctrl"
}

many_requests() {
  curl -s --max-time 300 -o /dev/null "http://127.0.0.1/get_cpu_usage?[1-6000]" || fail "no answers"
}

expect_bounded_log() {
  local file size
  for file in "$top"/var/log/webctrl.log "$top"/var/log/webctrl.log.0; do
    size=$(stat -c %s "$file")
    if [ "$size" = 0 ] || [ "$size" -gt $log_limit ]; then fail "$file has $size bytes"; fi
    say "${file##*/}: $size bytes"
  done
}

no_script() { ! pgrep -f S90webctrl >/dev/null; }

expect_stop() {
  inside /etc/init.d/S90webctrl stop
  silent || fail "still there after a stop"
  wait_until "the end of the script's processes" no_script
  ! inside /etc/init.d/S90webctrl status >/dev/null || fail "status says it runs"
}

case_recorder() {
  make_recorder
  cp "$root"/build/armhf/packages/webctrl-*-linux-armhf.tar.gz "$top/tmp/webctrl.tar.gz"
  inside=(env -i PATH=/bin:/sbin chroot "$top")
  unpack_archive
  inside /etc/init.d/S90webctrl start
  expect_new_service "after the first start"
  inside /etc/init.d/S90webctrl start
  inside /etc/init.d/S90webctrl status
  [ "$(listener)" = "$last" ] || fail "a second start has changed the service"
  expect_revival
  grep -q "ended with status 137" "$top/var/log/webctrl.log" || fail "its death is not in the log"
  many_requests
  expect_bounded_log
  inside /etc/init.d/S90webctrl restart
  expect_new_service "after a restart"
  check_script /etc/init.d/S90webctrl webctrl.arm
  check_locks /etc/init.d/S90webctrl
  inside /etc/init.d/S90webctrl start
  expect_new_service "after a start"
  expect_stop
  unpack_archive
  mv "$top/var/log" "$top/var/no-log"
  inside /etc/init.d/S90webctrl start
  expect_new_service "after an upgrade, without a place for the log"
  many_requests
  expect_stop
  say "stopped without a trace"
}

ip link set lo up
"case_$name"
