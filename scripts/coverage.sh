#!/usr/bin/env bash
# Measures what the tests run and decide: lines, branches and decisions (MC/DC) of runtime/ by the unit tests, and of
# desk/ by all tests. Builds them with clang's counters, runs them, prints tables. Fails when runtime/ has more left than
# tests/coverage-left.txt lists, or desk/ less than 95 % of its branches covered. Installs what is missing first.
#   scripts/coverage.sh [runtime | desk]
#
# What desk/ is measured by runs under the sanitizers, and is the same as "scripts/test.sh sanitizers". The limits of
# memory that runtime/ is measured with cannot be set there, so that it has a build of its own.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

llvm=19

main() {
    case ${1:-} in
    runtime) measure_runtime ;;
    desk) measure_desk ;;
    '')
        measure_runtime
        measure_desk
        ;;
    *)
        echo "usage: scripts/coverage.sh [runtime | desk]" >&2
        exit 2
        ;;
    esac
}

measure_runtime() {
    local build=build/coverage tests
    install_packages "${build_packages[@]}" "${test_packages[@]}" "${coverage_packages[@]}"
    configure "$build"
    mapfile -t tests < <(ctest --test-dir "$build" -N --label-regex '^unit$' | sed -n 's/.*: \([a-z0-9_]*_test\)$/\1/p')
    ninja -C "$build" modbus_rtu_slave_over_tcp "${tests[@]}"
    rm -rf "$build/profiles"
    # One file of counts for each program, to which all its processes add.
    LLVM_PROFILE_FILE=$PWD/$build/profiles/%m.profraw \
        ctest --test-dir "$build" --label-regex '^unit$' --parallel "$(nproc)" --output-on-failure
    judge "$build" runtime
}

# The launchers are emptied, since a compiler cache writes the names of sources in its own way. What there is to warn of
# is for the other builds.
configure() {
    mkdir -p "$1"
    "clang-$llvm" -c scripts/coverage_flush.c -o "$1/coverage_flush.o"
    # Some tests run several threads: counters that they tear would count a branch as not taken.
    cmake -S . -B "$1" -G Ninja -DCMAKE_CXX_COMPILER="clang++-$llvm" -DCMAKE_CXX_COMPILER_LAUNCHER= \
        -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_CXX_FLAGS="-O0 -w -fprofile-instr-generate -fprofile-update=atomic -fcoverage-mapping -fcoverage-mcdc \
            -fcoverage-compilation-dir=." \
        -DCMAKE_EXE_LINKER_FLAGS="$PWD/$1/coverage_flush.o" >/dev/null
}

measure_desk() {
    rm -rf build/sanitizers/profiles
    scripts/test.sh sanitizers
    judge build/sanitizers desk
}

# judge BUILD FOLDER: inline functions that a program does not call have no counters there, which llvm-cov calls
# mismatched.
judge() {
    local build=$1 folder=$2 objects=() program
    for program in "$build"/tests/*.dir/*_test "$build"/apps/driverhost/driverhost "$build"/apps/driverdesk/driverdesk; do
        [[ ! -x $program ]] || objects+=(-object "$program")
    done
    "llvm-profdata-$llvm" merge -o "$build/$folder.profdata" "$build"/profiles/*
    "llvm-cov-$llvm" export -format=text -instr-profile "$build/$folder.profdata" "${objects[@]:1}" "$folder" \
        >"$build/$folder.json" 2> >(grep -v 'functions have mismatched data' >&2)
    python3 scripts/coverage.py . "$folder" "$build/$folder.json"
}

main "$@"
