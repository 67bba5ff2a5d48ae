"""The application's windows, used with a screen reader and a keyboard."""

import itertools
import subprocess

import pytest

from application import Desktop, Icon, Quorva
from conftest import DEADLINE, PROGRAMS, wait_until
from desktop import ZoomWindow
from screen_reader import CHECKED, ENABLED, FOCUSED, ScreenReader

SWITCHES = {
    "General": ["Launch at login", "Show notifications", "Auto-start monitoring",
                "Check for updates automatically"],
    "Detection": ["Enable calendar scanning", "Enable participant scanning"],
}


class Screen:
    """A desktop with the application, and a screen reader that reads its windows."""

    def __init__(self, has_accessibility=True, is_wayland=False, **preferences):
        self.desktop = Desktop(is_wayland, **preferences)
        self.desktop.start_panel()
        if has_accessibility:
            self.desktop.switch_accessibility_on()
        else:
            # One switch lets applications read the screen and screen readers read applications:
            # here only the latter is on.
            self.desktop.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        self.start()

    def start(self):
        self.quorva = Quorva(self.desktop)
        self.reader = ScreenReader(self.desktop)
        self.icon = Icon(self.desktop)

    def restart(self):
        self.reader.close()
        assert self.quorva.end() == 0
        self.start()

    def open(self):
        """Opens the popover by starting the program a second time."""
        subprocess.run([PROGRAMS / "quorva"], env=self.desktop.environment, check=True,
                       timeout=DEADLINE, stdout=subprocess.DEVNULL)
        self.reader.find("Refresh all scans")

    def key(self, *names):
        subprocess.run(["xdotool", "key", *names], env=self.desktop.environment, check=True,
                       timeout=DEADLINE)

    def enlarge(self, window, until):
        """Makes a window as high as the screen, so that an element shows: elements that are scrolled
        away are not showing. A window that is still opening may change its size again."""
        def is_shown():
            subprocess.run(["xdotool", "search", "--name", window, "windowsize", "700", "1150"],
                           env=self.desktop.environment, check=True, timeout=DEADLINE)
            return self.reader.shows(until)
        wait_until(is_shown, f'"{until}" on the screen')

    def end(self):
        self.reader.close()
        assert self.quorva.process.poll() == 0 or self.quorva.end() == 0
        self.desktop.end_session()


@pytest.fixture
def screen():
    screens = []

    def make(**options):
        screens.append(Screen(**options))
        return screens[-1]
    yield make
    for each in screens:
        each.end()


def test_objects_to_a_participant(screen):
    here = screen()
    zoom = ZoomWindow(here.desktop)
    zoom.tell("title", "Zoom Meeting")
    zoom.tell("join", "Otter.ai Notetaker")
    here.open()
    reader = here.reader
    assert reader.hears("Otter.ai, Transcription, Zoom")
    reader.press("Object to Otter.ai")
    assert reader.hears("Objection Filed")
    [record] = wait_until(here.desktop.objections, "the record")
    assert (record["botName"], record["meetingContext"], record["source"]) == (
        "Otter.ai", "Zoom", "participant")
    reader.wait_until_gone("Objection Filed")

    reader.press("View detection history")
    assert reader.hears("Detection History")
    reader.press("Done")
    reader.wait_until_gone("Detection History")
    reader.press("Monitoring toggle")
    wait_until(lambda: here.icon.tool_tip() == "Quorva: Monitoring Off", "the end of monitoring")
    here.desktop.end(zoom.process)


def test_is_used_by_keyboard(screen):
    here = screen()
    here.desktop.start_bot()
    here.open()
    reader = here.reader
    reader.find("More for Otter.ai")
    order = ["Monitoring toggle", "Open Internet Accounts in System Settings", "More for Otter.ai",
             "Refresh all scans", "View detection history", "Object to AI recording",
             "Open settings", "Share Quorva with a colleague", "Quit Quorva"]
    seen = []
    for _ in order:
        here.key("Tab")
        seen.append(wait_until(
            lambda: next((name for name in order
                          if name not in seen and reader.find(name).is_(FOCUSED)), None),
            f"the focus on one more than {seen}"))
    assert seen == order, "the order in which it is read out"
    reader.find("Share Quorva with a colleague").act("setfocus")
    here.key("space")
    assert reader.hears("Recommendation Copied")
    assert "I just detected Otter.ai on my Mac" in here.desktop.clipboard()
    here.key("Escape")
    reader.wait_until_gone("Refresh all scans")
    here.icon.activate()
    reader.find("Refresh all scans")


