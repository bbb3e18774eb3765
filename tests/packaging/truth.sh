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
  inside systemctl start webctrl-health.service
  [ "$(listener)" = "$last" ] || fail "a daemon in good health was restarted"
  kill -STOP "$last"
  inside systemctl start webctrl-health.service || true
  expect_active "after it did not answer"
}

# The init script leaves the work to the unit.
check_deference() {
  inside /etc/init.d/webctrl start
  [ "$(listener)" = "$last" ] || fail "the init script has started a daemon"
  inside /etc/init.d/webctrl status | grep -q 'Active: active' || fail "not the unit's status"
  inside /etc/init.d/webctrl restart
  expect_active "after a restart by the init script"
}

daemons() { pgrep -c -f "$1" || true; }

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
  inside "$script" start &
  inside "$script" start
  wait $!
  expect_new_service "after two starts at a time"
  [ "$(daemons "$daemon")" = 1 ] || fail "more than one daemon after two starts"
  pkill -9 -f 'webctrl supervise -'
  inside "$script" stop
  silent || fail "a stop leaves the daemon of a killed supervisor"
}

# A daemon started by hand is neither killed nor started twice.
check_stranger() {
  inside /opt/webctrl/bin/webctrl >/dev/null 2>&1 &
  wait_until "a daemon started by hand" is_new_service
  ! inside "$1" start 2>/dev/null || fail "a second daemon beside one started by hand"
  [ "$(daemons '^/opt/webctrl/bin/webctrl')" = 1 ] || fail "the daemon started by hand is gone"
  kill "$(listener)"
  wait_until "its end" silent
  inside "$1" start
  expect_new_service "after the one started by hand"
}
