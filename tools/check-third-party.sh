#!/bin/sh
# Looks whether a release folder holds what the licences of its parts ask for: each part and each
# text in THIRD-PARTY-NOTICES.txt, and a bill of materials that keeps to its schema and whose
# programs are those of the folder.
#
#   check-third-party.sh RELEASE
#
# Says what is missing; the exit code is 0 when nothing is. The schema, tools/bill.schema.json, allows
# nothing that SPDX 2.3 forbids, and of the rest only what a release has. SPDX_SCHEMA=FILE validates
# with the schema that SPDX publishes as well.
set -eu

fail() {
    code=$1
    shift
    echo "check-third-party.sh: $*" >&2
    exit "$code"
}

[ $# = 1 ] || fail 2 "give a release folder"
tools=$(cd "$(dirname "$0")" && pwd)
notices=$1/THIRD-PARTY-NOTICES.txt
bill=$1/bill-of-materials.spdx.json
for file in "$notices" "$bill"; do [ -f "$file" ] || fail 1 "no such file: $file"; done
# The one of the Debian package, whatever else this machine has.
validator=/usr/bin/jsonschema
[ -x $validator ] || fail 1 "$validator is missing: apt-get install python3-jsonschema"

packages="g++-mingw-w64-x86-64-posix gcc-mingw-w64-x86-64-posix g++-mingw-w64-i686-win32
    gcc-mingw-w64-i686-win32 mingw-w64-x86-64-dev mingw-w64-i686-dev mingw-w64-common libcli11-dev
    nlohmann-json3-dev"

# Words of each text that no other has.
while read -r words; do
    grep -qF -- "$words" "$notices" || fail 1 "THIRD-PARTY-NOTICES.txt lacks: $words"
done <<'END'
GCC RUNTIME LIBRARY EXCEPTION
You have permission to propagate a work of Target Code formed by
Version 3, 29 June 2007
The hypothetical commands `show w' and `show c' should show the appropriate
mingw-w64-libraries/winpthreads
Names of the copyright holders must not be used to endorse or
Copyright: 2017-2020 University of Cincinnati
Neither the name of the University nor the names of its contributors
Copyright: 2013-2022 Niels Lohmann
The above copyright notice and this permission notice shall be included in all
END

/usr/bin/python3 -m json.tool "$bill" >/dev/null 2>&1 || fail 1 "$bill is no JSON"
for schema in "$tools/bill.schema.json" ${SPDX_SCHEMA:+"$SPDX_SCHEMA"}; do
    $validator -i "$bill" "$schema" >/dev/null 2>&1 ||
        fail 1 "$bill breaks $schema: $($validator -i "$bill" "$schema" 2>&1 | head -n 1)"
done

for package in $packages; do
    grep -qF "from: $package " "$notices" || fail 1 "THIRD-PARTY-NOTICES.txt lacks: from: $package"
    grep -qF "\"name\": \"$package\"" "$bill" || fail 1 "the bill names no $package"
done
for program in x64/setup.exe x86/setup.exe mediatool.exe; do
    grep -qF "\"$(sha256sum <"$1/$program" | cut -d ' ' -f 1)\"" "$bill" ||
        fail 1 "the bill has another checksum for $program"
done
for id in $(sed -n 's/.*"relatedSpdxElement": "\(.*\)".*/\1/p' "$bill" | sort -u); do
    grep -qF "\"SPDXID\": \"$id\"" "$bill" || fail 1 "the bill has no $id, to which it refers"
done
echo "$1: every part has its texts, and the bill of materials is valid"
