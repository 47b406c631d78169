#!/bin/sh
# Compares what the launcher costs to start, wait and end with the least that a launcher can do:
# system calls, time, and the libraries loaded. Then the time of a start from a medium with a damaged
# count of volumes.
#
#   count-start.sh            after run.sh has built the programs
set -eu
. "$(dirname "$0")/common.sh"

[ $# = 0 ] || fail 2 "takes no arguments"
need_programs
media=$ram/start
keep_warm

child=$media/inst/win_b64/code/bin/ZEPInsAppliGUI.exe
mkdir -p "$(dirname "$child")"
cp "$build/launcher/setup.exe" "$media"
cp "$programs/start_minimal.exe" "$media"
cp "$programs/start_child.exe" "$child"

for _ in 1 2 3 4 5; do
    calls_of 7 "$media/start_minimal.exe" "$(windows "$child")" >>"$ram/minimal"
    calls_of 7 "$media/setup.exe" -wait >>"$ram/launcher"
done
echo "System calls of a start under Wine, median of 5 (ratio: to the minimal launcher)"
echo "$(median <"$ram/minimal") $(median <"$ram/launcher")" | awk '{
    printf "  %-12s %8d %8.3f\n  %-12s %8d %8.3f\n", "minimal", $1, 1, "setup.exe", $2, $2 / $1 }'

echo "Time of a start, the child's included, median of 100"
run "$programs/start_bench.exe" 100 \
    minimal "$(windows "$media/start_minimal.exe") $(windows "$child")" \
    setup.exe "$(windows "$media/setup.exe") -wait"

# libraries PROGRAM [ARGUMENT...]: what is loaded while the program runs, its child's left out.
libraries() {
    WINEPREFIX=$prefix WINEDEBUG=+pid,+loaddll "$wine" "$@" 2>&1 >/dev/null </dev/null |
        awk -F: 'NR == 1 { own = $1 } $1 == own' | sed -n 's/.*Loaded L"\([^"]*\)".*/\1/p' |
        sed 's/.*\\//; /\.exe$/d' | tr '[:upper:]' '[:lower:]' | sort -u
}
libraries "$media/start_minimal.exe" "$(windows "$child")" >"$build/libraries-minimal.txt"
libraries "$media/setup.exe" -wait >"$build/libraries-launcher.txt"
echo "Libraries loaded by the minimal launcher only (<) and by setup.exe only (>)"
diff "$build/libraries-minimal.txt" "$build/libraries-launcher.txt" | grep '^[<>]' ||
    echo "  none: both load the same $(wc -l <"$build/libraries-launcher.txt")"

# crowd FOLDER: the media again, there, among 10,000 files
crowd() {
    cp -r "$media" "$1"
    echo MTBDIR=SET >"$1/1.txt"
    (cd "$1" && seq -f 'file%.0f.txt' 10000 | xargs touch)
}
crowd "$ram/plain"
crowd "$ram/damaged"
echo 2147483647 >"$ram/damaged/inst/volumes.txt"
# Nothing is copied: the launcher would show a box, and wait for it.
stay="-wait -env ZEPAdmInstDontCopyInstaller=1"
echo "Time of a start beside 10,000 files, with and without a count of 2,147,483,647 volumes, median of 5"
run "$programs/start_bench.exe" 5 \
    "no count" "$(windows "$ram/plain/setup.exe") $stay" \
    "damaged count" "$(windows "$ram/damaged/setup.exe") $stay"
