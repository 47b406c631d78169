#!/bin/sh
# Builds the benchmarks, runs them all under Wine and prints their tables.
#
#   bench/run.sh              about four minutes on a machine with nothing else to do
#   bench/run.sh --quick      fewer rounds, and files of 16 MiB instead of 128 MiB
#
# Needs 2.1 GB in /dev/shm and 1.1 GB on the disk; both are freed at the end. Set BUILD for another
# build folder than build/bench.
#
# The large files on an ext4 disk: ext4 writes a file out when it is closed if it was opened to be
# truncated, as all peers do; the launcher opens a new file as new.
#
# On Windows the times work the same way by hand, in any folder:
#   copy_bench make small 3000 300 4096 20480
#   copy_bench make large 4 1 134217728 134217728
#   copy_bench compare small copy 5
#   copy_bench compare large copy 5
set -eu

. "$(dirname "$0")/common.sh"

large_file=134217728
ram_rounds=5
disk_rounds=3
if [ "${1:-}" = --quick ]; then
    large_file=16777216
    ram_rounds=3
    disk_rounds=2
fi

command -v strace >/dev/null || apt-get install -y strace >/dev/null
mkdir -p "$build"
(
    cd "$root"
    cmake --preset mingw -B "$build" -DLAUNCHER_BUILD_TESTS=OFF -DLAUNCHER_BUILD_BENCH=ON
    cmake --build "$build"
) >"$build/build.log" 2>&1 || { cat "$build/build.log"; exit 1; }
trap 'rm -rf "$ram" "$disk"' EXIT
rm -rf "$ram" "$disk"

copy_bench() { run "$programs/copy_bench.exe" "$@"; }

# compare FOLDER ROUNDS FILES FOLDERS SMALLEST LARGEST
compare() {
    source=$(windows "$1/source")
    copy_bench make "$source" "$3" "$4" "$5" "$6"
    copy_bench compare "$source" "$(windows "$1/copy")" "$2"
    rm -rf "$1"
}

# compare_all PLACE FOLDER ROUNDS
compare_all() {
    echo "3,000 files of 4 to 20 KiB in 300 folders, on the $1 (ratio: to the launcher's Copy)"
    compare "$2" "$3" 3000 300 4096 20480
    echo "4 files of $((large_file / 1048576)) MiB, on the $1"
    compare "$2" "$3" 4 1 $large_file $large_file
}
compare_all "RAM disk" "$ram" $ram_rounds
compare_all disk "$disk" $disk_rounds

# memory FILES BYTES
memory() {
    copy_bench make "$(windows "$ram/source")" "$1" 1 "$2" "$2"
    copy_bench memory "$(windows "$ram/source")" "$(windows "$ram/copy")"
    rm -rf "$ram"
}
echo "Memory, that of a process that copies nothing first"
memory 1 0
memory 1 10000000
memory 100 10000000

"$root/bench/count-calls.sh"
"$root/bench/count-start.sh"
