#!/usr/bin/env bash
# Builds for a 32-bit ARM panel and runs the tests under qemu-arm, on the distribution's Qt 5 for that processor.
# Installs what is missing first. Everything it makes lies in build/armhf and build/armhf-root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

build=build/armhf
root=build/armhf-root

# What cannot run under qemu-arm stays out, by its label, and is named. No ARM program can start another: the kernel here
# does not know how to run it. Memory in use is mostly the emulator's.
stays_out='^(starts-programs|measures-memory)$'

main() {
    install_packages "${arm_packages[@]}"
    make_root
    cmake --preset armhf
    cmake --build --preset armhf
    rm -rf "$build/results" "$build"/tests/conformance/*_conformance.dir/report.xml
    GTEST_OUTPUT="xml:$PWD/$build/results/" \
        ctest --preset armhf --parallel "$(nproc)" --label-exclude "$stays_out"
    count_tests
    count_checks
    name_what_stays_out
}

# A root made of the distribution's packages for the panel's processor, unpacked and no more. Kept for the next time.
make_root() {
    local suite wanted archive mode=root
    suite=$(this_suite)
    wanted="$suite ${arm_root_packages[*]}"
    if [[ -d $root && $(cat "$root.made" 2>/dev/null) == "$wanted" ]]; then
        return
    fi
    archive=$(archive_of_this_suite)
    ((EUID == 0)) || mode=chrootless
    rm -rf "$root" "$root.made"
    mkdir -p build
    apt-config dump --format '%F "%v";%n' Acquire::http Acquire::https >build/armhf-apt.conf
    mmdebstrap --quiet --mode="$mode" --variant=extract --architectures=armhf --aptopt="$PWD/build/armhf-apt.conf" \
        --include="${arm_root_packages[*]}" "$suite" "$root" "$archive" ||
        fail "could not make the armhf root; does $archive carry armhf?"
    echo "$wanted" >"$root.made"
}

# A program that does not even start can end with 0 under qemu-arm, so each must have reported as many tests as it has.
count_tests() {
    local program name listed ran tests=0 programs=0
    while read -r program; do
        name=$(basename "$program")
        listed=$(qemu-arm -L "$root" "$program" --gtest_list_tests | grep -c '^  ' || true)
        ran=$(reports_of "$name" | sed -n 's/^<testsuites tests="\([0-9]*\)".*/\1/p' | sum)
        ((listed > 0 && ran >= listed)) || fail "$name has $listed tests and ran $ran"
        ((tests += ran, programs += 1))
    done < <(test_programs)
    ((programs > 0)) || fail "no test programs found"
    echo "$tests tests of $programs programs ran on ARM"
    sed -n 's/.*<skipped message="\([^"]*\)".*/  skipped: \1/p' "$build"/results/*.xml | sort | uniq -c
}

# The same goes for the programs of the kit.
count_checks() {
    local name checks drivers=0
    while read -r name; do
        checks=$(sed -n 's/.*<testsuite name="[^"]*" tests="\([0-9]*\)".*/\1/p' "$build/tests/conformance/$name.dir/report.xml")
        ((checks > 0)) || fail "$name ran no check"
        echo "$checks checks of $name ran on ARM"
        ((drivers += 1))
    done < <(ctest --test-dir "$build" --show-only --label-regex '^conformance$' |
        sed -n 's/^ *Test *#[0-9]*: \(.*_conformance\)$/\1/p')
    ((drivers > 0)) || fail "no driver was tried"
}

reports_of() {
    cat "$build/results/$1"*.xml 2>/dev/null || true
}

sum() {
    local total=0 number
    while read -r number; do
        ((total += number)) || true
    done
    echo "$total"
}

# The commands of the tests that ran, as far as they are programs of ours.
test_programs() {
    ctest --test-dir "$build" --show-only=json-v1 --label-exclude "$stays_out" |
        grep -o "\"$PWD/$build/[^\"]*_test\"" | tr -d '"' | sort -u
}

name_what_stays_out() {
    echo "Not built for ARM:"
    echo "  the reference host and its tests (a program for a PC; most of its tests start it)"
    echo "Built and not run on ARM:"
    name_labelled starts-programs "starts other programs"
    name_labelled measures-memory "measures its own memory"
}

name_labelled() {
    ctest --test-dir "$build" --show-only --label-regex "^$1\$" | sed -n "s/^ *Test *#[0-9]*: \(.*\)/  \1 ($2)/p"
}

fail() {
    echo "test-arm.sh: $*" >&2
    exit 1
}

main
