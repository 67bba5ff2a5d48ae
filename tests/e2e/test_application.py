"""The application in a desktop session with the real services, from a bot to the objection."""

import datetime
import os
import signal
import subprocess
import sys
import time

import pytest

from application import INSTANCE, SILENCE, Desktop, Icon, Notifications, Quorva
from conftest import DEADLINE, PROGRAMS, wait_until
from meeting_site import Browser, Site

CALIFORNIA = ("I do not consent to AI recording or transcription of this conversation pursuant to "
              "California Penal Code Section 632. Any continued AI recording after this notice "
              "constitutes a violation of California's two-party consent wiretapping law.")


@pytest.fixture
def desktop():
    here = Desktop()
    yield here
    here.end_session()


@pytest.fixture
def site():
    here = Site()
    yield here
    here.end()


def names(history):
    return [(event["botName"], event["method"]) for event in history]


def test_leads_from_a_bot_to_an_objection(desktop):
    desktop.start_notifications()
    desktop.start_sound()
    desktop.start_panel()
    notifications = Notifications(desktop)
    quorva = Quorva(desktop).wait_until_watching()
    icon = Icon(desktop)
    wait_until(lambda: "Not fully watching: meetings" in icon.tool_tip(), "the state in words")
    assert icon.pixmap_sizes()[0] <= 18 and icon.pixmap_sizes()[-1] >= 64, "sharp at any scale"

    bot = desktop.start_bot()
    found = notifications.wait_for("AI Recorder Found")
    assert found["body"] == "Otter.ai (Transcription) is running on your Mac"
    assert found["actions"] == ["Object Now", "Dismiss"] and not found["is_silent"]
    assert names(desktop.history()) == [("Otter.ai", "processName")]
    wait_until(lambda: "1 Bot Detected, but not seen: meetings" in icon.tool_tip(),
               "the bot in the tooltip")

    desktop.press("Object Now", "AI Recorder Found")
    [record] = wait_until(desktop.objections, "the record of the objection")
    assert (record["templateUsed"], record["botName"]) == ("California (PC 632)", "Otter.ai")
    assert "source" not in record and "meetingContext" not in record
    assert desktop.clipboard() == CALIFORNIA
    wait_until(lambda: desktop.loudness() > SILENCE, "the spoken statement")

    desktop.end(bot)
    gone = notifications.wait_for("Otter.ai Stopped")
    assert gone["body"] == "Otter.ai is no longer running"
    assert gone["is_silent"] and gone["actions"] == []
    assert len(notifications.titled("AI Recorder Found")) == 1
    assert quorva.end() == 0


def test_tells_of_invitations_participants_and_banners(desktop, site):
    desktop.switch_accessibility_on()
    desktop.start_notifications()
    notifications = Notifications(desktop)
    browser = Browser(desktop, site, "firefox")
    browser.show("/meet.google.com/abc", "Meet - abc",
                 people=["Ann Example", "Otter.ai Notetaker"],
                 banners=["This meeting is being recorded"])
    now = datetime.datetime.now(datetime.timezone.utc)
    desktop.invite("fred@fireflies.ai", now + datetime.timedelta(minutes=90))
    quorva = Quorva(desktop)

    invited = notifications.wait_for("Bot Invited to Upcoming Meeting")
    assert invited["body"].startswith("Fireflies.ai detected in a calendar event at ")
    assert "(1h" in invited["body"]
    inside = notifications.wait_for("AI Recorder Found in Google Meet")
    assert inside["body"] == '"Otter.ai Notetaker" (Otter.ai) detected in participant list'
    recorded = notifications.wait_for("Meeting Being Recorded")
    assert recorded["actions"] == ["Dismiss"]
    assert sorted(names(desktop.history())) == [
        ("Fireflies.ai", "calendarAttendee"), ("Otter.ai", "participantList"),
        ("recording", "recordingIndicator")]

    desktop.press("Object Now", "AI Recorder Found in Google Meet")
    [record] = wait_until(desktop.objections, "the record of the objection")
    assert record["botName"] in ("Otter.ai", "Fireflies.ai")
    assert quorva.end() == 0
    desktop.end(browser.process, by=signal.SIGTERM)


