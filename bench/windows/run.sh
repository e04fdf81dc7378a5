#!/bin/sh
# Measures tsupdate.exe under Wine. Needs build/windows (tsupdate, measure) and build/native.
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
. "$root/driver/drive.sh"
use_desktop 1024x768
pause=0.2  # what the script does is taken from what is measured
drive C.UTF-8 measure.exe
