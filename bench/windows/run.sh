#!/bin/sh
# Measures tsupdate.exe under Wine. Needs build/windows (tsupdate, measure) and build/native.
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
. "$root/driver/drive.sh"
use_desktop 1024x768
pause=0.2  # what the script does is taken from what is measured
drive C.UTF-8 measure.exe
for program in tsupdate tsflash; do
    stat -c %s "$root/build/windows/$program.exe" | awk -v "program=$program.exe" '{
        printf "size of %s: %.2f MB, the limit 0.90 MB\n", program, $1 / 1e6 }'
done
