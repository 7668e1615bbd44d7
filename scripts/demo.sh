#!/usr/bin/env bash
# Builds the driver and shows it at work. Installs what is missing first.
#   scripts/demo.sh              "driverhost demo" reads and writes every area of a slave over TCP
#   scripts/demo.sh --window     the same in a window: "driverdesk --demo"
# Further arguments go to the program.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

# build PROGRAM: it alone, and the plug-in that it loads
build() {
    cmake --preset demo
    cmake --build --preset demo --target "$1" modbus_rtu_slave_over_tcp
}

install_packages "${build_packages[@]}"
if [[ ${1:-} == --window ]]; then
    shift
    build driverdesk
    exec build/demo/apps/driverdesk/driverdesk --demo "$@"
fi
build driverhost
build/demo/apps/driverhost/driverhost demo "$@"
