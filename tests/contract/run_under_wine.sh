#!/bin/sh
# Runs the contract tests of the Windows build: with two ports that are wired to each other, and
# the string table once more in Spanish, which is a matter of the whole process.
#   run_under_wine.sh path/to/null_modem path/to/contract_tests.exe
set -eu

null_modem=$1
tests=$2
wine=$(cd "$(dirname "$0")/../.." && pwd)/scripts/wine
if [ ! -x "$null_modem" ]; then
    echo "$null_modem is missing; build the native preset first." >&2
    exit 1
fi

folder=$(mktemp -d)
modem=
clean_up() {
    [ -z "$modem" ] || kill "$modem" 2>/dev/null || true
    rm -rf "$folder"
}
trap clean_up EXIT
trap 'exit 1' INT TERM

"$null_modem" --link1 "$folder/line1" --link2 "$folder/line2" >"$folder/out" &
modem=$!
until grep -q ready "$folder/out"; do
    kill -0 "$modem"
    sleep 0.05
done

export VANTOR_COM1="$folder/line1" VANTOR_COM2="$folder/line2"
status=0
LC_ALL=C.UTF-8 "$wine" "$tests" </dev/null || status=1
LC_ALL=es_ES.UTF-8 CONTRACT_LANGUAGE=Spanish "$wine" "$tests" \
    --gtest_filter='Native/StringTableContract.*' </dev/null || status=1
exit $status
