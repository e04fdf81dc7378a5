#!/bin/sh
# Runs tsupdate.exe under Wine as a user does, with the virtual indicator.
#   run.sh                   all tests, in English and in Spanish, some at 192 DPI
#   run.sh NAME              the tests whose names match (a GoogleTest filter)
#   run.sh --monkey SECONDS  random clicks, keys and close requests; E2E_SEED=N repeats a run
# Needs build/windows and build/native. A failed test leaves a screenshot and the log of the line
# in build/drive. tests/driver/screens.sh takes the screenshots of all stages; scripts/bench measures.
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
. "$root/tests/driver/drive.sh"
use_desktop 1024x768

status=0
run() { drive "$1" e2e_tests.exe --gtest_filter="$2" || status=1; }
case ${1:-} in
--monkey) E2E_SECONDS=$2 run C.UTF-8 'Monkey.*' ;;
'')
    run C.UTF-8 '-Monkey.*:*InSpanish:*AtTwice*'
    run es_ES.UTF-8 '*InSpanish'
    # At twice the resolution.
    use_desktop 1900x1260 192
    run C.UTF-8 '*Keyboard*:*AtTwice*'
    ;;
*Spanish*) run es_ES.UTF-8 "$1" ;;
*) run C.UTF-8 "$1" ;;
esac
exit $status
