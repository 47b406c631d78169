#!/bin/sh
# What a medium that answers late costs, a disc or a share behind a slow line: a start from it, copies
# from it, and mediatool's copy of it with and without checksums. A file system by FUSE stands in for
# the medium and counts what it is asked for.
#
#   slow-medium.sh [MILLISECONDS]     after run.sh has built the programs; without a number each
#                                     answer takes 20
#
# By hand only: needs root, /dev/fuse, and the Debian packages fuse3 and python3-fusepy.
set -eu
. "$(dirname "$0")/common.sh"

delay=${1:-20}
[ $# -le 1 ] || fail 2 "takes one number: $*"
case $delay in *[!0-9]* | "") fail 2 "not a number of milliseconds: $delay" ;; esac
need_programs
[ -c /dev/fuse ] || fail 1 "there is no /dev/fuse"
"$root/tools/install-tools.sh" fuse3 python3-fusepy

folder=$ram/folder
medium=$ram/medium
mkdir "$folder" "$medium"
unmount() { fusermount3 -q -u -z "$medium" || true; }
trap 'unmount; clean_up' EXIT
"$root/bench/slow_medium.py" "$folder" "$medium" "$delay" &
for _ in 1 2 3 4 5 6 7 8 9 10; do
    [ ! -e "$medium/.requests" ] || break
    sleep 0.5
done
[ -e "$medium/.requests" ] || fail 1 "the medium cannot be mounted"

# requests NAME COMMAND...: runs it, and prints how many requests it made
requests() {
    name=$1
    shift
    before=$(cat "$medium/.requests")
    run "$@" >/dev/null
    printf '  %-24s %6d requests\n' "$name" $(($(cat "$medium/.requests") - before))
}

keep_warm
child=$folder/inst/win_b64/code/bin/ZEPInsAppliGUI.exe
mkdir -p "$(dirname "$child")"
cp "$build/launcher/setup.exe" "$programs/start_minimal.exe" "$folder"
cp "$programs/start_child.exe" "$child"
start_minimal="$(windows "$medium/start_minimal.exe") $(windows "$medium${child#"$folder"}")"
start_launcher="$(windows "$medium/setup.exe") -wait -env ZEPAdmInstDontCopyInstaller=1"
echo "Time of a start from a medium that answers after $delay ms, the child's included, median of 5"
run "$programs/start_bench.exe" 5 minimal "$start_minimal" setup.exe "$start_launcher"
requests minimal "$programs/start_bench.exe" 1 minimal "$start_minimal"
requests setup.exe "$programs/start_bench.exe" 1 setup.exe "$start_launcher"
for program in start_minimal.exe setup.exe; do
    printf '  %-24s %6d bytes\n' "$program" "$(stat -c %s "$folder/$program")"
done

# compare FILES FOLDERS SMALLEST LARGEST
compare() {
    run "$programs/copy_bench.exe" make "$(windows "$folder/source")" "$@"
    run "$programs/copy_bench.exe" compare "$(windows "$medium/source")" "$(windows "$ram/copy")" 3
    for peer in launcher runtime readfile copyfile; do
        requests "$peer" "$programs/copy_bench.exe" copy "$peer" "$(windows "$medium/source")" \
            "$(windows "$ram/copy")"
        rm -rf "$ram/copy"
    done
    rm -rf "$folder/source"
}
echo "One file of 32 MiB from there (ratio: to the launcher's Copy)"
compare 1 1 33554432 33554432

# milliseconds OPTION...: what mediatool's create takes, median of 5
milliseconds() {
    for _ in 1 2 3 4 5; do
        start=$(date +%s%N)
        run "$mediatool" create --id SET --layout siblings --volumes 1 "$@" \
            --from "$(windows "$medium/source")" "$(windows "$ram/set")" >/dev/null
        echo $((($(date +%s%N) - start) / 1000000))
        rm -rf "$ram/set"
    done | median
}
run "$programs/copy_bench.exe" make "$(windows "$folder/source")" 1 1 33554432 33554432
echo "One file of 32 MiB from there, mediatool create"
printf '  %-24s %6d ms\n' plain "$(milliseconds)" --checksums "$(milliseconds --checksums)"
rm -rf "$folder/source"

echo "60 files of 4 to 20 KiB in 6 folders from there"
compare 60 6 4096 20480
