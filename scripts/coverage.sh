#!/usr/bin/env bash
# Measures what the tests run and decide: lines, branches and decisions (MC/DC) of runtime/ by the unit tests, and of
# desk/ by all that have it in them. Builds them with clang's counters, runs them, prints tables. Fails when runtime/ has
# more left than tests/coverage-left.txt lists, or desk/ less than 90 % of its branches covered. Installs what is missing
# first.
#   scripts/coverage.sh [runtime]     both, or runtime/ alone
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

build=build/coverage
llvm=19
# Some tests run several threads: counters that they tear would count a branch as not taken.
counters=(-fprofile-instr-generate -fprofile-update=atomic -fcoverage-mapping -fcoverage-mcdc
    -fcoverage-compilation-dir=.)

main() {
    install_packages "${build_packages[@]}" "${test_packages[@]}" "${coverage_packages[@]}"
    configure
    rm -rf "$build/profiles"
    measure_runtime
    if [[ ${1:-} == runtime ]]; then
        python3 scripts/coverage.py . "$build/runtime.json"
        return
    fi
    ninja -C "$build"
    run_tests host
    export_counts desk "$build"/profiles/*/*
    python3 scripts/coverage.py . "$build/runtime.json" "$build/desk.json"
}

# The launchers are emptied, since a compiler cache writes the names of sources in its own way. What there is to warn of
# is for the other builds.
configure() {
    mkdir -p "$build"
    "clang-$llvm" -c scripts/coverage_flush.c -o "$build/coverage_flush.o"
    cmake -S . -B "$build" -G Ninja -DCMAKE_CXX_COMPILER="clang++-$llvm" -DCMAKE_CXX_COMPILER_LAUNCHER= \
        -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_CXX_FLAGS="-O0 -w ${counters[*]}" \
        -DCMAKE_EXE_LINKER_FLAGS="$PWD/$build/coverage_flush.o" >/dev/null
}

measure_runtime() {
    local tests
    mapfile -t tests < <(ctest --test-dir "$build" -N --label-regex '^unit$' | sed -n 's/.*: \([a-z0-9_]*_test\)$/\1/p')
    ninja -C "$build" modbus_rtu_slave_over_tcp "${tests[@]}"
    run_tests unit
    export_counts runtime "$build"/profiles/unit/*
}

# run_tests LABEL: one file of counts for each program, to which all its processes add.
run_tests() {
    LLVM_PROFILE_FILE=$PWD/$build/profiles/$1/%m.profraw \
        ctest --test-dir "$build" --label-regex "^$1\$" --parallel "$(nproc)" --output-on-failure
}

# export_counts FOLDER PROFILE...: inline functions that a program does not call have no counters there, which llvm-cov
# calls mismatched.
export_counts() {
    local folder=$1 objects=() program
    for program in "$build"/tests/*.dir/*_test "$build"/apps/driverhost/driverhost; do
        [[ ! -x $program ]] || objects+=(-object "$program")
    done
    "llvm-profdata-$llvm" merge -o "$build/$folder.profdata" "${@:2}"
    "llvm-cov-$llvm" export -format=text -instr-profile "$build/$folder.profdata" "${objects[@]:1}" "$folder" \
        >"$build/$folder.json" 2> >(grep -v 'functions have mismatched data' >&2)
}

main "$@"
