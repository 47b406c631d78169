#!/bin/sh
# Fails when a source of the launcher includes a header of a layer above its own.
set -eu
cd "$(dirname "$0")/.."

grep -r '^#include "' --include='*.h' --include='*.cpp' fs platform media installer launcher |
    LC_ALL=C sort | awk '
    BEGIN {
        count = split("fs platform launcher/base media installer launcher", layers)
        for (i = 1; i <= count; i++) level[layers[i]] = i
    }
    function folder(path) {
        sub("/[^/]*$", "", path)
        return path
    }
    {
        split($0, parts, /:#include "|"/)
        from = folder(parts[1])
        to = folder(parts[2])
        if (!(to in level) || level[to] > level[from]) {
            print parts[1] " includes " parts[2]
            failed = 1
        }
    }
    END {
        if (NR == 0) { print "no include found"; failed = 1 }
        exit failed
    }'
