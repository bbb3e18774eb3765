#!/usr/bin/env bash
# run.sh <test file>: one browser test file in a private network namespace with lo and an eth0, so
# that ports 80, 4999 and 6000 are free. Exits with 77 and the reason where that is not allowed.
# WEBCTRL_BIN and DEVSIM_BIN name the programs, SCREENSHOTS the folder for pictures (optional).
# CHROMIUM may name another browser; the usual one is Chromium without a window, which takes half of
# the processor time. The tests of the way in from outside run in the one with a window.
set -eu

address=192.168.1.88  # the address in the simulated recorder's settings

skip() {
  echo "skipped: $*"
  exit 77
}

inside() {
  ip link set lo up
  ip link add eth0 type veth peer name eth0-peer
  # An address that the system adds by itself comes late, and a browser drops its requests then.
  ip link set eth0-peer addrgenmode none
  ip link set eth0 addrgenmode none
  ip link set eth0-peer up
  ip address add "$address/24" dev eth0
  ip link set eth0 up
  UI_ADDRESS=$address exec node --test "$@"
}

if [ "${1:-}" = --inside ]; then
  shift
  inside "$@"
fi

command -v ip >/dev/null || skip "the ip command (iproute2) is not installed"
[ -x "${CHROMIUM:=/usr/bin/chromium-headless-shell}" ] || skip "no browser at $CHROMIUM"
export CHROMIUM
# A process namespace too: everything started here ends with this script, even when it is killed.
namespace=(unshare -n -m -p -f --mount-proc --kill-child)
"${namespace[@]}" true 2>/dev/null || namespace+=(-U -r)
"${namespace[@]}" true 2>/dev/null || skip "this machine allows no private namespace"
exec "${namespace[@]}" "$0" --inside "$@"
