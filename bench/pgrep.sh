#!/usr/bin/env bash
# Times one scan for products as a whole process, from start to exit, and pgrep with the same products'
# process names: first on the machine as it is, then with 500 more processes. The two alternate, so
# that noise affects both. Usage: bench/pgrep.sh [BUILD-FOLDER]
set -euo pipefail

bin="${1:-$(dirname "$0")/../build/release}/bin"
names=$("$bin/catalogue-names")
runs=30

# Sets elapsedMicros to how long a command takes, in microseconds. Finding nothing is not a failure here; not being
# able to look is.
elapsed() {
    local start=$EPOCHREALTIME status=0 end
    "$@" >/dev/null || status=$?
    end=$EPOCHREALTIME
    if ((status > 1)); then
        echo "$1 failed with status $status" >&2
        return 1
    fi
    elapsedMicros=$((${end/./} - ${start/./}))
}

median() { sort -n | awk '{ value[NR] = $1 } END { print value[int(NR / 2) + 1] }'; }

compare() {
    local scans=() pgreps=() ratios=()
    for ((run = 0; run < runs; run++)); do
        elapsed "$bin/quorva-scan" --source process
        scans+=("$elapsedMicros")
        elapsed pgrep -af "$names"
        pgreps+=("$elapsedMicros")
        ratios+=("$(awk "BEGIN { print ${scans[run]} / ${pgreps[run]} }")")
    done
    printf '%-24s  %11s us  %11s us  %5.2f x\n' "$1" \
        "$(printf '%s\n' "${scans[@]}" | median)" \
        "$(printf '%s\n' "${pgreps[@]}" | median)" \
        "$(printf '%s\n' "${ratios[@]}" | median)"
}

processes() { find /proc -maxdepth 1 -name '[0-9]*' | wc -l; }

printf '%-24s  %14s  %14s  %7s\n' "medians of $runs runs" quorva-scan pgrep ratio
compare "$(processes) processes"

crowd=()
trap 'kill "${crowd[@]}"' EXIT
for ((i = 0; i < 500; i++)); do
    setpriv --pdeathsig KILL sleep infinity &
    crowd+=($!)
done
compare "$(processes) processes"
