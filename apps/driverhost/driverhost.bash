# Completion of driverhost for bash: subcommands, options and their values. Subcommands and options are what the program's
# own help has.
# shellcheck shell=bash

_driverhost_subcommands() {
    "$1" --help 2>/dev/null | sed -n 's/^  \([a-z][a-z]*\)  .*/\1/p'
    echo help
}

_driverhost_options() {
    "$1" "$2" --help 2>/dev/null | grep -oE '^ +(-h, )?--[a-z-]+(, --[a-z-]+)?' | grep -oE -- '--[a-z-]+'
}

_driverhost_targets() {
    "$1" target 2>/dev/null | sed -n '2,$s/^\([^ ]*\) .*/@\1/p'
}

# The words that an option takes; "FILE" for the name of a file; nothing for what nobody can know.
_driverhost_values() {
    case $1 in
        --format) echo text csv json ;;
        --kind) echo bit byte word dword block bit2 ;;
        --as) echo unsigned signed hex binary float ;;
        --word-order) echo low high ;;
        --encoding) echo latin1 utf8 ;;
        --passes) echo 1 2 ;;
        --rotate) echo day 1M 10M 100M ;;
        --device | --why) echo ETHERNET COM1 COM2 ;;
        --fault)
            echo silence delay truncate wrong-station wrong-function wrong-crc exception junk-before junk-after split merge \
                double stale echo reset close half-open
            ;;
        --plugin | --project | --points | --record | --values | --report | --make | --check | --from-project | --from-scan | \
            --output | --learnt)
            echo FILE
            ;;
    esac
}

# What may stand where no option does.
_driverhost_words() {
    case $2 in
        scan) echo stations HR IR DI DO ;;
        target) echo add remove ;;
        help) _driverhost_subcommands "$1" ;;
        project | compare | restore) echo FILE ;;
    esac
    case $2 in
        read | write | watch | tags | scan | doctor | target | snapshot) _driverhost_targets "$1" ;;
    esac
}

_driverhost_offer() {
    local words=$1 current=$2
    if [[ $words == FILE ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        compopt -o filenames 2>/dev/null
    else
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    fi
}

_driverhost() {
    local program=${COMP_WORDS[0]} subcommand=${COMP_WORDS[1]} current=${COMP_WORDS[COMP_CWORD]}
    local previous=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        _driverhost_offer "$(_driverhost_subcommands "$program") --help --version" "$current"
    elif [[ $(_driverhost_values "$previous") != "" ]]; then
        _driverhost_offer "$(_driverhost_values "$previous")" "$current"
    elif [[ $current == @* ]]; then
        _driverhost_offer "$(_driverhost_targets "$program")" "$current"
    elif [[ $previous == @ ]]; then
        # Bash hands over the "@" as a word of its own, and replaces it all the same.
        _driverhost_offer "$(_driverhost_targets "$program")" "@$current"
    elif [[ $current == -* ]]; then
        _driverhost_offer "$(_driverhost_options "$program" "$subcommand")" "$current"
    else
        _driverhost_offer "$(_driverhost_words "$program" "$subcommand")" "$current"
    fi
}

complete -F _driverhost driverhost
