#!/usr/bin/env bash
# The program driver-conformance as its users call it: what it prints, writes and ends with.
#   program.sh PROGRAM PLUGIN TRANSCRIPT
set -euo pipefail

program=$1 plugin=$2 transcript=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
    echo "$*" >&2
    cat "$scratch/out" "$scratch/err" >&2
    exit 1
}

# expect CODE ARGUMENT...: runs it
expect() {
    local wanted=$1 code=0
    shift
    "$program" "$@" >"$scratch/out" 2>"$scratch/err" || code=$?
    ((code == wanted)) || fail "ended with $code instead of $wanted: $*"
}

# says FILE TEXT
says() {
    grep -Fq -- "$2" "$scratch/$1" || fail "not in $1: $2"
}

expect 0 --help
says out 'Usage: driver-conformance [options] --transcript FILE PLUGIN'
expect 0 --list
says out 'transmission.truncation     A reply that ends early must not be taken for a whole one.'
checks=$(wc -l <"$scratch/out")

expect 0 --transcript "$transcript" --commands 2000 --junit "$scratch/report.xml" "$plugin"
says out 'ok       transcripts.bytes'
says out "$checks checks: "
says out ' 0 failed'
grep -Fq "<testsuite name=\"$(basename "$plugin" .so)\" tests=\"$checks\" failures=\"0\"" "$scratch/report.xml" ||
    fail "the report is another"

expect 0 --transcript "$transcript" --here --only 'errors.*' --only channel.failed-open "$plugin"
says out '7 checks: 7 passed'

sed 's/^> 3A 31 41 52 30 30 36 33/> 3A 31 41 52 30 30 36 34/' "$transcript" >"$scratch/other"
expect 1 --transcript "$scratch/other" --only transcripts.bytes "$plugin"
says out 'FAILED   transcripts.bytes'
says out 'command   read 2 words at D100'
says out 'expected  request 1 to be 3A 31 41 52 30 30 36 34'

expect 1 --transcript "$transcript" --only loading.interface --only commands.results /dev/null
says out 'FAILED   loading.interface'
says out 'skipped  commands.results'

expect 2 "$plugin"
says err 'no transcript'
expect 2 --transcript "$transcript"
says err 'no plug-in'
expect 2 --transcript "$transcript" --only nothing "$plugin"
says err '--only fits no check'

expect 3 --transcript "$scratch/missing" "$plugin"
says err "cannot read $scratch/missing"
echo 'read words 1 D1' >"$scratch/broken"
expect 3 --transcript "$scratch/broken" "$plugin"
says err "$scratch/broken, line 1: \"words\" is no kind of item"
echo 'difference channel.colour it is blue' >"$scratch/unknown"
expect 3 --transcript "$scratch/unknown" "$plugin"
says err '"channel.colour", which is no check'
expect 3 --transcript "$transcript" --only errors.text --junit "$scratch/no/report.xml" "$plugin"
says err "cannot write $scratch/no/report.xml"
expect 3 --transcript "$transcript" --project "$scratch/missing" "$plugin"
says err "cannot make a folder with a copy of $scratch/missing"
echo "driver-conformance does as it says"
