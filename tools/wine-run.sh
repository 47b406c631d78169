#!/bin/sh
# Runs a Windows program in a Wine prefix of the project's own.
#
#   wine-run.sh PREFIX PROGRAM [ARGUMENT...]
#
# Makes the prefix on the first call (some seconds) and keeps its server for a while after the last
# program, so that the next ones start warm. Boxes and dialogs work without a display.
set -eu

prefix=$1
shift

WINE=$(command -v wine64 || command -v /usr/lib/wine/wine64 || command -v wine)
export WINEPREFIX="$prefix" WINEARCH=win64
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml,winedbg.exe,winemenubuilder.exe=}"

# Services that the first program starts keep that program's standard streams open: a pipe behind
# it would never end. So the first program is one whose streams lead nowhere.
warm_up() {
    "$WINE" wineboot --init
    [ -e "$prefix/.ready" ] && return
    "$WINE" regedit "$(dirname "$0")/wine-prefix.reg"
    touch "$prefix/.ready"
}

mkdir -p "$prefix"
(
    exec 9>"$prefix/.lock" </dev/null >/dev/null 2>&1
    flock 9
    # Fails when the server runs already.
    if wineserver -p90 9>&-; then warm_up 9>&-; fi
)
exec "$WINE" "$@"
