#!/bin/bash
# check-install.sh PACKAGE FOLDER: installs the package into a fresh Debian in a temporary folder, with
# its dependencies and without its recommended packages; runs both programs there as a user; removes
# the package, and fails if anything but the user's own data is left. Needs root and debootstrap.
# FOLDER caches the downloaded packages.
set -euo pipefail

package=$(realpath "$1")
mkdir -p "$2"
cache=$(realpath "$2")
here=$(dirname "$(realpath "$0")")
. /etc/os-release
mirror=http://deb.debian.org/debian

# Mounts and processes end with their namespaces.
if [ "${CHECK_INSTALL_NAMESPACE:-}" = "" ]; then
    root=$(mktemp -d "${TMPDIR:-/var/tmp}/check-install.XXXXXX")
    chmod 755 "$root"
    trap 'rm -rf --one-file-system "$root"' EXIT
    trap 'exit 130' INT TERM
    CHECK_INSTALL_NAMESPACE=$root unshare --mount --pid --fork --kill-child "$0" "$package" "$cache"
    exit
fi
root=$CHECK_INSTALL_NAMESPACE

fail() { printf 'check-install: %s\n' "$*" >&2; exit 1; }

# logged COMMAND...: prints the output only if the command fails.
logged() {
    "$@" >"$cache/check-install.log" 2>&1 </dev/null && return
    tail -n 40 "$cache/check-install.log" >&2
    fail "This failed, for the reason above: $*"
}

inside() { DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 chroot "$root" "$@"; }
install() { logged inside apt-get -qq install -y --no-install-recommends "$@"; }

# All files except those of dpkg and apt themselves.
files() {
    find "$root" -xdev \( -path "$root/var/lib/dpkg" -o -path "$root/var/lib/apt" \
        -o -path "$root/var/cache" -o -path "$root/var/log" -o -path "$root/tmp" \) -prune \
        -o -printf '/%P\n' | LC_ALL=C sort
}

logged debootstrap --variant=minbase --cache-dir="$cache" "$VERSION_CODENAME" "$root" "$mirror"
mount -t proc proc "$root/proc"
mount --rbind /dev "$root/dev"
mount --make-rslave "$root/dev"
mount --bind "$cache" "$root/var/cache/apt/archives"
mkdir -p "$cache/partial"
rm -f "$root/etc/apt/apt.conf.d/docker-clean"
printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d" # no services
chmod +x "$root/usr/sbin/policy-rc.d"
cp /etc/resolv.conf "$root/etc/resolv.conf"

logged inside apt-get -qq update
logged inside apt-get -qq satisfy -y --no-install-recommends "$(dpkg-deb -f "$package" Depends)"
install xvfb xauth x11-utils dbus-daemon libglib2.0-bin
inside useradd -m -s /bin/bash ann
files >"$cache/before"

cp "$package" "$root/tmp/quorva.deb"
cp "$here/check-session.sh" "$root/tmp/check-session.sh"
chmod 644 "$root/tmp/quorva.deb"
install /tmp/quorva.deb
inside runuser -u ann -- env -i HOME=/home/ann PATH=/usr/bin:/bin LC_ALL=C.UTF-8 \
    bash /tmp/check-session.sh 2> >(grep -v '^dbus-daemon\[' >&2)

logged inside apt-get -qq purge -y quorva
files >"$cache/after"
left=$(LC_ALL=C comm -13 "$cache/before" "$cache/after")
echo "What is left after it was removed, of the user's own:"
printf '%s\n' "$left" | grep -v '/qmlcache/' | sed 's/^/    /'
own='/home/ann/\.((config|cache|local/state/Logs)(/quorva(/.*)?)?|local(/state)?|local/state/Logs/Quorva(/.*)?)'
! printf '%s\n' "$left" | grep -v -i -x -E "$own" || fail "This is nobody's any more: see above."
gone=$(LC_ALL=C comm -23 "$cache/before" "$cache/after")
[ -z "$gone" ] || fail "Removing it took files of others: $gone"
