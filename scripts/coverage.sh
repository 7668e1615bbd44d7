#!/usr/bin/env bash
# Measures how much of runtime/ the unit tests run: builds them with clang's counters, runs them, prints a table.
# Fails below 100 % of the lines and 95 % of the branches, and when tests/coverage-left.txt does not list just the
# lines and branches that are left.
#
#   scripts/coverage.sh
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${COVERAGE_BUILD_DIR:-$root/build/coverage}
version=$("${CLANGXX:-clang++}" -dumpversion)
suffix=-${version%%.*}

mkdir -p "$build"
"${CLANG:-clang}" -c "$root/scripts/coverage_flush.c" -o "$build/coverage_flush.o"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER="${CLANGXX:-clang++}" -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS="-O0 -fprofile-instr-generate -fcoverage-mapping -fcoverage-compilation-dir=." \
    -DCMAKE_EXE_LINKER_FLAGS="$build/coverage_flush.o" -DCMAKE_DISABLE_FIND_PACKAGE_Qt5SerialBus=ON >/dev/null
ninja -C "$build"

# One file for each program, to which all its processes add.
rm -rf "$build/profiles"
LLVM_PROFILE_FILE=$build/profiles/%m.profraw ctest --test-dir "$build" --label-regex unit --parallel "$(nproc)" \
    --output-on-failure

"llvm-profdata$suffix" merge -o "$build/all.profdata" "$build"/profiles/*.profraw
objects=()
for program in "$build"/tests/*.dir/*_test; do
    objects+=(-object "$program")
done
# Inline functions that a program does not call have no counters there, which llvm-cov calls mismatched.
"llvm-cov$suffix" export -format=text -instr-profile "$build/all.profdata" "${objects[@]:1}" >"$build/coverage.json" \
    2> >(grep -v 'functions have mismatched data' >&2)
python3 "$root/scripts/coverage.py" "$root" "$build/coverage.json"
