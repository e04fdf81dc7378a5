#!/bin/sh
# Takes screenshots of all stages of tsupdate.exe into build/screens, in both languages, at 96 and
# 144 dots per inch. A stage that does not appear makes the exit status 1; the other scripts still
# run. Needs build/windows and build/native.
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
. "$root/tests/driver/drive.sh"

DRIVE_STEPS=$(windows_path "$root/tests/driver/screens.steps")
status=0
take_language() {
    DRIVE_LANGUAGE=$1 drive "$2" e2e_tests.exe --gtest_filter="TsUpdate.*" || {
        status=$?
        tail -n 20 "$folder/wine.log" >&2
    }
}
take_screens() {
    take_language en C.UTF-8
    take_language es es_ES.UTF-8
}
use_desktop 1024x768
take_screens
use_desktop 1536x1152 144
take_screens
exit $status
