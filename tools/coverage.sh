#!/bin/sh
# Lines and branches of the product that the tests reach, under Wine.
#
#   coverage.sh [--no-tests] [CTEST-ARGUMENT...]
#
# Builds everything in build/coverage with counting product code, runs all tests (or those that
# ctest's arguments choose), prints a table by folder and what was not reached, and writes an HTML
# report, build/coverage/report/index.html. With --no-tests it reports what earlier runs counted.
# Fails when a test fails, or when less was reached than tools/coverage_table.py asks for.
#
# Branches that only an exception from a call would take are left out. A process that ends by abort
# or a crash loses its counts. The tests of the launcher's bytes are left out, unless there is another
# -E: nobody ships these.
set -eu
cd "$(dirname "$0")/.."
build=$PWD/build/coverage
data=$build/counts

run_tests=yes
if [ "${1-}" = --no-tests ]; then
    run_tests=no
    shift
fi

status=0
if [ $run_tests = yes ]; then
    command -v gcovr >/dev/null || tools/install-tools.sh gcovr
    cmake --preset mingw-debug -B "$build" -DLAUNCHER_JOIN_SOURCES=ON \
        -DCMAKE_PROJECT_INCLUDE="$PWD/tools/coverage.cmake" \
        -DCOVERAGE_DATA="$data" >/dev/null
    cmake --build "$build" -j "${JOBS:-$(nproc)}"
    # The notes of sources that are gone: gcovr cannot put them together with those of today.
    ninja -C "$build" -t cleandead >/dev/null
    # shellcheck disable=SC2016  # for the inner shell
    find "$build" -name '*.gcno' -exec sh -c '[ -e "${1%.gcno}.obj" ] || rm "$1"' sh {} ';'
    rm -rf "$data"
    mkdir -p "$data"
    if ! ctest --test-dir "$build" -j "$(nproc)" --output-on-failure \
        -E "^executable_test" "$@"; then
        echo "some tests failed" >&2
        status=1
    fi
fi

# "#" stands for "/": each count belongs beside the notes that the compiler left.
set -- "$build/fs" "$build/platform" "$build/launcher" "$build/media" "$build/installer" \
    "$build/mediatool"
find "$@" -name "*.gcda" -delete
for file in "$data"/*.gcda; do
    if [ ! -e "$file" ]; then
        echo "coverage.sh: no run has counted anything yet." >&2
        exit 1
    fi
    cp "$file" "$(basename "$file" | tr '#' /)"
done

mkdir -p "$build/report"
gcovr --root . --gcov-executable x86_64-w64-mingw32-gcov-posix --object-directory "$build" \
    --filter 'fs/' --filter 'platform/' --filter 'launcher/' --filter 'media/' \
    --filter 'installer/' --filter 'mediatool/' --exclude launcher/mingw_runtime.cpp \
    --exclude-throw-branches --exclude-unreachable-branches \
    --html-details "$build/report/index.html" --json "$build/report/coverage.json" \
    -j "$(nproc)" "$@" >/dev/null
python3 tools/coverage_table.py "$build/report/coverage.json" || status=1
exit $status
