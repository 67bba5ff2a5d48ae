"""What one scan of the meetings says."""

import json
import time

from conftest import wait_until


class Look:
    """The result of one scan of the meetings."""

    def __init__(self, computer):
        started = time.monotonic()
        scan = computer.scan("--json", "--source", "meeting")
        self.seconds = time.monotonic() - started
        self.exit_status = scan.returncode
        report = json.loads(scan.stdout)
        self.source, self.detail = report["sources"]["meeting"].values()
        self.bots = report["detections"]["participants"]
        self.indicators = report["detections"]["indicators"]

    def said(self):
        """Platform, name, category and confidence of each bot."""
        return [(bot["platformName"], bot["botDisplayName"], bot["category"], bot["confidence"])
                for bot in self.bots]

    def banners(self):
        return [(each["platformName"], each["indicatorType"]) for each in self.indicators]


def look_for(desktop, count):
    """Scans until there are this many findings: a browser on a busy computer needs time to expose
    a page, and Firefox exposes no texts to the first client that asks."""
    def look():
        it = Look(desktop)
        return it if len(it.bots) + len(it.indicators) >= count else None
    return wait_until(look, f"{count} findings")
