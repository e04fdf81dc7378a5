# shellcheck shell=sh
# Sourced by the scripts that drive tsupdate.exe under Wine. The caller sets `root` to the source
# folder, sources this file, and calls
#   use_desktop WIDTHxHEIGHT [DOTS]      creates a desktop, at 96 dots per inch or at DOTS
#   drive LOCALE PROGRAM [ARGUMENT]...   runs build/windows/PROGRAM on it, with the virtual
#                                        indicator on COM1, and executes its requests; returns the
#                                        exit status of the program
# Needs build/windows (tsupdate, PROGRAM) and build/native (m40sim). Without a display the calling
# script is re-executed on a virtual one. Screenshots go to build/screens; transcripts and the
# state at a failure stay in build/drive.
# shellcheck disable=SC2154  # root is the caller's
[ -n "${DISPLAY:-}" ] || exec xvfb-run -a -s "-screen 0 1920x1280x24" "$0" "$@"
folder=$root/build/drive
screens=$root/build/screens
port=$folder/port
m40sim=$root/build/native/m40sim

need() {
    [ -x "$1" ] || { echo "$1 is missing; build it first." >&2; exit 1; }
}
need "$m40sim"
need "$root/build/windows/tsupdate.exe"

mkdir -p "$folder"
exec 8>"$folder/lock"
flock -n 8 || { echo "The program is being driven already." >&2; exit 1; }
find "$folder" -type f ! -name lock -delete

# Converts a path to its Windows form under Wine.
windows_path() { printf 'Z:%s' "$1" | tr / '\134'; }

# Ends a process started by `follow`, if it still runs.
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

# Sets the resolution for programs started from now on, in dots per inch.
set_resolution() {
    dots=$1
    "$root/scripts/wine" reg.exe add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD \
        /d "$dots" /f >>"$folder/wine.log" 2>&1 8>&-
}

# Runs a program in the background; writes its PID and later its exit status to files.
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

# A peer that responds to the first key with the whole of flood.txt, as fast as it is read.
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

# Takes a screenshot into $1, of the desktop or of the area $2 (WIDTHxHEIGHT+LEFT+TOP).
take_picture() {
    command -v import >/dev/null || return 0
    import -window "$desktop - Wine desktop" ${2:+-crop "$2"} +repage "$1" 2>>"$folder/pictures.log" ||
        echo "no picture $1" >&2
}

# Executes one request of the program; deletes the request file when done.
answer() {
    read -r verb words <"$folder/request" || return 0
    case $verb in
    start) start_indicator "$words" ;;
    flood) start_flood ;;
    stop) stop_indicator ;;
    keep)
        take_picture "$folder/$words.png"
        cp "$folder/indicator.log" "$folder/$words.log" 2>/dev/null || true
        ;;
    show)
        mkdir -p "$screens"
        take_picture "$screens/${words%% *}$suffix.png" "${words#* }"
        ;;
    esac
    rm -f "$folder/request"
}

pause=0.01  # polling interval for requests, seconds
drive() {
    locale=$1
    driver=$root/build/windows/$2
    shift 2
    need "$driver"
    follow driver env LC_ALL="$locale" "$root/scripts/wine" "$driver" "$@" </dev/null \
        2>>"$folder/wine.log"
    until [ -e "$folder/driver.status" ]; do
        [ ! -e "$folder/request" ] || answer
        sleep $pause
    done
    return "$(cat "$folder/driver.status")"
}

DRIVE_FOLDER=$(windows_path "$folder")
DRIVE_PROGRAM=$(windows_path "$root/build/windows/tsupdate.exe")
DRIVE_SAMPLE=$(windows_path "$root/build/native/sample.run")
DRIVE_STEPS=$(windows_path "$root/tests/e2e/tsupdate.steps")
VANTOR_COM1=$port
export DRIVE_FOLDER DRIVE_PROGRAM DRIVE_SAMPLE DRIVE_STEPS VANTOR_COM1

suffix=  # of the screenshot file names
use_desktop() {
    DRIVE_RUN=$$-$1
    DRIVE_DESKTOP=$1
    export DRIVE_RUN DRIVE_DESKTOP
    desktop=drive-$DRIVE_RUN
    # The resolution is read when the desktop is created.
    [ "${2:-96}" = "$dots" ] || set_resolution "${2:-96}"
    suffix=
    [ "$dots" = 96 ] || suffix=-${dots}dpi
}
