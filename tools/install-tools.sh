#!/bin/sh
# Installs what building and testing the launcher needs on Debian 12. With everything there it asks
# nothing of apt and needs no rights. On a system without Debian's packages it looks for the programs.
#
#   install-tools.sh [PACKAGE...]      further packages that the caller needs
set -eu

packages="g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-win32 cmake ninja-build
    wine wine64 googletest libcli11-dev nlohmann-json3-dev libvalijson-dev $*"

# The program that a package is wanted for; none for a library, which CMake fetches or does without.
program_of() {
    case $1 in
    g++-mingw-w64-x86-64-posix) echo x86_64-w64-mingw32-g++-posix ;;
    g++-mingw-w64-i686-win32) echo i686-w64-mingw32-g++-win32 ;;
    g++-mingw-w64-i686-posix) echo i686-w64-mingw32-g++-posix ;;
    ninja-build) echo ninja ;;
    wine64) echo wineserver ;;
    nsis) echo makensis ;;
    librsvg2-bin) echo rsvg-convert ;;
    imagemagick) echo convert ;;
    fuse3) echo fusermount3 ;;
    lib* | python3-* | nlohmann-json3-dev | googletest | fonts-*) ;;
    *) echo "$1" ;;
    esac
}

missing=""
if ! command -v dpkg-query >/dev/null; then
    for package in $packages; do
        program=$(program_of "$package")
        [ -z "$program" ] || command -v "$program" >/dev/null || missing="$missing $program"
    done
    [ -n "$missing" ] || exit 0
    echo "Missing:$missing" >&2
    echo "Install these programs: this system has no dpkg, and this script knows no other way." >&2
    exit 1
fi

for package in $packages; do
    state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$state" = installed ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

echo "Installing:$missing"
if [ "$(id -u)" != 0 ]; then
    echo "Run this once as root, or install these packages yourself." >&2
    exit 1
fi
export DEBIAN_FRONTEND=noninteractive
# shellcheck disable=SC2086  # a list of packages
if ! apt-get -qq update ||
    ! apt-get -qq install --no-install-recommends $missing >/dev/null; then
    echo "apt could not install these packages: is there a network, and is this Debian 12?" >&2
    exit 1
fi
