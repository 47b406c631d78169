#!/bin/sh
# Runs the tests of the layers and of mediatool with everything that this toolchain can check at run
# time: traps for undefined behaviour, the standard library's assertions, and Wine's checks of the
# heap (overruns, use after release, double release). The launcher and mediatool that they start are
# built in the same way.
#
#   check-undefined.sh [PROGRAM...]      names of test programs, "fs_test"; all without
#
# First, a small program with such faults shows that each check works.
set -eu
cd "$(dirname "$0")/.."
# Relative, so that lists of files can be divided at blanks, wherever this folder is.
build=build/undefined
prefix=$PWD/$build/wine-prefix
folders="fs platform launcher media installer mediatool"
flags="-fsanitize=undefined -fsanitize-undefined-trap-on-error -D_GLIBCXX_ASSERTIONS"

tools/install-tools.sh

# Warnings are for the ordinary builds: the checks make the compiler see faults in its own library.
# They also make it emit more of that library into each object, and the linker takes whole objects:
# where a test has its own version of a product function, its own counts.
cmake --preset mingw-debug -B $build -DLAUNCHER_JOIN_SOURCES=ON -DCMAKE_CXX_FLAGS="$flags -w" \
    -DCMAKE_PROJECT_INCLUDE="$PWD/tools/undefined/heap.cmake" \
    -DCMAKE_EXE_LINKER_FLAGS=-Wl,--allow-multiple-definition >/dev/null
built=$(ninja -C $build -t targets all)
tests=$(for folder in $folders; do
    echo "$built" | sed -n "s,^\(tests/$folder/.*_test\.exe\):.*,\1,p"
done)
if [ $# -gt 0 ]; then
    chosen=""
    for name; do
        test=$(for each in $tests; do
            [ "$(basename "$each" .exe)" != "$name" ] || echo "$each"
        done)
        if [ -z "$test" ]; then
            echo "check-undefined.sh: there is no test program \"$name\"." >&2
            exit 2
        fi
        chosen="$chosen $test"
    done
    tests=$chosen
fi
# shellcheck disable=SC2086  # a list of targets
cmake --build $build --target $tests

samples=$build/samples
mkdir -p "$samples"
# shellcheck disable=SC2086  # a list of flags
x86_64-w64-mingw32-g++-posix -std=c++20 $flags -static -o "$samples/sample.exe" \
    tools/undefined/sample.cpp tools/undefined/heap.cpp
# With its warnings, Wine gives each block of a heap an end that can be checked.
export WINEDEBUG="-all,err+heap,warn+heap"

# Passes when the program ends well and the heap has nothing to say.
passes() {
    log=$1
    shift
    tools/wine-run.sh "$prefix" "$@" >"$log" 2>&1 && ! grep -q ':heap:' "$log"
}

for fault in none overflow index overrun "used after release" "released twice"; do
    expected=caught
    [ "$fault" != none ] || expected=passed
    found=caught
    if passes "$samples/$fault.log" "$samples/sample.exe" "$fault"; then found=passed; fi
    echo "sample with fault \"$fault\": $found"
    if [ $found != $expected ]; then
        echo "check-undefined.sh: a check that does not work; see $samples/$fault.log" >&2
        exit 1
    fi
done

failed=""
for test in $tests; do
    name=$(basename "$test" .exe)
    # Ten megabytes of lines would take minutes: Wine fills all that is free at each allocation.
    if passes "$build/$name.log" "$build/$test" --gtest_brief=1 \
        --gtest_filter=-Streams.TakeTenMegabytes; then
        echo "$name: $(tail -n 1 "$build/$name.log")"
    else
        grep -E ':heap:|FAILED|Failure' "$build/$name.log" | head -n 20
        echo "$name: FAILED, see $build/$name.log"
        failed="$failed $name"
    fi
done
[ -z "$failed" ]
