#!/usr/bin/env bash
# Shows that the unit tests bite: changes runtime/ in one place at a time, and the tests must fail.
#
#   scripts/mutate.sh [--count N] [--seed S] [FILE...]     200 changes of all of runtime/
set -euo pipefail

exec python3 "$(dirname "${BASH_SOURCE[0]}")/mutate.py" "$@"
