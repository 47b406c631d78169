#!/bin/sh
# Builds the launcher with every compiler and for every target that Debian has, warnings as errors,
# makes the release folder, and runs all tests on the 64-bit release.
set -eu
cd "$(dirname "$0")"

tools/install-tools.sh clang lld nsis wixl osslsigncode openssl

# The launcher alone, as it would be released with each of these.
for preset in mingw-debug mingw32 mingw32-debug clang clang-debug; do
    echo "== $preset"
    cmake --preset "$preset" -B "build/variants/$preset" -DLAUNCHER_BUILD_TESTS=OFF >/dev/null
    cmake --build "build/variants/$preset" --target setup
done

echo "== two builds in two folders"
tools/check-reproducible.sh

echo "== the release folder"
./package.sh

echo "== mingw, with all tests"
cmake --workflow --preset mingw
