"""Desktop sessions for tests: a home, a bus, a display with a window manager, accessibility."""

import os
import pathlib
import shutil
import subprocess

import dbus

from conftest import DEADLINE, Computer, wait_until

SESSION = pathlib.Path(__file__).parents[1] / "support" / "private-session.sh"
ZOOM_WINDOW = pathlib.Path(__file__).with_name("zoom_window.py")
LAUNCHER = ("org.a11y.Bus", "/org/a11y/bus")
SCREEN = "1280x1200x24"  # as high as the longest page of the settings


class Session(Computer):
    """A private desktop session. Its processes and files are removed with it."""

    def __init__(self):
        reader, self.leash = os.pipe()
        self.session = subprocess.Popen(
            [SESSION, "sh", "-c", f"env -0; echo; exec cat /dev/fd/{reader}"],
            stdout=subprocess.PIPE, pass_fds=[reader])
        os.close(reader)
        environment = self._read_environment()
        super().__init__(pathlib.Path(environment["HOME"]))
        self.environment = environment
        self.bus = dbus.bus.BusConnection(environment["DBUS_SESSION_BUS_ADDRESS"])

    def _read_environment(self):
        text = b""
        while not text.endswith(b"\0\n"):
            more = self.session.stdout.read1()
            assert more, "the session did not start"
            text += more
        return dict(entry.split("=", 1) for entry in text.decode().split("\0")[:-1])

    def switch_accessibility_on(self):
        """Switches accessibility on and starts the registry, as the first program with windows does;
        on a real desktop that is the panel."""
        launcher = self.bus.get_object(*LAUNCHER)
        launcher.Set("org.a11y.Status", "IsEnabled", True, dbus_interface=dbus.PROPERTIES_IFACE)
        bus = dbus.bus.BusConnection(launcher.GetAddress(dbus_interface="org.a11y.Bus"))
        bus.start_service_by_name("org.a11y.atspi.Registry")
        bus.close()

    def open_display(self, screen=SCREEN):
        reader, writer = os.pipe()
        self.start(["Xvfb", "-displayfd", str(writer), "-screen", "0", screen,
                    "-nolisten", "tcp", "-noreset"],
                   pass_fds=[writer], stderr=subprocess.DEVNULL)
        os.close(writer)
        with os.fdopen(reader) as number:
            self.environment["DISPLAY"] = f":{number.readline().strip()}"
        self.bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus") \
            .UpdateActivationEnvironment({"DISPLAY": self.environment["DISPLAY"]},
                                         dbus_interface="org.freedesktop.DBus")
        self.start(["openbox"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def open_wayland_display(self):
        """Starts a compositor without screen, keyboard and mouse."""
        runtime = pathlib.Path(self.environment["XDG_RUNTIME_DIR"])
        self.start(["weston", "--backend=headless-backend.so", "--socket=wayland-test",
                    "--idle-time=0", "--width=1280", "--height=1200"],
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_until((runtime / "wayland-test").exists, "the compositor")
        self.environment |= {"WAYLAND_DISPLAY": "wayland-test", "XDG_SESSION_TYPE": "wayland"}
        self.environment.pop("DISPLAY", None)

    def add_desktop_entry(self, entry_id, name, command):
        folder = self.home / "data" / "applications"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / f"{entry_id}.desktop").write_text(
            f"[Desktop Entry]\nType=Application\nName={name}\nExec={command} %U\n")

    def end_session(self):
        self.bus.close()
        os.close(self.leash)
        self.session.wait(DEADLINE)
        for child in self.children:
            child.wait(DEADLINE)


class ZoomWindow:
    """A running program with the name and the desktop entry of Zoom."""

    def __init__(self, desktop):
        program = desktop.home / "opt" / "zoom"
        program.parent.mkdir(exist_ok=True)
        shutil.copy(ZOOM_WINDOW, program)
        program.chmod(0o755)
        desktop.add_desktop_entry("Zoom", "Zoom", program)
        self.process = desktop.start([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                     stderr=subprocess.DEVNULL, text=True, bufsize=1)
        assert self.process.stdout.readline() == "shown\n"

    def tell(self, command, argument):
        self.process.stdin.write(f"{command} {argument}\n")
        assert self.process.stdout.readline() == f"{command}\n"
