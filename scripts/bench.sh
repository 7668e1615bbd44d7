#!/usr/bin/env bash
# Builds the benchmarks, runs them and prints their tables. Installs what is missing first.
#   scripts/bench.sh             everything; takes some minutes
#   scripts/bench.sh --counts    only what can be counted, held against bench/figures.txt
#   scripts/bench.sh --update    the same, and commits the measured counts to bench/figures.txt
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

bench_packages=(libbenchmark-dev libmodbus-dev libsqlite3-dev pkg-config python3 valgrind)
build=build/benchmarks
programs=$build/bench
projects=$programs/projects
results=$build/results

main() {
    install_packages "${build_packages[@]}" "${bench_packages[@]}"
    build
    case ${1:-} in
    --counts) counts ;;
    --update) counts --update ;;
    '') everything ;;
    *)
        echo "usage: scripts/bench.sh [--counts | --update]" >&2
        exit 2
        ;;
    esac
}

# Counts are those of gcc with -O2, whatever the surroundings say.
build() {
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=g++ -DDRIVER_BENCH=ON \
        -DBUILD_TESTING=OFF >/dev/null
    cmake --build "$build" --target bench
}

counts() {
    python3 bench/counts.py "$programs" "$projects" "$@"
}

program() {
    local name=$1
    shift
    "$programs/$name.dir/bench_$name" "$@"
}

# Medians of a benchmark program, as JSON.
medians() {
    local name=$1
    program "$name" "$projects" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true \
        --benchmark_enable_random_interleaving=true --benchmark_out="$results/$name.json" \
        --benchmark_out_format=json >"$results/$name.log" 2>&1 || {
        cat "$results/$name.log" >&2
        return 1
    }
}

everything() {
    local failed=0 size
    mkdir -p "$results"
    echo "Counting" && { counts >"$results/counts.txt" || failed=1; }
    echo "Timing the driver in memory" && medians memory
    echo "Timing loads" && medians load
    for size in 10000 100000 1000000; do
        program footprint "$projects" "tags-$size" >"$results/footprint-$size.txt"
    done
    echo "Refreshing by plans" && program plans >"$results/plans.txt"
    echo "Timing transactions over TCP" && program tcp "$projects" >"$results/tcp.txt"
    echo "Drawing the window" && { program window | tee "$results/window.txt" || failed=1; }
    python3 bench/table.py "$results"
    return "$failed"
}

main "$@"
