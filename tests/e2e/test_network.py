"""No network: the application does everything it can under strace for a minute, and creates local
sockets only."""

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
    desktop.start_speech()  # not traced: it looks for voices on the network
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
    wait_until(lambda: time.monotonic() - started > DURATION, "the end of the minute")
    quorva.end()
    calls = re.findall(r"^.*socket(?:pair)?\(.*$", trace.read_text(), re.MULTILINE)
    assert any("AF_UNIX" in call for call in calls), "strace sees what it should"
    assert [call for call in calls if "AF_UNIX" not in call] == []
