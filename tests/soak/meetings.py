"""Hides and shows meetings at random while bots join and leave: the soak of --meetings.

Two browsers show a meeting each, which a user puts behind other tabs and windows, minimises and brings
back. The icon in the panel is read once a second, and now and then quorva-scan takes one look. It is a
fault when either calls the meetings clear although a bot has been in one for longer than GRACE.
"""

import collections
import contextlib
import json
import random
import subprocess
import threading
import time

import dbus

from application import Desktop, Icon, Quorva
from conftest import DEADLINE, PROGRAMS
from meeting_site import BROWSERS, Browser, Site
from windows import Windows

GRACE = 20          # seconds from joining until it is told
SAMPLE_EVERY = 1
LOOK_EVERY = 12     # on average
CLEAR = "All Clear"


class Stage:
    """A browser with a meeting, which is in sight or put out of it in one way."""

    def __init__(self, desktop, site, windows, choose, kind):
        self.windows, self.choose, self.kind = windows, choose, kind
        self.site = site
        self.browser = Browser(desktop, site, kind)
        self.page = self.browser.show(f"/meet.google.com/{kind}", f"Meet - {kind}",
                                      people=["Ann Smith"])
        self.window = windows.find(self.page.title)
        self.way = "in front"
        self.back = contextlib.ExitStack()
        self.number = 0
        self.people = {}     # the bots, and since when the page shows them
        self.pending = None  # the version of the page in which somebody joins, and the name

    def hide(self):
        """Puts the meeting out of sight, in one of five ways."""
        self.number += 1
        self.way = self.choose.choice(["in a background tab", "minimised", "covered by its own",
                                       "covered by a full-screen program", "on another workspace"])
        self.back = contextlib.ExitStack()
        path = f"/elsewhere/{self.kind}{self.number}"
        if self.way == "minimised":
            self.windows.minimise(self.window)
        elif self.way == "on another workspace":
            self.windows.do("set_desktop_for_window", self.window, 1)
            self.back.callback(self.windows.do, "set_desktop_for_window", self.window, 0)
        elif self.way == "covered by a full-screen program":
            self.back.enter_context(self.windows.full_screen_program())
        else:
            other = self.site.add(path, f"Weather {self.kind}{self.number}")
            self.page.tell("open" if self.way == "in a background tab" else "openWindow", path)
            if self.way == "covered by its own":
                self.windows.fill_screen(self.windows.find(other.title))
            self.back.callback(other.tell, "close")

    def show(self):
        self.back.close()
        self.windows.activate(self.window)
        self.way = "in front"

    def change_people(self):
        """Lets a bot join, or the one that is there leave: with more of them, one that is found would
        hide that another is not. A hidden page takes about a second to show it."""
        joined = None
        if not self.people:
            self.number += 1
            joined = f"{self.kind.title()}{self.number} Notetaker"
        self.people.clear()
        self.page.content = {**self.page.content,
                             "people": ["Ann Smith", *([joined] if joined else [])]}
        self.page.version += 1
        self.pending = (self.page.version, joined) if joined else None

    def note_shown(self):
        if self.pending and self.page.shown >= self.pending[0]:
            self.people[self.pending[1]] = time.monotonic()
            self.pending = None


