#!/usr/bin/env bash
# Simulates a panel behind a gateway whose faults come and go, on a clock of its own: no value may be wrong or old, every
# failure has its fault, and rounds are complete again soon after each. Installs what is missing and builds it first.
#   scripts/simulate.sh [YEARS]     30 days of three fixed and three random seeds, or so many years of random ones
#
# A line for each seed, with what went wrong. The same seed brings the same bytes:
#   build/release/tests/years.dir/years SEED DAYS [SECONDS]     SECONDS: prints all that is on the line from then on
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

days=5
program=build/release/tests/years.dir/years

main() {
    install_packages "${build_packages[@]}" "${test_packages[@]}"
    cmake --preset release >/dev/null
    cmake --build --preset release --target years
    # Lays the driver's project database beside the program, for all that run at once.
    "$program" 1 0 >/dev/null
    seeds "$@" | xargs -P "$(nproc)" -I SEED "$program" SEED "$days"
}

seeds() {
    if (($# == 0)); then
        printf '%s\n' 1 2 3
        random_seeds 3
    else
        random_seeds $((($1 * 365 + days - 1) / days))
    fi
}

random_seeds() {
    od -An -v -w4 -tu4 -N $((4 * $1)) /dev/urandom | tr -d ' '
}

main "$@"
