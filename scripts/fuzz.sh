#!/usr/bin/env bash
# Builds the fuzz programs with clang and runs each for a while under AddressSanitizer and UndefinedBehaviorSanitizer, one
# on each processor at a time. Installs what is missing first.
#   scripts/fuzz.sh [--seed N] [SECONDS [PROGRAM...]]     20 seconds, all programs of fuzz/ and fuzz/desk/
#
# Inputs that reach something new are kept in build/fuzz/run/PROGRAM/corpus, so later runs go on where earlier ones
# ended. With --seed that folder begins empty and the inputs come in the same order each time. A crash leaves its input
# in build/fuzz/run/PROGRAM; the exit status is then 1.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

build=build/fuzz
seed=

main() {
    if [[ ${1:-} == --seed ]]; then
        seed=${2:?--seed needs a number}
        shift 2
    fi
    local seconds=${1:-20} programs=("${@:2}")
    if ((${#programs[@]} == 0)); then
        mapfile -t programs < <(basename --suffix .cpp fuzz/*.cpp fuzz/desk/*.cpp)
    fi
    install_packages "${build_packages[@]}" "${clang_packages[@]}"
    build_programs "${programs[@]/#/fuzz_}"
    export -f run_program
    export build seed
    printf '%s\n' "${programs[@]}" |
        xargs -P "$(nproc)" -I PROGRAM bash -euo pipefail -c "run_program PROGRAM '$seconds'" || {
        echo "failed; the inputs lie in $build/run" >&2
        exit 1
    }
}

build_programs() {
    cmake -S . -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DDRIVER_FUZZ=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DCMAKE_CXX_FLAGS_RELWITHDEBINFO='-O1 -g1 -DNDEBUG' \
        -DBUILD_TESTING=OFF >/dev/null
    ninja -C "$build" "$@"
}

# Each program runs from a folder of its own, where its project database lies.
run_program() {
    local name=$1 seconds=$2 run=$build/run/$1
    local options=(-max_total_time="$seconds" -max_len=8192 -timeout=10 -rss_limit_mb=2048 -malloc_limit_mb=512
        -print_final_stats=1 -verbosity=0 -artifact_prefix="$run/")
    if [[ -n $seed ]]; then
        rm -rf "$run/corpus"
        options+=(-seed="$seed")
    fi
    if [[ -f fuzz/dict/$name.dict ]]; then
        options+=(-dict="fuzz/dict/$name.dict")
    fi
    mkdir -p "$run/corpus"
    cp "$build/fuzz/fuzz_$name" "$run/"
    if ! "$run/fuzz_$name" "${options[@]}" "$run/corpus" "fuzz/corpus/$name" >"$run/log" 2>&1; then
        printf 'failed: %s\n%s\n' "$name" "$(tail -n 60 "$run/log")" >&2
        return 1
    fi
    printf '%-24s %9s inputs, %s kept\n' "$name" \
        "$(sed -n 's/^stat::number_of_executed_units: *//p' "$run/log")" "$(find "$run/corpus" -type f | wc -l)"
}

main "$@"
