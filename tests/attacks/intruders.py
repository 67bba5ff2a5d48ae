"""Programs of the user's that do harm."""

import pathlib

import dbus

from desktop import LAUNCHER

SPOOFER = pathlib.Path(__file__).with_name("spoofer.py")


def answer_for_others(stage):
    address = stage.bus.get_object(*LAUNCHER).GetAddress(dbus_interface="org.a11y.Bus")
    stage.start(["/usr/bin/python3", "-B", str(SPOOFER), str(address)])


def restart_bots(stage):
    """A note-taker that runs for a second, again and again."""
    bot = stage.run("bots/fathom", arguments=("1",)).args[0]
    stage.start(["/bin/sh", "-c", f"while :; do {bot} 1; done"])


def run_hundreds_of_bots(stage):
    for _ in range(300):
        stage.start([stage.run("bots/avoma").args[0], "600"])
