#!/bin/sh
# Repeats each operation of the product 10,000 times (children 200 times) in one process of the
# release build, and fails when handles or memory grew. The tests do the same with 50.
#
#   repetition.sh [REPETITIONS]
set -eu
cd "$(dirname "$0")/.."
export REPETITIONS="${*-10000}"
case $REPETITIONS in
"" | 0* | *[!0-9]* | ??????????*)
    echo "repetition.sh: takes one number of repetitions, 1 to 999999999: \"$REPETITIONS\"" >&2
    exit 2
    ;;
esac

tools/install-tools.sh
cmake --preset mingw >/dev/null
cmake --build --preset mingw --target repetition_test
tools/wine-run.sh "$PWD/build/mingw/wine-prefix" build/mingw/tests/repetition/repetition_test.exe
