#!/bin/sh
# Reads the sources as Visual C++ does, without Windows and without Microsoft's headers: CMake is
# configured for clang-cl in Visual C++'s mode, with the flags that the msvc preset uses and warnings
# as errors, and every compile command is run up to the point where it would write an object.
#
#   check-msvc.sh           the launcher, mediatool and the benchmarks for 64 bits; the launcher for 32
#   check-msvc.sh --tests   the tests as well (64 bits)
#
# First, three small sources with a mistake each show that mistakes are seen. What this cannot show:
# Microsoft's own library and headers, its linker, and the warnings that only its compiler has.
set -eu
cd "$(dirname "$0")/.."
here=$PWD

tests=OFF
case $#:${1-} in
    0:) ;;
    1:--tests) tests=ON ;;
    *) echo "check-msvc.sh takes nothing, or --tests." >&2; exit 2 ;;
esac

tools/install-tools.sh clang-19 clang-tools-19 lld-19 llvm-19 libc++-19-dev libwine-dev python3
build=$here/build/msvc-check

# configure TARGET CMAKE-ARGUMENT...
configure() {
    target=$1
    shift
    log=$build-$target.log
    cmake -S . -B "$build-$target" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$here/cmake/toolchains/clang-cl-check.cmake" \
        -DCHECK_TARGET="$target-pc-windows-msvc" -DCMAKE_EXPORT_COMPILE_COMMANDS=ON \
        -DCMAKE_COMPILE_WARNING_AS_ERROR=ON -Dgtest_disable_pthreads=ON "$@" >"$log" 2>&1 ||
        { cat "$log" >&2; exit 1; }
}

# commands TARGET FOLDER...: the compile commands of the sources in these folders, each ended by a
# null. What is made by the build itself is not there to be compiled.
commands() {
    target=$1
    shift
    python3 - "$build-$target/compile_commands.json" "$@" <<'PYTHON'
import json, os, sys
for entry in json.load(open(sys.argv[1])):
    path = os.path.relpath(entry["file"])
    if path.split("/")[0] in sys.argv[2:] and path.endswith(".cpp"):
        command = entry["command"].replace(" -c -- ", " -fsyntax-only -- ")
        print(f"cd '{entry['directory']}' && {command}", end="\0")
PYTHON
}

# A source with one mistake, in place of the first one of fs: it has to be refused.
expect_refusal() {
    source=$build-control/$1.cpp
    cat >"$source"
    command=$(commands x86_64 fs | tr '\0' '\n' | sed -n '1s/ -- .*//p')
    if sh -c "$command -- '$source'" >"$source.log" 2>&1 || ! grep -q "$2" "$source.log"; then
        echo "a mistake that has to be seen is not: $1" >&2
        cat "$source.log" >&2
        exit 1
    fi
    echo "refused, as it has to be: $1"
}

# check TARGET FOLDER...
check() {
    count=$(commands "$@" | tr -cd '\0' | wc -c)
    [ "$count" -gt 0 ] || { echo "no source found for $1" >&2; exit 1; }
    commands "$@" | xargs -0 -n 1 -P "$(nproc)" sh -c || exit 1
    echo "$1: $count sources, no warning"
}

mkdir -p "$build-control"
configure x86_64 -DLAUNCHER_BUILD_TOOLS=ON -DLAUNCHER_BUILD_BENCH=ON -DLAUNCHER_BUILD_TESTS=$tests
configure i686 -DLAUNCHER_BUILD_TESTS=OFF

expect_refusal deprecated-call Wdeprecated <<'CPP'
[[deprecated]] int Old();
int Call() { return Old(); }
CPP
expect_refusal narrowing Wshorten-64-to-32 <<'CPP'
#include <string>
int Length(const std::string& text) { return text.size(); }
CPP
expect_refusal unused-parameter Wunused-parameter <<'CPP'
int Zero(int unused) { return 0; }
CPP

product="fs platform media installer launcher"
others="mediatool bench"
[ $tests = OFF ] || others="$others tests tools"
# shellcheck disable=SC2086  # lists of folders
check x86_64 $product $others
# shellcheck disable=SC2086
check i686 $product
