#!/bin/bash
# own-processes.sh PROGRAM [ARGUMENT]...: runs a program that sees no processes but those it starts,
# all of which end with it: a person's own browsers and recorders are no part of a test. Where the
# system does not allow that, the program is run as it is. Exits with the program's status.
#
# own-processes.sh --allowed: exits with 0 where the system allows it.
set -u

namespaces=(unshare --pid --fork --kill-child)
[[ $(id -u) -eq 0 ]] || namespaces+=(--user --map-current-user)
own=("${namespaces[@]}" --mount-proc)
if ! "${own[@]}" true 2>/dev/null; then
    # Below a root that is no mount point, as in chroot(1), the mounts can't be made private as one.
    own=("${namespaces[@]}" --mount --propagation unchanged /bin/sh -c
        'mount --make-private /proc && mount -t proc proc /proc && exec "$@"' own-processes)
    isAllowed() { "${own[@]}" true 2>/dev/null; }
    [[ $1 != --allowed ]] || { isAllowed; exit; }
    isAllowed || exec "$@"
fi
[[ $1 != --allowed ]] || exit 0

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
