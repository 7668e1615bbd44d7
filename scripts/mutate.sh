#!/usr/bin/env bash
# Shows that the unit tests bite: changes runtime/ in one place at a time, and the tests must fail. Installs what is
# missing first.
#   scripts/mutate.sh [--count N] [--seed S] [FILE...]     200 changes of all of runtime/
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

install_packages "${build_packages[@]}" "${test_packages[@]}"
exec python3 scripts/mutate.py "$@"
