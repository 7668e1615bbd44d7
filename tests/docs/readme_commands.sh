#!/usr/bin/env bash
# Runs every command of the README: those of driverhost here, in the order they stand and with the PATH that it sets; scripts
# have to be called by the continuous integration. Links have to lead to files.
# Usage: readme_commands.sh SOURCE_TREE FOLDER_OF_DRIVERHOST
set -euo pipefail

tree=$(realpath "$1")
programs=$(realpath "$2")
work=$(mktemp -d)
slave=
trap '[[ -z $slave ]] || kill "$slave"; rm -rf "$work"' EXIT
cd "$work"
# Where the demo leaves driverhost; nothing else leads to it.
mkdir -p build/demo/apps
ln -s "$programs" build/demo/apps/driverhost

start_slave() {
  "$@" >slave.out 2>slave.err &
  slave=$!
  for _ in $(seq 100); do
    if driverhost read "rtutcp://localhost:$port/1" HR1 --retries 0 >/dev/null 2>&1; then
      return
    fi
  done
  echo "the slave does not answer:" >&2
  cat slave.out slave.err >&2
  exit 1
}

# A port of its own, so that a slave that somebody runs is left alone.
port=$((20000 + $$ % 20000))
awk '/^```/ {inside = $0 == "```sh"; next} inside' "$tree/README.md" | sed "s/1502/$port/g" >commands
test "$(wc -l <commands)" -gt 10

while IFS= read -r command <&3; do
  echo "\$ $command"
  case $command in
    PATH=*) eval "$command" ;;
    scripts/*)
      test -x "$tree/$command"
      grep -rqF "$command" "$tree/.ci" || { echo "not run by .ci/run: $command" >&2; exit 1; }
      ;;
    *'&')
      read -ra words <<<"${command%&}"
      start_slave "${words[@]}"
      ;;
    *) bash -euo pipefail -c "$command" ;;
  esac
done 3<commands

grep -oE '\]\([^)#]+' "$tree"/README.md "$tree"/CONTRIBUTING.md | sed 's/.*](//' | sort -u | while read -r link; do
  test -e "$tree/$link" || { echo "a link leads nowhere: $link" >&2; exit 1; }
done
