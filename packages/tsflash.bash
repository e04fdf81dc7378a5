# bash completion for tsflash. Options and ports come from --help and --list-ports.
_tsflash() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    case $before in
    -p | --port)
        mapfile -t COMPREPLY < <(compgen -W "$("$1" --list-ports 2>/dev/null | cut -d' ' -f1)" -- "$word")
        return ;;
    -b | --baud)
        mapfile -t COMPREPLY < <(compgen -W '300 600 1200 2400 4800 9600 19200 38400 57600 115200' -- "$word")
        return ;;
    --parity) mapfile -t COMPREPLY < <(compgen -W 'N O E' -- "$word") ; return ;;
    --data-bits) mapfile -t COMPREPLY < <(compgen -W '7 8' -- "$word") ; return ;;
    --stop-bits) mapfile -t COMPREPLY < <(compgen -W '1 2' -- "$word") ; return ;;
    --fault) return ;;
    --log) compopt -o default ; return ;;
    esac
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$("$1" --help 2>/dev/null |
            sed -n 's/^ *\(-[a-z],\)\{0,1\} *\(--[a-z-]*\).*/\2/p')" -- "$word")
    else
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -d -- "$word"; compgen -f -X '!*.run' -- "$word")
    fi
}
complete -F _tsflash tsflash
