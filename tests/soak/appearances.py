"""What appeared during the soak, when it had to be found, and when it was found according to the
application's history, which is read while it runs."""

import collections
import dataclasses
import json
import threading
import time

# Seconds from an appearance to its entry in the history, on a busy computer.
SLACK = 4
BOUNDS = {
    "processName": 3 + SLACK,        # the next scan, every 3 s
    "participantList": 5 + 5 + SLACK,  # the next pass, every 5 s, and reading what has changed
    "calendarAttendee": 300 + SLACK,   # the next scan; sooner if the last one is long ago
}


@dataclasses.dataclass
class Appearance:
    method: str
    name: str                # what the history says: the product, the participant, or the start
    since: float = 0.0       # when it was surely to be seen; 0: not yet
    earliest: float = 0.0    # when it began to appear
    bound: float = 0.0
    found: float = 0.0
    is_void: bool = False    # ended before it had to be found

    def __post_init__(self):
        self.bound = self.bound or BOUNDS[self.method]
        self.earliest = time.monotonic()

    @property
    def key(self):
        return self.method, self.name


def key_of(event):
    name = event["eventStartDate"] if event["method"] == "calendarAttendee" else event["botName"]
    return event["method"], name


class HistoryWatch:
    """The time at which each entry came into the history. Reads the file whenever it has changed."""

    def __init__(self, desktop):
        self.desktop = desktop
        self.arrivals = []
        self.seen = set()
        self.stamp = None
        self.is_over = False
        self.thread = threading.Thread(target=self._follow, daemon=True)
        self.thread.start()

    def _follow(self):
        while not self.is_over:
            self._look()
            time.sleep(0.1)

    def _look(self):
        stamp = self.desktop.preferences.stat().st_mtime_ns
        if stamp == self.stamp:
            return
        self.stamp = stamp
        for event in self.desktop.history():
            identity = json.dumps(event, sort_keys=True)
            if identity not in self.seen:
                self.seen.add(identity)
                self.arrivals.append((time.monotonic(), key_of(event)))

    def keys(self):
        return {key for _, key in self.arrivals}

    def end(self):
        self.is_over = True
        self.thread.join()
        self._look()


def assign(appearances, arrivals):
    """Assigns the arrivals to the appearances. Returns the keys of arrivals without an appearance."""
    waiting = collections.defaultdict(list)
    for each in appearances:
        each.found = 0.0
        if each.since:
            waiting[each.key].append(each)
    unexpected = []
    for at, key in arrivals:
        owner = next((each for each in waiting[key] if not each.found and each.earliest <= at),
                     None)
        if owner:
            owner.found = at
        else:
            unexpected.append((at, key))
    return unexpected


def deadline(appearance, disturbances):
    """The latest time to find it: its bound after it appeared, or after the last disturbance that hid it."""
    latest = appearance.since + appearance.bound
    for each in sorted(disturbances, key=lambda each: each.start):
        if appearance.method in each.affects and each.start < latest \
                and each.recovered > appearance.since:
            latest = max(latest, each.recovered + appearance.bound)
    return latest
