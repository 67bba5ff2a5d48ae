"""What every end-to-end test needs: the programs, a home folder, stand-ins for processes."""

import json
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import threading
import time

import pytest

PROGRAMS = pathlib.Path(os.environ["QUORVA_PROGRAMS"])
DEADLINE = 60.0


def wait_until(condition, what):
    """Returns the first true value of condition(), or fails when none comes by the deadline."""
    end = time.monotonic() + DEADLINE
    while time.monotonic() < end:
        value = condition()
        if value:
            return value
        time.sleep(0.02)
    pytest.fail(f"never came: {what}")


class Computer:
    """A home folder and a set of processes, removed when the test ends."""

    def __init__(self, home):
        self.home = home
        self.children = []
        self.environment = {
            **os.environ,
            "HOME": str(home),
            "XDG_DATA_HOME": str(home / "data"),
            "XDG_STATE_HOME": str(home / "state"),
            "XDG_CONFIG_HOME": str(home / "config"),
            "XDG_RUNTIME_DIR": str(home),
        }
        self.environment.pop("DBUS_SESSION_BUS_ADDRESS", None)
        self.environment.pop("DISPLAY", None)

    @property
    def log(self):
        return self.home / "state" / "Logs" / "Quorva" / "quorva.log"

    def run(self, path, executable="/bin/sleep", arguments=("600",), **options):
        """Starts a copy of an executable under another path; returns once it runs."""
        target = self.home / path
        target.parent.mkdir(parents=True, exist_ok=True)
        if not target.exists():
            shutil.copy(os.path.realpath(executable), target)
        child = self.start([str(target), *arguments], **options)
        wait_until(lambda: os.readlink(f"/proc/{child.pid}/exe") == str(target), "the stand-in")
        return child

    def start(self, command, **options):
        child = subprocess.Popen(command, env=self.environment, **options)
        self.children.append(child)
        return child

    def end(self, child, by=signal.SIGKILL):
        child.send_signal(by)
        return child.wait(DEADLINE)

    def scan(self, *arguments, **options):
        return subprocess.run(
            [PROGRAMS / "quorva-scan", *arguments],
            env=self.environment, capture_output=True, text=True, timeout=DEADLINE, **options)

    def found(self, pid):
        """The detections of a process in one scan."""
        look = self.scan("--json", "--source", "process")
        assert look.returncode in (0, 1), look.stderr
        return [bot for bot in json.loads(look.stdout)["detections"]["process"]
                if bot["processIdentifier"] == pid]


class Watch:
    """A running quorva-scan --watch, and the events it has printed."""

    def __init__(self, computer, *arguments, source="process", command=()):
        self.events = []
        self.process = computer.start(
            [*command, PROGRAMS / "quorva-scan", "--watch", "--source", source, *arguments],
            stdout=subprocess.PIPE, text=True)
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        for line in self.process.stdout:
            self.events.append((time.monotonic(), json.loads(line)))

    def of(self, value, key="processIdentifier"):
        """The times and kinds of the events of the detections that have this value."""
        return [(at, event["event"]) for at, event in self.events
                if event.get("detection", {}).get(key) == value]


@pytest.fixture
def computer():
    with tempfile.TemporaryDirectory(prefix="quorva-e2e-") as home:
        here = Computer(pathlib.Path(home))
        yield here
        for child in here.children:
            if child.poll() is None:
                child.kill()
            child.wait(DEADLINE)


@pytest.fixture
def watch(computer):
    return lambda *arguments, **options: Watch(computer, *arguments, **options)
