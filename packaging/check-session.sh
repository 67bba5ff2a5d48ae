#!/bin/bash
# Uses the installed programs as a user does: scans with quorva-scan, starts Quorva through its name on
# the bus, waits for its window, opens its settings, and ends it.
set -euo pipefail

fail() { printf 'check-session: %s\n' "$*" >&2; exit 1; }

# comes CONDITION WHAT: waits until the condition holds, for at most a minute.
comes() {
    local attempt
    for attempt in {1..600}; do
        eval "$1" && return
        sleep 0.1
    done
    [ ! -s "$HOME/errors" ] || cat "$HOME/errors" >&2
    fail "never came: $2"
}

if [ "${1:-}" != session ]; then
    cp /bin/sleep "$HOME/otter-helper"
    "$HOME/otter-helper" 300 &
    status=0
    quorva-scan --source process || status=$?
    kill $!
    rm "$HOME/otter-helper"
    [ "$status" = 1 ] || fail "quorva-scan has not found the stand-in: exit status $status"
    mkdir -m 700 "$HOME/runtime"
    export XDG_RUNTIME_DIR=$HOME/runtime GSETTINGS_BACKEND=memory
    xvfb-run -a dbus-run-session -- bash "$0" session
    rm -r "$HOME/runtime" "$HOME/errors"
    exit
fi

call() {
    gdbus call --session --dest com.veltran.QuorvaApp --object-path /com/veltran/QuorvaApp \
        --method org.freedesktop.Application."$@" >/dev/null
}
isShown() { xwininfo -root -tree | grep -q "\"$1\".*[0-9]x[0-9]"; }
process() {
    gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
        --method org.freedesktop.DBus.GetConnectionUnixProcessID com.veltran.QuorvaApp |
        tr -dc '0-9 ' | sed 's/^32 *//'
}

exec 2>"$HOME/errors"
call Activate '{}' || fail "the desktop could not start Quorva: $(cat "$HOME/errors")"
id=$(process)
comes "grep -q startMonitoring '$HOME/.local/state/Logs/Quorva/quorva.log'" "monitoring"
comes "isShown 'Quorva.*'" "a window"
call ActivateAction settings '[]' '{}'
comes "isShown '.*Settings.*'" "the settings"
(xwininfo -root -tree || true) | sed -n '/"Quorva/s/^ */window: /p'
kill -TERM "$id"
comes "! kill -0 $id 2>/dev/null" "the end"
! grep -i -E 'qml|qt\.|module' "$HOME/errors" || fail "the user interface is incomplete: see above"
