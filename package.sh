#!/bin/sh
# Builds the release folder dist/media-launcher-VERSION: the launcher for 64-bit and 32-bit Windows,
# mediatool for 64-bit Windows, their documentation, checksums, the licence texts and the bill of
# materials of what is linked in, and the versions of the tools that made it. The same sources and
# tools give the same bytes, whatever the folder.
#
#   package.sh                  leaves the launchers unsigned
#   package.sh SIGN_OPTION...   signs them: options of tools/sign.sh, --pkcs12 FILE for instance
set -eu
caller=$PWD
cd "$(dirname "$0")"
here=$PWD
. tools/sources.sh

# The files in the options are named from the caller's folder.
sign() { (cd "$caller" && "$here/tools/sign.sh" "$@"); }

[ $# = 0 ] || sign --check "$@"

# Without a commit, the bill of materials bears no time of its own.
commit="not from version control"
time=${SOURCE_DATE_EPOCH:-0}
if [ -e .git ]; then
    commit=$(sources_commit)
    time=${SOURCE_DATE_EPOCH:-$(ask_git log -1 --format=%ct)}
fi
tools/install-tools.sh

# Takes its name when it is complete.
release=dist/unfinished
rm -rf "$release"
trap 'rm -rf "$release"' EXIT
trap 'exit 1' INT TERM HUP
mkdir -p "$release/docs"

# build PRESET FOLDER: the launcher into the release's FOLDER
build() {
    cmake --preset "$1" -B "build/package-$1" -DLAUNCHER_BUILD_TESTS=OFF >/dev/null
    cmake --build "build/package-$1" --target setup
    install -D -m 755 "build/package-$1/launcher/setup.exe" "$release/$2/setup.exe"
}
build mingw x64
build mingw32 x86

# In a build of its own: the launcher's is that of anybody who does not want the tool.
cmake --preset mingw -B build/package-tools -DLAUNCHER_BUILD_TESTS=OFF -DLAUNCHER_BUILD_TOOLS=ON \
    >/dev/null
cmake --build build/package-tools --target mediatool
install -D -m 755 build/package-tools/mediatool/mediatool.exe "$release/mediatool.exe"
[ $# = 0 ] || sign "$@" "$here/$release/x64/setup.exe" "$here/$release/x86/setup.exe" \
    "$here/$release/mediatool.exe"

# Without what is for those who have the sources.
awk '/^## /{ of_sources = /Build and test|The sources/ } !of_sources' README.md >"$release/README.md"
cp docs/*.md docs/*.json "$release/docs"
cp -r docs/images "$release/docs"

{
    echo "Sources: $commit"
    for program in x86_64-w64-mingw32-g++-posix i686-w64-mingw32-g++-win32 \
        x86_64-w64-mingw32-ld i686-w64-mingw32-ld x86_64-w64-mingw32-windres cmake ninja; do
        echo "$program: $("$program" --version | head -n 1)"
    done
    [ $# = 0 ] || echo "Signed with $(osslsigncode --version | head -n 1)"
    dpkg-query -W -f '${Package}: ${Version}\n' mingw-w64-common 2>/dev/null || true
} >"$release/BUILD.txt"

version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' build/package-mingw/CMakeCache.txt)
tools/third-party.sh notices >"$release/THIRD-PARTY-NOTICES.txt"
tools/third-party.sh bill "$release" "$version" "$time" >"$release/bill-of-materials.spdx.json"

# shellcheck disable=SC2094  # find leaves out what is being written
(cd "$release" && find . -type f ! -name SHA256SUMS -print0 | LC_ALL=C sort -z |
    xargs -0 sha256sum >SHA256SUMS)
rm -rf "dist/media-launcher-$version"
mv "$release" "dist/media-launcher-$version"
release=dist/media-launcher-$version
trap - EXIT
echo "$release:"
echo "mediatool.exe has $(stat -c %s "$release/mediatool.exe") bytes"
cat "$release/SHA256SUMS"
