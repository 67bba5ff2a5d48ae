"""quorva-scan with a meeting that is not in front: in a background tab, minimised, covered, elsewhere."""

import contextlib
import re
import signal
import time

import pytest

from conftest import Watch, wait_until
from desktop import Session
from meeting_fixtures import browser, desktop, site, windows  # noqa: F401: fixtures
from meeting_look import Look
from meeting_site import NAMES, Browser

BACKGROUND = re.compile(r"Google Meet is in a background tab of Chromium[\w ]*: "
                        r"who joins it is not seen\. Give it a window of its own\.")
UNTIL_TOLD = 20
UNTIL_GONE = 30


# Ways to take a meeting out of sight, and back.


@contextlib.contextmanager
def in_background_tab(browser, _windows):
    other = browser.open_tab("/elsewhere/tab", "News")
    try:
        yield
    finally:
        other.tell("close")


@contextlib.contextmanager
def minimised(browser, windows):
    window = windows.find(browser.page.title)
    windows.minimise(window)
    browser.page.wait_until_hidden()
    try:
        yield
    finally:
        windows.activate(window)


@contextlib.contextmanager
def behind_full_screen(browser, windows):
    with windows.full_screen_program():
        if browser.kind == "chromium":  # Firefox does not tell its pages
            browser.page.wait_until_hidden()
        yield


@contextlib.contextmanager
def behind_own_window(browser, windows):
    other = browser.site.add("/elsewhere/window", "Weather")
    browser.page.tell("openWindow", "/elsewhere/window")
    windows.fill_screen(windows.find("Weather"))
    browser.page.wait_until_hidden()
    try:
        yield
    finally:
        other.tell("close")


@contextlib.contextmanager
def on_other_workspace(_browser, windows):
    windows.switch_to_workspace(1)
    try:
        yield
    finally:
        windows.switch_to_workspace(0)


WAYS = [in_background_tab, minimised, behind_full_screen, behind_own_window, on_other_workspace]
each_way = pytest.mark.parametrize("way", WAYS, ids=lambda way: way.__name__)


@contextlib.contextmanager
def out_of_sight(way, browser, windows):
    try:
        with way(browser, windows):
            yield
    finally:
        browser.page.wait_until_shown()


def join(meeting, name):
    meeting.change(people=[*meeting.content["people"], name])


# One look. These come first: a program that watches keeps what Chromium shows up to date.


def assert_says_so(look, browser):
    """It could not look, and says at what."""
    assert (look.exit_status, look.said()) == (3, []), look.detail
    assert look.source != "ok"
    assert "Google Meet" in look.detail and NAMES[browser.kind] in look.detail


@each_way
def test_one_look_finds_a_bot_out_of_sight_or_says_that_it_cannot(desktop, windows, browser, way):
    meeting = browser.show("/meet.google.com/look", "Meet - look", people=["Ann Smith"])
    wait_until(lambda: Look(desktop).exit_status == 0, "a look at the meeting in front")
    with out_of_sight(way, browser, windows):
        join(meeting, "Otter.ai Notetaker")
        look = Look(desktop)
    if browser.kind == "chromium" and way == in_background_tab:
        assert_says_so(look, browser)
        assert BACKGROUND.search(look.detail), look.detail
    elif browser.kind == "chromium" and way == minimised and look.exit_status != 1:
        assert_says_so(look, browser)
    else:
        assert [bot["botDisplayName"] for bot in look.bots] == ["Otter.ai"], look.detail
        assert look.exit_status == 1


@pytest.mark.parametrize("way", [in_background_tab, minimised, behind_full_screen],
                         ids=lambda way: way.__name__)
def test_one_look_at_a_browser_that_nobody_looked_at_before(desktop, windows, browser, site, way):
    browser.show("/elsewhere/first", "First")
    fresh = Browser(desktop, site, browser.kind, "-" + way.__name__)
    fresh.show("/meet.google.com/fresh", "Meet - fresh", people=["Otter.ai Notetaker"])
    with way(fresh, windows):
        look = Look(desktop)
    desktop.end(fresh.process, by=signal.SIGTERM)
    if look.exit_status != 1:
        assert_says_so(look, browser)
    else:
        assert [bot["botDisplayName"] for bot in look.bots] == ["Otter.ai"], look.detail


# A program that watches.


class Watched:
    """A meeting, and a program that watches it from before it is out of sight."""

    def __init__(self, desktop, browser):
        self.meeting = browser.show("/meet.google.com/watched", "Meet - watched",
                                    people=["Otter.ai Notetaker", "Leaving Notetaker"])
        self.watch = Watch(desktop, source="meeting")
        self.wait_for("Otter.ai")
        self.wait_for("Leaving Notetaker")

    def of(self, name):
        return self.watch.of(name, "botDisplayName")

    def wait_for(self, name):
        return wait_until(lambda: self.of(name), f"{name} to be told")

    def assert_each_announced_once(self, but=""):
        """Nobody is announced again who was seen before, nobody but one is gone, and no sight is lost."""
        events = [(event["event"], event.get("detection", event).get("botDisplayName"))
                  for _, event in self.watch.events]
        others = [each for each in events if each[1] != but]
        assert [event for event, _ in others] == ["appeared"] * len({name for _, name in others})
        assert [event for event, name in events if name == but] in ([], ["appeared", "disappeared"])


@pytest.fixture(scope="module")
def watched(desktop, browser):
    here = Watched(desktop, browser)
    yield here
    assert desktop.end(here.watch.process, by=signal.SIGTERM) == 0


# What comes back into sight after one of these tests is seen by the next ones, and by the last.


@each_way
def test_tells_who_joins_out_of_sight_and_nothing_twice(windows, browser, watched, way):
    name = f"{way.__name__.split('_')[-1].title()} Notetaker"
    with out_of_sight(way, browser, windows):
        joined = time.monotonic()
        join(watched.meeting, name)
        told = watched.wait_for(name)[0][0]
    watched.assert_each_announced_once()
    assert told - joined < UNTIL_TOLD


def test_tells_who_leaves_in_a_background_tab_and_keeps_the_others(windows, browser, watched):
    with out_of_sight(in_background_tab, browser, windows):
        left = time.monotonic()
        watched.meeting.change(people=[name for name in watched.meeting.content["people"]
                                       if name != "Leaving Notetaker"])
        [_, (gone, last)] = wait_until(lambda: len(watched.of("Leaving Notetaker")) == 2
                                       and watched.of("Leaving Notetaker"), "who has left")
    watched.assert_each_announced_once(but="Leaving Notetaker")
    assert last == "disappeared"
    assert gone - left < UNTIL_GONE


# Two instances of a browser. Firefox joins the accessibility bus at any time.


@pytest.fixture
def session():
    here = Session()
    here.open_display()
    yield here
    here.end_session()


def test_names_the_instance_that_started_before_accessibility_was_on(session, site):
    early = Browser(session, site, "chromium", "-early")
    early.show("/meet.google.com/early", "Meet - early", people=["Otter.ai Notetaker"])
    session.switch_accessibility_on()
    late = Browser(session, site, "chromium", "-late")

    def look():
        it = Look(session)
        return it if "no answer yet" not in it.detail else None
    it = wait_until(look, "the later instance to answer")
    for each in (early, late):
        session.end(each.process, by=signal.SIGTERM)
    assert (it.exit_status, it.said()) == (3, []), it.detail
    assert it.source != "ok"
    assert "Chromium" in it.detail
