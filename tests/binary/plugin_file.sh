#!/usr/bin/env bash
# What the plug-in file must be for a panel to take it. One check a call:
#   plugin_file.sh CHECK FILE [ARGUMENT...]
# NM, READELF, OBJCOPY and STRIP name the tools of the toolchain that built the file.
set -euo pipefail

nm=${NM:-nm} readelf=${READELF:-readelf} objcopy=${OBJCOPY:-objcopy} strip=${STRIP:-strip}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
    echo "$check: $*" >&2
    exit 1
}

# The file shows exactly these symbols, all of them functions.
check_exports() {
    printf '%s T\n' "$@" | sort >"$scratch/wanted"
    "$nm" -D --defined-only --format=posix "$file" | cut -d ' ' -f 1,2 | sort >"$scratch/found"
    diff -u "$scratch/wanted" "$scratch/found" || fail "the exported symbols are not those of the contract"
}

# The text that a panel's loader looks for, in a section of its own that is never written.
check_verification() {
    local flags
    flags=$("$readelf" -SW "$file" | sed -n 's/^ *\[ *[0-9]*\] \.qtplugin  *PROGBITS\( *[0-9a-f]*\)\{4\} *//p')
    [[ ${flags%% *} == A ]] || fail "section .qtplugin has the flags '${flags%% *}', wanted A"
    "$objcopy" --dump-section ".qtplugin=$scratch/text" "$file" "$scratch/copy"
    if (($# > 0)); then
        printf '%s\0' "$1" >"$scratch/wanted"
        cmp "$scratch/wanted" "$scratch/text" || fail "section .qtplugin has another text"
    else
        tr '\0' '$' <"$scratch/text" | tr '\n' '|' |
            grep -Ex 'pattern=QT_PLUGIN_VERIFICATION_DATA\|version=4\.8\.[0-9]+\|debug=(false|true)\|buildkey=[^|$]+\$' ||
            fail "section .qtplugin has another text"
    fi
}

# It stands on Qt's core and SQL libraries and on the run-time libraries of C and C++.
check_needed() {
    local library
    "$readelf" -dW "$file" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | sort >"$scratch/needed"
    cat "$scratch/needed"
    for library in "$@"; do
        grep -Fxq "$library" "$scratch/needed" || fail "does not need $library"
    done
    printf '%s\n' "$@" >"$scratch/allowed"
    if grep -Fxvf "$scratch/allowed" "$scratch/needed" |
        grep -Evx 'lib(stdc\+\+|gcc_s|c|m|rt|pthread)\.so\.[0-9]+|ld-linux.*\.so\.[0-9]+'; then
        fail "needs other libraries than Qt's and those of C and C++"
    fi
}

# Relocations done and write-protected before any code runs, no code that is written, no stack that is run.
check_hardening() {
    "$readelf" -lW "$file" >"$scratch/segments"
    "$readelf" -dW "$file" >"$scratch/dynamic"
    grep -q GNU_RELRO "$scratch/segments" || fail "no RELRO segment"
    grep -Eq '\((FLAGS|FLAGS_1|BIND_NOW)\).*(BIND_NOW|NOW)' "$scratch/dynamic" || fail "bound lazily, RELRO is partial"
    if grep -q TEXTREL "$scratch/dynamic"; then
        fail "relocations in the text segment"
    fi
    grep -Eq 'GNU_STACK.* RW ' "$scratch/segments" || fail "the stack may be run, or nothing says that it may not"
    if grep -E '^ *LOAD.* RWE ' "$scratch/segments"; then
        fail "a segment that may be written and run"
    fi
    "$nm" -D --undefined-only "$file" | grep __stack_chk_fail >/dev/null || fail "built without stack protector"
}

# Constants belong to memory that is never written: what is left for variables holds no table.
check_variables() {
    local limit=$1 size
    size=$("$readelf" -SW "$file" | sed 's/^ *\[ *[0-9]*\] *//' |
        awk '$1 == ".data" || $1 == ".bss" { print $5 }' | { sum=0; while read -r n; do ((sum += 16#$n)); done; echo $sum; })
    echo "$size bytes of variables"
    ((size <= limit)) || fail "more than $limit bytes of variables"
}

# Symbol versions decide on how old a system the file still loads.
check_versions() {
    local version family newest limit
    "$readelf" -VW "$file" | sed -n 's/.*Name: \([A-Za-z0-9_.]*\) *Flags.*/\1/p' | sort -Vu >"$scratch/versions"
    cat "$scratch/versions"
    [[ -s $scratch/versions ]] || fail "no symbol versions found"
    while read -r version; do
        family=${version%_*} newest=
        for limit in "$@"; do
            [[ ${limit%_*} == "$family" ]] && newest=$limit
        done
        [[ -n $newest ]] || fail "$version is of a family that is not expected"
        [[ $(printf '%s\n' "$version" "$newest" | sort -V | tail -n 1) == "$newest" ]] ||
            fail "$version is newer than $newest"
    done <"$scratch/versions"
}

# Every operation of the tools is in the file, also what the driver does not call.
check_tools() {
    local library=$1 list=$2
    symbols "$file" >"$scratch/found"
    symbols "$library" | grep '^T ' | cut -c 3- | sort -u >"$scratch/library"
    cut -c 3- "$scratch/found" | sort -u >"$scratch/plugin"
    if comm -13 "$scratch/plugin" "$scratch/library" | grep .; then
        fail "these are in the tools library and not in the plug-in"
    fi
    if sort "$list" | comm -13 "$scratch/plugin" - | grep .; then
        fail "these operations are missing in the plug-in"
    fi
    echo "$(wc -l <"$list") operations"
}

# Functions with their kind, names as people read them; the type of a va_list depends on the processor, that of a pair on Qt.
symbols() {
    "$nm" -C --defined-only "$1" | sed -n 's/^[0-9a-f]* \([TtWw]\) /\1 /p' |
        sed 's/__va_list_tag\*\|std::__va_list/va_list/g; s/std::pair</QPair</g; s/ \[clone .*//'
}

check_size() {
    local limit=$1 size
    "$strip" -o "$scratch/stripped" "$file"
    size=$(stat -c %s "$scratch/stripped")
    echo "$size bytes stripped"
    ((size <= limit)) || fail "$size bytes stripped, more than $limit"
}

check=$1 file=$2
shift 2
"check_$check" "$@"
