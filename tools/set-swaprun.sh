#!/bin/sh
# Marks a program so that Windows copies it to the swap file before it runs it from a disc or a
# network: taking the disc out then cannot crash it. The same as the /SWAPRUN:CD,NET option of
# other linkers, which GNU ld lacks.
#
#   set-swaprun.sh PROGRAM.exe
set -eu

file=$1

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

header=$(read_le 60 4) # e_lfanew
[ "$(read_le "$header" 4)" = 17744 ] || { echo "$file is no Windows program" >&2; exit 1; } # "PE"

characteristics=$((header + 22))
checksum=$((header + 88))
flags=3072 # IMAGE_FILE_REMOVABLE_RUN_FROM_SWAP and IMAGE_FILE_NET_RUN_FROM_SWAP
old=$(read_le $characteristics 2)
[ $((old & flags)) = 0 ] || exit 0
write_le $characteristics 2 $((old | flags))

# The checksum, where there is one, is the folded sum of all 16-bit words plus the file's size.
[ "$(read_le $checksum 4)" != 0 ] || exit 0
size=$(wc -c <"$file")
sum=$(($(read_le $checksum 4) - size + flags))
write_le $checksum 4 $(((sum & 65535) + (sum >> 16) + size))
