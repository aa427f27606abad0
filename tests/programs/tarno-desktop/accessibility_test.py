"""What a screen reader finds on the tile and hears of it."""
import json
import os
import signal
import sys
import time

from Xlib import Xatom, display
from gi.repository import Gio, GLib

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../../script"))
from headless import Rig, wait_for

WIDGET = """#!/usr/bin/python3
import fcntl, os, sys
number = int(sys.argv[sys.argv.index("--fd") + 1])
with open(os.path.dirname(os.path.abspath(sys.argv[0])) + "/frame") as file:
    print(file.read())
os.ftruncate(number, 4 * 728 * 340)
fcntl.fcntl(number, fcntl.F_ADD_SEALS, fcntl.F_SEAL_SHRINK)
"""


def frame(status, *texts):
    """The line that describes a frame with a dial and, below each other, texts."""
    elements = [{"role": "image", "label": status, "x": 16, "y": 23, "width": 124, "height": 124.5}]
    elements += [{"role": "staticText", "label": text, "x": 154.5, "y": 40 + 20 * line, "width": 63, "height": 13}
                 for line, text in enumerate(texts)]
    return json.dumps({"width": 546, "height": 255, "stride": 2184, "title": "Tarno", "announcement": status,
                       "accessibility": elements, "reload_after": "2099-11-16T15:42:05Z", "stale_from": None, "watch": None})


class Tile:
    """One that shows the frames that a test tells it to."""

    def __init__(self, rig, line, *options):
        self.rig = rig
        os.remove(rig.path("tarno-widget"))
        for name, text, mode in ("tarno-widget", WIDGET, 0o755), ("frame", line, 0o644):
            with open(rig.path(name), "w") as file:
                file.write(text)
            os.chmod(rig.path(name), mode)
        self.process = rig.tile(*options)

    def send(self, line):
        with open(self.rig.path("new"), "w") as file:
            file.write(line)
        os.rename(self.rig.path("new"), self.rig.path("frame"))
        self.process.popen.send_signal(signal.SIGUSR1)


def call(bus, name, path, member, *arguments):
    interface, method = member.rsplit(".", 1)
    return bus.call_sync(name, path, interface, method, GLib.Variant(*arguments) if arguments else None, None, 0, 5000)


