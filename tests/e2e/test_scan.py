"""quorva-scan with real processes."""

import json
import os
import re
import signal
import subprocess
import time

from conftest import DEADLINE, PROGRAMS, wait_until

DESKTOP_ENTRY = """[Desktop Entry]
Type=Application
Name=Otter
Exec={} %U
"""


def test_finds_a_bundle_by_its_path(computer):
    bot = computer.run("Applications/Otter.app/Contents/MacOS/Otter")
    look = computer.scan("--json", "--source", "process")
    assert look.returncode == 1
    report = json.loads(look.stdout)
    assert report["version"] == 1 and report["verdict"] == "found"
    assert list(report["sources"]) == ["process"]
    [found] = [d for d in report["detections"]["process"] if d["processIdentifier"] == bot.pid]
    assert (found["signatureId"], found["method"], found["confidence"]) == ("otter", "processPath", 95)
    assert found["matchedValue"] == str(computer.home / "Applications/Otter.app/Contents/MacOS/Otter")


def test_finds_a_helper_by_its_name_and_nothing_that_only_looks_alike(computer):
    helper = computer.run("bin/otter-helper")
    alike = computer.run("bin/otterly")
    rev = computer.start(["/usr/bin/rev"], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL)
    wait_until(lambda: os.readlink(f"/proc/{rev.pid}/exe") == "/usr/bin/rev", "rev")
    [found] = computer.found(helper.pid)
    assert (found["method"], found["confidence"], found["matchedValue"]) == (
        "processName", 90, "otter-helper")
    assert computer.found(alike.pid) == []
    assert computer.found(rev.pid) == []


def test_finds_a_script_and_an_executable_deleted_while_it_runs(computer):
    script = computer.home / "bin" / "fathom"
    script.parent.mkdir()
    script.write_text("#!/bin/sh\nread wait\n")
    script.chmod(0o755)
    running = computer.start([str(script)], stdin=subprocess.PIPE)
    deleted = computer.run("bin/krisp")
    (computer.home / "bin/krisp").unlink()
    [found] = wait_until(lambda: computer.found(running.pid), "the script")
    assert (found["signatureId"], found["confidence"]) == ("fathom", 95)
    [found] = computer.found(deleted.pid)
    assert (found["signatureId"], found["matchedValue"]) == ("krisp", "krisp")


def test_gives_one_record_for_an_application_and_its_helpers(computer):
    program = computer.home / "opt" / "otter"
    entries = computer.home / "data" / "applications"
    entries.mkdir(parents=True)
    (entries / "com.aisense.otter.desktop").write_text(DESKTOP_ENTRY.format(program))
    main = computer.run("opt/otter")
    helper = computer.run("opt/Otter.app/otter-helper")
    [found] = computer.found(main.pid)
    assert (found["method"], found["confidence"], found["matchedValue"]) == (
        "bundleIdentifier", 100, "com.aisense.otter")
    assert computer.found(helper.pid) == []


def test_survives_names_that_no_shell_would_print(computer):
    odd = computer.run("bin/otter\n\x1b[2J helper")
    text = computer.scan("--source", "process").stdout
    assert "otter\\n\\u001b[2J helper" in text and "\x1b" not in text
    [found] = computer.found(odd.pid)
    assert found["matchedValue"] == "otter\n\x1b[2J helper"


def test_tells_by_its_exit_status_what_it_could_not_do(computer):
    everything = computer.scan("--json", "--source", "calendar", "--source", "meeting")
    assert everything.returncode == 3
    report = json.loads(everything.stdout)
    assert report["verdict"] == "incomplete"
    assert {name: source["status"] for name, source in report["sources"].items()} == {
        "calendar": "unavailable", "meeting": "no-access"}
    wrong = computer.scan("--sauce", "process")
    assert wrong.returncode == 2 and "--sauce" in wrong.stderr and wrong.stdout == ""
    with open("/dev/full", "w") as full:
        unwritten = subprocess.run([PROGRAMS / "quorva-scan", "--help"], stdout=full,
                                   stderr=subprocess.PIPE, text=True, timeout=DEADLINE)
    assert unwritten.returncode == 2 and "No space left" in unwritten.stderr


def test_one_look_stores_nothing(computer):
    computer.scan("--source", "process")
    assert not (computer.home / "state").exists()


# A watch reports products, whichever process they run in: each test below has a product of its own.


def test_watch_announces_within_three_seconds_and_takes_back_after_the_grace_period(computer, watch):
    running = watch()
    wait_until(computer.log.exists, "the log file")
    started = time.monotonic()
    bot = computer.run("bin/wudpecker")
    wait_until(lambda: running.of(bot.pid), "the appearance")
    appeared, event = running.of(bot.pid)[0]
    assert event == "appeared"
    assert appeared - started < 4, "one period of 3 s, and what a busy machine adds"
    ended = time.monotonic()
    computer.end(bot)
    wait_until(lambda: len(running.of(bot.pid)) == 2, "the disappearance")
    gone, event = running.of(bot.pid)[1]
    assert event == "disappeared" and gone - ended > 5
    assert computer.end(running.process, by=signal.SIGTERM) == 0
    assert len(running.of(bot.pid)) == 2
    first = computer.log.read_text().splitlines()[0]
    assert re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z \[info\] \[boot\] QuorvaApp "
                        rf"v[\d.]+ \(build \S+\) PID {running.process.pid}", first)


def test_watch_says_that_a_full_or_missing_log_place_costs_the_log_and_nothing_else(computer, watch):
    (computer.home / "state").write_text("in the way")
    errors = computer.home / "errors"
    with errors.open("w") as stderr:
        process = computer.start([PROGRAMS / "quorva-scan", "--watch", "--source", "process"],
                                 stdout=subprocess.PIPE, stderr=stderr, text=True)
    bot = computer.run("bin/claap")
    assert json.loads(process.stdout.readline())["detection"]["name"] == "Claap"
    assert computer.end(process, by=signal.SIGINT) == 0
    assert errors.read_text().count("[Quorva] FileLogMirror.start failed: ") == 1
    computer.end(bot)


def test_watch_ends_where_nothing_can_be_watched(computer):
    ended = computer.scan("--watch", "--source", "meeting")
    assert ended.returncode == 3 and ended.stdout == ""
    assert "the source meeting is not watched: accessibility is switched off" in ended.stderr
