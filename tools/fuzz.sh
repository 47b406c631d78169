#!/bin/sh
# Fuzzes the launcher's text code on this machine (Linux, Clang 14), under AddressSanitizer and
# UndefinedBehaviorSanitizer, against the models in tests/fuzz.
#
#   fuzz.sh replay                    every input of the kept corpus once; some seconds
#   fuzz.sh run [AMOUNT] [TARGET] [SEED]
#                                     new inputs: AMOUNT executions of each target, or seconds with
#                                     an "s" at the end ("600s"); 10000000 without one. The seed is
#                                     shown: with it, the same inputs come again, as long as the
#                                     kept ones are the same and build/fuzz/found is empty
#   fuzz.sh minimise                  makes the kept corpus anew, of itself and what runs have found
#
# An input that fails is kept in build/fuzz/failed; the target's program run on that file shows the
# failure again.
set -eu

cd "$(dirname "$0")/.."
build=build/fuzz
corpus=tests/fuzz/corpus
all="path relative_path replace_all volume_text command_line uuid_text options"

# What is freed is kept for a while, to catch its use; much of it costs more than it finds here.
export ASAN_OPTIONS="quarantine_size_mb=1:thread_local_quarantine_size_kb=16:malloc_context_size=0"

complain() {
    echo "fuzz.sh: $1" >&2
    exit 2
}

usage() {
    sed -n '2,/^set/s/^# \{0,1\}//p' "$0" >&2
    exit 2
}

build_targets() {
    sh tools/install-tools.sh clang-14 libclang-rt-14-dev
    mkdir -p $build
    cmake -S tests/fuzz -B $build -G Ninja -DCMAKE_CXX_COMPILER=clang++-14 >$build/configure.log ||
        { cat $build/configure.log; exit 1; }
    cmake --build $build >$build/build.log || { cat $build/build.log; exit 1; }
    mkdir -p $build/failed
}

# The longest input, in bytes: past it a target only gets slower.
max_length() {
    case $1 in
        uuid_text) echo 3 ;;
        options) echo 16 ;;
        command_line) echo 32 ;;
        *) echo 24 ;;
    esac
}

# fuzz TARGET ARGUMENT...
fuzz() {
    target=$1
    shift
    log=$build/$target.log
    nice -n 19 $build/"$target" -max_len="$(max_length "$target")" -timeout=60 -reload=0 \
        -detect_leaks=0 -print_final_stats=1 -artifact_prefix=$build/failed/"$target"- "$@" \
        >"$log" 2>&1 || { tail -n 40 "$log"; exit 1; }
}

stat_of() {
    sed -n "s/^stat::$1: *//p" "$log"
}

replay() {
    for target in $all; do
        # Leaks are looked for here, once: asking after every input is slow.
        fuzz "$target" -detect_leaks=1 -runs=0 "$corpus/$target"
        printf '%-14s %5s inputs\n' "$target" "$(find "$corpus/$target" -type f | wc -l)"
    done
}

# check_run AMOUNT TARGET SEED
check_run() {
    expr "$1" : '[1-9][0-9]*s\{0,1\}$' >/dev/null ||
        complain "the amount is a number, or one of seconds such as 600s, not \"$1\"."
    case " $all " in
        *" $2 "*) ;;
        *) [ -z "$2" ] || complain "there is no target \"$2\"; there are $all." ;;
    esac
    expr "$3" : '[0-9][0-9]*$' >/dev/null || complain "the seed is a number, not \"$3\"."
}

run() {
    case $1 in
        *s) amount=-max_total_time=${1%s} ;;
        *) amount=-runs=$1 ;;
    esac
    for target in ${2:-$all}; do
        mkdir -p "$build/found/$target" "$corpus/$target"
        fuzz "$target" "$amount" -seed="$3" "$build/found/$target" "$corpus/$target"
        printf '%-14s %10s executions, %s a second, seed %s\n' "$target" \
            "$(stat_of number_of_executed_units)" "$(stat_of average_exec_per_sec)" \
            "$(sed -n 's/^INFO: Seed: //p' "$log")"
    done
}

# The fewest inputs that reach every branch that any of them reaches.
minimise() {
    for target in $all; do
        new=$build/minimised/$target
        rm -rf "$new"
        mkdir -p "$new" "$build/found/$target" "$corpus/$target"
        fuzz "$target" -merge=1 -use_counters=0 "$new" "$corpus/$target" "$build/found/$target"
        # Never without a corpus, whenever this is interrupted.
        for input in "$new"/*; do cp "$input" "$corpus/$target"; done
        for input in "$corpus/$target"/*; do
            [ -e "$new/$(basename "$input")" ] || rm "$input"
        done
        printf '%-14s %5s inputs\n' "$target" "$(find "$new" -type f | wc -l)"
    done
}

[ $# -ge 1 ] || usage
command=$1
shift
case $command in
    replay) build_targets && replay ;;
    run)
        check_run "${1:-10000000}" "${2:-}" "${3:-0}"
        build_targets && run "${1:-10000000}" "${2:-}" "${3:-0}"
        ;;
    minimise) build_targets && minimise ;;
    *) usage ;;
esac
