#!/bin/sh
# Benchmarks tsupdate.exe under Wine. Needs build/windows (tsupdate, measure) and build/native.
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
. "$root/tests/driver/drive.sh"
use_desktop 1024x768
pause=0.2  # polling takes CPU time from the measured program
drive C.UTF-8 measure.exe
stat -c %s "$root/build/windows/tsupdate.exe" "$root/build/windows/tsflash.exe" | awk '
    NR == 1 { printf "size of the Windows program: %.2f MB, the limit 0.90 MB\n", $1 / 1e6 }
    NR == 2 { printf "size of tsflash.exe: %.2f MB\n", $1 / 1e6 }'
