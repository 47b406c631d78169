#!/bin/sh
# What package.sh and tools/check-reproducible.sh refuse, and what a release says of its sources.
# Nothing is built.
#
#   package_test.sh
#
# Prints a line for each check; the exit code is 0 when all hold.
set -eu

. "$(dirname "$0")/checks.sh"

# Sources with one commit, in a folder whose name has a blank. No configuration of this machine
# counts: one may trust all folders.
export GIT_CONFIG_GLOBAL=/dev/null GIT_CONFIG_SYSTEM=/dev/null
sources="$work/the sources"
mkdir -p "$sources/tools"
cp "$project/package.sh" "$project/CMakePresets.json" "$sources"
cp "$tools/"*.sh "$sources/tools"
git_here() { git -C "$sources" -c user.name=tester -c user.email=tester@localhost "$@"; }
git_here init -q
git_here add .
git_here commit -q -m "Sources"

# As git sees a folder of another user.
as_stranger() { GIT_TEST_ASSUME_DIFFERENT_OWNER=1 "$@"; }
is_unpackaged() { [ ! -e "$sources/dist" ] && [ ! -e "$sources/build" ]; }

check "package.sh in another user's folder" refuses 1 \
    "package.sh: git cannot read this folder: detected dubious ownership" as_stranger "$sources/package.sh"
check "check-reproducible.sh in another user's folder" refuses 1 \
    "check-reproducible.sh: git cannot read this folder: detected dubious ownership" \
    as_stranger "$sources/tools/check-reproducible.sh"
check "package.sh without a certificate" refuses 2 "no such file: none.p12" \
    "$sources/package.sh" --pkcs12 none.p12
check "check-reproducible.sh with an unknown preset" refuses 1 "no such preset: mingw64" \
    "$sources/tools/check-reproducible.sh" mingw mingw64
check "nothing was built" is_unpackaged

# names_sources TEXT: what BUILD.txt would name
names_sources() {
    named=$(cd "$sources" && sh -euc '. tools/sources.sh; sources_commit')
    [ "$named" = "$1" ] && return
    echo "$named"
    return 1
}
commit=$(git_here rev-parse HEAD)
check "a commit as it is" names_sources "$commit"
touch "$sources/new"
check "a file more" names_sources "$commit-dirty"
rm "$sources/new"
echo "# changed" >>"$sources/package.sh"
check "a changed file" names_sources "$commit-dirty"
git_here checkout -q package.sh
rm -rf "$sources/.git"
check "check-reproducible.sh without version control" refuses 1 "not under version control" \
    "$sources/tools/check-reproducible.sh"

[ "$failures" = 0 ]
