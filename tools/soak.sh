#!/bin/sh
# Builds the launcher as released and runs it again and again in mixed situations, four at a time,
# some of them killed and some deprived of their media in the middle of a copy.
#
#   soak.sh [RUNS] [SEED]     1000 runs without a number; the seed is shown
#
# PRESET=mingw-debug takes another build. On Windows: build the target "soak" with a preset and
# start tests/soak/soak.exe in its build folder as administrator.
set -eu
cd "$(dirname "$0")/.."

tools/install-tools.sh
preset=${PRESET:-mingw}
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" --target soak
exec tools/wine-run.sh "$PWD/build/$preset/soak-prefix" "build/$preset/tests/soak/soak.exe" "$@"
