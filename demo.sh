#!/bin/sh
# Builds the launcher and shows it at work on a sample media.
set -eu
cd "$(dirname "$0")"

# Says nothing unless the command fails.
quietly() {
    log=$(mktemp)
    "$@" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
    rm -f "$log"
}

tools/install-tools.sh
[ -e build/mingw/tools/demo.exe ] || echo "Building; this takes a minute the first time."
quietly cmake --preset mingw
quietly cmake --build --preset mingw --target demo
status=0
shown=$(tools/wine-run.sh "$PWD/build/mingw/wine-prefix" build/mingw/tools/demo.exe) || status=$?
printf '%s\n\n' "$shown"
exit $status
