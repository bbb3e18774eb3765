#!/usr/bin/env bash
# install-deps.sh <purpose>...: installs what the project needs for these purposes and is missing.
#
# The one list of everything that comes from outside. What is there already is not touched and
# needs neither root nor a network. Debian 12's packages by apt-get, the HTTP library's sources by
# fetch-mongoose.sh, the node modules of web, tests/docs and tests/ui by npm from their lock files.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$(readlink -f -- "$0")")/common.sh"
# shellcheck source=scripts/watched.sh
. "$root/scripts/watched.sh"

purposes="build run test ui check bench fuzz coverage cross package"

packages_for() {
  case $1 in
    # node-llhttp: the request parser's sources. ca-certificates: package sources may be https ones.
    build) echo g++ cmake ninja-build libtinyxml-dev libmd-dev node-llhttp ca-certificates \
      "$(node_packages)" ;;
    # The daemon calls ifconfig when it starts; run.sh checks ports and addresses with ss and ip; a
    # newcomer's first look uses curl.
    run) echo net-tools iproute2 curl ;;
    # iproute2 makes the tests' own networks; curl, xmllint and iconv are oracles; yaml, jsonschema and
    # the node modules of tests/docs hold docs/openapi.yaml to its rules; the last three are the proxies
    # that the daemon is tried behind; openssl makes what the first one needs for TLS, and a certificate
    # that nobody accepts.
    test) echo libgtest-dev libgmock-dev python3 python3-pytest net-tools iproute2 procps curl \
      libxml2-utils libc-bin binutils valgrind git python3-yaml python3-jsonschema openssl nginx-light \
      haproxy lighttpd "$(node_packages)" ;;
    # A browser of today, with and without a window, and one of 2020 (tests/ui/old_engine.py); a font
    # for Chinese pages; what reads QR codes.
    ui) echo chromium chromium-headless-shell python3-pyqt5.qtwebengine fonts-wqy-microhei zbar-tools net-tools iproute2 \
      "$(node_packages)" ;;
    check) echo clang-format clang-tidy cppcheck shellcheck git ;;
    bench) echo wrk lighttpd busybox libfcgi-dev valgrind strace ;;
    coverage) echo gcovr ;;
    fuzz) echo clang libclang-rt-14-dev llvm ;;
    # The libraries for the recorder's architecture, and an emulator for its executables.
    cross) echo g++-arm-linux-gnueabihf libtinyxml-dev:armhf libmd-dev:armhf qemu-user-static file ;;
    # cpack uses dpkg-shlibdeps and file; debootstrap creates the system in which packages are
    # tested, and a busybox replaces a recorder's; groff-base reads the manual page.
    package) echo dpkg-dev file debootstrap busybox groff-base iproute2 curl binutils lintian ;;
    *) fail "no purpose \"$1\"; there are: $purposes" ;;
  esac
}

# A newer Node.js than Debian's is as good, and its package conflicts with Debian's npm.
node_packages() {
  local major
  major=$(node --version 2>/dev/null | sed -n 's/^v\([0-9]*\)\..*/\1/p')
  if [ "${major:-0}" -lt 18 ] || ! command -v npm >/dev/null; then
    echo nodejs npm
  fi
}

missing_packages() {
  local installed wanted
  # Each name with and without its architecture, because either form may be requested.
  installed=$(dpkg-query -W -f '${db:Status-Status} ${Package} ${Architecture}\n' |
    sed -n -e 's/^installed \([^ ]*\) \(.*\)/\1\n\1:\2/p')
  wanted=$(for purpose in "$@"; do packages_for "$purpose"; done)
  tr -s ' ' '\n' <<<"$wanted" | sed '/^$/d' | sort -u | grep -vxF -e "$installed" || true
}

require_debian_12() {
  local system
  system=$(sed -n 's/^\(ID\|VERSION_ID\)=//p' /etc/os-release 2>/dev/null | tr -d '"' | sort -r |
    tr '\n' ' ')
  [ "$system" = "debian 12 " ] ||
    fail "this is ${system:-an unknown system }and not Debian 12; install by hand: $*"
}

# Everything is downloaded before anything is unpacked, so that Ctrl-C ends the long part at once.
# The update's own result says little (a third-party source may fail); the installation is what
# counts.
apt_install() {
  local logs=$root/build/apt install=(install -y --no-install-recommends "$@")
  rm -rf "$logs"
  mkdir -p "$logs"
  export DEBIAN_FRONTEND=noninteractive
  [[ "$*" != *:armhf* ]] || dpkg --add-architecture armhf
  say "installing $*"
  watched "$logs/1-update" apt-get -q update || true
  { watched "$logs/2-download" apt-get -q "${install[@]}" --download-only &&
    whole "$logs/3-install" apt-get -q "${install[@]}"; } ||
    fail "apt-get cannot install them: $(cause_in "$logs"/*)"
}

install_packages() {
  local missing
  command -v dpkg-query >/dev/null || require_debian_12 "$(packages_for "$1")"
  missing=$(missing_packages "$@" | tr '\n' ' ')
  missing=${missing% }
  [ -n "$missing" ] || return 0
  require_debian_12 "$missing"
  [ "$(id -u)" = 0 ] || fail "not root, and these packages are missing: $missing"
  # shellcheck disable=SC2086  # a list of names
  apt_install $missing
}

# Created beside the old ones and moved into place with their stamp: an interrupted installation
# leaves the old ones.
install_node_modules() {
  local dir=$root/$1 new=$root/build/node-modules sum
  [ -f "$dir/package-lock.json" ] || return 0
  sum=$(sha256sum <"$dir/package-lock.json")
  [ "$(cat "$dir/node_modules/.installed" 2>/dev/null)" != "$sum" ] || return 0
  say "installing the node modules of $1"
  rm -rf "$new"
  mkdir -p "$new"
  cp "$dir/package.json" "$dir/package-lock.json" "$new"
  watched "$new/npm.log" npm --prefix "$new" ci --ignore-scripts --no-audit --no-fund --fetch-retries=1 ||
    fail "npm cannot install the modules of $1: $(cause_in "$new/npm.log")"
  echo "$sum" >"$new/node_modules/.installed"
  rm -rf "$dir/node_modules"
  mv "$new/node_modules" "$dir"
}

[ $# -gt 0 ] || fail "which purpose? One or more of: $purposes"
for purpose in "$@"; do
  packages_for "$purpose" >/dev/null
done
install_packages "$@"
for purpose in "$@"; do
  case $purpose in
    build)
      "$root/scripts/fetch-mongoose.sh"
      install_node_modules web
      ;;
    test) install_node_modules tests/docs ;;
    ui) install_node_modules tests/ui ;;
  esac
done
