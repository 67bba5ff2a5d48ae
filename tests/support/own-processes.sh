#!/bin/bash
# own-processes.sh PROGRAM [ARGUMENT]...: runs a program that sees no processes but those it starts,
# all of which end with it: a person's own browsers and recorders are no part of a test. Where the
# system does not allow that, the program is run as it is. Exits with the program's status.
set -u

own=(unshare --pid --fork --kill-child --mount-proc)
[[ $(id -u) -eq 0 ]] || own+=(--user --map-current-user)
"${own[@]}" true 2>/dev/null || exec "$@"

# The shell in between takes the part of init: it waits for the processes that nobody else waits for.
# Those that the program leaves behind get some seconds to clear up.
exec "${own[@]}" /bin/bash -c '
    "$@"
    status=$?
    for attempt in {1..500}; do
        processes=(/proc/[0-9]*)
        [[ ${#processes[@]} -gt 1 ]] || break
        sleep 0.02
    done
    exit $status' own-processes "$@"
