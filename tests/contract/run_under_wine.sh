#!/bin/sh
# Runs the contract tests of the Windows build: with two ports that are connected to each other,
# and the string table again in two variants of Spanish, since the language is per process.
#   run_under_wine.sh path/to/contract_tests.exe
set -eu

tests=$1
wine=$(cd "$(dirname "$0")/../.." && pwd)/scripts/wine
folder=$(mktemp -d)

cut_wire() {
    for part in wire holder; do
        number=$(cat "$folder/$part.pid" 2>/dev/null) || continue
        rm "$folder/$part.pid"
        kill "$number" 2>/dev/null || true
        wait "$number" 2>/dev/null || true
    done
}
clean_up() {
    cut_wire
    rm -rf "$folder"
}
trap clean_up EXIT
trap 'exit 1' INT TERM

# `sleep` keeps both terminals open: a terminal that no process has open reports a hang-up.
lay_wire() {
    rm -f "$folder/line1" "$folder/line2"
    socat "PTY,rawer,link=$folder/line1" "PTY,rawer,link=$folder/line2" &
    echo $! >"$folder/wire.pid"
    until [ -e "$folder/line1" ] && [ -e "$folder/line2" ]; do sleep 0.02; done
    sleep infinity <>"$folder/line1" 3<>"$folder/line2" &
    echo $! >"$folder/holder.pid"
}

run() {
    rm -f "$folder/status"
    {
        status=0
        "$wine" "$tests" "$@" </dev/null || status=$?
        echo $status >"$folder/status.new"
        mv "$folder/status.new" "$folder/status"
    } &
    # A test requests the removal of the device by a file; deleted when a new line is in place.
    until [ -e "$folder/status" ]; do
        if [ -e "$folder/pull" ]; then
            cut_wire
            lay_wire
            rm "$folder/pull"
        fi
        sleep 0.05
    done
    return "$(cat "$folder/status")"
}

export VANTOR_COM1="$folder/line1" VANTOR_COM2="$folder/line2"
CONTRACT_PULL=$(printf 'Z:%s' "$folder/pull" | tr / '\134')
export CONTRACT_PULL
export TZ=IST-5:30  # a time zone whose sign and minutes count
lay_wire
status=0
LC_ALL=C.UTF-8 run || status=1
for locale in es_ES es_MX; do
    LC_ALL=$locale.UTF-8 CONTRACT_LANGUAGE=Spanish run \
        --gtest_filter='Of/StringTableContract.*/Native' || status=1
done
exit $status
