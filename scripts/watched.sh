# Sourced by scripts that run long external commands: progress, Ctrl-C, and why a command failed.
# shellcheck shell=bash

# Messages of apt-get, npm and git, and their causes. The first matching row counts: when a source
# cannot be reached, apt-get also misses packages.
failure_causes=(
  "dpkg was interrupted" "an earlier installation was interrupted: run \"dpkg --configure -a\" first"
  "Could not get lock|is locked by|frontend lock" "another package manager is at work: wait for it"
  "No space left|enough free space|ENOSPC" "the disk is full"
  "is not valid yet|expired|CERT_NOT_YET_VALID|CERT_HAS_EXPIRED" "a date is wrong: look at this machine's clock"
  "[Cc]ertificate (verif|is|has|does)|CERT_|UNABLE_TO_" "a server's certificate is not accepted: install ca-certificates, or your proxy's certificate"
  "EINTEGRITY" "a downloaded module is not what the lock file names"
  "resolving|[Cc]ould not resolve|ENOTFOUND|EAI_AGAIN|[Cc]ould not connect|Cannot initiate|Connection failed|unreachable|[Tt]imed out|ECONN|ETIMEDOUT" "there is no network, or no way to the server"
  "Unable to locate|no installation candidate|find a source package|must put some" "the package sources of this machine do not have it: /etc/apt/sources.list wants a line like \"deb http://deb.debian.org/debian bookworm main\""
)

# cause_in <log>...: the cause of a failure, and the line that shows it.
cause_in() {
  local i line
  for ((i = 0; i < ${#failure_causes[@]}; i += 2)); do
    line=$(grep -h -m 1 -E -- "${failure_causes[i]}" "$@" | head -n 1 || true)
    [ -z "$line" ] || { echo "${failure_causes[i + 1]} ($line)" && return; }
  done
  cat "$@" | grep -m 1 -E '^E: |npm ERR!' || cat "$@" | tail -n 1
}

# The last line of a log: every second on a terminal, else every fifteen seconds.
show_progress() {
  local log=$1 tenths=$2 line
  [ $((tenths % 10)) = 9 ] || return 0
  line=$(tail -n 1 "$log" | cut -c 1-70)
  if [ -t 1 ]; then
    printf '\r\033[K%4d s  %s' $((tenths / 10 + 1)) "$line"
  elif [ $((tenths % 150)) = 149 ]; then
    say "$((tenths / 10 + 1)) s: $line"
  fi
}

# watched <log> <command>...: runs it with its output in the log, and shows progress. Ctrl-C ends it
# and this script. whole <log> <command>...: the same for a command that must not be cut short.
# After Ctrl-C it goes on to its end, and then this script ends.
watched() { run_watched end "$@"; }
whole() { run_watched wait "$@"; }

# Its own process group keeps the terminal's Ctrl-C away, so that this script decides whether to
# pass it on.
run_watched() {
  local how=$1 log=$2 pid status=0 tenths=0 signal=
  shift 2
  set -m
  "$@" >"$log" 2>&1 </dev/null &
  pid=$!
  set +m
  trap 'signal=130; on_signal "$how" "$pid"' INT
  trap 'signal=143; on_signal "$how" "$pid"' TERM HUP
  while kill -0 "$pid" 2>/dev/null; do
    show_progress "$log" $tenths
    tenths=$((tenths + 1))
    sleep 0.1 || true
  done
  wait "$pid" || status=$?
  [ ! -t 1 ] || printf '\r\033[K'
  trap - INT TERM HUP
  [ -z "$signal" ] || exit "$signal"
  return $status
}

on_signal() {
  case $1 in
    end) kill -TERM -- "-$2" 2>/dev/null || true ;;
    wait) say "stopping as soon as the packages are completely installed" ;;
  esac
}