def walk_through_the_first_run(here, accessibility, calendar):
    reader = here.reader
    total = 5 - accessibility - calendar
    steps = iter(range(1, total + 1))

    def at(headline):
        reader.find(headline, window="Welcome to Quorva")
        assert reader.hears(f"Step {next(steps)} of {total}")
    at("Know When You're Being Recorded")
    reader.press("See How It Works")
    at("Your Data Never Leaves This Mac")
    reader.press("Continue to Setup")
    if not accessibility:
        at("Live Meeting Detection")
        reader.press("Enable accessibility access for live meeting detection")
        assert reader.hears("Accessibility Access Granted")
        reader.press("Continue")
    if not calendar:
        reader.find("Calendar Bot Detection")
        reader.press("Allow read-only calendar access")
        reader.press("Allow")
        assert reader.hears("Calendar Access Granted")
        reader.press("Continue")
    reader.find("Running First Scan...")
    reader.find("Scan complete")
    assert reader.hears("Scanned processes, calendar, meetings -- your Mac is clear")
    assert here.desktop.kept("hasCompletedOnboarding") is not True
    reader.press("Start Using Quorva")
    reader.wait_until_gone("Running First Scan...")
    wait_until(lambda: here.desktop.kept("hasCompletedOnboarding") is True, "the end of it")


@pytest.mark.parametrize("accessibility, calendar", itertools.product([True, False], repeat=2))
def test_leads_through_the_first_run(screen, accessibility, calendar):
    here = screen(has_accessibility=accessibility, hasCompletedOnboarding=False,
                  calendarAuthorization=3 if calendar else 0)
    walk_through_the_first_run(here, accessibility, calendar)
    here.restart()
    wait_until(lambda: here.icon.tool_tip() == "Quorva: All Clear", "a look at everything")
    assert list(here.reader.windows()) == []


def test_works_on_wayland(screen):
    here = screen(is_wayland=True, hasCompletedOnboarding=False, calendarAuthorization=0)
    walk_through_the_first_run(here, accessibility=True, calendar=False)
    here.desktop.start_bot()
    here.open()
    here.reader.press("More for Otter.ai")
    here.reader.find("Allow…")
    here.reader.press("Object to AI recording")
    assert here.reader.hears("Objection Filed")
    here.icon.choose("Open settings")
    assert here.reader.hears("Launch at login")


def test_keeps_what_is_set(screen):
    here = screen()
    reader = here.reader
    here.icon.choose("Open settings")
    before = {}
    for tab, switches in SWITCHES.items():
        reader.press(tab, role="page tab")
        here.enlarge("Quorva Settings", until=switches[-1])
        for name in switches:
            before[name] = reader.find(name).is_(CHECKED)
            reader.press(name)
            wait_until(lambda: reader.find(name).is_(CHECKED) != before[name], f"{name} to change")
    reader.press("Objection", role="page tab")
    reader.press("Brief Statement")
    here.icon.choose("Refresh all scans")
    here.restart()
    reader = here.reader
    here.icon.choose("Open settings")
    for tab, switches in SWITCHES.items():
        reader.press(tab, role="page tab")
        here.enlarge("Quorva Settings", until=switches[-1])
        for name in switches:
            assert reader.find(name).is_(CHECKED) != before[name], name
    assert (here.desktop.home / "config/autostart/com.veltran.QuorvaApp.desktop").exists()
    reader.press("About", role="page tab")
    assert reader.hears("This is not legal advice.")
    reader.press("Privacy Policy")
    assert reader.hears("Data Stored On Your Device")


def test_opens_what_the_desktop_and_the_icon_are_asked_for(screen):
    here = screen()

    def choose_action(name):
        """Chooses an action as the desktop's application menu does."""
        subprocess.run(["gapplication", "action", "com.veltran.QuorvaApp", name],
                       env=here.desktop.environment, check=True, timeout=DEADLINE)
    for ask in (lambda: choose_action("history"),
                lambda: here.icon.choose("View detection history")):
        ask()
        here.reader.press("Done")
        here.reader.wait_until_gone("Detection History")
    choose_action("settings")
    assert here.reader.hears("Launch at login")
    here.icon.choose("Open Quorva")
    here.reader.press("Quit Quorva")
    assert here.quorva.process.wait(DEADLINE) == 0


def test_tries_detection(screen):
    here = screen()
    here.icon.choose("Open settings")
    here.reader.press("Detection", role="page tab")
    here.enlarge("Quorva Settings", until="Test detection…")
    here.reader.press("Test detection…")
    said = here.reader.hears("Every link works.")
    wait_until(lambda: here.reader.find("Test detection…").is_(ENABLED), "the end of the trial")
    assert all(source in said for source in ("process", "calendar", "meeting"))
    assert here.desktop.history() == [], "a self-test is not a detection"


def test_allows_a_product_and_takes_that_back(screen):
    here = screen()
    here.desktop.start_bot()
    here.open()
    reader = here.reader
    reader.press("More for Otter.ai")
    reader.press("Allow…")
    reader.wait_until_gone("More for Otter.ai")
    wait_until(lambda: here.icon.tool_tip() == "Quorva: All Clear", "nothing to be seen")
    wait_until(lambda: here.desktop.kept("allowedBotIds") == ["otter"], "the list to be stored")
    reader.press("Open settings")
    reader.press("Detection", role="page tab")
    here.enlarge("Quorva Settings", until="Remove Otter.ai, on this computer")
    assert reader.hears("Otter.ai, on this computer")
    reader.press("Remove Otter.ai, on this computer")
    wait_until(lambda: here.icon.tool_tip() == "Quorva: 1 Bot Detected", "the bot again")
    wait_until(lambda: here.desktop.kept("allowedBotIds") == [], "the list to be stored")
