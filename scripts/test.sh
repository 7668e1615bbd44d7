#!/usr/bin/env bash
# Builds the driver and everything around it, and runs all tests. Installs what is missing first.
#   scripts/test.sh [PRESET [ARGUMENT...]]
# PRESET is one of CMakePresets.json: release (default), debug, sanitizers, clang, qt6. The arguments are ctest's.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

preset=${1:-release}
packages=("${build_packages[@]}" "${test_packages[@]}")
case $preset in
qt6) packages+=("${qt6_packages[@]}") ;;
sanitizers) packages+=("${coverage_packages[@]}") ;;
esac
install_packages "${packages[@]}"
cmake --preset "$preset"
cmake --build --preset "$preset"
# Most of them wait for sockets and programs most of the time.
ctest --preset "$preset" --parallel "$((2 * $(nproc)))" "${@:2}"
