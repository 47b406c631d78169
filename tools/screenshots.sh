#!/bin/sh
# Makes the pictures of the launcher's windows in docs/images again, on Debian, with Wine on a
# display that nobody sees.
#
#   screenshots.sh SETUP_PROGRAM
#
# Needs root where one of the packages is missing. Nothing of it stays but the pictures.
set -eu

images=$(cd "$(dirname "$0")/../docs/images" && pwd)
setup=$(realpath "$1")
work=$(mktemp -d)
display=:77

export WINEPREFIX="$work/prefix" WINEARCH=win64 WINEDEBUG=-all DISPLAY="$display"
# Without a web library the launcher does not ask for a newer one.
export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe,wininet="
WINE=$(command -v wine64 || command -v /usr/lib/wine/wine64 || command -v wine)

install_tools() {
    command -v Xvfb >/dev/null && command -v import >/dev/null && [ -e /usr/share/wine/fonts/tahoma.ttf ] &&
        return
    apt-get update -qq
    apt-get install -y -qq --no-install-recommends xvfb imagemagick fonts-wine
}

clean_up() {
    wineserver -k 2>/dev/null || true
    [ -z "${xvfb-}" ] || kill "$xvfb" 2>/dev/null || true
    rm -rf "$work"
}

make_prefix() {
    "$WINE" wineboot --init
    cp /usr/share/wine/fonts/*.ttf "$WINEPREFIX/drive_c/windows/Fonts/"
    "$WINE" winecfg /v win10
    # Nothing gives the windows the focus; their captions look as if they had it.
    set_colour InactiveTitle "10 36 106"
    set_colour GradientInactiveTitle "166 202 240"
    set_colour InactiveTitleText "255 255 255"
    wineserver -w
} </dev/null >/dev/null 2>&1

set_colour() {
    "$WINE" reg add 'HKCU\Control Panel\Colors' /v "$1" /d "$2" /f
}

# A medium whose installer is elsewhere, and, two levels above it, the separate installer media.
make_media() {
    media="$work/drive/QN_Installer/media/1"
    mkdir -p "$media/inst/common" "$work/drive/QN_Installer/inst/win_b64/code/bin"
    touch "$media/inst/common/win_b64.installos"
    touch "$work/drive/QN_Installer/inst/win_b64/code/bin/ZEPInsAppliGUI.exe"
    cp "$setup" "$media/setup.exe"
    ln -s "$work/drive" "$WINEPREFIX/dosdevices/d:"
}

# The launcher on a desktop of its own, which draws the frames of its windows. Shoots when the
# windows have had time to open.
shoot() {
    name=$1
    shift
    "$WINE" explorer /desktop="$name,1000x700" 'D:\QN_Installer\media\1\setup.exe' "$@" \
        </dev/null >/dev/null 2>&1 &
    sleep 8
    import -window root "$work/$name.png"
    wineserver -k
    wineserver -w
    # The window alone, from a desktop of one colour.
    convert "$work/$name.png" -trim +repage -strip +dither -colors 255 \
        -define png:compression-level=9 "PNG8:$images/$name.png"
}

trap clean_up EXIT
install_tools
Xvfb "$display" -screen 0 1000x700x24 >/dev/null 2>&1 &
xvfb=$!
make_prefix
make_media
shoot message -installerPath 'D:\QN_Installer' -env ZEPProcessNotAdmin
shoot folder-dialog
