# Sourced by the other scripts: the project's root, messages, failures.
# shellcheck shell=bash disable=SC2034
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/.." && pwd -P)
self=$(basename -- "$(readlink -f -- "$0")" .sh)
# ifconfig, ss and others are in sbin, which is not in an ordinary user's PATH.
PATH=$PATH:/usr/local/sbin:/usr/sbin:/sbin

say() {
  printf '%s: %s\n' "$self" "$*"
}

fail() {
  printf '%s: %s\n' "$self" "$*" >&2
  exit 1
}

# The text at the beginning of the calling script.
usage() {
  awk 'NR > 1 && !/^#/ { exit } NR > 1 && !/shellcheck/ && (begun = begun || /[a-z]/) {
    sub(/^# ?/, ""); print
  }' "$0"
}

# record passed|failed|skipped <test> [reason]: adds a line of results for the summary of test.sh.
record() {
  [ -z "${WEBCTRL_RESULTS-}" ] ||
    printf '1\t%s\t%s\t%s\n' "$1" "$2" "${3-}" >>"$WEBCTRL_RESULTS"
}
