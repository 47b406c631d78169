# shellcheck shell=sh
# For scripts of several steps, to be sourced at the project's root.

# step NAME COMMAND...: one line while all is well, the command's output in a log file in
# build/logs. A failure shows the whole log and ends the script.
step() {
    step_log=build/logs/$(echo "$1" | tr -c 'a-z0-9\n' -).log
    step_name=$1
    step_start=$(date +%s)
    shift
    mkdir -p build/logs
    if "$@" >"$step_log" 2>&1; then
        echo "ok      $step_name ($(($(date +%s) - step_start)) s)"
    else
        cat "$step_log"
        echo "FAILED  $step_name: $* (the log above is $step_log)" >&2
        exit 1
    fi
}
