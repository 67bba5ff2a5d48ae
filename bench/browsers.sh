#!/bin/bash
# browsers.sh BUILD-FOLDER: the cost of reading a meeting page of Firefox and Chromium. Run it in
# tests/support/private-session.sh, which ends the processes that this leaves running.
set -eu

bench=$(realpath "$1")/bin/browser-bench
pages=$HOME/pages/meet.google.com
mkdir -p "$pages"

# A page with a list of that many people, and a button that renames one of them.
page() {
    local i
    echo '<!doctype html><meta charset=utf-8><title>Meet - abc</title><h1>Meeting</h1>'
    echo '<button onclick="somebody.setAttribute(&quot;aria-label&quot;, `Person ${++count}`)">Rename somebody</button>'
    echo '<script>let count = 0</script><ul><li id=somebody aria-label="Person 0"></li>'
    for ((i = 1; i <= $1; ++i)); do
        echo "<li><div><span>Person $i Example</span><button aria-label='Mute person $i'>x</button></div></li>"
    done
    echo '</ul>'
}

# announced FILE: the first line that a program writes to it within ten seconds.
announced() {
    local attempt
    for attempt in {1..200}; do
        [ -s "$1" ] && break
        sleep 0.05
    done
    head -n 1 "$1"
}

Xvfb -displayfd 3 -screen 0 1280x1000x24 3>"$HOME/display" 2>/dev/null &
DISPLAY=:$(announced "$HOME/display")
export DISPLAY
openbox 2>/dev/null &
gdbus call --session --dest org.a11y.Bus --object-path /org/a11y/bus \
    --method org.freedesktop.DBus.Properties.Set org.a11y.Status IsEnabled '<true>' >/dev/null
/usr/bin/python3 -u -c '
import functools, http.server, sys
handler = functools.partial(http.server.SimpleHTTPRequestHandler, directory=sys.argv[1])
server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
print(server.server_address[1])
server.serve_forever()' "$HOME/pages" >"$HOME/port" 2>/dev/null &
address=http://127.0.0.1:$(announced "$HOME/port")/meet.google.com

# Both show about 2,500 elements: Chromium has more elements a row.
page 800 >"$pages/firefox.html"
page 480 >"$pages/chromium.html"

measure() {
    local name=$1 browser
    shift
    "$@" >/dev/null 2>&1 &
    browser=$!
    "$bench" "$browser" "$name"
    kill "$browser"
    wait "$browser" || true
}

mkdir "$HOME/firefox"
measure Firefox firefox-esr --no-remote --profile "$HOME/firefox" "$address/firefox.html"
# Chromium's sandbox can't be set up by root.
measure Chromium chromium --no-sandbox --no-first-run --disable-gpu \
    --user-data-dir="$HOME/chromium" "$address/chromium.html"
