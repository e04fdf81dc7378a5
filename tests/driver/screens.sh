#!/bin/sh
# Takes screenshots of all stages of tsupdate.exe into build/screens, in both languages, at 96 and
# 144 dots per inch. Needs build/windows and build/native.
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
. "$root/tests/driver/drive.sh"

status=0
take_screens() {
    DRIVE_LANGUAGE=en drive C.UTF-8 screens.exe || status=1
    DRIVE_LANGUAGE=es drive es_ES.UTF-8 screens.exe || status=1
}
use_desktop 1024x768
take_screens
use_desktop 1536x1152 144
take_screens
exit $status
