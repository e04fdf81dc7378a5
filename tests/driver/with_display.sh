#!/bin/sh
# Runs a command on a virtual display (Xvfb) that ends with the command.
#   with_display.sh COMMAND [ARGUMENT]...
set -eu

folder=$(mktemp -d)
display_server=
command=
clean_up() {
    [ -z "$command" ] || kill "$command" 2>/dev/null || true
    [ -z "$display_server" ] || kill "$display_server" 2>/dev/null || true
    rm -rf "$folder"
}
trap clean_up EXIT
trap 'exit 1' INT TERM

Xvfb -displayfd 3 -screen 0 1920x1280x24 -nolisten tcp 3>"$folder/display" \
    >"$folder/log" 2>&1 </dev/null &
display_server=$!
until [ -s "$folder/display" ]; do
    kill -0 "$display_server" 2>/dev/null || { cat "$folder/log" >&2; exit 1; }
    sleep 0.05
done
DISPLAY=:$(cat "$folder/display")
export DISPLAY

status=0
"$@" </dev/null &
command=$!
wait "$command" || status=$?
command=
exit "$status"
