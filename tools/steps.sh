# shellcheck shell=sh
# For scripts of several steps, to be sourced at the project's root.

# A step that is interrupted has not succeeded, whatever its program says.
trap 'exit 1' HUP INT TERM

# step NAME COMMAND...: one line while all is well, the command's output in a log file in
# build/logs. A failure shows the whole log and ends the script.
step() {
    step_start=$(date +%s)
    quietly "$@"
    echo "ok      $step_name ($(($(date +%s) - step_start)) s)"
}

# The same without the line.
quietly() {
    step_log=build/logs/$(echo "$1" | tr -c 'a-z0-9\n' -).log
    step_name=$1
    shift
    if ! mkdir -p build/logs 2>/dev/null || ! (: >"$step_log") 2>/dev/null; then
        echo "FAILED  $step_name: cannot write $step_log: does this folder belong to another user?" >&2
        exit 1
    fi
    "$@" >"$step_log" 2>&1 && return
    cat "$step_log"
    echo "FAILED  $step_name: $* (the log above is $step_log)" >&2
    exit 1
}