class MeetingSoak:
    def __init__(self, minutes, seed):
        self.desktop, self.site, self.minutes = Desktop(), Site(), minutes
        self.choose = random.Random(seed)
        self.figures = collections.Counter()
        self.told = {}         # by bot: the seconds until it was told, and where the meeting was then
        self.longest_untold = 0.0
        self.faults = []
        self.is_over = False
        self.look = None       # a running quorva-scan, and the time it was started

    def begin(self):
        desktop = self.desktop
        desktop.switch_accessibility_on()
        desktop.start_notifications()
        desktop.start_panel()
        windows = Windows(desktop)
        self.stages = [Stage(desktop, self.site, windows, self.choose, kind) for kind in BROWSERS]
        self.quorva = Quorva(desktop).wait_until_watching()
        self.icon = Icon(desktop)

    def run(self):
        self.begin()
        self.start = now = time.monotonic()
        mean = {self.move: 7, self.change: 20, self.take_look: LOOK_EVERY}
        due = {actor: now + self.choose.uniform(0, each) for actor, each in mean.items()}
        sampling = threading.Thread(target=self.sample_until_over, daemon=True)
        sampling.start()
        while (now := time.monotonic()) < self.start + 60 * self.minutes:
            for stage in self.stages:
                stage.note_shown()
            self.finish_look()
            for actor, at in list(due.items()):
                if at <= now:
                    actor()
                    due[actor] = now + self.choose.uniform(0.5, 1.5) * mean[actor]
            time.sleep(0.05)
        self.is_over = True
        sampling.join()
        return self.end()

    def end(self):
        for stage in self.stages:
            stage.back.close()
        if self.look:
            self.desktop.end(self.look[0])
        if self.quorva.process.poll() is not None:
            self.faults.append("the application ended by itself")
        else:
            self.quorva.end()
        self.site.end()
        self.desktop.end_session()
        if not self.told or not any(CLEAR in what for what in self.figures):
            self.faults.append("too little happened to say anything")
        return self

    # What happens.

    def move(self):
        hidden = [stage for stage in self.stages if stage.way != "in front"]
        if hidden and self.choose.random() < 0.6:
            self.choose.choice(hidden).show()
        else:
            shown = [stage for stage in self.stages if stage.way == "in front"]
            stage = self.choose.choice(shown or self.stages)
            if stage.way != "in front":
                stage.show()
            stage.hide()
            self.figures[f"{stage.kind} {stage.way}"] += 1

    def change(self):
        stage = self.choose.choice(self.stages)
        if stage.pending is None:
            stage.change_people()
            self.figures["joined or left"] += 1

    # What is said about it.

    def longest_there(self, at):
        """The bot that has been in a meeting for longest at a time, with its stage."""
        return max(((at - since, name, stage) for stage in self.stages
                    for name, since in list(stage.people.items())), default=(0.0, "", None),
                   key=lambda each: each[0])

    def judge(self, said, started, who):
        """`said` calls it clear or not, on what was there when it was started."""
        seconds, name, stage = self.longest_there(started)
        if said and seconds > GRACE:
            self.faults.append(f"{who}: clear at {started - self.start:.1f} s, {name} there for "
                               f"{seconds:.1f} s, the meeting {stage.way}")

    def sample_until_over(self):
        """Runs in a thread of its own, because a change of windows takes longer than a second."""
        while not self.is_over:
            due = time.monotonic() + SAMPLE_EVERY
            self.sample()
            time.sleep(max(0, due - time.monotonic()))

    def sample(self):
        now = time.monotonic()
        try:
            text = self.icon.tool_tip()
        except dbus.DBusException as error:
            self.figures[f"no answer: {error.get_dbus_name()}"] += 1
            self.faults.append(f"tray: no answer at {now - self.start:.1f} s")
            return
        self.figures["samples"] += 1
        self.figures[f"samples that say {text.splitlines()[0]}"] += 1
        self.judge(CLEAR in text, now, "tray")
        self.note_told(now)

    def note_told(self, now):
        """Times how long it takes until a bot is in the history."""
        known = {event["botName"] for event in self.desktop.history()
                 if event["method"] == "participantList"}
        for stage in self.stages:
            for name, since in list(stage.people.items()):
                if name in self.told:
                    continue
                self.longest_untold = max(self.longest_untold, now - since)
                if name in known:
                    self.told[name] = (now - since, stage.way)

    def take_look(self):
        if self.look is None:
            process = self.desktop.start(
                [PROGRAMS / "quorva-scan", "--json", "--source", "meeting"],
                stdout=subprocess.PIPE, text=True)
            self.look = process, time.monotonic()

    def finish_look(self):
        if self.look is None:
            return
        process, started = self.look
        if process.poll() is None:
            if time.monotonic() > started + DEADLINE:
                self.faults.append("one look does not end")
                self.desktop.end(process)
                self.look = None
            return
        self.look = None
        report = json.loads(process.stdout.read())
        self.figures[f"looks that say {report['verdict']}"] += 1
        self.judge(report["verdict"] == "clear", started, "one look")

    def print(self):
        print("\nWhat happened")
        for what, count in sorted(self.figures.items()):
            print(f"  {count:5}  {what}")
        delays = sorted((seconds, way) for seconds, way in self.told.values())
        if delays:
            print(f"\nFrom joining to the history: {len(delays)} bots, median "
                  f"{delays[len(delays) // 2][0]:.1f} s, longest {delays[-1][0]:.1f} s "
                  f"({delays[-1][1]})")
        print(f"The longest time in a call without being told: {self.longest_untold:.1f} s")
        print("\nFaults" if self.faults else "\nNo fault was seen")
        for fault in self.faults:
            print(f"  {fault}")
