#!/usr/bin/python3
"""A stand-in for a meeting program: a window with a chat above a list of participants. It executes the
commands on its standard input and confirms each one."""

import json
import sys

import gi
gi.require_version("Gtk", "3.0")
from gi.repository import GLib, Gtk  # noqa: E402

window = Gtk.Window(title="Zoom Workplace", default_width=400, default_height=500)
chat = Gtk.Box(orientation=Gtk.Orientation.VERTICAL)
participants = Gtk.ListBox()


def join(name):
    row = Gtk.ListBoxRow()
    row.add(Gtk.Label(label=name))
    participants.add(row)
    row.show_all()


def say(messages):
    """Adds texts to the chat; a JSON list."""
    for message in json.loads(messages):
        chat.add(Gtk.Label(label=message, visible=True))


def obey(_source, _condition):
    command, _, argument = sys.stdin.readline().rstrip("\n").partition(" ")
    if not command:
        Gtk.main_quit()
        return False
    {"join": join, "say": say, "title": window.set_title}[command](argument)
    print(command, flush=True)
    return True


column = Gtk.Box(orientation=Gtk.Orientation.VERTICAL)
column.add(chat)
column.add(participants)
view = Gtk.ScrolledWindow()
view.add(column)
window.add(view)
window.connect("map-event", lambda *_: print("shown", flush=True))
window.show_all()
GLib.io_add_watch(sys.stdin.fileno(), GLib.PRIORITY_DEFAULT, GLib.IOCondition.IN | GLib.IOCondition.HUP,
                  obey)
Gtk.main()
