#!/usr/bin/env bash
# Makes the packages of a build tree, installs the desk package in a clean Debian root and runs the demo there.
# Usage: clean_root.sh BUILD_DIR        (as root; needs mmdebstrap and the distribution's archive)
set -euo pipefail

# shellcheck source=scripts/packages.sh
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/packages.sh"
install_packages "${package_packages[@]}"

build=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

(cd "$build" && cpack -G "DEB;TGZ" -B "$work/packages")
deb=$(echo "$work"/packages/*.deb)
panel=$(echo "$work"/packages/*.tar.gz)

echo "--- $(basename "$deb")"
dpkg-deb --info "$deb" | grep -E '^ (Package|Version|Architecture|Depends):'
contents=$(dpkg-deb --contents "$deb" | awk '{print $1, $3, $6}')
echo "$contents"
for wanted in /libmodbus_rtu_slave_over_tcp.so /bin/driverhost /man1/driverhost.1 /bash-completion/completions/driverhost; do
  [[ $contents == *"$wanted"* ]] || { echo "not in the package: $wanted" >&2; exit 1; }
done
# Where the window is left out, nobody looks for it.
window_files=()
window=true
if [[ -e $build/apps/driverdesk/driverdesk ]]; then
  window_files=(/bin/driverdesk /man1/driverdesk.1 /applications/driverdesk.desktop /scalable/apps/driverdesk.svg)
  window='driverdesk --version && { QT_QPA_PLATFORM=offscreen timeout 5 driverdesk --demo; test $? -eq 124; }'
fi
for wanted in "${window_files[@]}"; do
  [[ $contents == *"$wanted"* ]] || { echo "not in the package: $wanted" >&2; exit 1; }
done
if [[ $(sed -n 's/^DRIVER_QT:[^=]*=//p' "$build/CMakeCache.txt") == 6 ]]; then
  qt_packages=(libqt6core6 libqt6sql6 libqt6network6 libqt6serialbus6 libqt6sql6-sqlite)
else
  qt_packages=(libqt5core5a libqt5sql5 libqt5network5 libqt5serialbus5 libqt5sql5-sqlite libqt5widgets5 libqwt-qt5-6)
fi
for wanted in "${qt_packages[@]}"; do
  [[ $(dpkg-deb --field "$deb" Depends) == *"$wanted"* ]] || { echo "not a dependency: $wanted" >&2; exit 1; }
done

echo "--- $(basename "$panel")"
tar -tzf "$panel"
test "$(tar -tzf "$panel" | grep -vc '/$')" -eq 1 || { echo "the panel archive holds more than the plug-in" >&2; exit 1; }

echo "--- clean root"
suite=$(this_suite)
mirror=$(archive_of_this_suite)
# shellcheck disable=SC2016
mmdebstrap --quiet --variant=minbase --customize-hook="copy-in $deb /tmp" \
  --customize-hook='chroot "$1" sh -c "apt-get install --yes --no-install-recommends /tmp/*.deb"' \
  --customize-hook='chroot "$1" driverhost info' \
  --customize-hook='chroot "$1" driverhost demo' \
  --customize-hook="chroot \"\$1\" sh -c '$window'" \
  "$suite" /dev/null "deb $mirror $suite main"
