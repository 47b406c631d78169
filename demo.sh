#!/bin/sh
# Builds the launcher and shows it at work on a sample media.
set -eu
cd "$(dirname "$0")"
. tools/steps.sh

tools/install-tools.sh
[ -e build/mingw/tools/demo.exe ] || echo "Building; this takes a minute the first time."
quietly "demo configure" cmake --preset mingw
quietly "demo build" cmake --build --preset mingw --target demo
status=0
shown=$(tools/wine-run.sh "$PWD/build/mingw/wine-prefix" build/mingw/tools/demo.exe) || status=$?
printf '%s\n\n' "$shown"
[ $status = 42 ] || { echo "The demo did not come to its end." >&2; exit 1; } # see tools/demo.cpp
