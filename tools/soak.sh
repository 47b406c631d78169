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

fail() {
    echo "soak.sh: $*" >&2
    exit 2
}
[ $# -le 2 ] || fail "takes a number of runs and a seed: $*"
for number; do
    case $number in
    "" | *[!0-9]* | ??????????*) fail "no number of up to nine digits: \"$number\"" ;;
    esac
done
[ "${1-1}" != 0 ] || fail "at least one run"
preset=${PRESET:-mingw}
grep -qF "\"name\": \"$preset\"" CMakePresets.json ||
    fail "no such preset: $preset (cmake --list-presets)"

tools/install-tools.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" --target soak
exec tools/wine-run.sh "$PWD/build/$preset/soak-prefix" "build/$preset/tests/soak/soak.exe" "$@"
