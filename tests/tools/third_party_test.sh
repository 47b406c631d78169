#!/bin/sh
# What tools/third-party.sh writes about what is linked in, and what tools/check-third-party.sh sees
# of that when it is spoilt.
#
#   third_party_test.sh
#
# Prints a line for each check; the exit code is 0 when all hold.
set -eu

. "$(dirname "$0")/checks.sh"

third_party() { "$tools/third-party.sh" "$@"; }

# The documentation of Debian's packages, as links, which a test can take away.
documentation=$work/doc
mkdir "$documentation"
for package in g++-mingw-w64-x86-64-posix gcc-mingw-w64-x86-64-posix g++-mingw-w64-i686-win32 \
    gcc-mingw-w64-i686-win32 mingw-w64-x86-64-dev mingw-w64-i686-dev mingw-w64-common libcli11-dev \
    nlohmann-json3-dev; do
    ln -s "/usr/share/doc/$package" "$documentation"
done
without() {
    rm "$documentation/$1"
    result=0
    refuses_notices "licence text of $1 is missing" || result=$?
    ln -s "/usr/share/doc/$1" "$documentation"
    return $result
}
refuses_notices() {
    ! DOCUMENTATION=$documentation third_party notices >/dev/null 2>"$work/errors" &&
        [ "$(wc -l <"$work/errors")" = 1 ] && grep -qF "$1" "$work/errors"
}
for package in "$documentation"/*; do
    name=$(basename "$package")
    check "without the text of $name" without "$name"
done

release=$work/release
mkdir -p "$release/x64" "$release/x86"
for program in x64/setup.exe x86/setup.exe mediatool.exe; do echo $program >"$release/$program"; done
third_party notices >"$release/THIRD-PARTY-NOTICES.txt"
third_party bill "$release" 1.0.0 1700000000 >"$release/bill-of-materials.spdx.json"
check_release() { "$tools/check-third-party.sh" "$release" >"$work/output" 2>&1 || { cat "$work/output"; return 1; }; }
check "the texts and the bill are whole" check_release
bears_its_time() { grep -q '"created": "2023-11-14T22:13:20Z"' "$release/bill-of-materials.spdx.json"; }
check "the bill bears the time it was given" bears_its_time
same_again() { third_party bill "$release" 1.0.0 1700000000 | cmp - "$release/bill-of-materials.spdx.json"; }
check "the bill is the same again" same_again

# spoilt FILE SCRIPT SENTENCE: after this edit with sed the release does not pass, with this sentence
spoilt() {
    cp "$release/$1" "$work/whole"
    sed "$2" "$work/whole" >"$release/$1"
    result=0
    refuses 1 "$3" "$tools/check-third-party.sh" "$release" || result=1
    cp "$work/whole" "$release/$1"
    return $result
}
check "a text is missing" spoilt THIRD-PARTY-NOTICES.txt '/^GCC RUNTIME LIBRARY EXCEPTION/d' \
    "THIRD-PARTY-NOTICES.txt lacks: GCC RUNTIME LIBRARY EXCEPTION"
check "a part is missing" spoilt THIRD-PARTY-NOTICES.txt '/^from: libcli11-dev/d' \
    "THIRD-PARTY-NOTICES.txt lacks: from: libcli11-dev"
check "another program than that of the bill" spoilt mediatool.exe 's/^/x/' "mediatool.exe"
check "a part that the bill does not name" spoilt bill-of-materials.spdx.json \
    's/"name": "nlohmann-json3-dev"/"name": "other"/' "names no nlohmann-json3-dev"
check "a relationship to nothing" spoilt bill-of-materials.spdx.json \
    's/"relatedSpdxElement": "SPDXRef-libcli11-dev"/"relatedSpdxElement": "SPDXRef-x"/' "SPDXRef-x"
check "a bill that breaks its schema" spoilt bill-of-materials.spdx.json \
    's/"STATIC_LINK"/"STATICALLY"/' "STATICALLY"
check "a bill that is no JSON" spoilt bill-of-materials.spdx.json '$d' "is no JSON"
check "no such release" refuses 1 "no such file" "$tools/check-third-party.sh" "$work/none"
check "no release" refuses 2 "give a release folder" "$tools/check-third-party.sh"
check "an unknown word" refuses 2 "give \"notices\"" third_party everything
check "no version" refuses 2 "VERSION and SECONDS are numbers" third_party bill "$release" one 0
check "no programs" refuses 1 "no such program" third_party bill "$work" 1.0.0 0

[ "$failures" = 0 ]
