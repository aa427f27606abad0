"""What a screen reader finds on the tile and hears of it."""
import json
import os
import subprocess
import sys
import time

from gi.repository import Gio, GLib

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../../script"))
from headless import Process, Rig, wait_for

PROGRAMS, DRIVER = sys.argv[1:]


def frame(status, *texts):
    """The line that describes a frame with a dial and, below each other, texts."""
    elements = [{"role": "image", "label": status, "x": 16, "y": 23, "width": 124, "height": 124.5}]
    elements += [{"role": "staticText", "label": text, "x": 154.5, "y": 40 + 20 * line, "width": 63, "height": 13}
                 for line, text in enumerate(texts)]
    return json.dumps({"width": 1, "height": 1, "stride": 4, "title": "Tarno", "announcement": status,
                       "accessibility": elements, "reload_after": "2026-11-16T15:42:05Z"})


class Tile:
    def __init__(self, rig):
        self.process = Process([rig.path(os.path.basename(DRIVER))], rig.env, stdin=subprocess.PIPE)
        rig.started.append(self.process)

    def send(self, line):
        self.process.popen.stdin.write(line + "\n")
        self.process.popen.stdin.flush()

    def end(self):
        self.process.popen.stdin.close()
        return self.process.wait()


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
    for element, expected in zip((window, *window), [
            ("frame", "Tarno", 0, (100, 50, 364, 170), (0, 0, 364, 170), (100, 50, 364, 170)),
            ("image", "Mac locked", 0, (124, 85, 186, 186), (24, 35, 186, 186), (24, 35, 186, 186)),
            ("label", "Kivo's Mac", 1, (332, 110, 94, 20), (232, 60, 94, 20), (232, 60, 94, 20)),
            ("label", "3s ago", 2, (332, 140, 94, 20), (232, 90, 94, 20), (232, 90, 94, 20))], strict=True):
        place = element.queryComponent()
        found = (element.getRoleName(), element.name, element.getIndexInParent(),
                 *(tuple(place.getExtents(origin)) for origin in range(3)))
        assert found == expected, found
        assert (*place.getPosition(0), *place.getSize()) == expected[3], expected
        assert int(place.getLayer()) == (7 if element == window else 3), expected
        assert element.parent == (application if element == window else window), expected
        states = [pyatspi.stateToString(state) for state in element.getState().getStates()]
        assert states == ["enabled", "sensitive", "showing", "visible"], states
    for x, y, origin, name in [(124, 85, 0, "Mac locked"), (123, 85, 0, "Tarno"), (425, 129, 0, "Kivo's Mac"),
                               (426, 129, 0, "Tarno"), (24, 35, 1, "Mac locked"), (24, 34, 1, "Tarno")]:
        assert window.queryComponent().getAccessibleAtPoint(x, y, origin).name == name, (x, y)
    assert not window.queryComponent().contains(464, 50, 0)


def check_events(pyatspi, window, send):
    heard = []
    for kind in "property-change:accessible-name", "announcement", "children-changed":
        pyatspi.Registry.registerEventListener(
            lambda event: heard.append((str(event.type).removeprefix("object:"), event.source.getRoleName(), event.detail1,
                                        getattr(event.any_data, "name", event.any_data))), "object:" + kind)
    for line, expected in [
            (frame("Mac locked", "Kivo's Mac", "4s ago"), [("property-change:accessible-name", "label", 0, "4s ago")]),
            (frame("Mac unlocked", "Kivo's Mac", "4s ago"),
             [("property-change:accessible-name", "image", 0, "Mac unlocked"),
              ("announcement", "frame", 1, "Mac unlocked")]),
            (frame("Mac unlocked", "Kivo's Mac"), [("children-changed:remove", "frame", 2, "")]),
            (frame("Mac unlocked", "Kivo's Mac", "now"),
             [("children-changed:add", "frame", 2, "now"),
              ("property-change:accessible-name", "label", 0, "now")])]:
        heard.clear()
        send(line)
        end = time.monotonic() + 0.5  # for what should not be heard, too
        while time.monotonic() < end:
            GLib.MainContext.default().iteration(False)
            time.sleep(0.01)
        assert heard == expected, heard
    assert [element.name for element in window] == ["Mac unlocked", "Kivo's Mac", "now"]


def test(rig):
    alone = Tile(rig)
    alone.send(frame("Mac locked"))
    assert alone.end() == 0, "without a bus"

    rig.session_bus()
    os.environ |= rig.env
    tile = Tile(rig)
    tile.send("place 100 50 364 170 1.5")
    tile.send(frame("Mac locked", "Kivo's Mac", "3s ago"))
    session = Gio.bus_get_sync(Gio.BusType.SESSION)
    names = lambda: call(session, "org.freedesktop.DBus", "/", "org.freedesktop.DBus.ListNames")[0]
    wait_for(lambda: ":1.1" in names(), message="the tile on the session bus")
    assert "org.a11y.Bus" not in names(), "the tile started the service"
    call(session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus.GetAddress")  # starts it, and nobody listens yet
    time.sleep(0.2)
    listen(session)
    import pyatspi  # reads the environment
    desktop = pyatspi.Registry.getDesktop(0)
    found = lambda: [one for one in desktop if one and one.name == "tarno-desktop"]
    application = wait_for(found, message="the tile in the tree")[0]
    assert (application.getRoleName(), application.parent, len(application)) == ("application", desktop, 1)
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
    tile.send(frame("Mac unlocked"))
    name, path = wait_for(lambda: call(bus, *root)[0], message="the tile in the new tree")[0]
    for index, child in (0, "image2"), (1, None), (-1, None):
        found = call(bus, name, path.replace("root", "window"), "org.a11y.atspi.Accessible.GetChildAtIndex",
                     "(i)", (index,))[0][1]
        assert found == (path.replace("root", child) if child else "/org/a11y/atspi/null"), found
    rig.started[1].end()
    tile.send(frame("Mac locked"))
    assert tile.end() == 0, "after the session bus"


with Rig(PROGRAMS, DRIVER) as the_rig:
    test(the_rig)
