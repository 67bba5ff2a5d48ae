"""The panel at the top of the screen, and the wallpaper: shows the icons that programs have registered,
each with its text, and activates an icon when it is clicked."""

import datetime
import subprocess

import dbus
import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, GdkPixbuf, GLib, Gtk  # noqa: E402

WATCHER = ("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher")
ITEM = "org.kde.StatusNotifierItem"
HEIGHT = 32
TITLE = "Panel"
STYLE = b"""
#wallpaper { background: linear-gradient(160deg, #2c4a6e, #5b7c99 45%, #d9b99b); }
#bar { background: #1d2430; color: #eef2f7; font: 600 13px "DejaVu Sans"; }
#bar button { background: none; border: none; box-shadow: none; padding: 0 14px; color: inherit; }
"""


def pixbuf(pixmaps):
    """The icon with the best height, converted from ARGB to RGBA."""
    width, height, argb = min(pixmaps, key=lambda each: abs(each[1] - 22))
    argb = bytes(argb)
    rgba = bytearray(argb)
    for channel in range(4):
        rgba[channel::4] = argb[(channel + 1) % 4::4]
    return GdkPixbuf.Pixbuf.new_from_bytes(
        GLib.Bytes.new(bytes(rgba)), GdkPixbuf.Colorspace.RGB, True, 8, width, height, width * 4)


class Item:
    """One program's icon."""

    def __init__(self, bus, name):
        self.item = bus.get_object(name, "/StatusNotifierItem", introspect=False)
        self.image, self.label = Gtk.Image(), Gtk.Label()
        box = Gtk.Box(spacing=8)
        box.add(self.image)
        box.add(self.label)
        self.button = Gtk.Button()
        self.button.add(box)
        self.button.connect("clicked", self.activate)

    def activate(self, _button):
        self.item.Activate(0, 0, dbus_interface=ITEM, ignore_reply=True)

    def update(self):
        def get(name):
            return self.item.Get(ITEM, name, dbus_interface=dbus.PROPERTIES_IFACE, timeout=2)
        self.image.set_from_pixbuf(pixbuf(get("IconPixmap")))
        _, _, title, text = get("ToolTip")
        self.label.set_text(title or text)


def window(name, kind, width, height):
    it = Gtk.Window(name=name, type_hint=kind, decorated=False, accept_focus=False,
                    default_width=width, default_height=height)
    it.move(0, 0)
    return it


def keep_free(height, width):
    """Reserves the bar's space, so that the window manager keeps other windows below it."""
    strut = ",".join(map(str, [0, 0, height, 0, 0, 0, 0, 0, 0, width - 1, 0, 0]))
    subprocess.run(["xprop", "-name", TITLE, "-f", "_NET_WM_STRUT_PARTIAL", "32c",
                    "-set", "_NET_WM_STRUT_PARTIAL", strut], check=True)


class Bar:
    def __init__(self):
        provider = Gtk.CssProvider()
        provider.load_from_data(STYLE)
        Gtk.StyleContext.add_provider_for_screen(Gdk.Screen.get_default(), provider, 800)
        monitor = Gdk.Display.get_default().get_monitor(0).get_geometry()
        width, height = monitor.width, monitor.height
        window("wallpaper", Gdk.WindowTypeHint.DESKTOP, width, height).show_all()
        self.bus = dbus.SessionBus()
        self.items = {}
        self.clock = Gtk.Label(margin=8)
        self.tray = Gtk.Box()
        box = Gtk.Box()
        box.pack_end(self.clock, False, False, 8)
        box.pack_end(self.tray, False, False, 0)
        bar = window("bar", Gdk.WindowTypeHint.DOCK, width, HEIGHT)
        bar.set_title(TITLE)
        bar.add(box)
        bar.show_all()
        Gdk.Display.get_default().sync()
        keep_free(HEIGHT, width)
        self.update()
        GLib.timeout_add(200, self.update)

    def update(self):
        self.clock.set_text(f"{datetime.datetime.now():%H:%M}")
        watcher = self.bus.get_object(*WATCHER, introspect=False)
        for name in watcher.Get(WATCHER[0], "RegisteredStatusNotifierItems",
                                dbus_interface=dbus.PROPERTIES_IFACE):
            if name not in self.items:
                self.items[name] = Item(self.bus, name)
                self.tray.add(self.items[name].button)
        for name, item in list(self.items.items()):
            try:
                item.update()
            except dbus.DBusException:
                self.tray.remove(self.items.pop(name).button)
        self.tray.show_all()
        return True


bar = Bar()
Gtk.main()
