#!/bin/bash
# own-processes.sh PROGRAM [ARGUMENT]...: runs a program that sees no processes but those it starts,
# all of which end with it: a person's own browsers and recorders are no part of a test. Where the
# system does not allow that, the program is run as it is. Exits with the program's status.
set -u

own=(unshare --pid --fork --kill-child --mount-proc)
[[ $(id -u) -eq 0 ]] || own+=(--user --map-current-user)
"${own[@]}" true 2>/dev/null || exec "$@"

# The shell in between takes the part of init: it waits for the processes that nobody else waits for.
exec "${own[@]}" /bin/bash -c '"$@"; exit' own-processes "$@"
