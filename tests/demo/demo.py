"""Shows Quorva at work: demo.py FOLDER.

Plays a meeting in a private desktop session, from a quiet beginning through note-takers of every kind
to an objection. Prints what Quorva saw and did, takes a screenshot of each step, and writes
FOLDER/index.html. If a step fails, ends with an error that names it.
"""

import datetime
import pathlib
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "e2e"))

import pytest  # noqa: E402

from application import SILENCE  # noqa: E402
from conftest import wait_until  # noqa: E402
from stage import ALERT, Stage  # noqa: E402
from story import Story  # noqa: E402

CALENDAR_REST = 30  # a change causes a scan if the last one is that long ago
EVERYBODY = ["Ann Smith", "Bob Jones", "Carla Diaz"]
STEPS = []


def step(title, about):
    def add(function):
        STEPS.append((title, about, function))
        return function
    return add


class Demo:
    """What the steps share: the desktop, and what was seen in the current step."""

    def __init__(self):
        self.stage = Stage()
        self.seen = []
        self.picture = None
        self.page = None
        self.bot = None

    def see(self, text):
        self.seen.append(text)
        print(f"    \033[32m✓\033[0m {text}", flush=True)

    def announced(self, title, since):
        """Waits for the notification and the alert panel of a detection."""
        found = self.stage.notifications.wait_for(title)
        self.see(f"Notification after {time.monotonic() - since:.1f} s: {found['title']}. "
                 f"{found['body']}.")
        self.stage.wait_until_shown(ALERT)
        self.see("Quorva's own panel shows in the corner.")
        return found

    def counted(self, state):
        wait_until(lambda: self.stage.icon.tool_tip() == f"Quorva: {state}", f'"{state}"')
        self.see(f"The icon in the panel says: {state}.")

    def recorded(self, name, method):
        entries = [(event["botName"], event["method"]) for event in self.stage.history()]
        assert entries.count((name, method)) == 1, f"the history holds {entries}"
        self.see(f"The history holds it: {name}, by {method}.")


@step("A meeting, and nobody listening",
      "A browser shows a meeting of three people. Quorva has just been started.")
def begin(demo):
    demo.page = demo.stage.open_meeting(EVERYBODY)
    demo.stage.start_quorva()
    demo.counted("All Clear")
    demo.stage.open_popover()
    demo.see("A click on the icon opens the popover.")


@step("A recorder starts on this computer",
      "A process called otter-helper begins to run: a copy of sleep(1) that stands in for it.")
def start_recorder(demo):
    demo.stage.close_popover()
    since = time.monotonic()
    demo.bot = demo.stage.start_bot()
    demo.announced("AI Recorder Found", since)
    demo.counted("1 Bot Detected")
    demo.recorded("Otter.ai", "processName")


@step("A bot is invited",
      "The calendar receives an event in 90 minutes, with a note-taker's mailbox among the guests. "
      "The calendars were read when Quorva started, and rest for 30 seconds after each reading.")
def invite(demo):
    rested = demo.stage.started + CALENDAR_REST + 1
    wait_until(lambda: time.monotonic() > rested, "the end of the calendars' rest")
    since = time.monotonic()
    now = datetime.datetime.now(datetime.timezone.utc)
    demo.stage.invite("fred@fireflies.ai", now + datetime.timedelta(minutes=90))
    demo.announced("Bot Invited to Upcoming Meeting", since)
    demo.counted("2 Bots Detected")
    demo.recorded("Fireflies.ai", "calendarAttendee")


@step("A note-taker joins the meeting",
      "A fourth participant appears in the list on the meeting's page.")
def join(demo):
    since = time.monotonic()
    demo.page.change(people=[*EVERYBODY, "Fathom Notetaker"])
    demo.announced("AI Recorder Found in Google Meet", since)
    demo.counted("3 Bots Detected")
    demo.recorded("Fathom", "participantList")


@step("The meeting is being recorded",
      "The page shows a banner.")
def record(demo):
    since = time.monotonic()
    demo.page.change(banners=["This call is being recorded"])
    demo.announced("Meeting Being Recorded", since)
    demo.counted("4 Bots Detected")
    demo.recorded("recording", "recordingIndicator")


@step("Everything at a glance",
      "The popover lists what is in the meeting, in the calendar and on this computer.")
def look(demo):
    wait_until(lambda: not demo.stage.is_shown(ALERT), "the end of the alert")
    demo.see("The alert in the corner has gone by itself.")
    demo.stage.open_popover()
    demo.see("A click on the icon opens the popover.")


@step("The user objects",
      'The user presses "Object Now" on the notification about the participant.')
def object_now(demo):
    before = demo.stage.look()
    demo.stage.press("Object Now", "AI Recorder Found in Google Meet")
    [record_] = wait_until(demo.stage.objections, "the record of the objection")
    assert record_["botName"] == "Fathom", record_
    demo.stage.screenshot(demo.picture, before)  # the confirmation disappears
    demo.see(f"The objection is on record: {record_['botName']}, {record_['templateUsed']}.")
    statement = demo.stage.clipboard()
    assert statement.startswith("I do not consent to AI recording"), statement
    demo.see(f"The clipboard holds the statement: {statement[:96]}…")
    wait_until(lambda: demo.stage.loudness() > SILENCE, "the spoken statement")
    demo.see(f"The statement is spoken aloud: {demo.stage.loudness():.0f} of 32,767 at the "
             "loudspeaker.")


@step("The bots leave",
      "The note-taker leaves the meeting, the recording ends, the recorder is closed. The "
      "invitation stays.")
def leave(demo):
    demo.stage.close_popover()
    demo.page.change(people=EVERYBODY, banners=[])
    demo.stage.end(demo.bot)
    gone = demo.stage.notifications.wait_for("Otter.ai Stopped")
    assert gone["is_silent"] and not gone["actions"], gone
    demo.see(f"A silent notification: {gone['body']}.")
    demo.counted("1 Bot Detected")
    titles = [each["title"] for each in demo.stage.notifications.sent]
    assert len(titles) == len(set(titles)) == 5, titles
    demo.see("Each was announced once.")


@step("What remains is the record",
      "The history in the popover holds every find, with its time and how it was made.")
def review(demo):
    demo.stage.icon.choose("View detection history")
    demo.stage.wait_until_shown("Quorva")
    assert len(demo.stage.history()) == 4, demo.stage.history()
    demo.see("Four finds, one entry each.")


def play(demo, story):
    """Plays every step. Returns a sentence about the step that failed, or None."""
    for number, (title, about, function) in enumerate(STEPS, 1):
        print(f"\n\033[1m{number}. {title}\033[0m\n    {about}", flush=True)
        demo.seen, failure = [], None
        demo.picture = story.picture(function.__name__.replace("_", "-"))
        try:
            function(demo)
        except (Exception, pytest.fail.Exception) as error:
            failure = f'Step {number}, "{title}", failed: {error}'
        if not demo.picture.exists():
            demo.stage.screenshot(demo.picture)
        story.add(title, about, demo.seen, demo.picture, failure)
        if failure:
            return failure
    return None


def main(folder):
    story = Story(pathlib.Path(folder), f"{datetime.datetime.now():%d %B %Y, %H:%M}")
    demo = Demo()
    try:
        failure = play(demo, story)
    finally:
        status = demo.stage.close()
    if not failure and status != 0:
        failure = f"The end failed: Quorva exited with status {status}"
    print()
    if failure:
        sys.exit(f"demo: {failure}")


if __name__ == "__main__":
    main(sys.argv[1])
