#!/usr/bin/env bash
# run.sh: the whole product on a desk. Installs what is missing, builds, starts the simulated recorder
# and the daemon, prints the addresses to open, and stops both on Ctrl-C.
#
# It needs Debian 12, root, and the ports 80/tcp, 4999/udp, 6000/udp and 6001/udp. The first run takes a
# network and about two minutes, a later one neither. The simulated recorder keeps its settings in
# build/run; without that folder they are as delivered.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$(readlink -f -- "$0")")/common.sh"
# shellcheck source=scripts/watched.sh
. "$root/scripts/watched.sh"

bin=$root/build/release/bin
state=$root/build/run
control=6001
declare -A pids=()

# port_owner <ss flags> <port>: "name (pid 12)" of the port's owner; nothing when it is free.
port_owner() {
  local line
  line=$(ss -H -n -p "$1" "sport = :$2" | head -n 1)
  [ -n "$line" ] || return 0
  if [[ $line =~ users:\(\(\"([^\"]*)\",pid=([0-9]+) ]]; then
    echo "${BASH_REMATCH[1]} (pid ${BASH_REMATCH[2]})"
  else
    echo "a process of another user"
  fi
}

require_free() {
  local owner
  owner=$(port_owner "$1" "$2")
  [ -z "$owner" ] || fail "port $2/$3 ($4) is taken by $owner"
}

# Bit 10 of the effective capabilities allows the ports below the unprivileged range.
require_port_80() {
  local caps first
  caps=$(sed -n 's/^CapEff:[[:space:]]*//p' /proc/self/status)
  first=$(cat /proc/sys/net/ipv4/ip_unprivileged_port_start 2>/dev/null || echo 1024)
  [ $((16#$caps >> 10 & 1)) = 1 ] || [ "$first" -le 80 ] ||
    fail "port 80/tcp (web pages) may not be bound by this user: run as root"
}

check_ports() {
  require_free -lt 80 tcp "web pages"
  require_free -au 4999 udp "the daemon's own socket"
  require_free -au 6000 udp "the device application"
  require_free -au $control udp "the simulated recorder's control"
  require_port_80
}

configure_and_build() {
  cd "$root"
  # A folder that test.sh has configured keeps its tests, otherwise the next test.sh would rebuild
  # them.
  [ -f build/release/CMakeCache.txt ] || set -- -DWEBCTRL_BUILD_TESTS=OFF
  cmake --preset release "$@" &&
    cmake --build --preset release --target webctrl devsim web_root -j "$(nproc)"
}

build() {
  local log=$state/build.log
  say "building"
  watched "$log" configure_and_build || {
    tail -n 20 "$log" >&2
    fail "the build failed, see $log"
  }
}

# start <name> <command>...: runs it in the background with its own log. It ends with this script
# even when the script is killed.
start() {
  local name=$1
  shift
  setpriv --pdeathsig TERM "$@" >"$state/$name.log" 2>&1 </dev/null &
  pids[$name]=$!
}

stop_all() {
  trap - EXIT
  trap '' INT TERM HUP
  local name
  for name in "${!pids[@]}"; do
    kill "${pids[$name]}" 2>/dev/null || true
  done
  wait || true
}

# A listening port is not enough: a daemon without its pages also listens, but never answers.
answers() {
  local line=
  exec 3<>/dev/tcp/127.0.0.1/80 || return 1
  printf 'GET /get_cpu_usage HTTP/1.0\r\n\r\n' >&3
  read -r -t 2 line <&3 || return 1
  [[ $line = HTTP/1.?\ 200* ]]
}

wait_until_ready() {
  local tries
  for ((tries = 0; tries < 50; tries++)); do
    require_alive
    ! (answers) 2>/dev/null || return 0
    sleep 0.2
  done
  fail "the daemon does not answer on port 80: $(tail -n 1 "$state/webctrl.log")"
}

require_alive() {
  local name
  for name in "${!pids[@]}"; do
    kill -0 "${pids[$name]}" 2>/dev/null ||
      fail "$name has ended: $(tail -n 1 "$state/$name.log")"
  done
}

# Every address that a browser may use, localhost first.
addresses() {
  echo localhost
  ip -4 -o address show up scope global | awk '{ sub("/.*", "", $4); print $4 }'
}

# The password that the simulated recorder holds: build/run keeps a changed one from run to run. In
# its XML five characters are entities; &amp; comes last, or "&amp;lt;" would become "<".
settings_password() {
  local file=$state/recorder.xml
  [ -f "$file" ] || file=$bin/devsim_default.xml
  iconv -f gbk -t utf-8 "$file" |
    grep -o '<USER_0 [^>]*' |
    sed "s/.*strFD_UserPWD=[\"']\([^\"']*\).*/\1/" |
    sed "s/&lt;/</g; s/&gt;/>/g; s/&quot;/\"/g; s/&apos;/'/g; s/&amp;/\&/g"
}

tell_what_to_do() {
  local address
  say "ready; open one of these and sign in with the password $(settings_password):"
  for address in $(addresses); do
    echo "    http://$address/login.html"
  done
  say "to try next:"
  cat <<END
    curl -s http://localhost/get_LangInfo             # ask as a script does
    echo fault silent >/dev/udp/127.0.0.1/$control        # bash: the recorder falls silent
    echo clear >/dev/udp/127.0.0.1/$control               # and answers again; more: devsim --help
    tail -f $state/devsim.log
END
  say "the daemon's traces are in $state/webctrl.log; Ctrl-C stops both"
}

case ${1-} in
  '') ;;
  -h | --help) usage && exit ;;
  *) fail "takes no arguments but --help" ;;
esac
trap 'exit 130' INT
trap 'exit 143' TERM HUP
"$root/scripts/install-deps.sh" build run
check_ports
mkdir -p "$state"
build
trap stop_all EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP
start devsim "$bin/devsim" --state "$state/recorder.xml" --log - --control $control
start webctrl "$bin/webctrl"
wait_until_ready
tell_what_to_do
wait -n "${pids[@]}" || true
require_alive
