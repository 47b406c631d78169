#!/bin/sh
# What tools/steps.sh and tools/install-tools.sh say and leave when something goes wrong.
#
# Prints a line for each check; the exit code is 0 when all hold.
set -eu

. "$(dirname "$0")/checks.sh"
cd "$work"

# script STATEMENT: a script of steps, with its exit code and what it printed
script() {
    printf '%s\n' 'set -eu' ". '$tools/steps.sh'" "$1" >script.sh
    status=0
    sh script.sh >output 2>&1 || status=$?
}

shows_a_line() {
    script 'step "one thing" echo text'
    [ "$status" = 0 ] && grep -qx 'ok      one thing (. s)' output &&
        [ "$(cat build/logs/one-thing.log)" = text ]
}

shows_the_log() {
    script 'step "bad" sh -c "echo reason; exit 9"; echo on'
    [ "$status" = 1 ] && [ "$(head -n 1 output)" = reason ] && grep -q '^FAILED  bad' output &&
        ! grep -q '^on$' output
}

# The log of another user, which root could write: a folder of that name stands for it.
shows_no_log_of_another() {
    rm -rf build/logs
    mkdir -p build/logs/theirs.log
    script 'step "theirs" true'
    [ "$status" = 1 ] && [ "$(wc -l <output)" = 1 ] &&
        grep -q '^FAILED  theirs: cannot write build/logs/theirs.log' output
}

# Its program may end with 0 all the same.
fails_when_interrupted() {
    for signal in HUP INT TERM; do
        printf '%s\n' 'set -eu' ". '$tools/steps.sh'" \
            "step wait sh -c 'trap \"exit 0\" HUP INT TERM; sleep 20 & wait'" >script.sh
        status=0
        timeout --preserve-status -s "$signal" 1 sh script.sh >output 2>&1 || status=$?
        [ "$status" != 0 ] && [ "$status" != 124 ] || return 1
    done
}

# The programs that install-tools.sh finds are those in `bin`, and no user is root.
install_tools() {
    status=0
    PATH=$work/bin /bin/sh "$tools/install-tools.sh" "$@" >output 2>&1 || status=$?
}
names_what_is_missing() {
    mkdir -p bin
    printf '#!/bin/sh\necho 1000\n' >bin/id
    chmod +x bin/id
    ln -sf "$(command -v cmake)" bin/cmake
    install_tools nsis
    [ "$status" = 1 ] && grep -q '^Missing:.* ninja .*makensis' output &&
        ! grep -q '^Missing:.* cmake ' output && [ "$(wc -l <output)" = 2 ]
}

check "a step shows a line" shows_a_line
check "a failure shows the log" shows_the_log
check "the log of another user is not shown" shows_no_log_of_another
check "an interrupted script fails" fails_when_interrupted
check "without dpkg, the missing programs are named" names_what_is_missing

[ "$failures" = 0 ]
