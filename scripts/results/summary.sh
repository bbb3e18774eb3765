#!/usr/bin/env bash
# summary.sh <folder> <seconds> [file]: summarises what the stages of test.sh have run in this time,
# from the folder with their results. With a file of tests that may be skipped, any other skipped test
# is a failure.
#
# <folder>/stages has a line for each stage: name, outcome, seconds. <folder>/<stage>.tsv has lines of
# count, outcome, test and reason, separated by tabs.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$0")/../common.sh"

folder=$1
seconds_of_all=$2
allowed=${3-}

# "passed failed skipped" of lines of results
counts() { awk -F '\t' '{ n[$2] += $1 } END { print n["passed"] + 0, n["failed"] + 0, n["skipped"] + 0 }'; }

# Each reason once, with how many tests gave it and the first few of them.
reasons() {
  awk -F '\t' '$2 == "skipped" {
    n[$4] += $1
    if (++named[$4] <= 3) names[$4] = names[$4] (names[$4] ? ", " : "") $3
    else names[$4] = names[$4] (named[$4] == 4 ? ", …" : "")
  } END { for (reason in n) printf "  %5d skipped: %s (%s)\n", n[reason], reason, names[reason] }' \
    "$1" | sort -rn
}

# A line of the list is: stage, test, and how its reason begins; the first two may be patterns.
may_be_skipped() {
  local stage test reason
  while read -r stage test reason; do
    # shellcheck disable=SC2053  # patterns
    if [[ $stage != '#'* && $1 == $stage && $2 == $test && $3 == "$reason"* && -n $reason ]]; then
      return 0
    fi
  done <"$allowed"
  return 1
}

refused_skips() {
  local outcome test reason
  while IFS=$'\t' read -r _ outcome test reason; do
    if [ "$outcome" = skipped ] && ! may_be_skipped "$1" "$test" "$reason"; then
      printf '  may not be skipped: %s (%s)\n' "$test" "$reason"
    fi
  done <"$2"
}

# tell <name> <outcome> <seconds> <file>...
tell() {
  local passed failed skipped
  read -r passed failed skipped < <(cat "${@:4}" | counts)
  printf '%-8s %-7s %5d passed %4d failed %4d skipped %5d s\n' "$1" "$2" "$passed" "$failed" \
    "$skipped" "$3"
}

tell_stage() {
  local name=$1 outcome=$2 file=$folder/$1.tsv refused=
  [ -z "$allowed" ] || refused=$(refused_skips "$name" "$file")
  [ -z "$refused" ] || outcome=FAILED
  [ "$outcome" = passed ] || all=FAILED
  tell "$name" "$outcome" "$3" "$file"
  reasons "$file"
  [ -z "$refused" ] || printf '%s\n' "$refused"
}

all=passed
printf '\n=== Summary\n'
while read -r name outcome seconds; do
  tell_stage "$name" "$outcome" "$seconds"
done <"$folder/stages"
tell all $all "$seconds_of_all" "$folder"/*.tsv
[ $all = passed ]
