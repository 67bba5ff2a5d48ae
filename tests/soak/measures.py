"""Samples of the resources that the application uses."""

import bisect
import pathlib
import time

LOG_FILES, LOG_FILE_SIZE = 4, 5 * 1024 * 1024


class Samples:
    """Memory in kB, descriptors, threads. Proportional memory also depends on other programs;
    memory that no file backs is the application's own."""

    NAMES = ("memory, kB", "of this not of files, kB", "descriptors", "threads")

    def __init__(self, pid, log_folder):
        self.process = pathlib.Path(f"/proc/{pid}")
        self.log_folder = log_folder
        self.taken = []
        self.log_faults = set()

    def take(self):
        try:
            lines = (self.process / "smaps_rollup").read_text().splitlines()
            memory = {line.split(":")[0]: int(line.split()[1]) for line in lines[1:]}
            self.taken.append((time.monotonic(), (
                memory["Pss"], memory["Pss_Anon"], len(list((self.process / "fd").iterdir())),
                len(list((self.process / "task").iterdir())))))
        except OSError:
            return  # it has ended, which is checked elsewhere
        files = [path.stat().st_size for path in self.log_folder.iterdir()]
        if len(files) > LOG_FILES or max(files, default=0) > LOG_FILE_SIZE:
            self.log_faults.add(f"the log is {len(files)} files of {max(files)} bytes at most")

    def peaks(self, start=0, end=float("inf")):
        """The maximum of each within a period."""
        rows = [figures for at, figures in self.taken if start <= at <= end]
        return [max(column) for column in zip(*rows)]


class Starvation:
    """How long other programs have kept the application's threads, and the soak's own, from a processor:
    a delay of that length is not the application's fault. A thread that waits for a service sleeps,
    which does not count."""

    def __init__(self, pid):
        self.tasks = pathlib.Path(f"/proc/{pid}/task")
        self.by_thread = {}
        self.total = 0.0
        self.moments, self.waited = [], []
        self.note()

    def note(self):
        for file in [*self.tasks.glob("*/schedstat"), pathlib.Path("/proc/thread-self/schedstat")]:
            try:
                waited = int(file.read_text().split()[1]) / 1e9
            except (OSError, IndexError):
                continue  # ended, or not supported by the kernel
            self.total += waited - self.by_thread.get(file, 0.0)
            self.by_thread[file] = waited
        self.moments.append(time.monotonic())
        self.waited.append(self.total)
        return self.total

    def between(self, start, end):
        """Between the last sample before and the first one after."""
        first = max(0, bisect.bisect_right(self.moments, start) - 1)
        last = min(len(self.moments) - 1, bisect.bisect_left(self.moments, end))
        return self.waited[last] - self.waited[first]
