# For the scripts of this folder: where things are, and how to run and count Windows programs.
# shellcheck shell=sh disable=SC2034

root=$(cd "$(dirname "$0")/.." && pwd)
build=$(realpath -m "${BUILD:-$root/build/bench}")
programs=$build/bench
mediatool=$build/mediatool/mediatool/mediatool.exe
disk=$build/data

prefix=$build/wine-prefix
wine=$(command -v wine64 || command -v /usr/lib/wine/wine64 || command -v wine)

fail() {
    code=$1
    shift
    echo "$(basename "$0"): $*" >&2
    exit "$code"
}

# A folder on a RAM disk, which ends with the script. Its name cannot be foreseen: everybody may write
# beside it.
ram=$(mktemp -d /dev/shm/launcher-bench.XXXXXX 2>/dev/null) ||
    fail 1 "needs a RAM disk, /dev/shm, that it may write to"
# Windows programs outlive an interrupted script, and would go on writing.
clean_up() {
    WINEPREFIX=$prefix wineserver -k 2>/dev/null || true
    rm -rf "$ram"
}
trap clean_up EXIT
trap 'exit 1' INT TERM HUP

run() { "$root/tools/wine-run.sh" "$prefix" "$@"; }

# windows PATH: how a Windows program names it.
windows() { printf 'z:%s' "$1"; }

# Keeps the server, its services and the desktop alive for all that is counted afterwards: a window
# that nobody sees. It ends with the script.
keep_warm() {
    run "$programs/start_child.exe" >/dev/null 2>&1 </dev/null || true  # makes a new prefix
    WINEPREFIX=$prefix WINEDEBUG=-all "$wine" notepad >/dev/null 2>&1 </dev/null &
    sleep 3
}

# need_programs: those that run.sh builds, and what counts calls
need_programs() {
    for program in copy_bench start_bench start_minimal start_child; do
        [ -e "$programs/$program.exe" ] || fail 1 "$program is not built: run bench/run.sh"
    done
    [ -e "$mediatool" ] || fail 1 "mediatool is not built: run bench/run.sh"
    command -v strace >/dev/null || fail 1 "strace is missing: apt-get install strace"
}

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
