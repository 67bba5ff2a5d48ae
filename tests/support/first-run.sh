#!/bin/bash
# first-run.sh QUORVA PICTURE: starts Quorva on a virtual display as a new user would, lets a
# stand-in for a note-taker run, and shows on the terminal what Quorva's log says of it, and in the
# picture what its windows show. To be run within private-session.sh.
set -eu

quorva=$(realpath "$1")
picture=$(realpath "$2")
. "$(dirname "$(realpath "$0")")/virtual-display.sh"
log=$XDG_STATE_HOME/Logs/Quorva/quorva.log

"$quorva" &
process=$!
trap 'kill $process 2>/dev/null; wait $process' EXIT
trap 'exit 130' INT
waitFor grep -qs startMonitoring "$log"
tail -n +1 -f "$log" &

echo "==> A harmless stand-in for a note-taker starts: a copy of sleep(1) called otter-helper"
cp "$(command -v sleep)" "$HOME/otter-helper"
"$HOME/otter-helper" infinity &
waitFor grep -qs "Detected: Otter.ai" "$log"
sleep 1 # for the windows to be drawn
if import -window root "$picture"; then
    echo "==> What the display shows is in $picture"
fi
wait $process
