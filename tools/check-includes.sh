#!/bin/sh
# Fails when a source includes a header of a room above its own.
set -eu
cd "$(dirname "$0")/.."

# From the lowest to the highest. A folder that is not named belongs to the room that it is in.
rooms="fs platform launcher/base media installer launcher mediatool/base mediatool/media
    mediatool/validate mediatool/create mediatool/dry_run mediatool/run mediatool"

# shellcheck disable=SC2086  # a list of folders
grep -r '^#include "' --include='*.h' --include='*.cpp' $rooms |
    LC_ALL=C sort -u | awk -v rooms="$rooms" '
    BEGIN {
        count = split(rooms, names)
        for (i = 1; i <= count; i++) level[names[i]] = i
    }
    # The level of the room that a file is in; 0 for none.
    function level_of(path) {
        while (sub("/[^/]*$", "", path))
            if (path in level) return level[path]
        return 0
    }
    {
        split($0, parts, /:#include "|"/)
        seen[level_of(parts[1])] = 1
        to = level_of(parts[2])
        if (to == 0 || to > level_of(parts[1])) {
            print parts[1] " includes " parts[2]
            failed = 1
        }
    }
    END {
        for (i = 1; i <= count; i++)
            if (!(i in seen)) { print "no include found in " names[i]; failed = 1 }
        exit failed
    }'
