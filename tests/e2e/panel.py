"""A desktop's panel for the icons of programs: org.kde.StatusNotifierWatcher.

Owns the name and accepts every registration, until it is killed.
"""

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME = "org.kde.StatusNotifierWatcher"
PATH = "/StatusNotifierWatcher"
PROPERTIES = {"IsStatusNotifierHostRegistered": True, "ProtocolVersion": dbus.Int32(0)}
DESCRIPTION = """
    <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
    <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
    <property name="ProtocolVersion" type="i" access="read"/>
"""


class Watcher(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(bus, PATH)
        self.items = dbus.Array([], signature="s")

    @dbus.service.method(dbus.INTROSPECTABLE_IFACE, out_signature="s",
                         path_keyword="path", connection_keyword="connection")
    def Introspect(self, path, connection):
        methods = super().Introspect(path, connection)
        start = f'<interface name="{NAME}">'
        return methods.replace(start, start + DESCRIPTION)

    @dbus.service.method(NAME, in_signature="s", sender_keyword="sender")
    def RegisterStatusNotifierItem(self, item, sender):
        self.items.append(sender if item.startswith("/") else item)
        bus.watch_name_owner(sender, lambda owner: owner or self.forget(item, sender))
        self.StatusNotifierItemRegistered(item)

    def forget(self, *names):
        self.items = dbus.Array([item for item in self.items if item not in names],
                                signature="s")

    @dbus.service.method(NAME, in_signature="s")
    def RegisterStatusNotifierHost(self, _host):
        pass

    @dbus.service.signal(NAME, signature="s")
    def StatusNotifierItemRegistered(self, item):
        pass

    def everything(self):
        return {**PROPERTIES, "RegisteredStatusNotifierItems": self.items}

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, _interface, name):
        return self.everything()[name]

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="s", out_signature="a{sv}")
    def GetAll(self, _interface):
        return self.everything()


bus = dbus.SessionBus(mainloop=dbus.mainloop.glib.DBusGMainLoop())
watcher = Watcher(bus)
name = dbus.service.BusName(NAME, bus)
GLib.MainLoop().run()
