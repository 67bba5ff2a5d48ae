#!/usr/bin/python3
"""A stand-in for a meeting program: a window with a list of participants. It executes the commands
on its standard input and confirms each one."""

import sys

import gi
gi.require_version("Gtk", "3.0")
from gi.repository import GLib, Gtk  # noqa: E402

window = Gtk.Window(title="Zoom Workplace", default_width=400, default_height=500)
participants = Gtk.ListBox()


def join(name):
    row = Gtk.ListBoxRow()
    row.add(Gtk.Label(label=name))
    participants.add(row)
    row.show_all()


def obey(_source, _condition):
    command, _, argument = sys.stdin.readline().rstrip("\n").partition(" ")
    if not command:
        Gtk.main_quit()
        return False
    {"join": join, "title": window.set_title}[command](argument)
    print(command, flush=True)
    return True


window.add(participants)
window.connect("map-event", lambda *_: print("shown", flush=True))
window.show_all()
GLib.io_add_watch(sys.stdin.fileno(), GLib.PRIORITY_DEFAULT, GLib.IOCondition.IN | GLib.IOCondition.HUP,
                  obey)
Gtk.main()
