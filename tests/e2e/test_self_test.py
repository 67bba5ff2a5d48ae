"""quorva-scan --self-test: harmless stand-ins go through each real source to a detection."""

import json
import os
import pathlib
import signal
import subprocess

import dbus
import pytest

from conftest import DEADLINE, PROGRAMS, wait_until
from desktop import LAUNCHER, Session

NOT_LOOKED_AT = 3


@pytest.fixture
def session():
    here = Session()
    yield here
    here.end_session()


def stand_ins():
    """The running stand-ins."""
    found = []
    for process in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            if b"--drill-stand-in" in (process / "cmdline").read_bytes():
                found.append(process.name)
        except OSError:
            continue
    return found


def self_test(computer, *arguments):
    """The result of each source, and the exit status. Checks that nothing is left behind."""
    places = [computer.home / "temporary", computer.home / "cache"]
    computer.environment.update(TMPDIR=str(places[0]), XDG_CACHE_HOME=str(places[1]))
    places[0].mkdir(exist_ok=True)
    test = computer.scan("--self-test", "--json", *arguments)
    left = [path for place in places for path in place.glob("quorva-drill-*")]
    assert left == [], test.stdout
    wait_until(lambda: not stand_ins(), "the end of the stand-ins")
    return {link["link"]: link for link in json.loads(test.stdout)["links"]}, test.returncode


def test_every_link_of_a_desktop_works(session):
    session.switch_accessibility_on()
    links, status = self_test(session)
    assert [(name, link["status"], link["broken"]) for name, link in links.items()] == [
        (name, "ok", None) for name in ("process", "calendar", "meeting")]
    assert status == 0
    assert links["calendar"]["passed"][-1] == "the calendar service answers"
    assert "read as a meeting in Zoom" in links["meeting"]["passed"]
    assert json.loads(session.scan("--json").stdout)["detections"]["participants"] == []


def test_names_the_link_that_is_broken_by_accessibility_being_off(session):
    links, status = self_test(session)
    assert status == NOT_LOOKED_AT
    assert [link["status"] for link in links.values()] == ["ok", "ok", "broken"]
    assert "toolkit-accessibility true" in links["meeting"]["broken"]["problem"]
    text = session.scan("--self-test", "--source", "meeting")
    assert text.returncode == NOT_LOOKED_AT
    assert text.stdout.splitlines()[-1] == "Broken: meeting."


def test_names_an_accessibility_registry_that_hangs(session):
    session.switch_accessibility_on()
    launcher = session.bus.get_object(*LAUNCHER)
    bus = dbus.bus.BusConnection(launcher.GetAddress(dbus_interface="org.a11y.Bus"))
    registry = int(bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus")
                   .GetConnectionUnixProcessID("org.a11y.atspi.Registry"))
    bus.close()
    os.kill(registry, signal.SIGSTOP)
    try:
        links, status = self_test(session, "--source", "meeting")
    finally:
        os.kill(registry, signal.SIGCONT)
    assert status == NOT_LOOKED_AT
    assert links["meeting"]["broken"]["step"] == "show a window"
    assert "does not list the window" in links["meeting"]["broken"]["problem"]


def test_works_where_there_is_neither_a_desktop_nor_the_usual_folder(computer):
    links, status = self_test(computer, "--source", "process", "--source", "calendar")
    assert [(link["status"], link["broken"]) for link in links.values()] == [("ok", None)] * 2
    assert "no calendar service" in links["calendar"]["passed"][-1]
    assert status == 0
    (computer.home / "temporary").rmdir()
    (computer.home / "temporary").write_text("a file in the folder's place")
    again = computer.scan("--self-test", "--source", "process")
    assert again.returncode == 0, again.stdout
    assert list((computer.home / "cache").iterdir()) == []


@pytest.mark.parametrize("mode", [["program"], ["window", "Zoom Meeting", "Ann Example"]])
def test_a_stand_in_ends_with_who_holds_it(session, mode):
    session.switch_accessibility_on()
    stand_in = session.start([PROGRAMS / "quorva-scan", "--drill-stand-in", *mode],
                             stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    assert stand_in.stdout.readline() == "ready\n"
    assert stand_in.poll() is None
    stand_in.stdin.close()
    assert stand_in.wait(DEADLINE) == 0
