#!/bin/sh
# Repeats each operation of the product 10,000 times (children 200 times) in one process of the
# release build, and fails when handles or memory grew. The tests do the same with 50.
#
#   repetition.sh [REPETITIONS]
set -eu
cd "$(dirname "$0")/.."
export REPETITIONS="${1:-10000}"
cmake --preset mingw >/dev/null
cmake --build --preset mingw --target repetition_test
tools/wine-run.sh "$PWD/build/mingw/wine-prefix" build/mingw/tests/repetition/repetition_test.exe
