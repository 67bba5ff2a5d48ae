"""The systemd user manager as far as it tells of units: a template for dbusmock."""

BUS_NAME = "org.freedesktop.systemd1"
MAIN_OBJ = "/org/freedesktop/systemd1"
MAIN_IFACE = "org.freedesktop.systemd1.Manager"
SYSTEM_BUS = False


def load(mock, _parameters):
    mock.AddMethod(MAIN_IFACE, "Subscribe", "", "", "")
