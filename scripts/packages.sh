# Sourced by the scripts: the Debian packages that each of them needs, and how they get installed.
# shellcheck shell=bash

# shellcheck disable=SC2034  # the arrays are for the scripts
build_packages=(cmake g++ ninja-build qtbase5-dev libqt5serialbus5-dev libqt5sql5-sqlite libqwt-qt5-dev)
# What the preset qt6 needs beside them.
qt6_packages=(libqt6sql6-sqlite qt6-base-dev qt6-serialbus-dev)
test_packages=(binutils doxygen libgtest-dev libmodbus-dev librapidcheck-dev mbpoll mold patch pkg-config python3
    python3-pymodbus python3-serial python3-serial-asyncio tshark imagemagick openbox xclip xdotool xvfb)
picture_packages=(imagemagick openbox xdotool xvfb)
arm_packages=(cmake g++-arm-linux-gnueabihf mmdebstrap ninja-build qemu-user qtbase5-dev-tools)
# What the armhf root holds: the same libraries for the panel's processor.
arm_root_packages=(libc6-dev libgtest-dev libqt5serialbus5-dev libqt5sql5-sqlite qtbase5-dev)
ci_packages=(clang clang-format clang-tidy git shellcheck)
clang_packages=(clang libclang-rt-14-dev llvm)
coverage_packages=(clang-19 libclang-rt-19-dev llvm-19)
package_packages=(dpkg-dev mmdebstrap)

export DEBIAN_FRONTEND=noninteractive

# install_packages PACKAGE...: installs those that are missing, or says how
install_packages() {
    local missing=() package
    for package in "$@"; do
        is_installed "$package" || missing+=("$package")
    done
    if ((${#missing[@]} == 0)); then
        return
    fi
    echo "Installing ${missing[*]}"
    if ! run_apt "${missing[@]}"; then
        echo "Could not install what is missing. Run this line, then try again:" >&2
        echo "    sudo apt-get update && sudo apt-get install --no-install-recommends ${missing[*]}" >&2
        exit 1
    fi
}

is_installed() {
    [[ $(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

run_apt() {
    local install=(apt-get install --yes --no-install-recommends -o DPkg::Lock::Timeout=300 "$@")
    command -v apt-get >/dev/null || return
    # Without package lists nothing is found, with old ones the download fails.
    if "${install[@]}" --simulate >/dev/null 2>&1 && as_root "${install[@]}"; then
        return
    fi
    as_root apt-get update && as_root "${install[@]}"
}

as_root() {
    if ((EUID == 0)); then
        "$@"
    elif [[ -t 0 ]]; then
        command -v sudo >/dev/null && sudo env DEBIAN_FRONTEND=noninteractive "$@"
    else
        command -v sudo >/dev/null && sudo --non-interactive env DEBIAN_FRONTEND=noninteractive "$@"
    fi
}

this_suite() {
    (source /etc/os-release && echo "$VERSION_CODENAME")
}

# Where this machine gets the main component of its own suite from.
archive_of_this_suite() {
    local archive
    archive=$(known_archive)
    if [[ -z $archive ]]; then
        as_root apt-get update >&2
        archive=$(known_archive)
    fi
    if [[ -z $archive ]]; then
        echo "apt knows no archive for the main component of $(this_suite)" >&2
        return 1
    fi
    echo "$archive"
}

known_archive() {
    # shellcheck disable=SC2016  # what stands between $( and ) are apt's names
    apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Component: main' "Codename: $(this_suite)" |
        sed -n 1p
}
