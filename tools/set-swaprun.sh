#!/bin/sh
# Marks a program so that Windows copies it to the swap file before it runs it from a disc or a
# network: taking the disc out then cannot crash it. The same as the /SWAPRUN:CD,NET option of
# other linkers, which GNU ld lacks.
#
#   set-swaprun.sh PROGRAM.exe
set -eu

fail() {
    code=$1
    shift
    echo "set-swaprun.sh: $*" >&2
    exit "$code"
}

[ $# = 1 ] || fail 2 "give one program"
file=$1
{ [ -f "$file" ] && [ -r "$file" ] && [ -w "$file" ]; } ||
    fail 1 "no such file, or it may not be changed: $file"
size=$(wc -c <"$file")

# read_le OFFSET BYTES: the little-endian number there
read_le() { od -An -t "u$2" -j "$1" -N "$2" --endian=little "$file" | tr -d ' '; }

# write_le OFFSET BYTES VALUE
write_le() {
    i=0
    rest=$3
    while [ $i -lt "$2" ]; do
        printf "\\$(printf %03o $((rest % 256)))"
        rest=$((rest / 256))
        i=$((i + 1))
    done | dd of="$file" bs=1 seek="$1" conv=notrunc status=none
}

[ "$size" -ge 64 ] || fail 1 "$file is no Windows program"
header=$(read_le 60 4) # e_lfanew
[ $((header + 92)) -le "$size" ] || fail 1 "$file is no Windows program"
[ "$(read_le "$header" 4)" = 17744 ] || fail 1 "$file is no Windows program" # "PE"

characteristics=$((header + 22))
checksum=$((header + 88))
flags=3072 # IMAGE_FILE_REMOVABLE_RUN_FROM_SWAP and IMAGE_FILE_NET_RUN_FROM_SWAP
old=$(read_le $characteristics 2)
[ $((old & flags)) = 0 ] || exit 0
trap '' INT TERM HUP # a program with the mark and the old checksum would stay so
write_le $characteristics 2 $((old | flags))

# The checksum, where there is one, is the folded sum of all 16-bit words plus the file's size.
[ "$(read_le $checksum 4)" != 0 ] || exit 0
sum=$(($(read_le $checksum 4) - size + flags))
write_le $checksum 4 $(((sum & 65535) + (sum >> 16) + size))
