#!/bin/sh
# Builds the release folder dist/media-launcher-VERSION: the launcher for 64-bit and 32-bit Windows,
# its documentation, checksums, and the versions of the tools that made it. The same sources and
# tools give the same bytes, whatever the folder.
set -eu
cd "$(dirname "$0")"

tools/install-tools.sh

version=$(sed -n 's/^project(.* VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)
release=dist/media-launcher-$version
rm -rf "$release"
mkdir -p "$release/docs"

# build PRESET FOLDER: the launcher into the release's FOLDER
build() {
    cmake --preset "$1" -B "build/package-$1" -DLAUNCHER_BUILD_TESTS=OFF >/dev/null
    cmake --build "build/package-$1" --target setup
    install -D -m 755 "build/package-$1/launcher/setup.exe" "$release/$2/setup.exe"
}
build mingw x64
build mingw32 x86

cp README.md "$release"
cp docs/*.md "$release/docs"
cp -r docs/images "$release/docs"

{
    echo "Sources: $(git rev-parse HEAD 2>/dev/null || echo 'not from version control')"
    for program in x86_64-w64-mingw32-g++-posix i686-w64-mingw32-g++-posix \
        x86_64-w64-mingw32-ld i686-w64-mingw32-ld x86_64-w64-mingw32-windres cmake ninja; do
        echo "$program: $("$program" --version | head -n 1)"
    done
    dpkg-query -W -f '${Package}: ${Version}\n' mingw-w64-common 2>/dev/null || true
} >"$release/BUILD.txt"

(cd "$release" && find . -type f ! -name SHA256SUMS | LC_ALL=C sort | xargs sha256sum >SHA256SUMS)
echo "$release:"
cat "$release/SHA256SUMS"
