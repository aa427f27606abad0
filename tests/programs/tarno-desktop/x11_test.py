"""Tests the tile on X11: the cells of the desktop matrix for three window managers, and changes of the desktop under it."""
import struct

from Xlib import X, Xatom
from Xlib.ext import shape

import desktop_cells_x11 as cells
from desktop_cells import AT, render
from desktop_cells_x11 import X11Screen, is_tile_at
from desktop_test_case import DesktopTest
from headless import settled, wait_for

SAVED = "2026-11-16T15:41:35Z"
RECORD = '{"status": "%s", "device_name": "Kivo\'s Mac", "reason": "Lid closed", "face_present": true}'
WINDOW_MANAGERS = {"openbox": (cells.below, cells.clicks, cells.panels), "xfwm4": (cells.below, cells.above, cells.clicks),
                   "i3": (cells.below, cells.above, cells.clicks, cells.panels)}


class X11(DesktopTest):
    def screen(self, *window_manager):
        """Starts a display, and a window manager with options if they are given. Returns the screen."""
        self.rig.session_bus()
        self.server = self.rig.x11()
        if window_manager:
            self.rig.window_manager(*window_manager)
        return X11Screen(self.rig)

    def test_window_managers(self):
        for name, tried in WINDOW_MANAGERS.items():
            for cell in tried:
                with self.subTest(name, cell=cell.__name__):
                    cell(self.rig, name)

    def test_picture_and_compositor(self):
        screen = self.screen("xfwm4", "--compositor=off")
        ground = screen.picture()
        self.rig.save(RECORD % "locked", SAVED)
        self.rig.tile(*AT, "--scale", "1.5", "--anchor", "bottom-left")
        x, y = 24, 800 - 24 - 255
        wait_for(lambda: screen.place(screen.tile()) == (x, y, 546, 255), "the tile at its place")

        def shows_what_is_drawn():
            image = render(self.rig, "--scale", "1.5")
            wait_for(lambda: is_tile_at(screen, image, x, y, ground))

        shows_what_is_drawn()
        owner = screen.root.create_window(0, 0, 1, 1, 0, X.CopyFromParent)
        shapes = lambda: len(shape.get_rectangles(screen.tiles()[0], shape.SK.Bounding).rectangles)
        self.assertGreater(shapes(), 10)
        owner.set_selection_owner(screen.atom("_NET_WM_CM_S0"), X.CurrentTime)
        screen.display.sync()
        wait_for(lambda: shapes() == 1, "a whole window for the compositor")
        owner.destroy()
        screen.display.sync()
        shows_what_is_drawn()
        self.rig.save(RECORD % "unlocked", SAVED)
        shows_what_is_drawn()

    def test_stack(self):
        screen = self.screen("openbox")
        self.rig.tile(*AT)
        tile = screen.tile()
        files = screen.new_window("DESKTOP", width=1280, height=800)
        normal = screen.new_window(x=600, width=400, height=300)
        small = self.rig.tile(*AT, "--family", "small")  # a second tile in the same place
        wait_for(lambda: len(screen.tiles()) == 2, "the second tile")
        for window, mode in ((files, X.Above), (normal, X.Below), (files, X.Above), (files, X.Above)):
            window.configure(stack_mode=mode)
            screen.catch_up()
            wait_for(lambda: screen.is_above(tile, files) and screen.is_above(normal, tile), "the tile between them")
        # Waits until a tile sleeps. Two tiles that compete for the same place never do.
        settled(lambda: self.rig.read(f"/proc/{small.pid}/status").split("voluntary_ctxt_switches:")[1].split()[0])
        above = self.rig.tile(*AT, "--layer", "above", "--anchor", "center")
        upper = wait_for(lambda: [tile for tile in screen.tiles() if screen.place(tile)[:2] == (458, 315)], "the third tile")[0]
        normal.configure(stack_mode=X.Above)
        screen.catch_up()
        wait_for(lambda: screen.is_above(upper, normal), "the tile above others")
        screen.tell("_NET_WM_STATE", 1, screen.atom("_NET_WM_STATE_FULLSCREEN"), window=normal)
        wait_for(lambda: screen.place(normal) == (0, 0, 1280, 800), "a window that fills the screen")
        screen.catch_up()
        wait_for(lambda: screen.is_above(normal, upper), "what fills the screen above the tile")
        self.assertIn("_NET_WM_STATE_ABOVE", screen.names(upper, "_NET_WM_STATE"))
        self.assertEqual(screen.property(upper, "_NET_WM_DESKTOP"), [0xFFFFFFFF])
        self.assertEqual(bytes(screen.property(upper, "_NET_WM_NAME")), b"Tarno")
        self.assertEqual([process.end() for process in (small, above)], [0, 0])

    def test_without_window_manager(self):
        screen = self.screen()
        self.rig.tile(*AT, "--layer", "above")
        tile, window = screen.tile(), screen.new_window(width=1280, height=800)
        wait_for(lambda: screen.is_above(tile, window), "the tile above the window")
        window.configure(stack_mode=X.Above)
        screen.display.sync()
        wait_for(lambda: screen.is_above(tile, window), "the tile above the raised window")
        window.destroy()
        self.rig.tile(*AT, "--layer", "normal", "--anchor", "bottom-left")
        tile = wait_for(lambda: [tile for tile in screen.tiles() if screen.place(tile)[:2] == (16, 614)], "the second tile")[0]
        screen.point(100, 700)
        screen.button(True)
        screen.point(300, 400)
        wait_for(lambda: screen.place(tile)[:2] == (216, 314), "the dragged tile")
        screen.button(False)

    def test_window_managers_come_and_go(self):
        screen = self.screen()
        tile = self.rig.tile(*AT)
        place = screen.place(screen.tile())

        def follows(name, is_managed):
            wait_for(lambda: [(not tile.get_attributes().override_redirect, screen.place(tile)) for tile in screen.tiles()]
                     == [(is_managed, place)], f"the kind of window and its place for {name}")

        follows("none", False)
        check = screen.root.create_window(0, 0, 1, 1, 0, X.CopyFromParent)
        screen.set(check, "_NET_WM_NAME", screen.atom("UTF8_STRING"), b"GNOME Shell")
        screen.set(screen.root, "_NET_SUPPORTING_WM_CHECK", Xatom.WINDOW, [check.id])
        for supported in ("_NET_RESTACK_WINDOW", "_NET_WM_STATE"):  # a version without the first does not restack windows
            screen.set(screen.root, "_NET_SUPPORTED", Xatom.ATOM, [screen.atom(supported)])
            follows("GNOME Shell that has " + supported, supported == "_NET_RESTACK_WINDOW")
        self.rig.window_manager("openbox")
        follows("openbox", False)
        self.rig.window_manager("xfwm4", "--replace")
        follows("xfwm4", False)
        self.assertEqual(tile.end(), 0)

    def test_panels_without_window_manager(self):
        screen = self.screen()
        self.rig.tile(*AT)
        tile = screen.tile()
        panel = screen.root.create_window(0, 0, 1280, 40, 0, X.CopyFromParent)
        screen.set(panel, "_NET_WM_WINDOW_TYPE", Xatom.ATOM, [screen.atom("_NET_WM_WINDOW_TYPE_DOCK")])
        reserve = lambda depth: screen.set(panel, "_NET_WM_STRUT_PARTIAL", Xatom.CARDINAL, [0, 0, depth] + 6 * [0] + [1279, 0, 0])
        leave = lambda *area: screen.set(screen.root, "_NET_WORKAREA", Xatom.CARDINAL, area)
        reserve(40)
        for change, y in ((lambda: leave(0, 0, 1280, 800), 16), (lambda: [panel.map(), leave(0, 0, 1280, 800)], 56),
                          (lambda: reserve(60), 76), (lambda: leave(0, 90, 1280, 710), 106)):
            change()
            screen.display.sync()
            wait_for(lambda: screen.place(tile)[1] == y, f"the tile at {y}")

    def test_monitors(self):
        self.rig.two_monitors()
        self.rig.session_bus()
        screen = X11Screen(self.rig)
        turn = lambda *words: self.rig.run("xrandr", "--output", *words)
        beside = ("DUMMY1", "--mode", "1024x768", "--right-of", "DUMMY0")
        turn("DUMMY1", "--off")
        tile = self.rig.tile(*AT, "--monitor", "DUMMY1", "--anchor", "left")
        self.says(tile, "waiting for monitor DUMMY1; the tile will be shown as an X11 desktop window")
        for words, places in ((beside, [1040]), (("DUMMY1", "--off"), [16]), (("DUMMY0", "--off"), []),
                              (("DUMMY0", "--mode", "1024x768"), [16]), (beside, [1040])):
            turn(*words)
            wait_for(lambda: [screen.place(tile)[0] for tile in screen.tiles()] == places, f"the tile at {places}")

    def test_scales(self):
        screen = self.screen()
        self.rig.tile(*AT)
        sizes = {1: (364, 170), 1.25: (455, 213), 1.5: (546, 255), 2: (728, 340)}

        def sets(owner, name, value, scale):
            screen.set(owner, name, Xatom.STRING, value)
            wait_for(lambda: [screen.place(tile)[2:] for tile in screen.tiles()] == [sizes[scale]], f"the scale for {value}")

        for value, scale in ((b"Xft.dpi: 144\n", 1.5), (b"*customization: -color\nXft.dpi:\t120\nXft.hinting: 1\n", 1.25),
                             (b"MyXft.dpi: 192\n", 1), (b"Xft.dpi:192", 2), (b"Xft.dpi: no\n", 1), (b"Xft.dpi: 144\n", 1.5)):
            sets(screen.root, "RESOURCE_MANAGER", value, scale)
        owner = screen.root.create_window(0, 0, 1, 1, 0, X.CopyFromParent)
        owner.set_selection_owner(screen.atom("_XSETTINGS_S0"), X.CurrentTime)
        setting = lambda name, dpi: struct.pack(f"<B3xIIBxH{(len(name) + 3) // 4 * 4}sIi",
                                                0, 1, 1, 0, len(name), name, 1, dpi * 1024)
        for value, scale in ((setting(b"Xft/DPI", 120), 1.25), (setting(b"Xft/DPI", 192), 2), (setting(b"Xft/DPI", -1), 1.5),
                             (setting(b"Xft/DPI", 96), 1), (setting(b"Xft/DPIs", 192), 1.5), (setting(b"Xft/DPI", 96), 1),
                             (setting(b"Xft/DPI", 192)[:-1], 1.5)):
            sets(owner, "_XSETTINGS_SETTINGS", value, scale)

    def test_dragging(self):
        screen = self.screen("openbox")
        tile = self.rig.tile(*AT, "--layer", "normal")
        window = screen.tile()
        wait_for(lambda: screen.place(window)[:2] == (900, 16), "the tile at its place")
        self.drag(screen, (1000, 100), (800, 150), (700, 200))
        wait_for(lambda: screen.place(window)[:2] == (600, 116), "the dragged tile")
        screen.new_window("DOCK", width=1280, height=40, _NET_WM_STRUT=[0, 0, 40, 0], _NET_WM_STRUT_PARTIAL=[0, 0, 40])
        look = lambda: bytes(screen.look(620, 130, 100, 100).get_data())
        old = look()
        self.rig.save(RECORD % "locked", SAVED)
        wait_for(lambda: look() != old, "a new picture")
        self.assertEqual(screen.place(window)[:2], (600, 116))
        screen.tell("_NET_CLOSE_WINDOW", window=window)
        self.assertEqual(tile.wait(), 0)

    def test_the_tile_ends_with_its_window_or_display(self):
        screen = self.screen("openbox")
        for end in ("destroy", "kill_client"):
            with self.subTest(end):
                tile = self.rig.tile(*AT)
                getattr(screen.tile(), end)()
                screen.display.sync()
                self.assertEqual(tile.wait(), 0)
        tile = self.rig.tile(*AT)
        screen.tile()
        self.server.end()
        self.assertEqual(tile.wait(), 69)
        self.assertIn("cannot connect to the X11 display", tile.lines[1])