def test_a_second_start_activates_the_first(desktop):
    quorva = Quorva(desktop).wait_until_watching()
    started = time.monotonic()
    second = subprocess.run([PROGRAMS / "quorva"], env=desktop.environment, timeout=DEADLINE,
                            capture_output=True, text=True)
    assert (second.returncode, second.stderr) == (0, "")
    assert second.stdout == "Quorva is running already and shows itself.\n"
    assert time.monotonic() - started < 1
    assert quorva.process.poll() is None
    assert quorva.end() == 0


def test_names_the_program_that_has_its_bus_name(desktop):
    desktop.bus.request_name(INSTANCE)
    refused = subprocess.run([PROGRAMS / "quorva"], env=desktop.environment, timeout=DEADLINE,
                             capture_output=True, text=True)
    assert (refused.returncode, refused.stdout) == (1, "")
    assert f"{os.path.realpath(sys.executable)} (process {os.getpid()})" in refused.stderr
    desktop.bus.release_name(INSTANCE)


def test_says_what_it_needs(desktop):
    def start(without):
        environment = {**desktop.environment, "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nowhere"}
        if without == "display":
            environment = {**desktop.environment}
            del environment["DISPLAY"]
        ended = subprocess.run([PROGRAMS / "quorva"], env=environment, timeout=DEADLINE,
                               capture_output=True, text=True)
        return ended.returncode, ended.stderr
    status, said = start(without="bus")
    assert status == 1 and said.startswith("quorva: There is no D-Bus session here")
    status, said = start(without="display")
    assert status == 1 and said.startswith("quorva: There is no display")


def test_says_what_is_missing(desktop):
    """No service at all, and a panel that starts late."""
    desktop.move_to_bare_bus()
    (desktop.home / "data/calendars/work").rmdir()
    (desktop.home / "data/calendars").rmdir()
    desktop.environment["PATH"] = "/nowhere"  # no speech service can be started
    quorva = Quorva(desktop).wait_until_watching()
    desktop.environment["PATH"] = "/usr/bin:/bin"
    wait_until(lambda: desktop.logged("This desktop shows no tray icons"), "the missing panel")
    panel = desktop.start_panel()
    icon = Icon(desktop)
    wait_until(lambda: "Not fully watching: calendars, meetings" in icon.tool_tip(), "the state in words")
    shown = wait_until(lambda: desktop.logged("No longer so: This desktop shows no tray icons")
                       and list(icon.menu()), "the menu")
    for part in ("accessibility is switched off", "No notification server", "are not spoken",
                 "no calendar service"):
        assert any(part in text for text in shown), (part, shown)
        assert desktop.logged(part)

    desktop.end(panel, by=signal.SIGTERM)  # panels restart
    wait_until(lambda: not desktop.bus.name_has_owner("org.kde.StatusNotifierWatcher"), "no panel")
    desktop.start_panel()
    icon = Icon(desktop)
    desktop.start_bot()
    wait_until(lambda: "1 Bot Detected" in icon.tool_tip(), "the bot in the tooltip")
    icon.choose("Object to AI recording")
    assert wait_until(desktop.objections, "the record")[0]["botName"] == "Otter.ai"
    icon.choose("Stop monitoring")
    wait_until(lambda: icon.tool_tip() == "Quorva: Monitoring Off", "the end of monitoring")
    icon.choose("Quit Quorva")
    assert quorva.process.wait(DEADLINE) == 0


def test_ends_with_its_session(desktop):
    daemon = desktop.move_to_bare_bus()
    quorva = Quorva(desktop).wait_until_watching()
    desktop.end(daemon, by=signal.SIGTERM)
    assert quorva.process.wait(DEADLINE) == 0
    assert desktop.kept("showNotifications") is True, "the settings were stored"
