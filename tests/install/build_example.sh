#!/usr/bin/env bash
# Installs the tools and their kit, builds on what is installed, and runs that.
#   build_example.sh find_package BUILD FOLDER MOC        the project in the folder, with its tests
#   build_example.sh pkg_config BUILD EXAMPLE MOC         the line driver, taken through the kit, and a host on the channel
#   build_example.sh page BUILD PAGE MOC                  the driver that the page makes
# The environment has CMAKE, CXX and CXXFLAGS, and the least standard of C++ for drivers, STANDARD.
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
    local qmake binary=$scratch/${example##*/}
    qmake=$(sed -n 's/^QT_QMAKE_EXECUTABLE:[^=]*=//p' "$build/CMakeCache.txt")
    "$CMAKE" -S "$example" -B "$binary" "-DCMAKE_PREFIX_PATH=$prefix" ${qmake:+"-DQT_QMAKE_EXECUTABLE=$qmake"}
    "$CMAKE" --build "$binary"
    (cd "$binary" && "${CMAKE%/*}/ctest" --output-on-failure)
}

pkg_config() {
    local pc includes cflags libs plugins hidden
    pc=$(find "$prefix" -name driver_tools.pc)
    export PKG_CONFIG_PATH=${pc%/*}${PKG_CONFIG_PATH:+:$PKG_CONFIG_PATH}
    read -ra includes <<<"$(pkg-config --cflags-only-I driver_tools)"
    read -ra cflags <<<"${CXXFLAGS:-} $(pkg-config --cflags driver_tools)"
    read -ra libs <<<"$(pkg-config --libs driver_tools)"
    plugins=$(pkg-config --variable=plugindir driver_tools)
    hidden=("-fvisibility=hidden" "-Wl,--version-script=$(pkg-config --variable=exports driver_tools)")

    compile_headers_alone "${cflags[@]}"
    "$moc" "${includes[@]}" "$example/line_driver.h" -o "$scratch/moc_line_driver.cpp"
    "$CXX" "-std=$STANDARD" -fPIC -shared "${hidden[@]}" -I"$example" "${cflags[@]}" "$example"/line_{driver,frame}.cpp \
        "$scratch/moc_line_driver.cpp" "${libs[@]}" -o "$plugins/libline_driver.so"
    read -ra libs <<<"$(pkg-config --libs driver_kit)"
    "$CXX" "-std=$STANDARD" -fPIC "${cflags[@]}" "$example/line_slave.cpp" "${libs[@]}" -o "$scratch/line_conformance"
    ls "$plugins"
    "$scratch/line_conformance" --commands 20000 "$plugins/libline_driver.so"
    test -f "$plugins/libmodbus_rtu_slave_over_tcp.so"

    read -ra cflags <<<"${CXXFLAGS:-} $(pkg-config --cflags driver_channel)"
    read -ra libs <<<"$(pkg-config --libs driver_channel)"
    "$CXX" "-std=$STANDARD" -fPIC "${cflags[@]}" "$here/channel_host/channel_host.cpp" "${libs[@]}" -o "$scratch/channel_host"
    "$scratch/channel_host"
}

compile_headers_alone() {
    local count
    count=$(find "$prefix/include" -name '*.h' | wc -l)
    ((count > 0))
    find "$prefix/include" -name '*.h' -print0 |
        xargs -0 -P "$(nproc)" -I {} "$CXX" "-std=$STANDARD" -fPIC -fsyntax-only "$@" -include {} -x c++ /dev/null
    echo "$count headers compile from themselves"
}

# Does what the page says, then what it says to leave out.
page() {
    local folder=$scratch/page commands qmake
    mkdir "$folder"
    commands=$(python3 "$(dirname "${BASH_SOURCE[0]}")/page_files.py" "$example" "$folder")
    qmake=$(sed -n 's/^QT_QMAKE_EXECUTABLE:[^=]*=//p' "$build/CMakeCache.txt")
    export PATH=${qmake:+${qmake%/*}:}${CMAKE%/*}:$PATH
    cd "$folder"
    ls
    bash -xeuo pipefail -c "${commands//\/opt\/drivers/$prefix}"

    sed -i 's/reply\.station != request\.station || //' gauge_driver.cpp
    cmake --build build >/dev/null
    if ctest --test-dir build --output-on-failure >"$scratch/report"; then
        cat "$scratch/report"
        echo "passes without looking at the station" >&2
        exit 1
    fi
    grep FAILED "$scratch/report"
    test "$(grep -c '^FAILED ' "$scratch/report")" -eq 1
    grep -q '^FAILED *staleness.other-station' "$scratch/report"
}

install_tools
"$way"
