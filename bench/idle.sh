#!/bin/bash
# idle.sh BUILD-FOLDER [SECONDS]: the cost of the idle application beside 300 other processes,
# according to /proc. Run it in tests/support/private-session.sh, which ends the processes that this
# leaves running.
set -eu

quorva=$(realpath "$1")/bin/quorva
seconds=${2:-300}
tests=$(dirname "$(realpath "$0")")/../tests
ticks=$(getconf CLK_TCK)

. "$tests/support/virtual-display.sh"
/usr/bin/python3 -B "$tests/e2e/panel.py" &
waitFor gdbus wait --session --timeout 10 org.kde.StatusNotifierWatcher
gdbus call --session --dest org.a11y.Bus --object-path /org/a11y/bus \
    --method org.freedesktop.DBus.Properties.Set org.a11y.Status IsEnabled '<true>' >/dev/null
for _ in {1..300}; do
    sleep infinity &
done
mkdir -p "$XDG_CONFIG_HOME/quorva"
echo '{"version":1,"preferences":{"hasCompletedOnboarding":true,"calendarAuthorization":3}}' \
    >"$XDG_CONFIG_HOME/quorva/preferences.json"

# The processor time of all its threads so far, in seconds.
processorTime() { awk -v ticks="$ticks" '{ print ($14 + $15) / ticks }' "/proc/$process/stat"; }
# The number of wake-ups so far: how often its threads have gone to sleep.
sleeps() { awk '/^voluntary/ { sum += $2 } END { print sum }' "/proc/$process"/task/*/status; }
memory() { awk -v key="$1:" '$1 == key { print $2 / 1000 }' "/proc/$process/smaps_rollup"; }

"$quorva" &
process=$!
waitFor grep -qs startMonitoring "$XDG_STATE_HOME/Logs/Quorva/quorva.log"
waitFor sh -c 'gdbus call --session --dest org.kde.StatusNotifierWatcher \
    --object-path /StatusNotifierWatcher --method org.freedesktop.DBus.Properties.Get \
    org.kde.StatusNotifierWatcher RegisteredStatusNotifierItems | grep -q :'
start=$(processorTime)
sleep 15 # its first calls to services have been answered by then
time=$(processorTime)
woken=$(sleeps)
sleep "$seconds"
awk -v start="$start" -v time="$time" -v timeAfter="$(processorTime)" -v woken="$woken" \
    -v wokenAfter="$(sleeps)" -v seconds="$seconds" -v rss="$(memory Rss)" -v pss="$(memory Pss)" '
    function line(what, figure, unit, bound) {
        printf "%-52s %8.2f %-4s %8.2f  %s\n", what, figure, unit, bound,
            figure <= bound ? "within" : "OVER"
    }
    BEGIN {
        print "idle for " seconds " s beside 300 processes           figure          bound"
        line("processor time to icon and first scan", start * 1000, "ms", 250)
        line("processor time, of one core", (timeAfter - time) / seconds * 100, "%", 0.5)
        line("wake-ups a second, all threads", (wokenAfter - woken) / seconds, "", 3)
        line("memory, resident", rss, "MB", 60)
        line("memory, proportional", pss, "MB", 40)
    }'
kill "$process"
wait "$process"
