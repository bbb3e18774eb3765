# Sourced by the other scripts: the project's root, how they speak, how they stop.
# shellcheck shell=bash disable=SC2034
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
self=$(basename -- "$0" .sh)
# ifconfig, ss and friends live in sbin, which a plain user's PATH lacks.
PATH=$PATH:/usr/local/sbin:/usr/sbin:/sbin

say() {
  printf '%s: %s\n' "$self" "$*"
}

fail() {
  printf '%s: %s\n' "$self" "$*" >&2
  exit 1
}

# record passed|failed|skipped <test> [reason [count]]: a line of results for the summary of test.sh.
record() {
  [ -z "${WEBCTRL_RESULTS-}" ] ||
    printf '%s\t%s\t%s\t%s\n' "${4-1}" "$1" "$2" "${3-}" >>"$WEBCTRL_RESULTS"
}
