#!/bin/sh
# Runs a Windows program in a Wine prefix of the project's own.
#
#   wine-run.sh PREFIX PROGRAM [ARGUMENT...]
#
# Makes the prefix on the first call (some seconds) and keeps its server for a while after the last
# program, so that the next ones start warm. Boxes and dialogs work without a display.
#
# The prefix is a 64-bit Windows, or a 32-bit one when WINEARCH=win32 asks for it: then the 32-bit
# Wine has to be installed.
set -eu

prefix=$1
shift

export WINEPREFIX="$prefix" WINEARCH="${WINEARCH:-win64}"
if [ "$WINEARCH" = win32 ]; then
    WINE=$(command -v wine32 || command -v /usr/lib/wine/wine || command -v wine)
else
    WINE=$(command -v wine64 || command -v /usr/lib/wine/wine64 || command -v wine)
fi
# The heap of a 64-bit Wine without a preloader, Debian's, begins anywhere within one GB, and one start
# in two thousand finds it where Windows has a page of the system's: that process ends without a word,
# and whoever created it gets error 1359. A heap that is not moved is out of the way. A container may
# forbid to ask for that.
fixed="setarch -R"
$fixed true 2>/dev/null || fixed=""
# File names in all letters, and the system's messages in English, wherever this machine stands.
export LC_ALL=C.UTF-8
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml,winedbg.exe,winemenubuilder.exe=}"

# A desktop that started before the settings were there would not follow them: it has to end first.
make_prefix() {
    wineserver -p
    $fixed "$WINE" reg import "$(dirname "$0")/wine-prefix.reg"
    wineserver -k
    wineserver -w
    touch "$prefix/.ready"
}

# The first program starts services that keep its standard streams open, so that a pipe behind it
# would never end: these lead nowhere. Wine itself runs wineboot before any first program; a second
# wineboot would start a second services.exe, which then fails, after ten seconds each time, to
# start what message boxes need. The program is one with a window, so that the desktop starts too.
mkdir -p "$prefix"
(
    exec 9>"$prefix/.lock" </dev/null >/dev/null 2>&1
    flock 9
    [ -e "$prefix/.ready" ] || make_prefix 9>&-
    # Fails when the server runs already.
    if wineserver -p90 9>&-; then $fixed "$WINE" rundll32 user32.dll,GetDesktopWindow 9>&-; fi
)

# Wine that is killed itself ends with 0: the program is a child, and a signal's end is not its own.
# Its input is named, because a child in the background has none otherwise.
trap 'kill -KILL "$program" 2>/dev/null; wait; exit 1' HUP INT TERM
exec 7<&0
status=0

# The desktop that the first window needs is such a service too, and is started again and again: a
# pipe gets the output by way of a file. It is read while it grows, and its name is gone by then:
# whoever kills all of this for taking too long has seen what the program said, and nothing is left.
if [ -p /dev/stdout ]; then
    output=$(mktemp)
    exec 8>"$output" 9<"$output"
    rm "$output"
    $fixed "$WINE" "$@" <&7 7<&- >&8 2>&1 8>&- 9<&- &
    program=$!
    tail -c +1 -s 0.05 --pid="$program" -f <&9 8>&- 7<&- &
else
    $fixed "$WINE" "$@" <&7 7<&- &
    program=$!
fi
wait "$program" || status=$?
wait # for what is still to be read
exit $status
