#!/bin/sh
# Runs the tests of the real windows on a separate display, and tests the program's arguments and
# standard streams: they pass unchanged, whatever the ANSI code page.
#   run.sh path/to/win32_tests.exe [GoogleTest option]...
set -eu

root=$(cd "$(dirname "$0")/../.." && pwd)
wine=$root/scripts/wine
status=0
xvfb-run -a -s "-screen 0 1920x1280x24" "$wine" "$@" </dev/null || status=1

export LC_ALL=C.UTF-8
told=$(printf 'mañana\r\n\nlast' | "$wine" "$1" echo 'złoty 25 €' 秤)
if [ "$told" != 'echo|złoty 25 €|秤|<mañana><><last>' ]; then
    echo "Told: $told" >&2
    status=1
fi
exit $status
