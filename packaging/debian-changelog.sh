#!/bin/sh
# debian-changelog.sh CHANGELOG MAINTAINER: prints the released versions of a changelog in the form of
# keepachangelog.com as a Debian changelog (deb-changelog(5)). Fails at a line it does not understand.
set -eu
LC_ALL=C exec awk -v maintainer="$2" '
function fail(reason) {
    printf "%s:%d: %s: %s\n", FILENAME, FNR, reason, $0 > "/dev/stderr"
    failed = 1
    exit 1
}
function printEntry(    count, words, i, line) {
    if (entry == "")
        return
    count = split(entry, words, " ")
    line = "  *"
    for (i = 1; i <= count; ++i) {
        if (length(line) + 1 + length(words[i]) > 78) {
            print line
            line = "   "
        }
        line = line " " words[i]
    }
    print line
    entry = ""
}
function endVersion() {
    printEntry()
    if (date != "")
        printf "\n -- %s  %s\n", maintainer, date
    date = ""
}
/^## / {
    endVersion()
    isReleased = $0 != "## [Unreleased]"
    kind = ""
    if (!isReleased)
        next
    if ($0 !~ /^## \[[0-9]+\.[0-9]+\.[0-9]+\] - [0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]$/)
        fail("not \"## [VERSION] - YYYY-MM-DD\"")
    command = "date -u -R -d " $4
    if ((command | getline date) <= 0)
        fail("no such day")
    close(command)
    printf "%squorva (%s) unstable; urgency=medium\n\n", gap, substr($2, 2, length($2) - 2)
    gap = "\n"
    next
}
!isReleased || /^$/ { next }
/^### (Added|Changed|Deprecated|Removed|Fixed|Security)$/ { printEntry(); kind = $2; next }
/^- / && kind != "" { printEntry(); entry = kind ": " substr($0, 3); next }
/^  [^ ]/ && entry != "" { entry = entry $0; next }
{ fail("neither a kind of change nor an entry") }
END { if (!failed) endVersion() }
' "$1"
