#!/bin/sh
# What the project checks for itself, apart from the tests: the style, the direction of the includes,
# three linters, every compiler and target that Debian has with warnings as errors, the fuzzers' kept
# inputs, two builds with the same bytes, the release folder with its licence texts and bill of
# materials, and the table of the executable's Windows calls. Everything it does is in build/logs.
set -eu
cd "$(dirname "$0")/.."
. tools/steps.sh

tools/install-tools.sh clang lld clang-format clang-tidy cppcheck shellcheck git python3-jsonschema

layers="fs platform media installer launcher"

check_format() {
    # shellcheck disable=SC2086  # a list of folders
    find $layers tests bench tools \( -name '*.cpp' -o -name '*.h' \) -print0 |
        xargs -0 clang-format --dry-run -Werror
}

check_scripts() { shellcheck -x -P SCRIPTDIR -S warning .ci/run ./*.sh bench/*.sh tests/*/*.sh tools/*.sh; }

# build_variant PRESET: the launcher alone, as it would be released with it
build_variant() {
    cmake --preset "$1" -B "build/variants/$1" -DLAUNCHER_BUILD_TESTS=OFF &&
        cmake --build "build/variants/$1" --target setup
}

# shellcheck disable=SC2086  # a list of folders
clang_tidy() {
    find $layers -name '*.cpp' -print0 |
        xargs -0 -P "$(nproc)" -n 4 clang-tidy -quiet -p build/variants/clang
}

# shellcheck disable=SC2086  # a list of folders
run_cppcheck() {
    cppcheck -q -j "$(nproc)" --error-exitcode=1 --std=c++20 --language=c++ --platform=win64 \
        --library=windows --enable=warning,performance,portability -I . $layers
}

step "format" check_format
step "shell scripts" check_scripts
step "include direction" tools/check-includes.sh
# The two that are missing are built below.
for preset in clang clang-debug mingw-debug mingw32-debug; do
    step "build with $preset" build_variant "$preset"
done
step "fuzzing, the kept inputs" tools/fuzz.sh replay
step "clang-tidy" clang_tidy
step "cppcheck" run_cppcheck
step "reproducible" tools/check-reproducible.sh
step "release folder" ./package.sh
step "licence texts and bill of materials" tools/check-third-party.sh \
    "$(ls -td dist/media-launcher-* | head -n 1)"
step "their check" tests/tools/third_party_test.sh
step "table of Windows calls" tools/check-windows-calls.py build/package-mingw/launcher/setup.exe
