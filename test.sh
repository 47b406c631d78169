#!/bin/sh
# Builds the release with all its tests and runs them. Everything it does is in build/logs.
set -eu
cd "$(dirname "$0")"
. tools/steps.sh

tools/install-tools.sh nsis wixl osslsigncode openssl

step configure cmake --preset mingw
step build cmake --build --preset mingw
step tests ctest --preset mingw

(cd build/mingw && cmake -P ../../cmake/TestSummary.cmake) 2>&1
sed -n '/tests passed/,$p' build/logs/tests.log
