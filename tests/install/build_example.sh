#!/usr/bin/env bash
# Installs the tools, builds the example driver on what is installed, and lets its test load the plug-in; then builds a
# host on the installed channel and runs it.
#   build_example.sh find_package|pkg_config BUILD EXAMPLE MOC
# The environment has CMAKE, CXX and CXXFLAGS, and the standards of C++ for drivers and for their tests, STANDARD and
# TEST_STANDARD.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
way=$1 build=$2 example=$3 moc=$4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix

install_tools() {
    "$CMAKE" --install "$build" --prefix "$scratch/staged" --component runtime >/dev/null
    "$CMAKE" --install "$build" --prefix "$scratch/staged" --component dev >/dev/null
    # Nothing in the installed tree may know where it was installed.
    mv "$scratch/staged" "$prefix"
}

find_package() {
    local qmake source binary
    qmake=$(sed -n 's/^QT_QMAKE_EXECUTABLE:[^=]*=//p' "$build/CMakeCache.txt")
    for source in "$example" "$here/channel_host"; do
        binary=$scratch/${source##*/}
        "$CMAKE" -S "$source" -B "$binary" "-DCMAKE_PREFIX_PATH=$prefix" ${qmake:+"-DQT_QMAKE_EXECUTABLE=$qmake"}
        "$CMAKE" --build "$binary"
        (cd "$binary" && "${CMAKE%/*}/ctest" --output-on-failure)
    done
}

pkg_config() {
    local pc includes cflags libs plugins
    pc=$(find "$prefix" -name driver_tools.pc)
    export PKG_CONFIG_PATH=${pc%/*}${PKG_CONFIG_PATH:+:$PKG_CONFIG_PATH}
    read -ra includes <<<"$(pkg-config --cflags-only-I driver_tools)"
    read -ra cflags <<<"${CXXFLAGS:-} $(pkg-config --cflags driver_tools)"
    read -ra libs <<<"$(pkg-config --libs driver_tools)"
    plugins=$(pkg-config --variable=plugindir driver_tools)

    compile_headers_alone "${cflags[@]}"
    "$moc" "${includes[@]}" "$example/line_driver.h" -o "$scratch/moc_line_driver.cpp"
    "$CXX" "-std=$STANDARD" -fPIC -shared -I"$example" "${cflags[@]}" "$example"/line_{driver,frame}.cpp \
        "$scratch/moc_line_driver.cpp" "${libs[@]}" -o "$plugins/libline_driver.so"
    read -ra libs <<<"$(pkg-config --libs driver_tools gtest)"
    "$CXX" "-std=$TEST_STANDARD" -fPIC "${cflags[@]}" "$example/line_driver_test.cpp" "${libs[@]}" -o "$scratch/line_driver_test"
    ls "$plugins"
    LINE_DRIVER=$plugins/libline_driver.so "$scratch/line_driver_test"
    test -f "$plugins/libmodbus_rtu_slave_over_tcp.so"

    read -ra cflags <<<"${CXXFLAGS:-} $(pkg-config --cflags driver_channel)"
    read -ra libs <<<"$(pkg-config --libs driver_channel)"
    "$CXX" "-std=$STANDARD" -fPIC "${cflags[@]}" "$here/channel_host/channel_host.cpp" "${libs[@]}" -o "$scratch/channel_host"
    "$scratch/channel_host"
}

compile_headers_alone() {
    local header count=0
    while read -r header; do
        "$CXX" "-std=$STANDARD" -fPIC -fsyntax-only "$@" -include "$header" -x c++ /dev/null
        count=$((count + 1))
    done < <(find "$prefix/include" -name '*.h')
    echo "$count headers compile from themselves"
    ((count > 0))
}

install_tools
"$way"
