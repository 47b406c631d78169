#!/bin/sh
# Builds the benchmarks, runs them all under Wine and prints their tables.
#
#   bench/run.sh              ten minutes or more, the builds included
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
case $#-${1-} in
0-) ;;
1---quick)
    large_file=16777216
    ram_rounds=3
    disk_rounds=2
    ;;
*) fail 2 "knows --quick and nothing else: $*" ;;
esac

# need_space FOLDER MEGABYTES
need_space() {
    free=$(df -Pk "$1" | awk 'NR == 2 { print int($4 / 1000) }')
    [ "$free" -ge "$2" ] || fail 1 "$1 has $free MB free; $2 are needed"
}
mkdir -p "$build"
need_space "$ram" 2100
need_space "$build" 1100

"$root/tools/install-tools.sh" strace
# build PRESET FOLDER CMAKE_OPTION...
build() {
    preset=$1
    folder=$2
    shift 2
    (cd "$root" && cmake --preset "$preset" -B "$folder" -DLAUNCHER_BUILD_TESTS=OFF "$@" &&
        cmake --build "$folder") >"$build/build.log" 2>&1 ||
        { cat "$build/build.log" >&2 && fail 1 "cannot build $folder"; }
}
build mingw "$build" -DLAUNCHER_BUILD_BENCH=ON
build mingw32 "$build/launcher32"
build mingw "$build/mediatool" -DLAUNCHER_BUILD_TOOLS=ON
need_programs
trap 'clean_up; rm -rf "$disk"' EXIT
rm -rf "$disk"

# size_of NAME FILE
size_of() { printf '  %-28s %9d bytes\n' "$1" "$(stat -c %s "$2")"; }
echo "Sizes"
size_of "setup.exe, 64-bit" "$build/launcher/setup.exe"
size_of "setup.exe, 32-bit" "$build/launcher32/launcher/setup.exe"
size_of mediatool.exe "$mediatool"
size_of "the icon in setup.exe" "$root/launcher/resources/setup.ico"

copy_bench() { run "$programs/copy_bench.exe" "$@"; }

# compare FOLDER ROUNDS FILES FOLDERS SMALLEST LARGEST
compare() {
    source=$(windows "$1/source")
    copy_bench make "$source" "$3" "$4" "$5" "$6"
    copy_bench compare "$source" "$(windows "$1/copy")" "$2"
    rm -rf "$1/source" "$1/copy"
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
    rm -rf "$ram/source" "$ram/copy"
}
echo "Memory, that of a process that copies nothing first"
memory 1 0
memory 1 10000000
memory 100 10000000

"$root/bench/count-calls.sh"
"$root/bench/count-start.sh"
