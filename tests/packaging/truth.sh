# Sourced by case.sh: the service is active only while it serves, and there is never a second daemon.
# shellcheck shell=bash disable=SC2154

pages=opt/webctrl/bin/web_root

unit_state() { inside systemctl show --value -p "$2" "$1"; }
unit_is() { [ "$(unit_state webctrl.service ActiveState)" = "$1" ]; }
has_tried_again() { [ "$(unit_state webctrl.service NRestarts)" -gt 1 ]; }

# expect_trouble <what>: a start reports its failure, and is repeated.
expect_trouble() {
  inside systemctl stop webctrl
  ! inside systemctl start webctrl 2>>"$work/$name.log" || fail "a start works $1"
  ! unit_is active || fail "the unit is active $1"
  wait_until "another try $1" has_tried_again
  ! unit_is active || fail "the unit is active $1"
  say "is not active $1"
}

expect_active() {
  wait_until "an active unit $1" unit_is active
  expect_new_service "$1"
}

# Another program on port 80 answers every request, as a web server would.
take_port_80() {
  /usr/bin/python3 -m http.server 80 --directory "$top/$pages" >/dev/null 2>&1 &
  taker=$!
  wait_until "a taken port 80" curl -s -o /dev/null http://127.0.0.1/login.html
}

check_unit() {
  [ "$(unit_state webctrl.service MemoryMax)" = $((24 << 20)) ] || fail "no limit of memory"
  [ "$(unit_state webctrl-health.timer ActiveState)" = active ] || fail "nobody looks after it"
  inside systemctl stop webctrl
  [ "$(unit_state webctrl-health.timer ActiveState)" = inactive ] || fail "the timer goes on"
  take_port_80
  expect_trouble "while another program has the port"
  kill "$taker"
  wait "$taker" || true
  expect_active "once the port is free"
  mv "$top/$pages" "$top/$pages.away"
  expect_trouble "without its pages"
  mv "$top/$pages.away" "$top/$pages"
  expect_active "once the pages are back"
  check_health
  check_deference
}

# The check that the timer makes every minute.
check_health() {
  local told
  inside systemctl start webctrl-health.service
  [ "$(listener)" = "$last" ] || fail "a daemon in good health was restarted"
  inside journalctl --sync
  told=$(journal_of webctrl-health)
  [ -z "$told" ] || fail "a check without a complaint tells: $told"
  check_busy
  kill -STOP "$last"
  inside systemctl start webctrl-health.service || true
  wait_until "the complaint" complains
  expect_active "after it did not answer"
}

journal_of() { inside journalctl --quiet --output=cat --unit "$1"; }
complains() { journal_of webctrl-health | grep -q "does not answer"; }

# Without a recorder each of these requests takes 5 seconds, and a newcomer waits for all of them.
check_busy() {
  local clients
  curl -s --max-time 120 --parallel --parallel-immediate --parallel-max 12 -o /dev/null \
    "http://127.0.0.1/get_LangInfo?[1-12]" 2>/dev/null &
  clients=$!
  wait_until "twelve clients" are_clients 12
  inside systemctl start webctrl-health.service || fail "a busy daemon fails the check"
  kill "$clients" 2>/dev/null || fail "the daemon was busy for too short a time"
  wait "$clients" || true
  [ "$(listener)" = "$last" ] || fail "a busy daemon was restarted"
  say "is left alone while it is busy"
}

are_clients() { [ "$(ss -H -nt state established 'dport = :80' | wc -l)" -ge "$1" ]; }

# The init script leaves the work to the unit.
check_deference() {
  inside /etc/init.d/webctrl start
  [ "$(listener)" = "$last" ] || fail "the init script has started a daemon"
  inside /etc/init.d/webctrl status | grep -q 'Active: active' || fail "not the unit's status"
  inside /etc/init.d/webctrl restart
  expect_active "after a restart by the init script"
}

daemons() { pgrep -c -f "$1" || true; }

# start_with <folder of /tmp/race> <script>: a start that first finds the programs there.
start_with() {
  # shellcheck disable=SC2016  # for the inner shell
  inside sh -c 'PATH=/tmp/race/$1:$PATH exec "$0" start' "$2" "$1"
}

