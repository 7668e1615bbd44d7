#!/usr/bin/env bash
# The installed package takes projects of its own Qt line, and says to others why it does not.
#   qt_line.sh LINE BUILD            the environment has CMAKE and CXX
set -euo pipefail

line=$1 build=$2
project=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/qt_line
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
    echo "$*" >&2
    cat "$scratch/log" >&2
    exit 1
}

# configure [ARGUMENT...]: what CMake says goes to the log, without the breaks in its lines
configure() {
    local qmake status=0
    qmake=$(sed -n 's/^QT_QMAKE_EXECUTABLE:[^=]*=//p' "$build/CMakeCache.txt")
    rm -rf "$scratch/binary"
    "$CMAKE" -S "$project" -B "$scratch/binary" "-DCMAKE_PREFIX_PATH=$scratch/prefix" \
        ${qmake:+"-DQT_QMAKE_EXECUTABLE=$qmake"} "$@" >"$scratch/lines" 2>&1 || status=$?
    tr -s ' \n' ' ' <"$scratch/lines" >"$scratch/log"
    return "$status"
}

takes() {
    configure "$@" || fail "refuses $*"
}

# refuses TEXT ARGUMENT...
refuses() {
    if configure "${@:2}"; then
        fail "takes ${*:2}"
    fi
    grep -Fq "$1" "$scratch/log" || fail "refuses ${*:2}, and does not say: $1"
}

"$CMAKE" --install "$build" --prefix "$scratch/prefix" --component dev >/dev/null
cores=([4]=Qt4::QtCore [5]=Qt5::Core [6]=Qt6::Core)
takes
takes "-DASKED=Qt$line"
for other in "${!cores[@]}"; do
    if ((other != line)); then
        refuses "built with Qt $line, and this project has Qt $other" "-DFOUND=${cores[other]}"
        refuses "These driver tools are built with Qt $line, and Qt$other is asked for" "-DASKED=Qt$other"
    fi
done
refuses "These driver tools are built with Qt $line, and it is not found" "-DCMAKE_DISABLE_FIND_PACKAGE_Qt$line=ON"
