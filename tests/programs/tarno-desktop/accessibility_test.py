"""Tests what a screen reader finds on the tile and is told about it."""
import gettext
import json
import os
import signal

from Xlib import Xatom
from gi.repository import Gio, GLib

from desktop_test_case import DesktopTest
from headless import Screen, wait_for

WIDGET = """#!/usr/bin/python3
import fcntl, os, sys
number = int(sys.argv[sys.argv.index("--fd") + 1])
os.ftruncate(number, 4 * 728 * 340)
fcntl.fcntl(number, fcntl.F_ADD_SEALS, fcntl.F_SEAL_SHRINK)
folder = os.path.dirname(os.path.abspath(sys.argv[0]))
scale = float(sys.argv[sys.argv.index("--scale") + 1])
print(open(folder + "/frame").read() % {"width": 546 / scale, "height": 255 / scale})
open(folder + "/asked", "a").write("x")
"""


def frame(status, *texts):
    """Returns the answer of a frame process: a dial and, beside it, texts in a column."""
    elements = [{"role": "image", "label": status, "x": 16, "y": 23, "width": 124, "height": 124.5}]
    elements += [{"role": "staticText", "label": text, "x": 154.5, "y": 40 + 20 * line, "width": 63, "height": 13}
                 for line, text in enumerate(texts)]
    return json.dumps({"width": 546, "height": 255, "stride": 2184, "tile": "SIZE", "title": "Tarno", "announcement": status,
                       "accessibility": elements, "reload_after": "2099-11-16T15:42:05Z", "stale_from": None, "watch": None}).replace(
                           '"SIZE"', '{"width": %(width)f, "height": %(height)f}')


def call(bus, name, path, member, *arguments):
    interface, method = member.rsplit(".", 1)
    return bus.call_sync(name, path, interface, method, GLib.Variant(*arguments) if arguments else None, None, 0, 5000)


def ask(bus, method, *name):
    """Calls a method of the bus itself."""
    return call(bus, "org.freedesktop.DBus", "/", "org.freedesktop.DBus." + method, *(("(s)", name) if name else ()))[0]


