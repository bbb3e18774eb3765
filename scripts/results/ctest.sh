#!/usr/bin/env bash
# ctest.sh <build folder> [ctest's options]: runs the tests of a build and records what they did in the
# file that WEBCTRL_RESULTS names. No test at all is a failure, not a success.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$0")/../common.sh"

folder=$1
shift
report=$WEBCTRL_RESULTS.xml
status=0
rm -f "$report"
# The report contains the whole output of every test, which shows the results of the tests inside
# it.
PYTEST_ADDOPTS=-rs ctest --test-dir "$folder" --output-on-failure --no-tests=error \
  --output-junit "$report" --test-output-size-passed 10000000 --test-output-size-failed 10000000 \
  "$@" || status=1
"$root/scripts/results/read.py" report "$report" >>"$WEBCTRL_RESULTS" || status=1
exit $status
