#!/bin/sh
# Counts the system calls that each way to copy a tree takes per file, and per folder, mediatool's
# create among them.
#
#   count-calls.sh            after run.sh has built the programs
#
# Totals hold what a process costs anyway, so trees of different sizes are subtracted. Counts repeat
# to within 0.1 %, whatever else the machine does.
set -eu
. "$(dirname "$0")/common.sh"

[ $# = 0 ] || fail 2 "takes no arguments"
need_programs
trees=$ram/calls
keep_warm

# make FILES FOLDERS
make() {
    run "$programs/copy_bench.exe" make "$(windows "$trees/$1-$2")" "$1" "$2" 4096 20480
}

# count PEER FILES FOLDERS
count() {
    rm -rf "$trees/copy"
    source=$(windows "$trees/$2-$3")
    copy=$(windows "$trees/copy")
    if [ "$1" = create ]; then
        calls_of 0 "$mediatool" create --id SET --layout siblings --volumes 1 --from "$source" "$copy"
        rm "$trees/copy/1/1.txt" "$trees/copy/1/inst/volumes.txt"
    else
        calls_of 0 "$programs/copy_bench.exe" copy "$1" "$source" "$copy"
    fi
    copied=$(find "$trees/copy" -type f | wc -l)
    [ "$copied" = "$2" ] || { echo "$1 copied $copied of $2 files" >&2; exit 1; }
}

make 300 30
make 300 300
make 3300 330

counts=
for peer in launcher runtime readfile copyfile filesystem xcopy create; do
    small=$(count $peer 300 30)
    folders=$(count $peer 300 300)
    large=$(count $peer 3300 330)
    counts="$counts$peer $small $folders $large
"
done
printf '%s' "$counts" | awk '
    { name[NR] = $1; folder[NR] = ($3 - $2) / 270; tree[NR] = ($4 - $2) / 3000
      file[NR] = tree[NR] - folder[NR] / 10
      if ($1 == "runtime") base = NR }
    END {
        print "System calls under Wine (ratio: to the bare runtime loop)"
        printf "  %-12s %22s %20s %11s\n", "", "per file, with folders", "per file alone", "per folder"
        for (i = 1; i <= NR; i++)
            printf "  %-12s %13.1f %8.3f %11.1f %8.3f %11.1f\n", name[i],
                tree[i], tree[i] / tree[base], file[i], file[i] / file[base], folder[i]
    }'
