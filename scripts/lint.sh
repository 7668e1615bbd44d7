#!/usr/bin/env bash
# Checks the style of the tree: clang-format, clang-tidy, shellcheck, the length of files. Installs what is missing and
# builds the release first, since clang-tidy reads its compile commands and moc's output.
#   scripts/lint.sh [--part N [SEED]]     all files, or one in N of them for clang-tidy, by a seed that is printed
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

max_lines=350
parts=1
seed=0

main() {
    if [[ ${1:-} == --part ]]; then
        parts=${2:?--part needs a number}
        seed=${3:-$RANDOM}
        echo "clang-tidy looks at one file in $parts, with seed $seed"
    fi
    install_packages "${build_packages[@]}" "${test_packages[@]}" "${ci_packages[@]}"
    check_format
    check_scripts
    check_length
    cmake --preset release >/dev/null
    cmake --build --preset release
    check_code build/release
    echo "style is clean"
}

sources() {
    git ls-files -- "$@"
}

check_format() {
    sources '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
}

check_scripts() {
    sources '*.sh' .ci/run | xargs shellcheck --external-sources
}

check_length() {
    local long
    long=$(sources '*.cpp' '*.h' '*.py' '*.sh' | xargs wc -l | awk -v max="$max_lines" '$2 != "total" && $1 > max')
    if [[ -n $long ]]; then
        printf 'longer than %s lines; one topic a file:\n%s\n' "$max_lines" "$long" >&2
        return 1
    fi
}

check_code() {
    local files
    mapfile -t files < <(sources runtime desk kit apps examples |
        awk -v top="$PWD/" -v parts="$parts" -v seed="$seed" '/\.cpp$/ && (++count + seed) % parts == 0 { print top $0 "$" }')
    run-clang-tidy -p "$1" -j "$(nproc)" -quiet "${files[@]}" >"$1/clang-tidy.log" 2>&1 || {
        grep -E '(error|warning):' -A 3 "$1/clang-tidy.log" | sort -u | head -n 60 >&2
        return 1
    }
}

main "$@"
