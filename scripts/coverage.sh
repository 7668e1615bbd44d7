#!/usr/bin/env bash
# Measures how much of runtime/ the unit tests run: builds them with clang's counters, runs them, prints a table.
# Fails below 100 % of the lines and 95 % of the branches, and when tests/coverage-left.txt does not list just the
# lines and branches that are left. Installs what is missing first.
#   scripts/coverage.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

build=build/coverage
llvm=14
# Some tests run several threads: counters that they tear would count a branch as not taken.
counters=(-fprofile-instr-generate -fprofile-update=atomic -fcoverage-mapping -fcoverage-compilation-dir=.)

main() {
    install_packages "${build_packages[@]}" "${test_packages[@]}" "${clang_packages[@]}"
    build_tests
    # One file for each program, to which all its processes add.
    rm -rf "$build/profiles"
    LLVM_PROFILE_FILE=$PWD/$build/profiles/%m.profraw \
        ctest --test-dir "$build" --label-regex unit --parallel "$(nproc)" --output-on-failure
    export_counts
    python3 scripts/coverage.py . "$build/coverage.json"
}

build_tests() {
    mkdir -p "$build"
    clang -c scripts/coverage_flush.c -o "$build/coverage_flush.o"
    cmake -S . -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_CXX_FLAGS="-O0 ${counters[*]}" \
        -DCMAKE_EXE_LINKER_FLAGS="$PWD/$build/coverage_flush.o" \
        -DCMAKE_DISABLE_FIND_PACKAGE_Qt5SerialBus=ON >/dev/null
    ninja -C "$build"
}

# Inline functions that a program does not call have no counters there, which llvm-cov calls mismatched.
export_counts() {
    local objects=() program
    for program in "$build"/tests/*.dir/*_test; do
        objects+=(-object "$program")
    done
    "llvm-profdata-$llvm" merge -o "$build/all.profdata" "$build"/profiles/*.profraw
    "llvm-cov-$llvm" export -format=text -instr-profile "$build/all.profdata" "${objects[@]:1}" \
        >"$build/coverage.json" 2> >(grep -v 'functions have mismatched data' >&2)
}

main "$@"
