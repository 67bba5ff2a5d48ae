"""The application is killed again and again at random moments while bots start and invitations arrive.
Everything that was announced must be in the history, and is announced once in each run."""

import collections
import datetime
import random
import re
import signal
import subprocess
import time

import pytest

from application import Desktop, Notifications, Quorva
from conftest import DEADLINE, PROGRAMS, wait_until

RUNS = 200
EPOCH = datetime.datetime(2001, 1, 1, tzinfo=datetime.timezone.utc).timestamp()
LONGEST_RUN = 0.8
DOMAINS = ["otter.ai", "fireflies.ai", "read.ai", "fathom.video", "avoma.com"]


@pytest.fixture
def desktop():
    here = Desktop()
    yield here
    here.end_session()


def test_loses_nothing_that_was_announced(desktop):
    seed = time.time_ns() % 1_000_000
    print(f"seed {seed}")
    choose = random.Random(seed)
    desktop.start_notifications()
    notifications = Notifications(desktop)
    now = datetime.datetime.now(datetime.timezone.utc)
    bots = [desktop.start_bot("otter-helper"), desktop.start_bot("fireflies")]
    announced = 0
    for run in range(RUNS):
        desktop.invite(f"bot{run}@{choose.choice(DOMAINS)}",
                       now + datetime.timedelta(hours=choose.uniform(1, 20)))
        before = len(notifications.sent)
        started = time.time()
        quorva = subprocess.Popen([PROGRAMS / "quorva"], env=desktop.environment)
        time.sleep(choose.uniform(0, LONGEST_RUN))
        quorva.kill()
        quorva.wait(DEADLINE)
        told = collections.Counter(
            (each["title"], each["body"]) for each in notifications.sent[before:])
        assert set(told.values()) <= {1}, f"announced twice in a run: {told}"
        announced += len(told)
        named = collections.Counter(
            body.split(" (")[0].split(" detected")[0] for _, body in told)
        recorded = collections.Counter(event["botName"] for event in desktop.history()
                                       if event["detectedAt"] + EPOCH >= started - 0.01)
        assert named <= recorded, f"not in the history, run {run}, seed {seed}"
    assert announced > RUNS / 4, "most runs were too short to announce anything"

    for bot in bots:
        desktop.end(bot)
    quorva = Quorva(desktop).wait_until_watching()
    assert quorva.end() == 0
    # A kill may leave a half-written temporary file beside the file itself.
    assert [path.name for path in desktop.preferences.parent.iterdir()
            if not re.fullmatch(r"preferences\.json\.\w{6}", path.name)] == ["preferences.json"]
