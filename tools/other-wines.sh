#!/bin/sh
# Runs the tests on other Wines than this machine's, each in a small Debian of its own. Takes an hour
# or less, 4 GB on the disk, and the network on its first run; it is for releases, not for every
# change.
#
#   other-wines.sh [--folder FOLDER] [--preset NAME] [SYSTEM...]
#
#   wine10   Wine 10 of Debian 13: all 64-bit tests. It starts programs as Windows does for an
#            administrator, without elevation: a starter gives the tests theirs, and those of the
#            refusal run without it.
#   wow64    Wine 8 of Debian 12 as a 64-bit Windows: the 32-bit launcher, installer and end-to-end
#            tests
#   win32    the same Wine as a 32-bit Windows: the same programs
#
#   --folder FOLDER  where the Debians, the Wine prefixes and the tests' output are kept; without it
#                    build/other-wines. What is there is used again.
#   --preset NAME    the build of the 64-bit tests; without it mingw
#
# All systems without a name. Needs root, for chroot and mounts, which end with the script, and the
# Debian package debootstrap. Prints a line for each test program. Exit codes: 0 when all tests
# passed; 1 when one failed or something could not be made; 2 for wrong arguments.
set -eu

fail() {
    code=$1
    shift
    echo "other-wines.sh: $*" >&2
    exit "$code"
}

here=$(cd "$(dirname "$0")/.." && pwd)
folder=$here/build/other-wines
preset=mingw
systems=""
while [ $# -gt 0 ]; do
    case $1 in
    --folder | --preset)
        { [ $# -ge 2 ] && [ -n "$2" ]; } || fail 2 "$1 needs a value"
        if [ "$1" = --folder ]; then folder=$(realpath -m "$2"); else preset=$2; fi
        shift
        ;;
    wine10 | wow64 | win32) systems="$systems $1" ;;
    *) fail 2 "unknown argument $1" ;;
    esac
    shift
done
grep -qF "\"name\": \"$preset\"" "$here/CMakePresets.json" ||
    fail 2 "no such preset: $preset (cmake --list-presets)"
[ -n "$systems" ] || systems="wine10 wow64 win32"
[ "$(id -u)" = 0 ] || fail 1 "needs root, for chroot and mounts"
command -v debootstrap >/dev/null || fail 1 "debootstrap is missing: apt-get install debootstrap"

logs=$folder/logs
mkdir -p "$folder/debs" "$folder/prefixes" "$logs"

# The Debian that is not complete yet ends with the script, and what debootstrap mounted in it.
unfinished=""
clean_up() {
    [ -n "$unfinished" ] || return 0
    umount -l "$unfinished/proc" "$unfinished/sys" 2>/dev/null || true
    rm -rf --one-file-system "$unfinished"
}
trap clean_up EXIT
trap 'exit 1' INT TERM HUP

# make_debian RELEASE PACKAGE...: the folder of that name, with these packages. With "i386" among
# them it takes 32-bit programs too.
make_debian() {
    release=$1
    shift
    root=$folder/$release
    [ ! -e "$root/.complete" ] || return 0
    echo "Making $root"
    unfinished=$root
    rm -rf --one-file-system "$root"
    fill_debian "$@" >"$logs/$release.log" 2>&1 ||
        fail 1 "cannot make a Debian $release: is there a network? See $logs/$release.log"
    touch "$root/.complete"
    unfinished=""
}
fill_debian() {
    debootstrap --variant=minbase --cache-dir="$folder/debs" "$release" "$root" ||
        return 1
    cp /etc/resolv.conf "$root/etc/resolv.conf"
    case " $* " in *:i386\ *) chroot "$root" dpkg --add-architecture i386 || return 1 ;; esac
    chroot "$root" apt-get -q update || return 1
    DEBIAN_FRONTEND=noninteractive chroot "$root" \
        apt-get -q -y --no-install-recommends install "$@"
}

# build FOLDER TARGET CMAKE_OPTION...
build() {
    build=$1
    target=$2
    shift 2
    echo "Building $target in $build"
    { cmake -S "$here" -B "$build" "$@" && cmake --build "$build" --target "$target"; } \
        >"$logs/build.log" 2>&1 || fail 1 "cannot build $target: see $logs/build.log"
}

