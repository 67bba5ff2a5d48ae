"""Prints each notification sent over the session bus as a line of JSON, until it is killed.

A bus monitor sees every message, whether or not the server shows it, and disturbs nobody.
"""

import json

import dbus
import dbus.lowlevel
import dbus.mainloop.glib
from gi.repository import GLib

RULE = "type='method_call',interface='org.freedesktop.Notifications',member='Notify'"


def report(_bus, message):
    if message.get_member() == "Notify":
        _, replaces, icon, title, body, actions, hints, _ = message.get_args_list()
        print(json.dumps({
            "title": title, "body": body, "replaces": int(replaces), "icon": icon,
            "actions": list(actions[1::2]), "urgency": int(hints.get("urgency", 1)),
            "is_silent": bool(hints.get("suppress-sound", False)),
        }), flush=True)
    return dbus.lowlevel.HANDLER_RESULT_HANDLED  # a monitor must not answer


bus = dbus.SessionBus(mainloop=dbus.mainloop.glib.DBusGMainLoop())
bus.add_message_filter(report)
bus.call_blocking("org.freedesktop.DBus", "/org/freedesktop/DBus",
                  "org.freedesktop.DBus.Monitoring", "BecomeMonitor", "asu", ([RULE], 0))
print(json.dumps("ready"), flush=True)
GLib.MainLoop().run()
