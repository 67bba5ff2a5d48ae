"""The result of a soak: faults and figures."""

import collections
import statistics
import time

from appearances import assign, deadline

SLOWEST_ANSWER = 3.0
EPOCH = 978_307_200  # 2001, from 1970
UNCONFIRMED = 25.0  # a participant seen for less is dropped after 15 s out of sight
NOTIFICATION_TITLES = {
    "processName": "AI Recorder Found",
    "participantList": "AI Recorder Found in Google Meet",
    "calendarAttendee": "Bot Invited to Upcoming Meeting",
}
# The growth allowed: a share, and a constant. Windows need memory when they are first shown, so a soak
# of less than some minutes says nothing about memory.
GROWTH = {"memory, kB": (1.15, 8_000), "of this not of files, kB": (1.1, 6_000),
          "descriptors": (1.0, 6), "threads": (1.0, 4)}
MEMORY_MINUTES = 4


def tells_of(sent, key):
    """Whether a notification is about a detection."""
    method, name = key
    if sent["title"] != NOTIFICATION_TITLES[method]:
        return False
    if method == "calendarAttendee":
        start = time.strftime("%I:%M %p", time.gmtime(name + EPOCH)).lstrip("0")
        return f" at {start} (" in sent["body"]
    return sent["body"].startswith(f'"{name}" (' if method == "participantList" else f"{name} (")


class Verdict:
    def __init__(self, soak, died, status):
        self.soak = soak
        self.disturbances = soak.services.done
        self.faults = []
        self.delays = collections.defaultdict(list)
        if died or status != 0:
            self.faults.append(f"the application {'died' if died else 'ended'}: status {status}")
        self.judge_finds()
        self.judge_notifications()
        self.judge_answers()
        self.judge_growth()
        self.faults += sorted(soak.samples.log_faults)

    def at(self, moment):
        return f"{moment - self.soak.end + 60 * self.soak.minutes:.1f} s"

    def judge_finds(self):
        unexpected = assign(self.soak.appearances, self.soak.history.arrivals)
        for each in self.soak.appearances:
            if each.found:
                self.delays[each.method].append(each.found - each.since)
            latest = deadline(each, self.disturbances)
            latest += self.soak.starvation.between(each.since, latest)
            if each.is_void or not each.since:
                continue
            if not each.found:
                self.faults.append(f"never found: {each.key}, there since {self.at(each.since)}")
            elif each.found > latest:
                self.faults.append(
                    f"found {each.found - latest:.1f} s too late: {each.key}, there since "
                    f"{self.at(each.since)}, found at {self.at(each.found)}")
        self.again = collections.Counter()
        for at, key in unexpected:
            if self.may_come_again(at, key):
                self.again[key] += 1
            else:
                self.faults.append(f"announced again: {key}, at {self.at(at)}")

    def may_come_again(self, at, key):
        """A participant who was seen only briefly before the meeting became invisible."""
        first = next((each for each in self.soak.appearances if each.key == key), None)
        return first is not None and any(
            key[0] in each.affects and first.since < at and each.start < first.since + UNCONFIRMED
            and each.recovered > first.since and each.start < at for each in self.disturbances)

    def judge_notifications(self):
        """Each at least once, and at most once more for each time the server was killed: it may have
        shown a notification without confirming it."""
        kills = sum(each.part == "notification server" and each.how == "killed"
                    for each in self.disturbances)
        finds = collections.Counter(key for _, key in self.soak.history.arrivals)
        for key, count in finds.items():
            shown = sum(tells_of(sent, key) for sent in self.soak.notifications.sent)
            if not shown:
                self.faults.append(f"no notification: {key}")
            elif shown > count + kills:
                self.faults.append(f"{shown} notifications of {count}: {key}")

    def judge_answers(self):
        for seconds, at, disturbed in self.soak.calls:
            if seconds > SLOWEST_ANSWER:
                self.faults.append(f"no answer for {seconds:.1f} s at {self.at(at)}; meanwhile: "
                                   f"{', '.join(disturbed) or 'nothing disturbed'}")
        self.faults += [f"{count} times {what}" for what, count in self.soak.actions.items()
                        if what.startswith(("no answer", "second start"))]

    def judge_growth(self):
        samples, soak = self.soak.samples, self.soak
        length = max(30, min(300, 60 * soak.minutes / 4))
        start, end = samples.taken[0][0], samples.taken[-1][0]
        self.warm = samples.peaks(start, start + length)
        self.last = samples.peaks(end - length, end)
        for name, before, after in zip(samples.NAMES, self.warm, self.last):
            if name.endswith("kB") and soak.minutes < MEMORY_MINUTES:
                continue
            share, more = GROWTH[name]
            if after > before * share + more:
                self.faults.append(f"growth: {name}, {before:.0f} after warming up, {after:.0f} in "
                                   f"the end ({end - start:.0f} s)")

    def print(self):
        soak = self.soak
        print("\nWhat happened")
        for what, count in sorted(soak.actions.items()):
            print(f"  {count:5}  {what}")
        print("\nFrom appearing to the history, seconds     median   slowest")
        for method, delays in sorted(self.delays.items()):
            print(f"  {len(delays):5}  {method:32} {statistics.median(delays):8.1f}  "
                  f"{max(delays):8.1f}")
        print(f"  {len(soak.notifications.sent):5}  notifications were sent")
        print("\nHeld                                     warm       end      peak")
        for row in zip(soak.samples.NAMES, self.warm, self.last, soak.samples.peaks()):
            print("  {:30} {:11.0f} {:9.0f} {:9.0f}".format(*row))
        print(f"  the slowest of {len(soak.calls)} answers: {max(soak.calls)[0]:.2f} s")
        starved = soak.starvation.waited[-1] - soak.starvation.waited[0]
        print(f"  its threads were kept from a processor for {starved:.1f} s in all, which is not counted")
        print("\nFaults" if self.faults else "\nNo fault was seen")
        for fault in self.faults:
            print(f"  {fault}")
