#!/bin/sh
# Installs what building and testing the launcher needs on Debian 12. With everything there it asks
# nothing of apt and needs no rights.
#
#   install-tools.sh [PACKAGE...]      further packages that the caller needs
set -eu

packages="g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix cmake ninja-build
    wine wine64 googletest libcli11-dev nlohmann-json3-dev libvalijson-dev $*"

missing=""
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
