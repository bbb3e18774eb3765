#!/usr/bin/env bash
# mutate.sh [--count N] [--seconds S] [--seed N] [--daemon] [--browser] [folder]...: puts small faults
# into the product, one at a time and spread evenly over its folders, and runs the tests against each.
# Prints the faults that survived and a table of all by folder. The unit tests are asked first, with
# --daemon also the tests of the running daemon that are near the faulty file, and with --browser
# those of the pages in a browser that are near a faulty view. By default 300 faults over all folders,
# for no longer than an hour. Works on a copy in build/mutate, where verdicts.txt has a line for each
# fault. Not for continuous integration: a survivor is a question, not an error. Known equivalents
# and their reasons are in scripts/mutate/equivalent.txt.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$0")/common.sh"

purposes=(build run test)
[[ " $* " != *" --browser "* ]] || purposes+=(ui)
"$root/scripts/install-deps.sh" "${purposes[@]}"
cd "$root"
exec nice -n 10 /usr/bin/python3 scripts/mutate/mutate.py "$@"