def listen(session):
    """Turns accessibility on; returns a connection to its bus."""
    on = GLib.Variant("b", True)
    call(session, "org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties.Set",
         "(ssv)", ("org.a11y.Status", "IsEnabled", on))
    address = call(session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus.GetAddress")[0]
    flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
    return Gio.DBusConnection.new_for_address_sync(address, flags)


def check_tree(pyatspi, application):
    window = application[0]
    extents = lambda: tuple(window.queryComponent().getExtents(0))
    wait_for(lambda: extents() == (30, 30, 546, 255), message="the extents at another scale")
    for element, expected in zip((window, *window), [
            ("frame", "Tarno", 0, (30, 30, 546, 255), (0, 0, 546, 255), (30, 30, 546, 255)),
            ("image", "Mac locked", 0, (54, 65, 186, 186), (24, 35, 186, 186), (24, 35, 186, 186)),
            ("label", "Kivo's Mac", 1, (262, 90, 94, 20), (232, 60, 94, 20), (232, 60, 94, 20)),
            ("label", "3s ago", 2, (262, 120, 94, 20), (232, 90, 94, 20), (232, 90, 94, 20))], strict=True):
        place = element.queryComponent()
        found = (element.getRoleName(), element.name, element.getIndexInParent(),
                 *(tuple(place.getExtents(origin)) for origin in range(3)))
        assert found == expected, found
        assert element.parent == (application if element == window else window), expected
        states = [pyatspi.stateToString(state) for state in element.getState().getStates()]
        assert states == ["enabled", "sensitive", "showing", "visible"], states
    for x, y, origin, is_in in [(54, 65, 0, True), (53, 65, 0, False), (54, 64, 0, False), (239, 250, 0, True),
                                (240, 250, 0, False), (239, 251, 0, False), (24, 35, 1, True), (24, 34, 1, False)]:
        assert window[0].queryComponent().contains(x, y, origin) == is_in, (x, y)


def check_events(pyatspi, window, send):
    heard = []

    def listen_for(*kinds):
        for kind in kinds:
            pyatspi.Registry.registerEventListener(
                lambda event: heard.append((str(event.type).removeprefix("object:"), event.source.getRoleName(), event.detail1,
                                            getattr(event.any_data, "name", event.any_data) or event.source.name)),
                "object:" + kind)

    def hears(line, *expected):
        heard.clear()
        send(line)
        end = time.monotonic() + 1  # for what should not be heard, too
        while time.monotonic() < end:
            GLib.MainContext.default().iteration(False)
            time.sleep(0.01)
        assert heard == list(expected), heard

    renamed = "property-change:accessible-name"
    listen_for(renamed, "children-changed")
    hears(frame("Mac locked", "Kivo's Mac", "4s ago"), (renamed, "label", 0, "4s ago"))
    hears(frame("Mac unlocked", "Kivo's Mac", "4s ago"), (renamed, "image", 0, "Mac unlocked"))
    listen_for("state-changed:showing")
    hears(frame("Mac locked", "Kivo's Mac", "4s ago"), (renamed, "image", 0, "Mac locked"),
          ("state-changed:showing", "notification", 1, "Mac locked"))
    listen_for("announcement")
    hears(frame("Mac unlocked", "Kivo's Mac"), ("children-changed:remove", "frame", 2, "Tarno"),
          (renamed, "image", 0, "Mac unlocked"), ("announcement", "frame", 1, "Mac unlocked"))
    hears(frame("Mac unlocked", "Kivo's Mac", "now"), ("children-changed:add", "frame", 2, "now"), (renamed, "label", 0, "now"))
    assert [element.name for element in window] == ["Mac unlocked", "Kivo's Mac", "now"]


def test(rig):
    rig.x11()
    rig.session_bus()
    bus_of_session = rig.started[-1]
    os.environ |= rig.env
    tile = Tile(rig, frame("Mac locked", "Kivo's Mac", "3s ago"), "--anchor", "top-left", "--margin", "20")
    session = Gio.bus_get_sync(Gio.BusType.SESSION)
    names = lambda: call(session, "org.freedesktop.DBus", "/", "org.freedesktop.DBus.ListNames")[0]
    wait_for(lambda: ":1.1" in names(), message="the tile on the session bus")
    time.sleep(0.3)
    assert "org.a11y.Bus" not in names(), "the tile started the service"
    call(session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus.GetAddress")  # starts it, and nobody listens yet
    time.sleep(0.3)
    assert ":1.1" in names(), "the tile left the session bus though nobody listens"
    listen(session)
    import pyatspi  # reads the environment
    desktop = pyatspi.Registry.getDesktop(0)
    found = lambda: [one for one in desktop if one and one.name == "tarno-desktop"]
    application = wait_for(found, message="the tile in the tree")[0]
    assert (application.getRoleName(), application.parent, len(application)) == ("application", desktop, 1)
    screen = display.Display(rig.env["DISPLAY"])
    screen.screen().root.change_property(screen.intern_atom("RESOURCE_MANAGER"), Xatom.STRING, 8, b"Xft.dpi: 144\n")
    screen.sync()
    check_tree(pyatspi, application)
    check_events(pyatspi, application[0], tile.send)

    # Its bus goes away, and another comes.
    launcher = call(session, "org.freedesktop.DBus", "/", "org.freedesktop.DBus.GetConnectionUnixProcessID",
                    "(s)", ("org.a11y.Bus",))[0]
    os.kill(launcher, 15)
    wait_for(lambda: "org.a11y.Bus" not in names(), message="the end of the bus")
    bus = listen(session)
    root = "org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root", "org.a11y.atspi.Accessible.GetChildren"
    tile.send(frame("Mac locked"))
    name, path = wait_for(lambda: call(bus, *root)[0], message="the tile in the new tree")[0]
    for index, child in (0, "image3"), (1, None), (-1, None):
        found = call(bus, name, path.replace("root", "window"), "org.a11y.atspi.Accessible.GetChildAtIndex",
                     "(i)", (index,))[0][1]
        assert found == (path.replace("root", child) if child else "/org/a11y/atspi/null"), found
    bus_of_session.end()
    tile.send(frame("Mac unlocked"))
    tile.process.popen.send_signal(signal.SIGPIPE)
    time.sleep(0.5)
    assert (tile.process.end(signal.SIGHUP), len(tile.process.lines)) == (0, 1), "after the session bus"


with Rig(sys.argv[1]) as the_rig:
    test(the_rig)
