#!/usr/bin/env bash
# Builds the driver and shows it at work: "driverhost demo" reads and writes every area of a slave over TCP. Installs
# what is missing first. Arguments go to "driverhost demo".
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

install_packages "${build_packages[@]}"
cmake --preset demo
cmake --build --preset demo
build/demo/apps/driverhost/driverhost demo "$@"
