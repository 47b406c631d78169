#!/bin/sh
# What the project checks for itself, apart from the tests: the style, the direction of the includes,
# three linters, every compiler and target that Debian has with warnings as errors, Visual C++'s mode,
# the fuzzers' kept inputs, two builds with the same bytes, the release folder with its licence texts
# and bill of materials, and the table of the executables' Windows calls. Both programs that ship pass
# all of it. Everything it does is in build/logs.
set -eu
cd "$(dirname "$0")/.."
. tools/steps.sh

tools/install-tools.sh clang lld clang-format clang-tidy cppcheck shellcheck git python3-jsonschema

product="fs platform media installer launcher mediatool"
# Several files at a time: that each one compiles for itself is clang-tidy's part.
tools_too="-DLAUNCHER_BUILD_TESTS=OFF -DLAUNCHER_BUILD_TOOLS=ON -DLAUNCHER_JOIN_SOURCES=ON"

check_format() {
    # shellcheck disable=SC2086  # a list of folders
    find $product tests bench tools \( -name '*.cpp' -o -name '*.h' \) -print0 |
        xargs -0 clang-format --dry-run -Werror
}

check_scripts() { shellcheck -x -P SCRIPTDIR -S warning .ci/run ./*.sh bench/*.sh tests/*/*.sh tools/*.sh; }

# build_variant PRESET: both programs, as they would be released with it, and the benchmarks
# shellcheck disable=SC2086  # a list of options
build_variant() {
    cmake --preset "$1" -B "build/variants/$1" $tools_too -DLAUNCHER_BUILD_BENCH=ON &&
        cmake --build "build/variants/$1"
}

# shellcheck disable=SC2086  # lists of options and of folders
clang_tidy() {
    cmake --preset clang -B build/variants/lint $tools_too -DLAUNCHER_JOIN_SOURCES=OFF &&
        find $product -name '*.cpp' -print0 |
        xargs -0 -P "$(nproc)" -n 4 clang-tidy -quiet -p build/variants/lint
}

# shellcheck disable=SC2086  # a list of folders
run_cppcheck() {
    cppcheck -q -j "$(nproc)" --error-exitcode=1 --std=c++20 --language=c++ --platform=win64 \
        --library=windows --enable=warning,performance,portability -I . $product
}

# launchers_are_small RELEASE: says which one is not
launchers_are_small() {
    large=$(find "$1" -name setup.exe -size +240000c -printf '%P has %s bytes; 240,000 are enough\n')
    echo "$large"
    [ -z "$large" ]
}

# In the tests' build folder, which the tests need anyway.
build_soak_run() { cmake --preset mingw && cmake --build --preset mingw --target soak; }

step "format" check_format
step "shell scripts" check_scripts
step "include direction" tools/check-includes.sh
# shellcheck disable=SC2046  # a list of files
step "links of the documentation" tools/check-links.py $(git ls-files '*.md')
# The two that are missing are built below, twice.
for preset in clang clang-debug mingw-debug mingw32-debug; do
    step "build with $preset" build_variant "$preset"
done
step "fuzzing, the kept inputs" tools/fuzz.sh replay
step "as Visual C++ reads it" tools/check-msvc.sh
step "clang-tidy" clang_tidy
step "cppcheck" run_cppcheck
step "reproducible" tools/check-reproducible.sh
step "release folder" ./package.sh
release=$(ls -td dist/media-launcher-* | head -n 1)
step "size of the launchers" launchers_are_small "$release"
step "licence texts and bill of materials" tools/check-third-party.sh "$release"
step "links of its documentation" tools/check-links.py "$release/README.md" "$release"/docs/*.md
step "check of licences and bill" tests/tools/third_party_test.sh
step "table of Windows calls" tools/check-windows-calls.py build/package-mingw/launcher/setup.exe \
    build/package-tools/mediatool/mediatool.exe
step "build of the soak run" build_soak_run
