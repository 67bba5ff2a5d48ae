"""One minute of ./dev soak."""

import pathlib
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "soak"))

from soak import Soak  # noqa: E402


def test_misses_nothing_while_services_come_and_go():
    seed = time.time_ns() % 1_000_000
    print(f"./dev soak 1 --seed {seed}")
    verdict = Soak(minutes=1, seed=seed).run()
    verdict.print()
    assert verdict.faults == []
    assert {"processName", "calendarAttendee"} <= verdict.delays.keys(), "too little happened"
