"""Runs the application for a while in a private session in which everything changes: soak.py
[MINUTES] [--seed SEED] [--meetings].

Processes, invitations and participants come and go, the user clicks, and the services of the desktop
are stopped, killed and started again, all at random. At the end everything that appeared must have
been found in time and announced once, and the application must have answered throughout and use no
more resources than after its warm-up. The seed repeats the choices, but not their exact times.
"""

import argparse
import collections
import datetime
import pathlib
import random
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "e2e"))

import dbus  # noqa: E402

from appearances import Appearance, HistoryWatch  # noqa: E402
from application import Desktop, Icon, Notifications, Quorva  # noqa: E402
from conftest import DEADLINE, PROGRAMS, wait_until  # noqa: E402
from disturbances import Services  # noqa: E402
from meeting_site import Site  # noqa: E402
from meetings import MeetingSoak  # noqa: E402
from measures import Samples, Starvation  # noqa: E402
from verdict import Verdict, tells_of  # noqa: E402

PRODUCTS = {"otter": "Otter.ai", "fathom": "Fathom", "avoma": "Avoma", "grain": "Grain",
            "krisp": "Krisp", "tactiq": "Tactiq", "sonix": "Sonix", "nyota": "Nyota",
            "zygo": "Zygo", "gong": "Gong.io", "modjo": "Modjo", "pillar": "Pillar"}
MAILBOXES = ["notetaker@otter.ai", "fred@fireflies.ai", "bot@avoma.com", "bot@sembly.ai"]
CALENDAR_REST = 30
EPOCH = datetime.datetime(2001, 1, 1, tzinfo=datetime.timezone.utc)
WARM_UP, LAST_LOOK = 20, 15


class SoakDesktop(Desktop):
    def reap(self):
        """Reaps the children that have been killed."""
        for child in self.children:
            child.poll()


