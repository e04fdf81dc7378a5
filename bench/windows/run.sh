#!/bin/sh
# Benchmarks tsupdate.exe under Wine. Needs build/windows (tsupdate, measure) and build/native.
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
. "$root/driver/drive.sh"
use_desktop 1024x768
pause=0.2  # polling takes CPU time from the measured program
drive C.UTF-8 measure.exe
size() { stat -c %s "$root/build/windows/$1.exe"; }
awk -v all="$(size tsupdate)" -v bare="$(size bare)" 'BEGIN {
    printf "size of the Windows program: %.2f MB, the bare runtime %.2f MB, ratio %.1f\n",
        all / 1e6, bare / 1e6, all / bare }'