# run_in RELEASE COMMAND...: in that Debian, where this checkout and the prefixes have the names that
# they have here. Mounts and processes end with the command. The environment is empty: the server of
# Debian's Wine 10 aborts when there is a TMPDIR and no XDG_RUNTIME_DIR.
run_in() {
    root=$folder/$1
    shift
    # shellcheck disable=SC2016  # for the inner shell
    unshare --mount --pid --fork --kill-child sh -euc '
        root=$1 here=$2 prefixes=$3
        shift 3
        mount -t proc proc "$root/proc"
        mount --rbind /dev "$root/dev"
        mount -t tmpfs tmpfs "$root/tmp"
        for shared in "$here" "$prefixes"; do
            mkdir -p "$root$shared"
            mount --bind "$shared" "$root$shared"
        done
        exec env -i HOME=/root LANG=C.UTF-8 PATH=/usr/sbin:/usr/bin:/sbin:/bin chroot "$root" "$@"
    ' sh "$root" "$here" "$folder/prefixes" "$@"
}

# The number in the last line of the log that has this word of GoogleTest's.
count_of() { sed -n "s/^\[ *$1 *\] \([0-9]*\) tests\{0,1\}[.,].*/\1/p" "$log" | tail -n 1 | grep . || echo 0; }

# run_test SYSTEM RELEASE WINEARCH NAME PROGRAM...: one test program, and a line of what came of it
run_test() {
    system=$1 release=$2 arch=$3 name=$4
    shift 4
    log=$logs/$system-$name.log
    status=0
    run_in "$release" env WINEARCH="$arch" timeout 1800 "$here/tools/wine-run.sh" \
        "$folder/prefixes/$system" "$@" >"$log" 2>&1 || status=$?
    line="$(count_of PASSED) passed, $(count_of SKIPPED) skipped, $(count_of FAILED) failed"
    repeats=$(grep -c '^\[ REPEATED \]' "$log" || true)
    [ "$repeats" = 0 ] || line="$line, $repeats starts repeated"
    echo "$system: $name: $line"
    # A program that ends early, or does not start at all, passes nothing.
    if [ "$status" != 0 ] || ! grep -q '^\[  PASSED  \] [1-9]' "$log"; then
        echo "$system: $name: FAILED, exit code $status: see $log"
        result=1
    fi
}

run_wine10() {
    make_debian trixie wine wine64
    build "$here/build/$preset" all --preset "$preset"
    tests=$here/build/$preset/tests
    starter=$tests/support/elevated_start.exe
    for program in $(cd "$tests" && find . -name '*_test.exe' | sort); do
        run_test wine10 trixie win64 "$(basename "$program" .exe)" "$starter" "$tests/$program"
    done
    run_test wine10 trixie win64 e2e_test_not_elevated "$tests/e2e/e2e_test.exe" \
        --gtest_filter='NotElevated.*'
}

# The launcher as it is released, and the tests in a build of their own, with the compiler that
# GoogleTest needs. The 32-bit linker cannot put objects with and without optimisation across files
# together.
build_32bit() {
    "$here/tools/install-tools.sh" g++-mingw-w64-i686-posix
    launcher=$here/build/other-wines-launcher32
    tests=$here/build/other-wines-tests32
    build "$launcher" setup --preset mingw32 -DLAUNCHER_BUILD_TESTS=OFF
    build "$tests" e2e_test --preset mingw32 -DMINGW_THREADS=posix -DLAUNCHER_BUILD_TESTS=ON \
        -DCMAKE_INTERPROCEDURAL_OPTIMIZATION=OFF \
        -DLAUNCHER_UNDER_TEST="$launcher/launcher/setup.exe"
}

# run_32bit SYSTEM WINEARCH
run_32bit() {
    make_debian bookworm wine wine64 wine32:i386
    build_32bit
    run_test "$1" bookworm "$2" e2e_test "$tests/tests/e2e/e2e_test.exe"
}

result=0
for system in $systems; do
    case $system in
    wine10) run_wine10 ;;
    wow64) run_32bit wow64 win64 ;;
    win32) run_32bit win32 win32 ;;
    esac
done
exit $result
