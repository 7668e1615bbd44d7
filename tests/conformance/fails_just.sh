#!/usr/bin/env bash
# A spoiled driver must fail the check that its patch names, and no other:
#   fails_just.sh PATCH PROGRAM PLUGIN TRANSCRIPT
set -euo pipefail

patch=$1 program=$2 plugin=$3 transcript=$4
wanted=$(sed -n 's/^Check: //p' "$patch")
options=(--commands 2000 --timeout 60)
# Recorded bytes are compared where they are what is spoiled; they would show most of the others as well.
[[ $wanted != transcripts.* ]] || options+=(--transcript "$transcript")

report=$(mktemp)
trap 'rm -f "$report"' EXIT
"$program" "${options[@]}" "$plugin" >"$report" || (($? == 1))
failed=$(sed -n 's/^FAILED *//p' "$report" | paste -sd ' ')
if [[ $failed != "$wanted" ]]; then
    cat "$report"
    echo "wanted to fail: $wanted; failed: ${failed:-nothing}" >&2
    exit 1
fi
echo "failed just $wanted"