class Soak:
    def __init__(self, minutes, seed):
        self.minutes = minutes
        self.choose = random.Random(seed)
        self.desktop = SoakDesktop()
        self.site = Site()
        self.appearances = []
        self.bots = {}           # running, by their program's name, with the time they end
        self.people = {}         # in the meeting, with the time they leave
        self.mends = {}          # when a group's disturbance ends
        self.files = {}          # invitations, with the time they are withdrawn
        self.calls = []          # how long the application took to answer
        self.actions = collections.Counter()
        self.number = 0
        self.unshown = []        # participants that the page has not shown yet
        self.calendar_moved = 0.0

    # The stage.

    def begin(self):
        desktop = self.desktop
        desktop.switch_accessibility_on()
        desktop.start_notifications()
        desktop.start_panel()
        desktop.start_sound()
        desktop.start_speech()
        self.notifications = Notifications(desktop)
        self.services = Services(desktop, self.site, self.choose)
        self.services.on_browser_end = self.empty_meeting
        self.services.open_browser()
        self.quorva = Quorva(desktop).wait_until_watching()
        self.calendar_moved = time.monotonic()
        self.icon = Icon(desktop)
        self.history = HistoryWatch(desktop)
        self.samples = Samples(self.quorva.pid, desktop.log.parent)
        self.starvation = Starvation(self.quorva.pid)
        self.toggle_popover()  # so that everything is loaded when the warm-up ends

    def run(self):
        self.begin()
        now = time.monotonic()
        self.warm_end = now + WARM_UP
        self.end = now + 60 * self.minutes
        actors = {self.start_bot: 4, self.let_somebody_join: 7, self.invite: 25, self.click: 6,
                  self.ask: 1, self.sample: 5}
        due = {actor: now + self.choose.uniform(0, mean) for actor, mean in actors.items()}
        for group in self.services.groups:
            due[group] = self.warm_end + self.choose.uniform(0, 15)
        while (now := time.monotonic()) < self.end - LAST_LOOK:
            self.retire(now)
            for actor, at in list(due.items()):
                if at > now:
                    continue
                if isinstance(actor, str):
                    self.disturb(actor)
                    due[actor] = now + self.choose.uniform(10, 60)
                else:
                    actor()
                    due[actor] = now + self.choose.uniform(0.5, 1.5) * actors[actor]
            time.sleep(0.05)
        return self.finish()

    def finish(self):
        """Ends all disturbances. New appearances must then be found within the usual times, and the
        calendars are scanned for outstanding ones."""
        for group in list(self.services.present):
            self.services.mend(group)
        self.start_bot()
        self.choose_from_menu("Refresh all scans")
        self.wait_until_told()
        self.samples.take()
        self.starvation.note()
        self.history.end()
        died = self.quorva.process.poll() is not None
        status = self.quorva.process.returncode if died else self.quorva.end()
        self.site.end()
        self.desktop.end_session()
        return Verdict(self, died, status)

    def wait_until_told(self):
        def all_told():
            self.note_shown()
            due = [each for each in self.appearances if not each.is_void and each.since]
            return time.monotonic() > self.end + LAST_LOOK or self.every_find_is_told() and all(
                each.key in self.history.keys() for each in due)
        wait_until(all_told, "the last finds")

    def every_find_is_told(self):
        return all(any(tells_of(sent, key) for sent in self.notifications.sent)
                   for key in self.history.keys())

    # What appears, and goes again.

    def appear(self, method, name, **options):
        it = Appearance(method, name, **options)
        self.appearances.append(it)
        self.actions[method] += 1
        return it

    def start_bot(self):
        free = [name for name in PRODUCTS if name not in self.bots]
        if not free:
            return
        name = self.choose.choice(free)
        it = self.appear("processName", PRODUCTS[name])
        process = self.desktop.start_bot(name)
        it.since = time.monotonic()
        self.bots[name] = (process, it.since + self.choose.uniform(9, 30))

    def show_people(self):
        page = self.services.page
        page.content = {**page.content, "people": ["Ann Smith", *self.people]}
        page.version += 1
        return page, page.version

    def let_somebody_join(self):
        if self.services.page is None or len(self.people) > 5 or "meeting" in self.services.present:
            return
        self.number += 1
        name = f"Acme{self.number} Notetaker"
        self.people[name] = time.monotonic() + self.choose.uniform(25, 70)
        it = self.appear("participantList", name)
        self.unshown.append((*self.show_people(), it))

    def note_shown(self):
        for entry in list(self.unshown):
            page, version, appearance = entry
            if page.shown >= version:
                appearance.since = time.monotonic()
                self.unshown.remove(entry)

    def empty_meeting(self):
        """Ends the browser: participants not found by now can no longer be found."""
        for each in self.appearances:
            if each.method == "participantList" and each.key not in self.history.keys():
                each.is_void = True
        self.people.clear()
        self.unshown.clear()
        self.services.page.content["people"] = []

    def invite(self):
        self.number += 1
        start = datetime.datetime.now(datetime.timezone.utc).replace(second=0, microsecond=0) \
            + datetime.timedelta(minutes=61 + self.number)
        mailbox = f"{self.number}.{self.choose.choice(MAILBOXES)}"
        now = time.monotonic()
        disturbed = [each.recovered for each in self.services.done
                     if "calendarAttendee" in each.affects]
        has_rested = now - self.calendar_moved > 2 * CALENDAR_REST \
            and all(at < now for at in disturbed)
        self.calendar_moved = now
        self.files[mailbox] = now + self.choose.uniform(320, 400)
        self.appear("calendarAttendee", (start - EPOCH).total_seconds(), since=now,
                    bound=10 if has_rested else 0)
        self.desktop.invite(mailbox, start)

    def retire(self, now):
        self.note_shown()
        for name, (process, end) in list(self.bots.items()):
            if now > end:
                self.desktop.end(process)
                del self.bots[name]
        leaving = [name for name, end in self.people.items() if now > end]
        if leaving and "meeting" not in self.services.present:
            for name in leaving:
                del self.people[name]
            self.show_people()
        for mailbox, end in list(self.files.items()):
            if now > end:
                (self.desktop.home / f"data/calendars/work/{mailbox}.ics").unlink()
                del self.files[mailbox]
                self.calendar_moved = now
        for group, end in list(self.mends.items()):
            if now > end:
                del self.mends[group]
                self.services.mend(group)

    def disturb(self, group):
        began = self.services.disturb(group)
        if began:
            self.actions[f"{began.part} {began.how}"] += 1
            self.mends[group] = time.monotonic() + self.choose.uniform(1, 15)

    # The user.

    def click(self):
        way = self.choose.choice([self.toggle_popover, self.toggle_popover, self.object,
                                  self.start_again, self.refresh])
        way()
        self.actions["clicks"] += 1

    def disturbed(self):
        return [f"{each.part} {each.how}" for _, each in self.services.present.values()]

    def timed(self, call):
        before, starved = time.monotonic(), self.starvation.note()
        disturbed = self.disturbed()
        try:
            return call()
        except dbus.DBusException as error:
            self.actions[f"no answer: {error.get_dbus_name()}"] += 1
            return None
        finally:
            starved = self.starvation.note() - starved
            self.calls.append((time.monotonic() - before - starved, before, disturbed))

    def ask(self):
        self.starvation.note()
        self.timed(self.icon.tool_tip)

    def toggle_popover(self):
        self.timed(self.icon.activate)

    def choose_from_menu(self, text):
        entries = self.timed(self.icon.menu) or {}
        if entries.get(text, (0, False))[1]:
            self.timed(lambda: self.icon.choose(text))

    def object(self):
        self.choose_from_menu("Object to AI recording")

    def refresh(self):
        self.calendar_moved = time.monotonic()
        self.choose_from_menu("Refresh all scans")

    def start_again(self):
        """Starts a second instance, which activates the first one and exits."""
        before = time.monotonic()
        again = self.desktop.start([PROGRAMS / "quorva"], stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT, text=True)
        starvation = Starvation(again.pid)
        while again.poll() is None and time.monotonic() < before + DEADLINE:
            starvation.note()
            time.sleep(0.05)
        seconds = time.monotonic() - before - starvation.waited[-1] + starvation.waited[0]
        self.calls.append((seconds, before, ["a second start", *self.disturbed()]))
        if again.poll() is None:
            self.desktop.end(again)
        said = again.stdout.read()
        if again.returncode != 0 or "does not answer" in said:
            self.actions[f"second start: {said.strip()}"] += 1

    def sample(self):
        self.samples.take()


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("minutes", nargs="?", type=float, default=10)
    parser.add_argument("--seed", type=int, default=time.time_ns() % 1_000_000)
    parser.add_argument("--meetings", action="store_true",
                        help="only hide and show meetings, in both browsers")
    options = parser.parse_args()
    print(f"For {options.minutes:g} minutes, with --seed {options.seed}", flush=True)
    soak = MeetingSoak if options.meetings else Soak
    verdict = soak(options.minutes, options.seed).run()
    verdict.print()
    sys.exit(1 if verdict.faults else 0)


if __name__ == "__main__":
    main()
