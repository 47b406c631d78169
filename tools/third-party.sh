#!/bin/sh
# What of others is linked into the programs of a release: the licence texts, and the bill of
# materials (SPDX 2.3). Both are made from what Debian's packages say of themselves; the same
# packages and programs give the same bytes.
#
#   third-party.sh notices                       prints the licence texts
#   third-party.sh bill RELEASE VERSION SECONDS  prints the bill of the programs in that folder; it
#                                                bears this time, in seconds since 1970
#
# DOCUMENTATION=FOLDER takes the packages' documentation from there instead of /usr/share/doc.
set -eu
documentation=${DOCUMENTATION:-/usr/share/doc}

fail() {
    code=$1
    shift
    echo "third-party.sh: $*" >&2
    exit "$code"
}

programs="x64/setup.exe x86/setup.exe mediatool.exe"

# A package, the part of it that is linked in, that part's licence, the programs that have it.
parts() {
    gcc="GPL-3.0-or-later WITH GCC-exception-3.1"
    mingw="ZPL-2.1 AND MIT AND BSD-3-Clause"
    cat <<END
g++-mingw-w64-x86-64-posix|libstdc++, the compiler's C++ library|$gcc|x64/setup.exe mediatool.exe
gcc-mingw-w64-x86-64-posix|libgcc and libssp, the compiler's runtime|$gcc|x64/setup.exe mediatool.exe
g++-mingw-w64-i686-win32|libstdc++, the compiler's C++ library|$gcc|x86/setup.exe
gcc-mingw-w64-i686-win32|libgcc and libssp, the compiler's runtime|$gcc|x86/setup.exe
mingw-w64-x86-64-dev|the MinGW-w64 runtime and winpthreads|$mingw|x64/setup.exe mediatool.exe
mingw-w64-i686-dev|the MinGW-w64 runtime|$mingw|x86/setup.exe
mingw-w64-common|the MinGW-w64 headers|$mingw|$programs
libcli11-dev|CLI11, which reads the command line|BSD-3-Clause|mediatool.exe
nlohmann-json3-dev|nlohmann/json, which writes JSON|MIT|mediatool.exe
END
}

# version_of PACKAGE
version_of() {
    dpkg-query -W -f '${Version}' "$1" 2>/dev/null || fail 1 "the package $1 is not installed"
}

heading() {
    echo "================================================================================"
    printf '%s\n' "$@"
    echo "================================================================================"
    echo
}

# show_text FILE: a text, once
show_text() {
    sum=$(sha256sum <"$1")
    case $shown in
    *"$sum"*) printf 'Its text is the same as one above.\n\n' ;;
    *) cat "$1" && echo ;;
    esac
    shown="$shown$sum"
}

notices() {
    shown=""
    texts=""
    echo "The programs of this release contain parts of others, under the licences below. Each text is"
    echo "the whole one of the Debian package that the part comes from; some of it is about what else is"
    echo "in that package."
    echo
    while IFS='|' read -r package part licence users; do
        version=$(version_of "$package")
        text=$documentation/$package/copyright
        [ -s "$text" ] || fail 1 "the licence text of $package is missing: $text"
        heading "$part" "in: $users" "from: $package $version" "licence: $licence"
        show_text "$text"
        texts="$texts $(grep -o '/usr/share/common-licenses/[A-Z]*[-0-9.]*[0-9]' "$text" | tr '\n' ' ')"
    done
    # shellcheck disable=SC2086  # a list of names without blanks
    for text in $(printf '%s\n' $texts | sort -u); do
        [ -s "$text" ] || fail 1 "a licence text is missing: $text"
        heading "$(basename "$text"), to which texts above refer"
        show_text "$text"
    done
}

# id_of NAME: its name in the bill, of letters, digits, "." and "-"
id_of() { printf 'SPDXRef-%s' "$1" | sed 's/+/p/g; s/[^A-Za-z0-9.-]/-/g'; }

# package NAME VERSION CHECKSUM LICENCE MEMBERS: one entry of the bill
package() {
    printf '    {"SPDXID": "%s", "name": "%s", "versionInfo": "%s",\n' "$(id_of "$1")" "$1" "$2"
    printf '     "downloadLocation": "NOASSERTION", "filesAnalyzed": false,\n'
    printf '     "licenseConcluded": "NOASSERTION", "licenseDeclared": "%s", "copyrightText": "NOASSERTION",\n' "$4"
    printf '     "checksums": [{"algorithm": "SHA256", "checksumValue": "%s"}],\n     %s},\n' "$3" "$5"
}

# The checksum of a part is that of dpkg's list of the package's files and their checksums.
part_packages() {
    while IFS='|' read -r package part licence _; do
        version=$(version_of "$package")
        sum=$(dpkg-query --control-show "$package" md5sums | sha256sum | cut -d ' ' -f 1)
        url=$(printf 'pkg:deb/debian/%s@%s' "$package" "$version" | sed 's/+/%2B/g; s/~/%7E/g')
        package "$package" "$version" "$sum" "$licence" "\"summary\": \"$part\",
     \"comment\": \"the checksum: dpkg-query --control-show $package md5sums | sha256sum\",
     \"externalRefs\": [{\"referenceCategory\": \"PACKAGE-MANAGER\", \"referenceType\": \"purl\",
                       \"referenceLocator\": \"$url\"}]"
    done
}

relationships() {
    for program in $programs; do
        relationship SPDXRef-DOCUMENT DESCRIBES "$(id_of "$program")"
    done
    while IFS='|' read -r package _ _ users; do
        for program in $users; do
            relationship "$(id_of "$program")" STATIC_LINK "$(id_of "$package")"
        done
    done
}
relationship() {
    printf '    {"spdxElementId": "%s", "relationshipType": "%s", "relatedSpdxElement": "%s"},\n' "$@"
}

# The comma behind the last entry of a list has to go.
end_list() { sed '$s/,$//'; }

# bill RELEASE VERSION SECONDS
bill() {
    packages=$(
        for program in $programs; do
            [ -f "$1/$program" ] || fail 1 "no such program: $1/$program"
            package "$program" "$2" "$(sha256sum <"$1/$program" | cut -d ' ' -f 1)" NOASSERTION \
                "\"packageFileName\": \"$program\""
        done
        parts | part_packages
    )
    # The name of a bill is its own: bills with other contents have other names.
    name=$(printf '%s' "$packages" | sha256sum | cut -c 1-32)
    cat <<END
{
  "spdxVersion": "SPDX-2.3",
  "dataLicense": "CC0-1.0",
  "SPDXID": "SPDXRef-DOCUMENT",
  "name": "media-launcher-$2",
  "documentNamespace": "https://spdx.org/spdxdocs/media-launcher-$2-$name",
  "creationInfo": {
    "created": "$(date -u -d "@$3" +%Y-%m-%dT%H:%M:%SZ)",
    "creators": ["Tool: third-party.sh"]
  },
  "packages": [
$(printf '%s' "$packages" | end_list)
  ],
  "relationships": [
$(parts | relationships | end_list)
  ]
}
END
}

command -v dpkg-query >/dev/null || fail 1 "dpkg is missing: the texts are those of Debian's packages"
case $#-${1-} in
1-notices) parts | notices ;;
4-bill)
    case $3$4 in *[!0-9.]*) fail 2 "VERSION and SECONDS are numbers: $3 $4" ;; esac
    shift
    bill "$@"
    ;;
*) fail 2 "give \"notices\", or \"bill\" with a release folder, a version and a time" ;;
esac
