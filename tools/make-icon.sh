#!/bin/sh
# Makes launcher/resources/setup.ico again from the drawing beside it, setup.svg, in every size that
# Windows asks for between 100 % and 250 %. The two largest are compressed: every Windows from Vista
# on reads that, and they would weigh 280 KB otherwise. The others are what any program reads.
#
#   make-icon.sh
#
# Needs the Debian packages librsvg2-bin and icoutils. Nothing runs this but whoever changes the
# drawing: the icon is kept with the sources, because other versions of the tools draw other edges.
set -eu

resources=$(cd "$(dirname "$0")/../launcher/resources" && pwd)

fail() {
    echo "make-icon.sh: $*" >&2
    exit 1
}

[ $# = 0 ] || fail "takes no arguments"
[ -f "$resources/setup.svg" ] || fail "no such file: $resources/setup.svg"
command -v rsvg-convert >/dev/null || fail "rsvg-convert is missing: apt-get install librsvg2-bin"
command -v icotool >/dev/null || fail "icotool is missing: apt-get install icoutils"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' INT TERM HUP

# draw PIXELS: prints the file's name
draw() {
    rsvg-convert --width "$1" --height "$1" --output "$work/$1.png" "$resources/setup.svg"
    echo "$work/$1.png"
}

set --
for size in 16 20 24 32 40 48; do
    image=$(draw "$size")
    set -- "$@" "$image"
done
for size in 64 256; do
    image=$(draw "$size")
    set -- "$@" "--raw=$image"
done
icotool --create --output="$work/setup.ico" "$@"
mv "$work/setup.ico" "$resources/setup.ico"
icotool --list "$resources/setup.ico"
