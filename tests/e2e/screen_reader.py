"""The application as a screen reader sees it: the texts of its windows, and their controls.

Reads one property at a time over the accessibility bus; nothing is cached.
"""

import dbus

from conftest import wait_until

ACCESSIBLE = "org.a11y.atspi.Accessible"
REGISTRY = ("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")
NULL = "/org/a11y/atspi/null"
CHECKED, ENABLED, FOCUSED, VISIBLE = 4, 8, 12, 30


class Element:
    def __init__(self, reader, name, path):
        self.reader = reader
        self.proxy = reader.bus.get_object(name, path, introspect=False)

    def _get(self, interface, name):
        return self.proxy.Get(interface, name, dbus_interface=dbus.PROPERTIES_IFACE)

    @property
    def name(self):
        return str(self._get(ACCESSIBLE, "Name"))

    @property
    def description(self):
        return str(self._get(ACCESSIBLE, "Description"))

    @property
    def role(self):
        return str(self.proxy.GetRoleName(dbus_interface=ACCESSIBLE))

    def is_(self, state):
        words = self.proxy.GetState(dbus_interface=ACCESSIBLE)
        return bool(int(words[state // 32]) >> state % 32 & 1)

    def attributes(self):
        return self.proxy.GetAttributes(dbus_interface=ACCESSIBLE)

    def children(self):
        return [Element(self.reader, str(name), str(path))
                for name, path in self.proxy.GetChildren(dbus_interface=ACCESSIBLE) if path != NULL]

    def act(self, *names):
        """Performs the first action that has one of these names."""
        actions = [str(action[0]).lower() for action in
                   self.proxy.GetActions(dbus_interface="org.a11y.atspi.Action")]
        for name in names:
            if name in actions:
                self.proxy.DoAction(actions.index(name), dbus_interface="org.a11y.atspi.Action")
                return
        raise AssertionError(f"{self.name} can do {actions}, not {names}")

    def extents(self):
        """Place on the screen, and size."""
        return [int(each) for each in self.proxy.GetExtents(
            dbus.UInt32(0), dbus_interface="org.a11y.atspi.Component")]

    def controls(self):
        """What the application shows itself, without what is in documents."""
        yield self
        if not self.role.startswith("document"):
            for child in self.children():
                if child.is_(VISIBLE):
                    yield from child.controls()

    def walk(self):
        """This element and everything below it, in reading order."""
        yield self
        for child in self.children():
            if child.is_(VISIBLE):
                yield from child.walk()


class ScreenReader:
    """Reads the windows of one application on the session's accessibility bus."""

    def __init__(self, desktop, application="quorva"):
        launcher = desktop.bus.get_object("org.a11y.Bus", "/org/a11y/bus")
        self.bus = dbus.bus.BusConnection(launcher.GetAddress(dbus_interface="org.a11y.Bus"))
        self.application = application

    def close(self):
        self.bus.close()

    def windows(self):
        registry = self.bus.get_object(*REGISTRY, introspect=False)
        found = {}
        for name, path in registry.GetChildren(dbus_interface=ACCESSIBLE):
            application = Element(self, str(name), str(path))
            try:
                if application.name == self.application:
                    found.update({window.name: window for window in application.children()
                                  if window.is_(VISIBLE)})
            except dbus.DBusException:
                continue  # it has just ended
        return found

    def _elements(self, window):
        shown = self.windows()
        for name, each in shown.items():
            if window is None or name == window:
                yield from each.walk()

    def _first(self, name, window, role):
        try:
            for element in self._elements(window):
                if element.name == name and (role is None or element.role == role):
                    return element
        except dbus.DBusException:
            pass  # it has just disappeared: read again
        return None

    def shows(self, name):
        return self._first(name, None, None) is not None

    def find(self, name, window=None, role=None):
        """Waits for the first element with this name."""
        return wait_until(lambda: self._first(name, window, role), f'"{name}" on the screen')

    def wait_until_gone(self, name, window=None):
        wait_until(lambda: not self._first(name, window, None), f'"{name}" to go')

    def press(self, name, window=None, role=None):
        self.find(name, window, role).act("press", "toggle", "click")

    def read(self, window=None):
        """All texts of the windows, in reading order."""
        try:
            return [element.name for element in self._elements(window) if element.name]
        except dbus.DBusException:
            return []

    def hears(self, text, window=None):
        return wait_until(lambda: next((said for said in self.read(window) if text in said), None),
                          f'"{text}" to be read')
