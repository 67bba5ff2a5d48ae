"""No network: the application runs under strace for a minute, with everything that it does, and
makes no socket but local ones."""

import datetime
import re
import time

import pytest

from application import Desktop, Notifications, Quorva
from conftest import wait_until

DURATION = 60


@pytest.fixture
def desktop():
    here = Desktop()
    yield here
    here.end_session()


def test_opens_no_network_socket(desktop):
    desktop.switch_accessibility_on()
    desktop.start_notifications()
    desktop.start_sound()
    notifications = Notifications(desktop)
    trace = desktop.home / "trace"
    started = time.monotonic()
    quorva = Quorva(desktop, ["strace", "-f", "-qq", "-o", str(trace),
                              "-e", "trace=socket,socketpair"]).wait_until_watching()
    desktop.start_bot()
    desktop.invite("notetaker@otter.ai",
                   datetime.datetime.now(datetime.timezone.utc) + datetime.timedelta(hours=1))
    notifications.wait_for("AI Recorder Found")
    desktop.press("Object Now", "AI Recorder Found")
    wait_until(desktop.objections, "the record of the objection")
    wait_until(lambda: time.monotonic() - started > DURATION, "the end of the minute",)
    quorva.end()
    sockets = re.findall(r"socket(?:pair)?\((\w+)", trace.read_text())
    assert "AF_UNIX" in sockets, "strace sees what it should"
    assert not [family for family in sockets if family not in ("AF_UNIX", "AF_NETLINK")], sockets
