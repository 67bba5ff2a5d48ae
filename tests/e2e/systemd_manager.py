"""A template for dbusmock: the unit signals of the systemd user manager."""

BUS_NAME = "org.freedesktop.systemd1"
MAIN_OBJ = "/org/freedesktop/systemd1"
MAIN_IFACE = "org.freedesktop.systemd1.Manager"
SYSTEM_BUS = False


def load(mock, _parameters):
    mock.AddMethod(MAIN_IFACE, "Subscribe", "", "", "")
