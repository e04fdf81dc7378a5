#!/bin/sh
# Runs tsupdate.exe under Wine as its users do, against the virtual indicator.
#   run.sh                   all tests, in English and in Spanish
#   run.sh NAME              the tests whose names match (a filter of GoogleTest)
#   run.sh --screens         pictures of all stages, in build/screens: in both languages, at 96
#                            dots per inch and at 144
#   run.sh --bench           measurements, on a quiet machine
#   run.sh --monkey SECONDS  random clicks, keys and close requests; E2E_SEED=N repeats a run
# Needs build/windows (tsupdate, e2e_tests) and build/native (m40sim). Of a failed test a picture
# and what passed over the line stay in build/e2e.
set -eu

root=$(cd "$(dirname "$0")/../.." && pwd)
[ -n "${DISPLAY:-}" ] || exec "$root/tests/with_display.sh" "$0" "$@"
folder=$root/build/e2e
screens=$root/build/screens
port=$folder/port
m40sim=$root/build/native/m40sim
driver=$root/build/windows/e2e_tests.exe
for program in "$m40sim" "$driver" "$root/build/windows/tsupdate.exe"; do
    [ -x "$program" ] || { echo "$program is missing; build it first." >&2; exit 1; }
done

mkdir -p "$folder"
exec 8>"$folder/lock"
flock -n 8 || { echo "These tests are running already." >&2; exit 1; }
find "$folder" -type f ! -name lock -delete

# A path as the Windows programs see it.
windows_path() { printf 'Z:%s' "$1" | tr / '\134'; }

# Ends what `follow` has started, if it has not ended by itself.
end() {
    number=$(cat "$folder/$1.pid" 2>/dev/null) || return 0
    kill "$number" 2>/dev/null || true
}

dots=96
clean_up() {
    end driver
    end indicator
    [ "$dots" = 96 ] || set_resolution 96
}
trap clean_up EXIT
trap 'exit 1' INT TERM

# The resolution that programs find from now on, in dots per inch.
set_resolution() {
    dots=$1
    "$root/scripts/wine" reg.exe add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD \
        /d "$dots" /f >>"$folder/wine.log" 2>&1 8>&-
}

# Runs a program, leaves its number and later its exit status in files.
follow() {
    name=$1
    shift
    rm -f "$folder/$name.status"
    {
        status=0
        "$@" &
        echo $! >"$folder/$name.pid"
        wait $! || status=$?
        echo $status >"$folder/$name.part"
        mv "$folder/$name.part" "$folder/$name.status"
        rm -f "$folder/$name.pid"
    } 8>&- &
}

start_indicator() {
    stop_indicator
    # shellcheck disable=SC2086  # options are words
    follow indicator "$m40sim" --once --image "$folder/image.run" --link "$port" \
        --transcript "$folder/indicator.log" $1 >"$folder/indicator.out" 2>"$folder/indicator.err"
    until [ -s "$folder/indicator.out" ]; do sleep 0.02; done
}

# A peer that answers the first key with the whole of flood.txt, as fast as it is taken.
start_flood() {
    stop_indicator
    export FLOOD="$folder/flood.txt"
    # shellcheck disable=SC2016  # for the shell that socat starts
    follow indicator socat "PTY,rawer,link=$port" \
        'SYSTEM:head -c 1 >/dev/null; cat <$FLOOD; cat >/dev/null' 2>"$folder/indicator.err"
    until [ -e "$port" ]; do sleep 0.02; done
}

stop_indicator() {
    end indicator
    while [ -e "$folder/indicator.pid" ]; do sleep 0.02; done
}

# A picture of the screen, or of a part of it (WIDTHxHEIGHT+LEFT+TOP).
take_picture() {
    command -v import >/dev/null || return 0
    import -window "$desktop - Wine desktop" ${2:+-crop "$2"} +repage "$1" 2>>"$folder/pictures.log" ||
        echo "no picture $1" >&2
}

# A picture of the kind $1 that is red in its left half and blue in its right one, of $2 each.
draw_picture() {
    convert -size "$2" xc:red xc:blue +append "$folder/picture.$1" 2>>"$folder/pictures.log"
}

# Where each thread of the program stands: running or asleep, its processor time, and in which call.
note_threads() {
    for stat in /proc/[0-9]*/task/*/stat; do
        case $(cat "$stat" 2>/dev/null) in
        *'(tsupdate.exe)'*) ;;
        *) continue ;;
        esac
        echo "$(cut -d' ' -f1-3,14,15 "$stat") $(cat "${stat%stat}wchan") $(cat "${stat%stat}syscall")"
    done
}

# What the driver asks for: one request at a time, gone when it is done.
answer() {
    read -r verb words <"$folder/request" || return 0
    case $verb in
    start) start_indicator "$words" ;;
    flood) start_flood ;;
    stop) stop_indicator ;;
    keep)
        take_picture "$folder/$words.png"
        cp "$folder/indicator.log" "$folder/$words.log" 2>/dev/null || true
        note_threads >"$folder/$words.threads" 2>/dev/null || true
        ;;
    # shellcheck disable=SC2086  # two words
    draw) draw_picture $words ;;
    show)
        mkdir -p "$screens"
        take_picture "$screens/${words%% *}$suffix.png" "${words#* }"
        ;;
    esac
    rm -f "$folder/request"
}

pause=0.01  # between two looks for a request
drive() {
    language=$1
    shift
    follow driver env LC_ALL="$language" "$root/scripts/wine" "$driver" "$@" </dev/null \
        2>>"$folder/wine.log"
    until [ -e "$folder/driver.status" ]; do
        [ ! -e "$folder/request" ] || answer
        sleep $pause
    done
    return "$(cat "$folder/driver.status")"
}

E2E_FOLDER=$(windows_path "$folder")
E2E_PROGRAM=$(windows_path "$root/build/windows/tsupdate.exe")
E2E_SAMPLE=$(windows_path "$root/build/native/sample.run")
VANTOR_COM1=$port
export E2E_FOLDER E2E_PROGRAM E2E_SAMPLE VANTOR_COM1

# A desktop of its own, of the size WIDTHxHEIGHT: the resolution is read when it is made.
use_desktop() {
    E2E_RUN=$$-$1
    E2E_DESKTOP=$1
    export E2E_RUN E2E_DESKTOP
    desktop=e2e-$E2E_RUN
}
use_desktop 1024x768

take_screens() {
    E2E_LANGUAGE=en drive C.UTF-8 --gtest_filter='Screens.*' || status=1
    E2E_LANGUAGE=es drive es_ES.UTF-8 --gtest_filter='Screens.*' || status=1
}

suffix=
status=0
case ${1:-} in
--screens)
    take_screens
    suffix=-144dpi
    set_resolution 144
    use_desktop 1536x1152
    take_screens
    ;;
--bench)
    pause=0.2  # what the script does is taken from what is measured
    drive C.UTF-8 --gtest_brief=1 --gtest_filter='Measure.*' || status=1
    ;;
--monkey)
    E2E_SECONDS=$2 drive C.UTF-8 --gtest_filter='Monkey.*' || status=1
    ;;
'')
    drive C.UTF-8 --gtest_filter='-Screens.*:Measure.*:Monkey.*:Spanish*' || status=1
    drive es_ES.UTF-8 --gtest_filter='Spanish*' || status=1
    ;;
Spanish*)
    drive es_ES.UTF-8 --gtest_filter="$1" || status=1
    ;;
*)
    drive C.UTF-8 --gtest_filter="$1" || status=1
    ;;
esac
exit $status
