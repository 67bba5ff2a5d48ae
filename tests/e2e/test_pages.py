"""quorva-scan with meetings beside other pages, in frames, and in pages that take people out again."""

import signal
import time

import pytest

from conftest import Watch, wait_until
from meeting_fixtures import browser, desktop, site, windows  # noqa: F401: fixtures
from meeting_look import Look, look_for
from meeting_site import NAMES, Browser

ARTICLE = {"people": ["Otter.ai Notetaker", "Fathom Notetaker"],
           "banners": ["This call is being recorded"]}
UNTIL_FOLLOWED = 15
UNTIL_GONE = 30


def names(look):
    return [bot["botDisplayName"] for bot in look.bots]


# One meeting among several pages that are shown.


@pytest.fixture
def other_browser(desktop, site, browser):
    """One of the same kind for a test that leaves it unlike others."""
    browser.show("/elsewhere/other", "Other")
    here = Browser(desktop, site, browser.kind, "-other")
    yield here
    desktop.end(here.process, by=signal.SIGTERM)


@pytest.mark.parametrize("is_first", [True, False], ids=["meeting-first", "article-first"])
def test_tells_the_meeting_from_the_article_beside_it(desktop, windows, other_browser, is_first):
    pages = [("/meet.google.com/split", "Meet - split", {"people": ["Ann Smith"]}),
             ("/article", "How note-takers join", ARTICLE)]
    left, right = pages if is_first else reversed(pages)
    first = other_browser.show(left[0], left[1], **left[2])
    second = other_browser.open_tab(right[0], right[1], **right[2])
    area, name = second.area, NAMES[other_browser.kind]
    windows.click_control(name, "page tab", first.title.lower(), key="ctrl")
    windows.click_control(name, "page tab", second.title.lower(), button=3)
    windows.click_control(name, "menu item", "split view")
    wait_until(lambda: first.is_visible and second.is_visible and second.area < area,
               "the split view")
    meeting = first if is_first else second
    clean = wait_until(lambda: next((look for look in [Look(desktop)]
                                     if look.exit_status != 3), None), "a look")
    meeting.change(people=["Ann Smith", "Acme Notetaker"])
    look = look_for(desktop, 1)
    assert (clean.said(), clean.banners(), clean.exit_status) == ([], [], 0), clean.detail
    assert (names(look), look.banners()) == (["Acme Notetaker"], []), look.detail


def test_watches_a_meeting_above_developer_tools(desktop, windows, browser):
    meeting = browser.show("/meet.google.com/tools", "Meet - tools", people=["Otter.ai Notetaker"])
    watch = Watch(desktop, source="meeting")
    wait_until(lambda: watch.of("Otter.ai", "botDisplayName"), "who was there")
    area = meeting.area
    window = windows.find("Meet - tools")
    windows.press(window, "F12")
    wait_until(lambda: meeting.area < area, "the developer tools")
    meeting.change(people=["Otter.ai Notetaker", "Acme Notetaker"])
    wait_until(lambda: watch.of("Acme Notetaker", "botDisplayName"), "who joined")
    look = look_for(desktop, 2)
    windows.press(window, "F12")
    wait_until(lambda: meeting.area == area, "the developer tools to close")
    assert desktop.end(watch.process, by=signal.SIGTERM) == 0
    assert names(look) == ["Otter.ai", "Acme Notetaker"]
    assert [event["event"] for _, event in watch.events] == ["appeared", "appeared"]


def test_finds_a_bot_in_a_picture_in_picture(desktop, windows, browser):
    meeting = browser.show("/meet.google.com/picture", "Meet - picture", people=["Ann Smith"],
                           markup="<ul id=out><li>Otter.ai Notetaker</li></ul>")
    meeting.run("""addEventListener("click", async () => {
        const picture = await documentPictureInPicture.requestWindow({width: 400, height: 300});
        picture.document.body.append(element("out"));
        document.title = "Meet - moved";
    }, {once: true})""")
    windows.click(windows.find("Meet - picture"), 500, 600)
    windows.find("Meet - moved")
    look = look_for(desktop, 1)
    meeting.run("documentPictureInPicture.window.close()")
    assert look.said() == [("Google Meet", "Otter.ai", "transcription", 95)], look.detail


def test_never_calls_a_meeting_clear_that_is_longer_than_it_reads(desktop, browser):
    browser.show("/meet.google.com/long", "Meet - long", people=["Ann Smith"],
                 markup="<p>word</p>" * 6000 + "<ul><li>Otter.ai Notetaker</li></ul>")
    look = Look(desktop)
    if look.exit_status != 1:
        assert (look.exit_status, look.said()) == (3, []), look.detail
        assert look.source != "ok"
        assert "Google Meet" in look.detail


# Gone is gone, and who comes by a navigation is there. Each way of taking somebody out has an element
# of its own, all in one page, so that one wait is enough.

WAYS_OUT = {
    "Removed": "{0}.remove()",
    "Orphan": "{0}.parentElement.remove()",
    "Undisplayed": "{0}.style.display = 'none'",
    "Invisible": "{0}.style.visibility = 'hidden'",
    "Emptied": "{0}.parentElement.innerHTML = ''",
    "Renamed": "{0}.firstChild.data = 'Ann Smith'",
    "Hidden": "{0}.hidden = true",
    "Unspoken": "{0}.setAttribute('aria-hidden', 'true')",
}


def element_of(name):
    return f"<section><ul><li id={name}>{name} Notetaker</li></ul></section>"


def test_whoever_a_page_takes_out_is_gone_and_whoever_a_frame_goes_to_is_there(
        desktop, site, browser):
    paths = ["/meet.google.com/lobby", "/meet.google.com/call", "/meet.google.com/left"]
    lobby, call, left = (site.add(path, path, people=people)
                         for path, people in zip(paths, [["Ann Smith"], ["Framed Notetaker"], []]))
    meeting = browser.show(
        "/meet.google.com/gone", "Meet - gone", banners=["This call is being recorded"],
        markup=f'<iframe src="{site.address(paths[0], "localhost")}" width=300 height=300></iframe>'
        + "".join(map(element_of, WAYS_OUT)))
    lobby.wait_until_shown()
    watch = Watch(desktop, source="meeting")

    def of(name):
        return watch.of(f"{name} Notetaker", "botDisplayName")

    def banner():
        return watch.of("recording", "indicatorType")

    wait_until(lambda: banner() and all(map(of, WAYS_OUT)), "everybody who was there")
    went = time.monotonic()
    lobby.tell("go", paths[1])
    [(followed, _)] = wait_until(lambda: of("Framed"), "the frame's navigation to be followed")
    out = time.monotonic()
    call.tell("go", paths[2])
    meeting.run(";".join(script.format(name) for name, script in WAYS_OUT.items()))
    meeting.change(banners=[])
    left.wait_until_shown()
    gone = {"banner": banner, **{name: lambda name=name: of(name) for name in [*WAYS_OUT, "Framed"]}}
    late = time.monotonic() + UNTIL_GONE
    while time.monotonic() < late and any(len(events()) < 2 for events in gone.values()):
        time.sleep(0.1)
    assert desktop.end(watch.process, by=signal.SIGTERM) == 0
    kinds = {name: [kind for _, kind in events()] for name, events in gone.items()}
    assert kinds == dict.fromkeys(kinds, ["appeared", "disappeared"])
    assert followed - went < UNTIL_FOLLOWED
    assert max(events()[-1][0] for events in gone.values()) - out < UNTIL_GONE
