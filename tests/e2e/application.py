"""The application in a desktop session, and everything a user gets from it: notifications with buttons,
the icon in the panel, the clipboard, the loudspeaker, and the files it stores."""

import array
import json
import math
import os
import pathlib
import signal
import subprocess
import threading

import dbus

from conftest import DEADLINE, PROGRAMS, wait_until
from desktop import Session

HERE = pathlib.Path(__file__).parent
PYTHON = ["/usr/bin/python3", "-B"]
INSTANCE = "com.veltran.QuorvaApp"
NOTIFICATIONS = "org.freedesktop.Notifications"
WATCHER = ("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher")
MENU = "com.canonical.dbusmenu"
SILENCE = 100  # of 32,767

# dunst passes the menu of a notification's buttons to a program, which picks the wanted one.
DUNSTRC = """[global]
    dmenu = {home}/pick
    notification_limit = 20
{appearance}
[urgency_low]
    timeout = 0
[urgency_normal]
    timeout = 0
[urgency_critical]
    timeout = 0
"""
PICK = '#!/bin/sh\ngrep -m1 -F "$(cat "{home}/wanted")"\n'
CLIPBOARD = """
import gi
gi.require_version("Gtk", "3.0")
gi.require_version("Gdk", "3.0")
from gi.repository import Gdk, Gtk
print(Gtk.Clipboard.get(Gdk.SELECTION_CLIPBOARD).wait_for_text() or "", end="")
"""


