#!/bin/sh
# Takes pictures of all stages of tsupdate.exe into build/screens: in both languages, at 96 dots
# per inch and at 144. Needs build/windows and build/native.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
. "$root/driver/drive.sh"

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
