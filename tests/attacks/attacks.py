"""Everything that a stranger can send or show, against both programs: attacks.py TURN_WATCH [NAME]...

Each attack is tried beside a meeting of the user's own with a note-taker in it, an invitation with one,
and one that runs. Neither program may end, use more than MEMORY or, once its windows are
loaded, keep its main loop from turning for longer than TURN; both must find the three, and say what they could not look at.
"""

import dataclasses
import datetime
import json
import os
import pathlib
import subprocess
import sys
import time
from collections.abc import Callable

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "e2e"))

import calendars  # noqa: E402
import intruders  # noqa: E402
import meetings  # noqa: E402
from application import Desktop, Icon, Quorva  # noqa: E402
from conftest import DEADLINE, PROGRAMS, wait_until  # noqa: E402
from desktop import ZoomWindow  # noqa: E402

MEMORY = 200.0  # MB
TURN = 50.0  # milliseconds
SETTLING = 40.0  # seconds for the application to look at everything
SOURCES = [word for name in ("process", "calendar", "meeting") for word in ("--source", name)]
OWN = {"processName": "Otter.ai", "calendarAttendee": "Fireflies.ai", "participantList": "Otter.ai"}


@dataclasses.dataclass
class Attack:
    name: str
    begin: Callable  # of the stage
    source: str = ""  # whose report of a scan names the loss
    says: str = ""  # what it names; empty: nothing is lost


def file(write):
    """Puts a calendar file of a stranger into a calendar of its own."""
    return lambda stage: stage.put(f"{write.__name__}.ics", write())


def three_series(stage):
    for number in range(3):
        stage.put(f"minutely{number}.ics", calendars.series_of_every_minute(number))


ATTACKS = [
    Attack("three series of every minute", three_series, "calendar", "occurrences"),
    Attack("an address of many schemes", file(calendars.address_of_many_schemes)),
    Attack("zones of many rules", file(calendars.zones_of_many_rules), "calendar", "stranger"),
    Attack("rules by the thousand", file(calendars.rules_by_the_thousand), "calendar", "stranger"),
    Attack("dates without values", file(calendars.dates_without_values), "calendar", "stranger"),
    Attack("attendees by the thousand", file(calendars.attendees_by_the_thousand), "calendar", "stranger"),
    Attack("components within components", file(calendars.components_within_components)),
    Attack("bots by the thousand", file(calendars.bots_by_the_thousand)),
    Attack("texts that act on terminals", file(calendars.texts_that_act_on_terminals)),
    Attack("a chat before the participants", lambda stage: stage.zoom.tell("say", json.dumps(meetings.CHAT)),
           "meeting", ""),
    Attack("lines that look like bots", lambda stage: stage.zoom.tell("say", json.dumps(meetings.LINES)),
           "meeting", ""),
    Attack("hostile participants", lambda stage: [stage.zoom.tell("join", name) for name in meetings.NAMES],
           "meeting", ""),
    Attack("a program that answers for others", intruders.answer_for_others),
    Attack("bots that restart", intruders.restart_bots),
    Attack("bots by the hundred", intruders.run_hundreds_of_bots),
]


class Stage(Desktop):
    """A session with the user's own meeting, invitation and running bot, each with a note-taker."""

    def __init__(self):
        super().__init__()
        self.switch_accessibility_on()
        self.start_notifications()
        self.start_panel()
        self.zoom = ZoomWindow(self)
        self.zoom.tell("title", "Zoom Meeting")
        self.zoom.tell("join", "Ann Smith")
        self.stranger = self.home / "data/calendars/stranger"
        self.stranger.mkdir()

    def put(self, name, text):
        (self.stranger / name).write_text(text)

    def bring_own_bots(self):
        self.zoom.tell("join", "Otter.ai Notetaker")
        self.invite("fred@fireflies.ai", datetime.datetime.now(datetime.timezone.utc)
                    + datetime.timedelta(minutes=45))
        self.start_bot()


def peak_of(pid):
    """The most memory a process has had, in MB."""
    status = pathlib.Path(f"/proc/{pid}/status").read_text()
    return int(status.partition("VmHWM:")[2].split()[0]) / 1000