class Desktop(Session):
    """A session with a display, of a user who has completed the first run."""

    def __init__(self, is_wayland=False, **preferences):
        super().__init__()
        if is_wayland:
            self.open_wayland_display()
        else:
            self.open_display()
        self.keep({"hasCompletedOnboarding": True, "calendarAuthorization": 3, **preferences})
        (self.home / "data/calendars/work").mkdir(parents=True)

    # What the application stores.

    @property
    def preferences(self):
        return self.home / "config/quorva/preferences.json"

    def keep(self, preferences):
        self.preferences.parent.mkdir(parents=True, exist_ok=True)
        self.preferences.write_text(json.dumps({"version": 1, "preferences": preferences}))

    def kept(self, key):
        """A value of the preferences; the entries of a history for its key."""
        try:
            value = json.loads(self.preferences.read_text())["preferences"].get(key)
        except FileNotFoundError:
            return None
        if isinstance(value, dict):
            return json.loads(value["data"])
        return value

    def history(self):
        return self.kept("detectionLog") or []

    def objections(self):
        return self.kept("objectionLog") or []

    def logged(self, text):
        return self.log.exists() and text in self.log.read_text()

    # Services.

    def start_notifications(self, appearance=""):
        (self.home / "dunstrc").write_text(
            DUNSTRC.format(home=self.home, appearance=appearance))
        (self.home / "pick").write_text(PICK.format(home=self.home))
        (self.home / "pick").chmod(0o700)
        server = self.start(["dunst", "-config", str(self.home / "dunstrc")],
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_until(lambda: self.bus.name_has_owner(NOTIFICATIONS), "the notification server")
        return server

    def press(self, button, title):
        """Presses a button of the notification with this title, through the server's menu."""
        wait_until(lambda: self.displayed() > 0, "a notification")
        (self.home / "wanted").write_text(f"#{button} ({title}) [")
        subprocess.run(["dunstctl", "context"], env=self.environment, check=True, timeout=DEADLINE)

    def displayed(self):
        count = subprocess.run(["dunstctl", "count", "displayed"], env=self.environment,
                               capture_output=True, text=True, timeout=DEADLINE)
        return int(count.stdout or 0)

    def start_sound(self):
        """Starts a sound server whose loudspeaker is a loopback device, and records it."""
        self.start(["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1",
                    "--use-pid-file=no", "--load=module-native-protocol-unix",
                    "--load=module-null-sink sink_name=bh "
                    "sink_properties=device.description=BlackHole-2ch"],
                   stderr=subprocess.DEVNULL)
        wait_until((self.home / "runtime/pulse/native").exists, "the sound server")
        self.recording = self.home / "recording"
        with self.recording.open("wb") as recording:
            self.start(["parec", "-d", "bh.monitor", "--raw", "--rate=8000", "--channels=1",
                        "--format=s16le"], stdout=recording, stderr=subprocess.DEVNULL)

    def start_speech(self):
        """Starts the speech service of the session; without it, the application starts one itself."""
        self.start(["speech-dispatcher", "--run-single", "--communication-method", "unix_socket"],
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_until((self.home / "runtime/speech-dispatcher/speechd.sock").exists, "the speech")

    def loudness(self):
        """The root mean square of the loudest half second so far."""
        samples = array.array("h")
        recorded = self.recording.read_bytes()
        samples.frombytes(recorded[:len(recorded) // 2 * 2])
        parts = [samples[at:at + 4000] for at in range(0, len(samples), 4000)]
        return max((math.sqrt(sum(s * s for s in part) / len(part)) for part in parts), default=0)

    def move_to_bare_bus(self):
        """Moves to a session bus without any service, running or activatable."""
        configuration = self.home / "bare.conf"
        configuration.write_text(
            f'<busconfig><type>session</type><listen>unix:dir={self.home}</listen>'
            '<policy context="default"><allow send_destination="*" eavesdrop="true"/>'
            '<allow eavesdrop="true"/><allow own="*"/></policy>'
            '</busconfig>')
        daemon = self.start(["dbus-daemon", f"--config-file={configuration}", "--nofork",
                             "--print-address"], stdout=subprocess.PIPE, text=True)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = daemon.stdout.readline().strip()
        self.bus.close()
        self.bus = dbus.bus.BusConnection(self.environment["DBUS_SESSION_BUS_ADDRESS"])
        return daemon

    def start_panel(self):
        panel = self.start([*PYTHON, str(HERE / "panel.py")])
        wait_until(lambda: self.bus.name_has_owner(WATCHER[0]), "the panel")
        return panel

    def clipboard(self):
        return subprocess.run([*PYTHON, "-c", CLIPBOARD], env=self.environment, check=True,
                              capture_output=True, text=True, timeout=DEADLINE).stdout

    # What can be detected.

    def start_bot(self, name="otter-helper"):
        return self.run(f"bots/{name}")

    def invite(self, attendee, start):
        """Writes an invitation to an event into a folder of .ics files."""
        folder = self.home / "data/calendars/work"
        partial = folder / ".partial"
        partial.write_text("\r\n".join([
            "BEGIN:VCALENDAR", "VERSION:2.0", "PRODID:-//test//EN", "BEGIN:VEVENT",
            f"UID:{attendee}", "SUMMARY:Case review", f"DTSTART:{start:%Y%m%dT%H%M%SZ}",
            "DURATION:PT1H", f"ATTENDEE:mailto:{attendee}", "END:VEVENT", "END:VCALENDAR", ""]))
        partial.rename(folder / f"{attendee}.ics")


class Notifications:
    """All notifications sent in the session from now on."""

    def __init__(self, desktop):
        self.sent = []
        self.process = desktop.start([*PYTHON, str(HERE / "notify_monitor.py")],
                                     stdout=subprocess.PIPE, text=True)
        assert json.loads(self.process.stdout.readline()) == "ready"
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        for line in self.process.stdout:
            self.sent.append(json.loads(line))

    def titled(self, title):
        return [each for each in self.sent if each["title"] == title]

    def wait_for(self, title):
        return wait_until(lambda: self.titled(title), f'the notification "{title}"')[-1]


class Quorva:
    """The running application."""

    def __init__(self, desktop, command=()):
        self.desktop = desktop
        self.process = desktop.start([*command, str(PROGRAMS / "quorva")])
        wait_until(lambda: desktop.bus.name_has_owner(INSTANCE), "the application")
        self.pid = int(desktop.bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus")
                       .GetConnectionUnixProcessID(INSTANCE,
                                                   dbus_interface="org.freedesktop.DBus"))

    def wait_until_watching(self):
        def is_watching():
            if not self.desktop.log.exists():
                return False
            _, _, since = self.desktop.log.read_text().partition(f" PID {self.pid}\n")
            return "startMonitoring: process=on" in since
        wait_until(is_watching, "monitoring")
        return self

    def end(self, by=signal.SIGTERM):
        os.kill(self.pid, by)
        return self.process.wait(DEADLINE)


class Icon:
    """The application's icon in the panel; waits until it is there."""

    def __init__(self, desktop):
        self.bus = desktop.bus
        watcher = desktop.bus.get_object(*WATCHER)
        [self.name] = wait_until(
            lambda: watcher.Get(WATCHER[0], "RegisteredStatusNotifierItems",
                                dbus_interface=dbus.PROPERTIES_IFACE), "the icon")

    def _get(self, name):
        item = self.bus.get_object(self.name, "/StatusNotifierItem", introspect=False)
        return item.Get("org.kde.StatusNotifierItem", name, dbus_interface=dbus.PROPERTIES_IFACE)

    def tool_tip(self):
        _, _, title, text = self._get("ToolTip")
        return title or text

    def pixmap_sizes(self):
        return sorted(int(width) for width, _, _ in self._get("IconPixmap"))

    def activate(self):
        item = self.bus.get_object(self.name, "/StatusNotifierItem", introspect=False)
        item.Activate(0, 0, dbus_interface="org.kde.StatusNotifierItem")

    def menu(self):
        """The entries: each text with its number and whether it is enabled."""
        menu = self.bus.get_object(self.name, self._get("Menu"), introspect=False)
        _, (_, _, children) = menu.GetLayout(0, -1, dbus.Array([], signature="s"),
                                             dbus_interface=MENU)
        return {str(properties["label"]).replace("_", "").replace("&&", "&"):
                (int(number), bool(properties.get("enabled", True)))
                for number, properties, _ in children if "label" in properties}

    def choose(self, text):
        number, is_enabled = self.menu()[text]
        assert is_enabled, text
        menu = self.bus.get_object(self.name, self._get("Menu"), introspect=False)
        menu.Event(number, "clicked", dbus.Int32(0, variant_level=1), dbus.UInt32(0),
                   dbus_interface=MENU)
