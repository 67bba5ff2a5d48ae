"""quorva-scan with meetings in the windows of browsers and of a meeting program, in a desktop session
with a real accessibility bus."""

import signal
import time

import pytest

from conftest import Watch, wait_until
from desktop import Session, ZoomWindow
from meeting_fixtures import browser, desktop, site  # noqa: F401: fixtures
from meeting_look import Look, look_for
from meeting_site import BROWSERS, NAMES, Browser


@pytest.fixture
def session():
    here = Session()
    yield here
    here.end_session()


def assert_nothing_walked(look):
    assert (look.said(), look.banners()) == ([], [])
    assert (look.exit_status, look.source) == (0, "ok"), look.detail
    assert "meeting windows: 0" in look.detail


# A meeting program. First, because no browser runs yet that would be scanned too.


@pytest.fixture
def zoom_window(desktop):
    here = ZoomWindow(desktop)
    yield here
    desktop.end(here.process)


def test_finds_a_bot_in_the_meeting_window_of_a_program(desktop, zoom_window):
    zoom_window.tell("join", "Ann Smith")
    zoom_window.tell("join", "Otter.ai Notetaker (Ann)")
    assert_nothing_walked(Look(desktop))
    zoom_window.tell("title", "Zoom Meeting")
    look = Look(desktop)
    assert look.said() == [("Zoom", "Otter.ai", "transcription", 90)]
    assert look.bots[0]["windowTitle"] == "Zoom Meeting"
    assert (look.exit_status, look.source) == (1, "ok"), look.detail


def test_watches_who_joins_in_the_window_of_a_program(desktop, zoom_window):
    zoom_window.tell("title", "Zoom Meeting")
    zoom_window.tell("join", "Fathom Notetaker")
    watch = Watch(desktop, source="meeting")
    wait_until(lambda: watch.of("Fathom", "botDisplayName"), "who was there")
    zoom_window.tell("join", "Acme Notetaker")
    wait_until(lambda: watch.of("Acme Notetaker", "botDisplayName"), "who has joined")
    assert desktop.end(watch.process, by=signal.SIGTERM) == 0
    assert [event["event"] for _, event in watch.events] == ["appeared", "appeared"]


@pytest.fixture
def mute_zoom(desktop):
    desktop.add_desktop_entry("Zoom", "Zoom", desktop.home / "bin" / "zoom")
    running = desktop.run("bin/zoom")
    yield running
    desktop.end(running)


@pytest.mark.usefixtures("mute_zoom")
def test_says_which_program_shows_nothing(desktop):
    early = Look(desktop)
    assert (early.exit_status, early.source) == (3, "unavailable"), early.detail
    assert "Zoom: no answer yet" in early.detail
    late = wait_until(lambda: next((look for look in [Look(desktop)]
                                    if "does not show" in look.detail), None), "the reason")
    assert (late.exit_status, late.source) == (3, "unavailable")
    assert "Zoom" in late.detail and "start it again" in late.detail


def test_says_how_to_switch_accessibility_on(session):
    look = Look(session)
    assert (look.exit_status, look.source) == (3, "no-access")
    assert "toolkit-accessibility true" in look.detail


@pytest.mark.parametrize("name", BROWSERS)
def test_finds_a_meeting_in_the_second_of_two_browsers_of_a_kind(desktop, site, name):
    first, second = (Browser(desktop, site, name, profile) for profile in ("-one", "-two"))
    second.show("/meet.google.com/second", "Meet", people=["Otter.ai Notetaker"])
    look = look_for(desktop, 1)
    for each in (first, second):
        desktop.end(each.process, by=signal.SIGTERM)
    assert (len(look.bots), look.exit_status) == (1, 1), look.detail


# In browsers. All tests of one browser run before the first test of the other.


