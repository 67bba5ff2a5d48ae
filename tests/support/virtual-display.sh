# To be sourced within private-session.sh: starts a virtual display with a window manager, says so to
# the services of the session, and sets DISPLAY.

# waitFor COMMAND...: until it succeeds, for ten seconds at most.
waitFor() {
    local attempt
    for attempt in {1..200}; do
        "$@" >/dev/null 2>&1 && return
        sleep 0.05
    done
    echo "never came: $*" >&2
    exit 1
}

Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp 3>"$HOME/display" 2>/dev/null &
waitFor test -s "$HOME/display"
DISPLAY=:$(cat "$HOME/display")
export DISPLAY
dbus-update-activation-environment DISPLAY
openbox >/dev/null 2>&1 &
