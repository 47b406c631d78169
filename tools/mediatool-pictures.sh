#!/bin/sh
# Makes the pictures of mediatool in docs/images again, on Debian: what it prints on a small media,
# drawn by tools/terminal-picture.py.
#
#   mediatool-pictures.sh MEDIATOOL_PROGRAM SETUP_PROGRAM
#
# Needs root where one of the packages is missing. Nothing of it stays but the pictures.
set -eu

here=$(cd "$(dirname "$0")" && pwd)
images=$here/../docs/images
mediatool=$(realpath "$1")
setup=$(realpath "$2")
work=$(mktemp -d)
trap 'WINEPREFIX="$work/prefix" wineserver -k || true; rm -rf "$work"' EXIT

"$here/install-tools.sh" librsvg2-bin imagemagick fonts-dejavu-core python3 >&2

run() { "$here/wine-run.sh" "$work/prefix" "$mediatool" "$@"; }

# draw NAME PROMPT ARGUMENT...
draw() {
    name=$1
    prompt=$2
    shift 2
    run "$@" >"$work/output" 2>&1 || true
    python3 "$here/terminal-picture.py" "$prompt" <"$work/output" >"$work/$name.svg"
    rsvg-convert "$work/$name.svg" -o "$work/$name.png"
    convert "$work/$name.png" -colors 64 -strip "PNG8:$images/$name.png"
}

drive=$work/drive
bin=$drive/Media/inst/win_b64/code/bin
mkdir -p "$bin" "$drive/Media/inst/common" "$drive/Set"
cp "$setup" "$drive/Media/setup.exe"
cp "$setup" "$bin/ZEPInsAppliGUI.exe"
touch "$drive/Media/inst/common/win_b64.installos"
for name in meta.TOCxml media.xml media.db StartTUI.exe setup_noUAC.exe; do
    touch "$drive/Media/$name"
done
cp -r "$drive/Media" "$drive/Set/1"
run --version >/dev/null
ln -s "$drive" "$work/prefix/dosdevices/m:"
run create --id PRODUCT-2027 --layout siblings --volumes 3 'M:\Set' >/dev/null
printf '\357\273\2773\r\n' >"$drive/Set/1/inst/volumes.txt"

cp -r "$drive/Media" "$drive/NoInstaller"
rm -r "$drive/NoInstaller/inst/win_b64"

draw run 'M:\> mediatool run M:\NoInstaller --time-limit 90m -- -wait' \
    run 'M:\NoInstaller' --time-limit 90m -- -wait
draw dry-run 'M:\> mediatool dry-run M:\Media --env ZEPProcessNotAdmin=1 -- -wait' \
    dry-run 'M:\Media' --env ZEPProcessNotAdmin=1 -- -wait
draw validate 'M:\> mediatool validate M:\Set\1' validate 'M:\Set\1'