def test_finds_bots_and_banners_in_a_meeting_and_nothing_else(desktop, browser):
    browser.show(
        "/meet.google.com/abc", "Meet - abc",
        people=["Ann Smith", "Otter.ai Notetaker", "Dana Copilotti", "Acme Notetaker", "Grant Reader"],
        banners=["This call is being recorded"],
        chat=["Could the notetaker of Acme, whoever sent it, please leave this call?",
              "Let's start recording in five minutes"])
    look = look_for(desktop, 4)
    # A surname that begins with a product's name matches, with the lowest confidence.
    assert look.said() == [
        ("Google Meet", "Otter.ai", "transcription", 95),
        ("Google Meet", "Acme Notetaker", "transcription", 80),
        ("Google Meet", "Teams Copilot", "platform", 70)]
    assert look.banners() == [("Google Meet", "recording")]
    assert look.exit_status == 1
    assert (look.source, "meeting windows: 1" in look.detail) == ("ok", True), look.detail


def test_tells_the_platform_by_the_address(desktop, browser):
    meeting = {"people": ["Ann Smith", "Fred (Fireflies"], "banners": ["Meeting summary is on"]}
    bot = ("Fireflies.ai", "transcription", 95)
    browser.show("/app.zoom.us/wc/1", "Google Meet", **meeting)
    look = look_for(desktop, 2)
    assert look.said() == [("Zoom", *bot)]
    assert look.banners() == [("Zoom", "aiCompanion")]
    browser.show("/teams.microsoft.com/1", "Google Meet", **meeting)
    look = look_for(desktop, 1)
    assert look.said() == [("Teams", *bot)]
    assert look.banners() == []


def test_does_not_look_into_searches_and_other_pages(desktop, browser):
    bots = {"people": ["Otter.ai Notetaker"], "banners": ["This call is being recorded"]}
    browser.show("/meet.google.com/search", "meet.google.com - Google Search", **bots)
    assert_nothing_walked(Look(desktop))
    browser.show("/elsewhere", "Google Meet", **bots)
    assert_nothing_walked(Look(desktop))


def test_watches_who_joins_who_changes_name_and_who_leaves(desktop, browser):
    page = browser.show("/meet.google.com/watch", "Meet",
                        people=["Fathom Notetaker", "Ann Smith", "Bob Jones"])
    look_for(desktop, 1)
    watch = Watch(desktop, source="meeting")

    def of(name):
        return watch.of(name, "botDisplayName")

    wait_until(lambda: of("Fathom"), "who was there")
    page.change(people=["Fathom Notetaker", "Ann Smith", "tl;dv", "Otter.ai Notetaker"])
    wait_until(lambda: of("Otter.ai") and of("tl;dv"), "who has joined, and changed name")
    left = time.monotonic()
    page.change(people=["Fathom Notetaker", "Ann Smith", "Bob Jones"])
    wait_until(lambda: len(of("Otter.ai")) == 2 and len(of("tl;dv")) == 2, "who has left")
    assert desktop.end(watch.process, by=signal.SIGTERM) == 0
    assert [event for _, event in of("Fathom")] == ["appeared"]
    for name in ("Otter.ai", "tl;dv"):
        [(_, first), (gone, last)] = of(name)
        assert (first, last) == ("appeared", "disappeared")
        assert 10 < gone - left < 30, "at the third pass that misses it, of one in 5 s"
    assert len(watch.events) == 5


def test_comes_back_from_a_browser_that_hangs_and_names_it(request, desktop, browser):
    name = NAMES[request.node.callspec.params["browser"]]
    browser.show("/meet.google.com/hang", "Meet", people=["Otter.ai Notetaker"])
    look_for(desktop, 1)
    browser.process.send_signal(signal.SIGSTOP)
    look = Look(desktop)
    browser.process.send_signal(signal.SIGCONT)
    assert (look.exit_status, look.source) == (3, "unavailable"), look.detail
    assert name in look.detail
    assert look.seconds < 20
    look_for(desktop, 1)
