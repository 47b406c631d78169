# shellcheck shell=sh disable=SC2034
# For the shell tests, to be sourced: a folder for each run, checks that are counted, and what a
# refusal is.

project=$(cd "$(dirname "$0")/../.." && pwd)
tools=$project/tools
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM
failures=0

# check TEXT COMMAND...: the command succeeds
check() {
    text=$1
    shift
    if "$@"; then
        echo "ok: $text"
    else
        echo "FAILED: $text"
        failures=$((failures + 1))
    fi
}

# refuses CODE SENTENCE COMMAND...: ends with this code and one line that says this, and leaves
# nothing in the folder for temporary files
refuses() {
    code=$1
    sentence=$2
    shift 2
    mkdir -p "$work/temporary"
    status=0
    TMPDIR=$work/temporary "$@" >"$work/output" 2>&1 || status=$?
    [ "$status" = "$code" ] && [ "$(wc -l <"$work/output")" = 1 ] &&
        grep -qF -- "$sentence" "$work/output" && [ -z "$(ls "$work/temporary")" ] && return
    cat "$work/output"
    ls "$work/temporary"
    return 1
}
