#!/bin/bash
# private-session.sh PROGRAM [ARGUMENT]...: runs a program in a desktop session of its own, with an
# empty home and a bus that starts services as programs ask for them. Exits with the program's
# status, and leaves neither processes nor files behind, whatever became of the program.
set -u

folder=$(mktemp -d "${TMPDIR:-/tmp}/session.XXXXXX") || exit 1

# The services are nobody's children by now. They are known by the home they were started with.
processesOfSession() {
    grep -lsz "^HOME=$folder$" /proc/[0-9]*/environ | while IFS=/ read -r _ _ process _; do
        echo "$process"
    done
}

# The bus removes its socket when it is asked to end, not when it is killed.
leaveNothing() {
    trap - EXIT
    local processes attempt signal=TERM
    for attempt in {1..200}; do
        mapfile -t processes < <(processesOfSession)
        [[ ${#processes[@]} -eq 0 ]] && break
        ((attempt < 50)) || signal=KILL
        kill -$signal "${processes[@]}" 2>/dev/null
        kill -CONT "${processes[@]}" 2>/dev/null
        sleep 0.02
    done
    # Processes that have overwritten their environment end a little later, and write until then.
    for attempt in {1..200}; do
        rm -rf "$folder" 2>/dev/null && break
        sleep 0.02
    done
}
trap leaveNothing EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

# For programs with the address sanitizer: what the services' libraries lose.
export LSAN_OPTIONS="suppressions=$(dirname "$(realpath "$0")")/leaks.supp:print_suppressions=0"
export ASAN_OPTIONS="fast_unwind_on_malloc=0${ASAN_OPTIONS:+:$ASAN_OPTIONS}"

mkdir -m 700 "$folder/runtime" || exit 1
unset DISPLAY WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS DBUS_STARTER_ADDRESS DBUS_STARTER_BUS_TYPE
QUORVA_PRIVATE_SESSION=$folder HOME=$folder \
XDG_RUNTIME_DIR=$folder/runtime \
XDG_CONFIG_HOME=$folder/config XDG_DATA_HOME=$folder/data \
XDG_CACHE_HOME=$folder/cache XDG_STATE_HOME=$folder/state \
GSETTINGS_BACKEND=memory GIO_USE_VFS=local LC_ALL=C.UTF-8 \
    dbus-run-session -- "$@" 2> >(grep -v '^dbus-daemon\[' >&2) &
wait $!