def scan(stage, attack, faults):
    """One look with quorva-scan: what it says, and its figures."""
    started = time.monotonic()
    child = subprocess.Popen([PROGRAMS / "quorva-scan", "--json", *SOURCES], env=stage.environment,
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    peak = 0.0
    output = b""
    while chunk := child.stdout.read1(65_536):
        output += chunk
    _, status, used = os.wait4(child.pid, 0)
    child.returncode = os.waitstatus_to_exitcode(status)
    peak = used.ru_maxrss / 1000
    seconds = time.monotonic() - started
    if child.returncode != 1:
        faults.append(f"quorva-scan exits with {child.returncode}: {child.stderr.read()[-300:]!r}")
        return f"{peak:6.0f} MB {seconds:5.1f} s"
    report = json.loads(output)
    found = report["detections"]
    names = {"processName": [bot["name"] for bot in found["process"]],
             "calendarAttendee": [bot["botName"] for bot in found["calendar"]],
             "participantList": [bot["botDisplayName"] for bot in found["participants"]]}
    for method, name in OWN.items():
        if name not in names[method]:
            faults.append(f"quorva-scan does not find the user's own {method}")
    if attack.source and report["sources"][attack.source]["status"] == "ok":
        faults.append(f"quorva-scan calls the {attack.source} source ok")
    if attack.says not in (report["sources"].get(attack.source) or {"detail": ""})["detail"]:
        faults.append(f'quorva-scan says {report["sources"][attack.source]["detail"]!r}')
    if any(ord(c) < 32 and c != "\n" or 0x7f <= ord(c) < 0xa0 or c in "\u202e\u202d" for c in output.decode()):
        faults.append("quorva-scan prints characters that act on terminals")
    return f"{peak:6.0f} MB {seconds:5.1f} s"


class Watched:
    """The application, with the turns of its main loop, its peak of memory and what it has found. It has
    loaded its windows and been still for a moment."""

    def __init__(self, stage, turn_watch):
        self.stage = stage
        self.file = stage.home / "turns"
        with_watch = ["env", f"LD_PRELOAD={turn_watch}", f"QUORVA_TURNS={self.file}"]
        self.quorva = Quorva(stage, with_watch).wait_until_watching()
        self.icon = Icon(stage)
        stage.start_bot("krisp")
        wait_until(lambda: "Krisp" in self.told().values(), "the first alert")
        self.icon.activate()
        time.sleep(3)
        self.icon.activate()
        self.warm = time.monotonic()

    @property
    def is_running(self):
        return self.quorva.process.poll() is None

    def longest_turn(self):
        turns = [line.split() for line in self.file.read_text().splitlines() if line.startswith("turn ")]
        return max((float(took) for _, at, took in turns if float(at) > self.warm), default=0.0)

    def told(self):
        return {(entry["method"], entry["botName"]): entry["botName"] for entry in self.stage.history()}

    def missing(self):
        return [method for method, name in OWN.items() if (method, name) not in self.told()]

    def wait(self, condition, seconds):
        """Returns how long it took until the condition was met, or the application ended."""
        began = time.monotonic()
        while not condition() and time.monotonic() < began + seconds and self.is_running:
            time.sleep(0.2)
        return time.monotonic() - began


def application(stage, attack, turn_watch, faults):
    it = Watched(stage, turn_watch)
    attack.begin(stage)
    stage.bring_own_bots()
    delay = it.wait(lambda: not it.missing(), DEADLINE)
    faults += [f"quorva does not tell of the user's own {method}" for method in it.missing()]
    it.wait(lambda: False, SETTLING - delay)
    said = ""
    if it.is_running:
        tip = said = str(it.icon.tool_tip())
        if attack.source and "not" not in tip:
            faults.append(f"quorva's icon says {tip!r}")
        it.icon.activate()
        it.wait(lambda: False, 4)
    if not it.is_running:
        faults.append(f"quorva has ended with {it.quorva.process.returncode}")
        return "ended"
    peak, turn = peak_of(it.quorva.pid), it.longest_turn()
    if turn > TURN:
        faults.append(f"quorva's loop stood still for {turn:.0f} ms:\n{it.file.read_text()}")
    if peak > MEMORY:
        faults.append(f"quorva has used {peak:.0f} MB")
    if it.quorva.end() != 0:
        faults.append(f"quorva ends with {it.quorva.process.returncode}")
    return f"{peak:6.0f} MB  longest turn {turn:5.0f} ms  own bots after {delay:4.1f} s  {said!r}"


def attempt(attack, turn_watch):
    faults = []
    stage = Stage()
    try:
        said = application(stage, attack, turn_watch, faults)
        print(f"{attack.name:32} quorva      {said}", flush=True)
        figures = scan(stage, attack, faults)
        if float(figures.split()[0]) > MEMORY:
            faults.append("quorva-scan has used too much")
        print(f"{'':32} quorva-scan {figures}", flush=True)
    finally:
        stage.end_session()
    for fault in faults:
        print(f"    FAULT: {fault}", flush=True)
    return faults


def main():
    turn_watch, *names = sys.argv[1:]
    chosen = [attack for attack in ATTACKS if not names or any(name in attack.name for name in names)]
    if not chosen:
        sys.exit(f"There is no such attack. All: {', '.join(attack.name for attack in ATTACKS)}")
    failed = [attack.name for attack in chosen if attempt(attack, turn_watch)]
    print(f"{len(chosen) - len(failed)} of {len(chosen)} attacks did no harm")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
