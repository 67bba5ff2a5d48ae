"""Disturbances of the desktop's services while the application runs: a service is stopped for a while
and continued, or killed and restarted."""

import dataclasses
import os
import pathlib
import signal
import time

import pytest

from meeting_site import Browser

MEETING = "/meet.google.com/soak"
STOP, KILL = "stopped", "killed"


def processes(desktop, words):
    """The processes of the session whose command line contains all the words."""
    home = f"HOME={desktop.home}".encode()
    found = []
    for entry in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            command = (entry / "cmdline").read_bytes().replace(b"\0", b" ").decode(errors="replace")
            if all(word in command for word in words) \
                    and home in (entry / "environ").read_bytes().split(b"\0"):
                found.append(int(entry.name))
        except OSError:
            continue  # it has ended
    return found


def send(pids, number):
    for pid in pids:
        try:
            os.kill(pid, number)
        except ProcessLookupError:
            pass


@dataclasses.dataclass
class Disturbance:
    part: str
    how: str
    start: float
    affects: tuple
    recovery: float          # seconds until the application works again after its end
    end: float = 0.0
    pids: tuple = ()

    @property
    def recovered(self):
        return (self.end or float("inf")) + self.recovery


class Service:
    """A service that can be disturbed. `restore` restarts it after it was killed."""

    def __init__(self, name, words, affects=(), recovery=0.0, restore=lambda: None,
                 ways=(STOP, KILL)):
        self.name = name
        self.words = words
        self.affects = affects
        self.recovery = recovery
        self.restore = restore
        self.ways = ways


class Services:
    """All services, and their disturbances so far."""

    def __init__(self, desktop, site, choose):
        self.desktop = desktop
        self.site = site
        self.choose = choose
        self.done = []
        self.present = {}        # by group: services that need each other are disturbed one at a time
        self.on_browser_end = lambda: None
        self.browser, self.page = None, None
        meeting = {"affects": ("participantList",), "recovery": 35.0}
        self.groups = {
            "notifications": [Service("notification server", ["dunst"],
                                      restore=self.restore_notifications)],
            "calendar": [Service(name, [name], affects=("calendarAttendee",), recovery=300.0)
                         for name in ("evolution-source-registry", "evolution-calendar-factory")],
            # The application starts this one itself if there is none.
            "speech": [Service("speech service", ["speech-dispatcher"])],
            "sound": [Service("sound server", ["pulseaudio", "-n"], restore=self.restore_sound)],
            "meeting": [
                Service("accessibility registry", ["at-spi2-registryd"], **meeting),
                Service("accessibility bus", ["accessibility.conf"], **meeting, ways=(STOP,)),
                Service("accessibility launcher", ["at-spi-bus-launcher"], **meeting,
                        restore=self.restore_accessibility),
                Service("browser", ["firefox-esr", "--no-remote"], **meeting,
                        restore=self.open_browser)],
        }

    def disturb(self, group):
        """Begins a disturbance of a service of the group, unless one is in progress."""
        if group in self.present:
            return None
        service = self.choose.choice(self.groups[group])
        how = self.choose.choice(service.ways)
        pids = processes(self.desktop, service.words)
        if not pids:
            return None
        if how == KILL and service.name == "accessibility launcher":
            self.end_browser()  # its connection would be lost for good
            pids += processes(self.desktop, ["accessibility.conf"])
        if how == KILL and service.name == "browser":
            self.on_browser_end()
        disturbance = Disturbance(service.name, how, time.monotonic(), service.affects,
                                  service.recovery, pids=tuple(pids))
        send(pids, signal.SIGSTOP if how == STOP else signal.SIGKILL)
        self.done.append(disturbance)
        self.present[group] = (service, disturbance)
        return disturbance

    def mend(self, group):
        """Ends the group's disturbance."""
        service, disturbance = self.present.pop(group)
        if disturbance.how == STOP:
            send(disturbance.pids, signal.SIGCONT)
        else:
            self.desktop.reap()
            service.restore()
        disturbance.end = time.monotonic()

    # How each service is restored.

    def restore_notifications(self):
        if not processes(self.desktop, ["dunst"]):  # otherwise the bus has started one meanwhile
            self.desktop.start_notifications()

    def restore_sound(self):
        socket = self.desktop.home / "runtime/pulse/native"
        socket.unlink(missing_ok=True)
        self.desktop.start_sound()

    def restore_accessibility(self):
        self.desktop.switch_accessibility_on()
        self.open_browser()

    def open_browser(self):
        """On a busy computer a second attempt may succeed."""
        try:
            self._open_browser()
        except pytest.fail.Exception:
            send(processes(self.desktop, ["firefox-esr", "--no-remote"]), signal.SIGKILL)
            self._open_browser()

    def _open_browser(self):
        self.browser = Browser(self.desktop, self.site, "firefox")
        self.page = self.browser.show(MEETING, "Meet - soak", people=["Ann Smith"])

    def end_browser(self):
        self.on_browser_end()
        self.desktop.end(self.browser.process)
        self.page = None
