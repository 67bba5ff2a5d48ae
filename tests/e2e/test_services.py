"""quorva-scan with the services of a desktop: the systemd user manager, the journal, a full disk.

The services are fakes on a private bus and in a private mount namespace: a build machine has none, and
a developer's own must not be touched.
"""

import os
import shutil
import signal
import socket
import subprocess
import time

import dbus
import dbusmock
import pytest

import systemd_manager
from conftest import DEADLINE, PROGRAMS, wait_until

MANAGER = systemd_manager.MAIN_IFACE


@pytest.fixture
def session_bus(computer):
    daemon = computer.start(
        ["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address",
         f"--address=unix:dir={computer.home}"],
        stdout=subprocess.PIPE, text=True)
    address = daemon.stdout.readline().strip()
    computer.environment["DBUS_SESSION_BUS_ADDRESS"] = address
    return dbus.bus.BusConnection(address)


def start_manager(computer, bus):
    process = computer.start(["/usr/bin/python3", "-B", "-m", "dbusmock",
                              "--template", systemd_manager.__file__], stdout=subprocess.DEVNULL)
    wait_until(lambda: bus.name_has_owner(systemd_manager.BUS_NAME), "the user manager")
    manager = bus.get_object(systemd_manager.BUS_NAME, systemd_manager.MAIN_OBJ)
    mock = dbus.Interface(manager, dbusmock.MOCK_IFACE)
    wait_until(lambda: any(call[1] == "Subscribe" for call in mock.GetCalls()), "a subscriber")
    return process, mock


def time_until_seen(computer, running, tell=lambda: None):
    """Starts a bot, signals it, and returns the seconds until the watch reports it."""
    bot = computer.run(f"{len(computer.children)}/zygo")
    told = time.monotonic()
    tell()
    wait_until(lambda: running.of(bot.pid), "the appearance")
    computer.end(bot)
    return running.of(bot.pid)[0][0] - told


def test_scans_at_once_when_the_user_manager_starts_an_application(computer, session_bus, watch):
    running = watch()
    process, _ = start_manager(computer, session_bus)
    computer.end(process)
    _, manager = start_manager(computer, session_bus)  # the watch subscribes again

    def tell():
        unit = dbus.ObjectPath(f"{systemd_manager.MAIN_OBJ}/unit/x")
        manager.EmitSignal(MANAGER, "UnitNew", "so", ["app-gnome-zygo-77.scope", unit])

    with_signal, without = 0, 0
    for _ in range(3):
        with_signal += time_until_seen(computer, running, tell)
        without += time_until_seen(computer, running)
    assert with_signal < without / 2, "the timer alone takes 1.5 s on average"
    assert computer.end(running.process, by=signal.SIGTERM) == 0


def in_mount_namespace(script):
    """A command that runs a shell script in a mount namespace, or None if that is not allowed."""
    unshare = ["unshare", "--mount"] if os.geteuid() == 0 else ["unshare", "--mount", "-r"]
    if not shutil.which("unshare") or subprocess.run([*unshare, "true"], check=False).returncode:
        return None
    return [*unshare, "/bin/sh", "-c", script]


def test_sends_its_messages_to_the_journal(computer):
    # The path of the journal's socket is fixed; the test's mount namespace has another socket there.
    journal = computer.home / "systemd"
    (journal / "journal").mkdir(parents=True)
    receiver = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
    receiver.settimeout(DEADLINE)
    receiver.bind(str(journal / "journal" / "socket"))
    command = in_mount_namespace(
        f'mkdir -p /run/systemd && mount --bind "{journal}" /run/systemd && '
        f'exec "{PROGRAMS}/quorva-scan" --watch --source process')
    if command is None:
        pytest.skip("mount namespaces are not allowed here")
    process = computer.start(command, stdout=subprocess.DEVNULL)
    fields = dict(line.split("=", 1) for line in receiver.recv(65536).decode().splitlines())
    assert fields["MESSAGE"] == f"QuorvaLog bootstrap. Log file: {computer.log}"
    assert fields["PRIORITY"] == "6"
    assert fields["QUORVA_CATEGORY"] == "appState"
    assert fields["SYSLOG_IDENTIFIER"] == "quorva"
    assert fields["CODE_FILE"] == "src/log/QuorvaLog.cpp"
    computer.end(process)


def test_goes_on_watching_while_the_disk_is_full(computer, watch):
    state = computer.home / "state"
    state.mkdir()
    errors = computer.home / "errors"
    bot = computer.home / "nyota"
    shutil.copy("/bin/sleep", bot)
    # The bot runs in the namespace too: without root, its processes cannot see those outside.
    command = in_mount_namespace(
        f'mount -t tmpfs -o size=64k tmpfs "{state}" && '
        f'mkdir -p "{state}/Logs/Quorva" && yes | head -c 100000 >"{state}/fill" 2>/dev/null; '
        f'setpriv --pdeathsig KILL "{bot}" 600 >/dev/null & exec "$0" "$@" 2>"{errors}"')
    if command is None:
        pytest.skip("mount namespaces are not allowed here")
    running = watch(command=command)
    wait_until(lambda: running.events, "the appearance")
    assert running.events[0][1]["event"] == "appeared"
    assert computer.end(running.process, by=signal.SIGTERM) == 0
    assert "No space left on device" in errors.read_text()
