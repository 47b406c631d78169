#!/bin/sh
# Builds the launcher twice, in two folders of different names and depths, and compares the bytes:
# two people with the same sources and tools must get the same program. Takes the files of the
# working tree as they are, those not yet under version control included.
#
#   check-reproducible.sh [PRESET...]     mingw and mingw32 without arguments
#
# Prints a line for each preset; the exit code is 0 when all are the same.
set -eu
cd "$(dirname "$0")/.."
. tools/sources.sh
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
trap 'exit 1' INT TERM HUP

[ $# -gt 0 ] || set -- mingw mingw32
for preset; do
    grep -qF "\"name\": \"$preset\"" CMakePresets.json ||
        refuse "no such preset: $preset (cmake --list-presets)"
done
[ -e .git ] || refuse "this folder is not under version control: there is no list of its files"
ask_git ls-files -z --cached --others --exclude-standard >"$scratch/files"
first=$scratch/a
second=$scratch/another/and/deeper/folder

# A file that is listed and no longer there is left out.
export_sources() {
    mkdir -p "$1"
    xargs -0 sh -c 'for file; do [ ! -e "$file" ] || printf "%s\\0" "$file"; done' sh <"$scratch/files" |
        sort -zu | tar -c --null -T - | tar -x -C "$1"
}

# build FOLDER PRESET: both programs of this copy of the sources; prints one checksum of them
build() {
    log=$scratch/log
    if ! (cd "$1" && cmake --preset "$2" -DLAUNCHER_BUILD_TESTS=OFF -DLAUNCHER_BUILD_TOOLS=ON &&
        cmake --build "build/$2" --target setup mediatool) >"$log" 2>&1; then
        cat "$log" >&2
        exit 1
    fi
    cat "$1/build/$2/launcher/setup.exe" "$1/build/$2/mediatool/mediatool.exe" | sha256sum |
        cut -d ' ' -f 1
}

export_sources "$first"
export_sources "$second"

result=0
for preset; do
    one=$(build "$first" "$preset")
    other=$(build "$second" "$preset")
    if [ "$one" = "$other" ]; then
        echo "$preset: two builds, the same bytes: $one"
    else
        echo "$preset: two builds differ: $one, $other"
        result=1
    fi
done
exit $result
