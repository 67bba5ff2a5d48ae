"""The installed man pages, completions and desktop files match the programs."""

import pathlib
import re
import subprocess

import dbus
import pytest

from application import INSTANCE, Desktop
from conftest import DEADLINE, PROGRAMS, wait_until

PACKAGING = pathlib.Path(__file__).parents[2] / "packaging"


def template(name):
    """What is installed under the name, made from its template."""
    text = (PACKAGING / f"{name}.in").read_text()
    return text.replace("@application_id@", INSTANCE).replace("@bin@", str(PROGRAMS))


ENTRY = template(f"{INSTANCE}.desktop")


@pytest.fixture
def desktop():
    here = Desktop()
    yield here
    here.end_session()


def complete(*words):
    """The completions that bash offers for the last word."""
    script = ('source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _quorva_scan; '
              'printf "%s\\n" "${COMPREPLY[@]}"')
    said = subprocess.run(["bash", "-c", script, PACKAGING / "quorva-scan.bash", *words],
                          capture_output=True, text=True, check=True, timeout=DEADLINE)
    return said.stdout.split()


def test_manual_and_completion_know_every_option():
    usage = subprocess.run([PROGRAMS / "quorva-scan", "--help"], capture_output=True, text=True,
                           check=True, timeout=DEADLINE).stdout
    options = set(re.findall(r"--[a-z-]+[a-z]", usage))
    sources = re.search(r"--source ([a-z|]+)", usage)[1].split("|")
    manual = (PACKAGING / "quorva-scan.1.in").read_text().replace(r"\-", "-")
    zsh = (PACKAGING / "quorva-scan.zsh").read_text()
    assert options and len(sources) == 3
    assert set(re.findall(r"--[a-z-]+[a-z]", manual)) == options
    assert set(re.findall(r"--[a-z-]+[a-z]", zsh)) == options
    assert set(complete("quorva-scan", "")) == options
    assert complete("quorva-scan", "--js") == ["--json"]
    assert complete("quorva-scan", "--json", "--source", "") == sources
    assert complete("quorva-scan", "--source", "=", "m") == ["meeting"]
    for source in sources:
        assert f".B {source}\n" in manual and source in zsh
    exits = manual.partition(".SH EXIT STATUS")[2].partition(".SH ENV")[0]
    told = usage.partition("Exit status:")[2]
    assert set(re.findall(r"\.B (\d)", exits)) == set(re.findall(r"\b(\d) [a-z]", told))


def test_the_desktop_starts_it_by_its_name_and_its_actions_open_windows(desktop):
    services = desktop.home / "data/dbus-1/services"
    services.mkdir(parents=True)
    service = f"{INSTANCE}.service"
    (services / service).write_text(template(service))
    desktop.bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus").ReloadConfig(
        dbus_interface="org.freedesktop.DBus")

    def program():
        return dbus.Interface(desktop.bus.get_object(INSTANCE, "/" + INSTANCE.replace(".", "/")),
                              "org.freedesktop.Application")

    def windows():  # fails if a window closes meanwhile
        return subprocess.run(["xwininfo", "-root", "-tree"], env=desktop.environment,
                              capture_output=True, text=True, timeout=DEADLINE).stdout

    assert "DBusActivatable=true" in ENTRY
    program().Activate({})
    wait_until(lambda: desktop.logged("startMonitoring"), "the application")
    assert re.search(r"^Actions=(.*)$", ENTRY, re.M)[1] == "history;settings;"
    program().ActivateAction("settings", dbus.Array([], "v"), {})
    wait_until(lambda: "Settings" in windows(), "the settings")
