# For the scripts of this folder: where things are, and how to run and count Windows programs.
# shellcheck shell=sh disable=SC2034

root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD:-$root/build/bench}
programs=$build/bench
ram=/dev/shm/launcher-bench.$$
disk=$build/data

prefix=$build/wine-prefix
wine=$(command -v wine64 || command -v /usr/lib/wine/wine64 || command -v wine)

run() { "$root/tools/wine-run.sh" "$prefix" "$@"; }

# windows PATH: how a Windows program names it.
windows() { printf 'z:%s' "$1"; }

# Keeps the server, its services and the desktop alive for all that is counted afterwards: a window
# that nobody sees. stop_keeping ends it.
keep_warm() {
    run "$programs/start_child.exe" >/dev/null 2>&1 </dev/null || true  # makes a new prefix
    WINEPREFIX=$prefix WINEDEBUG=-all "$wine" notepad >/dev/null 2>&1 </dev/null &
    kept=$!
    sleep 3
}
stop_keeping() { kill "$kept" 2>/dev/null || true; }

# calls_of CODE PROGRAM [ARGUMENT...]: the system calls of a warm run, children included, of a
# program that ends with exit code CODE. Its output goes to a file: Wine writes to a device, the
# null device too, byte by byte.
calls_of() {
    expected=$1
    shift
    code=0
    WINEPREFIX=$prefix WINEDEBUG=-all strace -f -c -qq -o "$build/calls.txt" \
        "$wine" "$@" >"$build/output.txt" 2>&1 </dev/null || code=$?
    [ $code = "$expected" ] || { echo "$1 ended with $code" >&2; exit 1; }
    awk '$NF == "total" { print $4 }' "$build/calls.txt"
}

# The median of an odd number of input lines.
median() { sort -n | awk '{ v[NR] = $1 } END { print v[(NR + 1) / 2] }'; }
