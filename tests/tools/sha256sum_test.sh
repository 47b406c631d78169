#!/bin/sh
# The lists of checksums that mediatool writes, read by sha256sum, and those of sha256sum, read by
# mediatool.
#
#   sha256sum_test.sh MEDIATOOL-EXE WINE-PREFIX
#
# Prints a line for each check; the exit code is 0 when all hold.
set -eu

mediatool=$1
prefix=$2
. "$(dirname "$0")/checks.sh"

run() { "$tools/wine-run.sh" "$prefix" "$mediatool" "$@" >"$work/output" 2>&1; }

cd "$work"
mkdir -p "content/one/sub folder/größer" content/two
echo first >"content/one/sub folder/größer/a  b.bin"
: >content/one/empty.bin
echo launcher >content/one/setup.exe
echo second >content/two/-second.bin

# holds VOLUME: sha256sum says so, of every file but the list
holds() {
    (cd "$1" && sha256sum --check --strict --quiet SHA256SUMS) || return 1
    [ "$(find "$1" -type f ! -name SHA256SUMS | wc -l)" = "$(wc -l <"$1/SHA256SUMS")" ]
}
is_found() { run validate --json set/1 || true; grep -qF "\"$1\"" "$work/output"; }
is_not_found() { ! is_found "$1"; }

check "create --checksums" run create --checksums --id SET --layout siblings --volumes 2 \
    --from content/one --from content/two set
check "sha256sum reads the list of volume 1" holds set/1
check "sha256sum reads the list of volume 2" holds set/2
rm set/1/SHA256SUMS set/2/SHA256SUMS
check "mediatool checksum" run checksum set/1
check "sha256sum reads the list of volume 1" holds set/1
check "sha256sum reads the list of volume 2" holds set/2

for volume in 1 2; do
    (
        cd "set/$volume"
        rm SHA256SUMS
        find . -type f -exec sha256sum {} + >../sums
        mv ../sums SHA256SUMS
    )
done
for kind in differs file-missing file-unlisted list-malformed; do
    check "what sha256sum writes holds for mediatool, without checksum-$kind" is_not_found "checksum-$kind"
done
echo damaged >set/2/-second.bin
check "damage is found by it" is_found checksum-differs

[ "$failures" = 0 ]