# Two starts find the lock of a script that was killed. What one is about to remove, the other leaves
# alone: by then it could be the lock of a third.
race() {
  local places=$top/tmp/race lock starts=()
  lock=$top$(inside readlink -f /var/run)/webctrl.lock
  mkdir -p "$places/one" "$places/other"
  cat >"$places/one/rm" <<'END'
#!/bin/sh
: >/tmp/race/removes
until [ -e /tmp/race/seen ]; do /bin/sleep 0.1; done
exec /bin/rm "$@"
END
  printf '#!/bin/sh\n: >/tmp/race/waits\nexec /bin/sleep "$@"\n' >"$places/other/sleep"
  chmod 755 "$places/one/rm" "$places/other/sleep"
  ln -s 999999 "$lock"
  start_with one "$1" &
  starts+=($!)
  wait_until "a start that removes a stale lock" [ -e "$places/removes" ]
  start_with other "$1" &
  starts+=($!)
  wait_until "another start that waits" [ -e "$places/waits" ]
  [ "$(readlink "$lock")" = 999999 ] || fail "two starts remove the same lock"
  : >"$places/seen"
  wait "${starts[0]}"
  wait "${starts[1]}"
  rm -r "$places"
}

# check_script <script> <how a daemon's command line looks>
check_script() {
  local script=$1 daemon=$2
  pkill -9 -f 'webctrl supervise -'
  [ "$(daemons "$daemon")" = 1 ] || fail "the daemon went with its supervisor"
  inside "$script" start
  expect_new_service "after its supervisor was killed"
  [ "$(daemons "$daemon")" = 1 ] || fail "more than one daemon after the supervisor's death"
  inside "$script" stop
  silent || fail "still there after a stop"
  race "$script"
  expect_new_service "after two starts at a time"
  [ "$(daemons "$daemon")" = 1 ] || fail "more than one daemon after two starts"
  pkill -9 -f 'webctrl supervise -'
  inside "$script" stop
  silent || fail "a stop leaves the daemon of a killed supervisor"
  check_deaf "$script"
}

# A stopped process does not take the signal to end either.
check_deaf() {
  inside "$1" start
  expect_new_service "after another start"
  kill -STOP "$last"
  inside "$1" stop || fail "a daemon that does not end cannot be stopped"
  silent || fail "a stop leaves a daemon that does not end"
}

# expect_no_wait <what> <command>...: it works without waiting for a lock.
expect_no_wait() {
  local what=$1 end=$((SECONDS + 10))
  shift
  "$@" || fail "fails with a lock $what"
  [ $SECONDS -lt $end ] || fail "waits for a lock $what"
  [ ! -L "$top$run/webctrl.lock" ] || fail "leaves its lock"
}

# What a death, a loss of power or a full disk leaves does not stop the script.
check_locks() {
  local run told
  run=$(inside readlink -f /var/run)
  : >"$top$run/webctrl.lock"
  expect_no_wait "that is an empty file" inside "$1" stop
  ln -s 999999 "$top$run/webctrl.lock"
  ln -s 999999 "$top$run/webctrl.lock.stale"
  expect_no_wait "of nobody" inside "$1" stop
  ln -s $$ "$top$run/webctrl.lock"
  expect_no_wait "with another program's number" inside "$1" stop
  # shellcheck disable=SC2016  # for the inner shell
  expect_no_wait "with its own number" inside sh -c 'ln -s $$ /var/run/webctrl.lock; exec "$0" stop' "$1"
  mount -t tmpfs -o ro tmpfs "$top$run"
  ! told=$(inside "$1" stop 2>&1) || fail "works without a lock"
  umount "$top$run"
  grep -q "Read-only file system" <<<"$told" || fail "a read-only folder gives: $told"
}

# A daemon started by hand is neither killed nor started twice.
check_stranger() {
  inside /opt/webctrl/bin/webctrl >/dev/null 2>&1 &
  wait_until "a daemon started by hand" is_new_service
  ! inside "$1" start 2>/dev/null || fail "a second daemon beside one started by hand"
  [ "$(daemons '^/opt/webctrl/bin/webctrl')" = 1 ] || fail "the daemon started by hand is gone"
  cp -p "$top/opt/webctrl/bin/webctrl" "$top/opt/webctrl/bin/later"
  mv "$top/opt/webctrl/bin/later" "$top/opt/webctrl/bin/webctrl"
  ! inside "$1" start 2>/dev/null || fail "a second daemon beside one of an older version"
  kill "$(listener)"
  wait_until "its end" silent
  mv "$top/opt" "$top/srv/opt"
  ln -s srv/opt "$top/opt"
  inside /opt/webctrl/bin/webctrl >/dev/null 2>&1 &
  wait_until "a daemon started by hand in a linked folder" is_new_service
  ! inside "$1" start 2>/dev/null || fail "a second daemon where /opt is a link"
  kill "$(listener)"
  wait_until "its end" silent
  rm "$top/opt"
  mv "$top/srv/opt" "$top/opt"
  inside "$1" start
  expect_new_service "after the one started by hand"
}
