#!/bin/sh
# Repeats each operation of the product 10,000 times in one process of the release build, and fails
# when handles or memory grew. What takes milliseconds comes less often: copies, the search for
# volumes and a child that does not start a fifth of that, 2,000 times; a temporary copy, a child, the
# web library and the dialog's objects a fiftieth, 200 times. The tests do the same with 50.
#
#   repetition.sh [REPETITIONS]
set -eu
cd "$(dirname "$0")/.."
export REPETITIONS="${1:-10000}"
if ! expr "$REPETITIONS" : '[1-9][0-9]\{0,8\}$' >/dev/null; then
    echo "repetition.sh: the repetitions are a number, not \"$REPETITIONS\"." >&2
    exit 2
fi

tools/install-tools.sh
cmake --preset mingw >/dev/null
cmake --build --preset mingw --target repetition_test
tools/wine-run.sh "$PWD/build/mingw/wine-prefix" build/mingw/tests/repetition/repetition_test.exe
