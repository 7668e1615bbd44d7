#!/usr/bin/env bash
# The sources of the runtime compile from themselves alone: every .cpp, one include root, Qt's headers and moc, no
# generated header and no definition that only a build file gives. Other builds than this one rely on it.
#   compiles_alone.sh COMPILER MOC QT_HEADERS RUNTIME STANDARD
set -euo pipefail

compiler=$1 moc=$2 headers=$3 standard=$5
cd "$4"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

compile() {
    "$compiler" -std="$standard" -fPIC -Wall -Wextra -Werror -I. \
        -isystem "$headers" -isystem "$headers/QtCore" -isystem "$headers/QtSql" -c "$1" -o "$2"
}

mapfile -t headers_for_moc < <(grep -rl --include='*.h' Q_OBJECT .)
mapfile -t sources < <(find . -name '*.cpp')
if ((${#headers_for_moc[@]} == 0 || ${#sources[@]} == 0)); then
    echo "nothing to compile below $4" >&2
    exit 1
fi

for i in "${!headers_for_moc[@]}"; do
    "$moc" -I. "${headers_for_moc[i]}" -o "$scratch/moc_$i.cpp"
    compile "$scratch/moc_$i.cpp" "$scratch/moc_$i.o"
done
for i in "${!sources[@]}"; do
    compile "${sources[i]}" "$scratch/$i.o"
done
"$compiler" -shared -o "$scratch/plugin.so" "$scratch"/*.o
echo "${#sources[@]} sources compiled with $compiler"
