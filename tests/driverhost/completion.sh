#!/usr/bin/env bash
# Calls the completion function for bash as bash does and compares what it offers with the program's help.
# Usage: completion.sh COMPLETION_FILE DRIVERHOST
set -euo pipefail

program=$2
# shellcheck source=apps/driverhost/driverhost.bash
source "$1"
XDG_CONFIG_HOME=$(mktemp -d)
export XDG_CONFIG_HOME
trap 'rm -rf "$XDG_CONFIG_HOME"' EXIT
cd "$XDG_CONFIG_HOME"
failures=0

# offered WORD...: what is offered for the last of the words
offered() {
    COMP_WORDS=("$program" "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    _driverhost
    printf '%s\n' "${COMPREPLY[@]}" | sort | xargs
}

# expect WORDS OFFERED: the same, without order
expect() {
    local words expected got
    read -ra words <<<"$1"
    [[ $1 != *' ' && -n $1 ]] || words+=("")
    expected=$(tr ' ' '\n' <<<"$2" | sort | xargs)
    got=$(offered "${words[@]}")
    if [[ $got != "$expected" ]]; then
        echo "\"driverhost $1\": expected \"$expected\", offered \"$got\"" >&2
        failures=$((failures + 1))
    fi
}

subcommands=$("$program" --help | sed -n 's/^  \([a-z][a-z]*\)  .*/\1/p' | xargs)
test "$(wc -w <<<"$subcommands")" -gt 8
expect "" "$subcommands help --help --version"
expect "re" "read restore"
expect "help sc" "scan"
for subcommand in $subcommands; do
    options=$("$program" "$subcommand" --help | grep -oE '^ +(-h, )?--[a-z-]+(, --[a-z-]+)?' | grep -oE -- '--[a-z-]+' | xargs)
    test -n "$options"
    expect "$subcommand --" "$options"
done

# Every value that help lists for an option, the program must take, and no other.
expect "read --format " "text csv json"
expect "write HR1 1 --kind " "bit byte word dword block bit2"
expect "watch --as h" "hex"
expect "read --word-order " "low high"
expect "scan --passes " "1 2"
expect "slave --fault ec" "echo"
expect "doc" "doctor"
expect "scan st" "stations"
expect "scan " "stations HR IR DI DO"

expect "watch HR1 --rotate d" "day"

touch plant.db
expect "watch HR1 --output pl" "plant.db"
expect "read --project pl" "plant.db"
expect "project pl" "plant.db"
expect "compare pl" "plant.db"
"$program" target add boiler rtutcp://10.0.0.5 2>/dev/null
expect "read @" "@boiler"
expect "read @ bo" "@boiler"
expect "restore plant.db @" "@boiler"
expect "doctor @" "@boiler"
expect "doctor --report pl" "plant.db"
exit $((failures > 0))
