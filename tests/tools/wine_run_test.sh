#!/bin/sh
# Runs programs with tools/wine-run.sh, and stops it while one runs.
#
#   wine_run_test.sh WINE_PREFIX
#
# Prints a line for each check; the exit code is 0 when all hold.
set -eu

. "$(dirname "$0")/checks.sh"
prefix=$1
run=$tools/wine-run.sh
cd "$work"
mkdir temp
mkfifo pipe

# piped COMMAND...: the script's exit code, and what came out of a pipe behind it
piped() {
    cat pipe >seen &
    status=0
    TMPDIR=$work/temp "$run" "$prefix" "$@" >pipe || status=$?
    wait
}

gives_output_and_code() {
    piped cmd.exe /c 'echo out& echo error>&2& exit 3'
    [ "$status" = 3 ] && [ "$(tr -d '\r' <seen)" = "$(printf 'out\nerror')" ]
}

gives_input() {
    printf 'echo heard\r\nexit 4\r\n' >input
    piped cmd.exe <input
    [ "$status" = 4 ] && grep -q heard seen
}

code_without_a_pipe() {
    status=0
    "$run" "$prefix" cmd.exe /c 'echo out& exit 5' >seen || status=$?
    [ "$status" = 5 ] && grep -q '^out' seen
}

# stopped_by SIGNAL CODE DESTINATION: the script and all that it started get the signal as soon as
# the program has said something
stopped_by() {
    rm -f seen
    cat pipe >>seen &
    reader=$!
    # shellcheck disable=SC2016  # for the inner shell
    TMPDIR=$work/temp setsid sh -c 'if [ "$1" = pipe ]; then exec >pipe; else exec >>seen 2>pipe; fi
        exec "$2" "$3" cmd.exe /c "echo before& notepad& echo after"' sh "$3" "$run" "$prefix" &
    script=$!
    for _ in $(seq 600); do
        ! grep -q before seen || break
        sleep 0.1
    done
    kill -s "$1" -- "-$script"
    status=0
    wait "$script" || status=$?
    wait "$reader"
    [ "$status" = "$2" ] && grep -q before seen && ! grep -q after seen &&
        [ -z "$(find temp -name 'tmp.*')" ]
}

check "output, errors and exit code through a pipe" gives_output_and_code
check "input" gives_input
check "exit code without a pipe" code_without_a_pipe
check "killed, the output is there and no file" stopped_by KILL 137 pipe
check "terminated" stopped_by TERM 1 pipe
check "hung up" stopped_by HUP 1 pipe
check "terminated without a pipe" stopped_by TERM 1 file

[ "$failures" = 0 ]