def listen(session):
    """Turns accessibility on, as a screen reader does. Returns a connection to its bus."""
    on = GLib.Variant("b", True)
    call(session, "org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties.Set",
         "(ssv)", ("org.a11y.Status", "IsEnabled", on))
    address = call(session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus.GetAddress")[0]
    flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
    return Gio.DBusConnection.new_for_address_sync(address, flags)


class Accessibility(DesktopTest):
    def test_what_a_screen_reader_finds_and_hears(self):
        self.rig.x11()
        bus_of_session = self.rig.session_bus()
        os.environ |= self.rig.env
        self.rig.write("tarno-widget", WIDGET, 0o755)
        self.rig.write("frame", frame("Mac locked", "Kivo's Mac", "3s ago"))
        self.rig.env["LANGUAGE"] = "de"
        self.tile = self.rig.tile("--anchor", "top-left", "--margin", "20")
        session = Gio.bus_get_sync(Gio.BusType.SESSION)
        session.set_exit_on_close(False)
        names = lambda: ask(session, "ListNames")
        tile = wait_for(lambda: [name for name in names() if name.startswith(":") and name != session.get_unique_name()],
                        "the tile on the session bus")[0]
        ping = lambda: call(session, tile, "/", "org.freedesktop.DBus.Peer.Ping")  # waits until the tile has read all messages
        with self.subTest("a tile alone starts no service"):
            ping()
            started = f"/proc/{bus_of_session.pid}/task/{bus_of_session.pid}/children"
            self.assertEqual((self.rig.read(started), "org.a11y.Bus" in names()), ("", False))
        with self.subTest("the tile stays on the session bus while nobody listens"):
            call(session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus.GetAddress")  # starts the service
            ping()
            call(session, "org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties.Get",
                 "(ss)", ("org.a11y.Status", "IsEnabled"))
            ping()
        listen(session)
        import pyatspi  # reads the environment
        desktop = pyatspi.Registry.getDesktop(0)
        application = wait_for(lambda: [one for one in desktop if one and one.name == "tarno-desktop"], "the tile in the tree")[0]
        self.assertEqual((application.getRoleName(), application.parent, len(application)), ("application", desktop, 1))
        screen = Screen(self.rig)
        screen.set(screen.root, "RESOURCE_MANAGER", Xatom.STRING, b"Xft.dpi: 144\n")
        self.check_tree(pyatspi, application)
        self.check_events(pyatspi, application[0])

        # The accessibility bus disappears, and a new one appears.
        os.kill(ask(session, "GetConnectionUnixProcessID", "org.a11y.Bus"), 15)
        wait_for(lambda: "org.a11y.Bus" not in names(), "the end of the bus")
        bus = listen(session)
        root = "org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root", "org.a11y.atspi.Accessible.GetChildren"
        said = []
        bus.signal_subscribe(None, "org.a11y.atspi.Event.Object", "Announcement", None, None, 0,
                             lambda *event: said.append(event[5][3]))
        register = lambda: call(bus, root[0], "/org/a11y/atspi/registry", "org.a11y.atspi.Registry.RegisterEvent", "(sass)",
                                ("object:announcement", [], ""))
        hears = lambda *texts: wait_for(lambda: (GLib.MainContext.default().iteration(False), said == [*texts])[1], (texts, said))
        register()
        self.send(frame("Mac status stale"))  # the same text as before, because the tile may join before this frame
        name, path = wait_for(lambda: call(bus, *root)[0], "the tile in the new tree")[0]
        for index, child in (0, "image3"), (1, None), (-1, None):
            expected = path.replace("root", child) if child else "/org/a11y/atspi/null"
            wait_for(lambda: call(bus, name, path.replace("root", "window"), "org.a11y.atspi.Accessible.GetChildAtIndex",
                                  "(i)", (index,))[0][1] == expected, f"{expected} at index {index}")
        hears("Mac status stale")
        os.kill(ask(bus, "GetConnectionUnixProcessID", root[0]), 15)
        wait_for(lambda: not ask(bus, "NameHasOwner", root[0]), "the end of the registry")
        register()  # starts the next registry
        self.send(frame("Mac unlocked"))
        hears("Mac status stale", "Mac unlocked")
        self.assertEqual(len(call(bus, *root)[0]), 1)
        bus_of_session.end()
        asked = len(self.rig.read("asked"))
        self.send(frame("Mac locked"))
        self.tile.popen.send_signal(signal.SIGPIPE)
        wait_for(lambda: len(self.rig.read("asked")) > asked, "a frame after the session bus")
        self.assertEqual((self.tile.end(signal.SIGHUP), len(self.tile.lines)), (0, 1), self.tile.lines)

    def send(self, line):
        self.rig.write("frame", line)
        self.tile.popen.send_signal(signal.SIGUSR1)

    def check_tree(self, pyatspi, application):
        window = application[0]
        extents = lambda: tuple(window.queryComponent().getExtents(0))
        wait_for(lambda: extents() == (30, 30, 546, 255), "the extents at another scale")
        german = gettext.translation("at-spi2-core", languages=["de"], fallback=True)  # some systems install no translations
        for element, (*expected, places) in zip((window, *window), [  # the extents on the screen, in the window, in the parent
                ("frame", "Tarno", 0, 7, [(30, 30, 546, 255), (0, 0, 546, 255), (30, 30, 546, 255)]),
                ("image", "Mac locked", 0, 3, [(54, 65, 186, 186), (24, 35, 186, 186), (24, 35, 186, 186)]),
                ("label", "Kivo's Mac", 1, 3, [(262, 90, 94, 20), (232, 60, 94, 20), (232, 60, 94, 20)]),
                ("label", "3s ago", 2, 3, [(262, 120, 94, 20), (232, 90, 94, 20), (232, 90, 94, 20)])
        ], strict=True):
            with self.subTest(expected[1]):
                component = element.queryComponent()
                found = [element.getRoleName(), element.name, element.getIndexInParent(), component.getLayer()]
                self.assertEqual(found, expected)
                self.assertEqual(element.getLocalizedRoleName(), german.gettext(found[0]))
                self.assertEqual([tuple(component.getExtents(origin)) for origin in range(3)], places)
                self.assertEqual([component.getPosition(origin) + component.getSize() for origin in range(3)], places)
                self.assertFalse(component.grabFocus())
                self.assertEqual(element.parent, application if element == window else window)
                states = [pyatspi.stateToString(state) for state in element.getState().getStates()]
                self.assertEqual(states, ["enabled", "sensitive", "showing", "visible"])
        at = window.queryComponent().getAccessibleAtPoint
        for x, y, origin, is_in in [(54, 65, 0, True), (53, 65, 0, False), (54, 64, 0, False), (239, 250, 0, True),
                                    (240, 250, 0, False), (239, 251, 0, False), (24, 35, 1, True), (24, 34, 1, False)]:
            with self.subTest(x=x, y=y, origin=origin):
                self.assertEqual(window[0].queryComponent().contains(x, y, origin), is_in)
                self.assertEqual(at(x, y, origin), window[0] if is_in else window)
        self.assertIsNone(at(29, 30, 0))

    def check_events(self, pyatspi, window):
        heard, expected = [], []

        def listen_for(*kinds):
            for kind in kinds:
                pyatspi.Registry.registerEventListener(
                    lambda event: heard.append((str(event.type).removeprefix("object:"), event.source.getRoleName(),
                                                event.detail1,
                                                getattr(event.any_data, "name", event.any_data) or event.source.name)),
                    "object:" + kind)

        def hears(line, *events):
            """Sends a frame and expects `events`. An event that should not be heard fails this call or the next one."""
            expected.extend(events)
            if line:
                self.send(line)
            wait_for(lambda: (GLib.MainContext.default().iteration(False), len(heard) >= len(expected))[1], str(events))
            self.assertEqual(heard, expected)

        renamed = "property-change:accessible-name"
        listen_for(renamed, "children-changed")
        hears(frame("Mac locked", "Kivo's Mac", "4s ago"), (renamed, "label", 0, "4s ago"))
        hears(frame("Mac unlocked", "Kivo's Mac", "4s ago"), (renamed, "image", 0, "Mac unlocked"))
        listen_for("state-changed:showing")
        hears(None, ("state-changed:showing", "notification", 1, "Mac unlocked"))  # for a reader that has just started
        hears(frame("Mac locked", "Kivo's Mac", "4s ago"), (renamed, "image", 0, "Mac locked"),
              ("state-changed:showing", "notification", 1, "Mac locked"))
        listen_for("announcement")  # repeats nothing that the reader has heard already
        hears(frame("Mac status stale", "Kivo's Mac"), ("children-changed:remove", "frame", 2, "Tarno"),
              (renamed, "image", 0, "Mac status stale"), ("announcement", "frame", 1, "Mac status stale"))
        hears(frame("Mac status stale", "Kivo's Mac", "now"), ("children-changed:add", "frame", 2, "now"),
              (renamed, "label", 0, "now"))
        self.assertEqual([element.name for element in window], ["Mac status stale", "Kivo's Mac", "now"])
