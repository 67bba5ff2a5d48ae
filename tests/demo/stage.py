"""The desktop of the demonstration, with everything a user would have on it, and its screenshots."""

import pathlib
import signal
import subprocess
import time

from application import PYTHON, Desktop, Icon, Notifications, Quorva
from conftest import DEADLINE, wait_until
from meeting_site import Browser, Site

HERE = pathlib.Path(__file__).parent
SCREEN = "1600x900x24"
ALERT, POPOVER = "Quorva alert", "Quorva"
# Left: the meeting. In the middle: the server's notifications. Right: Quorva's own windows.
BROWSER_PLACE = ("40", "64", "720", "780")
NOTIFICATIONS = """
    origin = top-left
    offset = 790x56
    width = 370
    height = 200
    separator_height = 1
    separator_color = frame
    frame_width = 1
    frame_color = "#8fa3b8"
    background = "#f7f9fb"
    foreground = "#1d2430"
    font = DejaVu Sans 10
    padding = 12
    horizontal_padding = 14
    format = "<b>%s</b>\\n%b"
    show_indicators = yes
    sort = no
"""
PAGE_STYLE = """
body { margin: 0; padding: 26px 34px; background: #20262e; color: #e9eef4;
       font: 17px "DejaVu Sans", sans-serif; min-height: 90vh }
h1 { font-size: 24px }
ul { display: grid; grid-template-columns: 1fr 1fr; gap: 16px; padding: 0; list-style: none }
li { background: #35404d; border-radius: 12px; padding: 52px 18px 18px }
#banner { color: #ffb4ab; font-weight: bold; min-height: 26px }
button { background: #c8372d; color: white; border: 0; border-radius: 18px; padding: 10px 22px;
         font-size: 15px }
"""


class Stage(Desktop):
    """A desktop session with every service, a meeting in a browser, and Quorva."""

    def __init__(self):
        super().__init__()
        self.switch_accessibility_on()
        self.start_panel()
        self.bar = self.start([*PYTHON, str(HERE / "bar.py")])
        self.start_notifications(NOTIFICATIONS)
        self.start_sound()
        self.start_speech()
        self.notifications = Notifications(self)
        self.site = Site(PAGE_STYLE)
        self.quorva = None

    def open_display(self, screen=SCREEN):
        super().open_display(screen)

    def open_meeting(self, people):
        browser = Browser(self, self.site, "firefox")
        page = browser.show("/meet.google.com/abc-defg-hij", "Meet - Weekly planning",
                            people=people)
        [frame] = wait_until(lambda: self.windows("Weekly planning"), "the browser's window")
        self.tool("windowmove", frame, *BROWSER_PLACE[:2])
        self.tool("windowsize", frame, *BROWSER_PLACE[2:])
        return page

    def start_quorva(self):
        self.quorva = Quorva(self).wait_until_watching()
        self.started = time.monotonic()
        self.icon = Icon(self)

    def close(self):
        status = self.quorva.end(by=signal.SIGTERM) if self.quorva else 0
        self.site.end()
        self.end(self.bar, by=signal.SIGTERM)
        self.end_session()
        return status

    # What is visible.

    def tool(self, *command):
        return subprocess.run(["xdotool", *command], env=self.environment, timeout=DEADLINE,
                              capture_output=True, text=True).stdout.split()

    def windows(self, title):
        return self.tool("search", "--onlyvisible", "--name", title)

    def is_shown(self, title):
        return bool(self.windows(f"^{title}$"))

    def wait_until_shown(self, title):
        wait_until(lambda: self.is_shown(title), f'the window "{title}"')

    def open_popover(self):
        if not self.is_shown(POPOVER):
            self.icon.activate()
        self.wait_until_shown(POPOVER)

    def close_popover(self):
        if self.is_shown(POPOVER):
            self.icon.activate()
        wait_until(lambda: not self.is_shown(POPOVER), "the end of the popover")

    def look(self):
        return subprocess.run(["import", "-window", "root", "ppm:-"], env=self.environment,
                              timeout=DEADLINE, check=True, capture_output=True).stdout

    def screenshot(self, path, before=None):
        """The screen when it no longer changes, or after some seconds. Given an earlier screenshot,
        waits first until the screen differs from it."""
        end, previous, now = time.monotonic() + 2, None, self.look()
        while now == before or now != previous:
            if time.monotonic() > end:
                break
            previous, now = now, self.look()
        subprocess.run(["convert", "ppm:-", str(path)], input=now, timeout=DEADLINE, check=True)
