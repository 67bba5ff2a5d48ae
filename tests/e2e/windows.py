"""The windows of a session with a display: what a user does to them with mouse and keyboard."""

import contextlib
import subprocess

import dbus

from conftest import DEADLINE, wait_until
from screen_reader import ScreenReader

FULL_SCREEN = """
import gi
gi.require_version("Gtk", "3.0")
from gi.repository import Gtk
window = Gtk.Window(title="Presentation")
window.fullscreen()
window.show_all()
Gtk.main()
"""


class Windows:
    def __init__(self, desktop):
        self.desktop = desktop

    def do(self, *arguments):
        """Runs xdotool; returns the lines that it prints."""
        done = subprocess.run(["xdotool", *map(str, arguments)], env=self.desktop.environment,
                              capture_output=True, text=True, timeout=DEADLINE)
        return done.stdout.split()

    def find(self, title):
        """Waits for a visible window whose title contains the text."""
        return wait_until(lambda: self.do("search", "--onlyvisible", "--name", title),
                          f'the window "{title}"')[-1]

    def minimise(self, window):
        self.do("windowminimize", window)

    def activate(self, window):
        """Brings a window back from wherever it is."""
        self.do("windowactivate", window)

    def fill_screen(self, window):
        self.do("windowmove", window, 0, 0)
        self.do("windowsize", window, "100%", "100%")

    def switch_to_workspace(self, number):
        self.do("set_desktop", number)
        wait_until(lambda: self.do("get_desktop") == [str(number)], "the workspace")

    def press(self, window, key):
        self.do("windowactivate", "--sync", window, "key", key)

    def click(self, window, x, y):
        self.do("windowactivate", "--sync", window, "mousemove", "--window", window, x, y, "click", 1)

    @contextlib.contextmanager
    def full_screen_program(self):
        process = self.desktop.start(["/usr/bin/python3", "-c", FULL_SCREEN],
                                     stderr=subprocess.DEVNULL)
        try:
            self.find("Presentation")
            yield
        finally:
            self.desktop.end(process)

    def click_control(self, application, role, text, button=1, key=""):
        """Clicks a control of the application's own, not of a page, whose name contains the text;
        a key can be held meanwhile."""
        reader = ScreenReader(self.desktop, application)
        x, y, width, height = wait_until(lambda: self._place_of(reader, role, text),
                                         f"{role} {text}")
        reader.close()
        held = ("keydown", key), ("keyup", key)
        before, after = held if key else ((), ())
        self.do("mousemove", x + width // 2, y + height // 2, *before, "click", button, *after)

    @staticmethod
    def _place_of(reader, role, text):
        try:
            for window in reader.windows().values():
                window.attributes()  # Chromium exposes its controls to those who ask for these
                for element in window.controls():
                    if element.role == role and text in element.name.lower():
                        return element.extents()
        except dbus.DBusException:
            pass  # it has just disappeared: read again
        return None
