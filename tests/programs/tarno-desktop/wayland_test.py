"""Tests the tile on Wayland: in the layers of sway, as a plain window, and while monitors and compositors come and go."""
import math
import os
import signal
import socket
import struct
import time

import cairo

import desktop_cells_wayland as cells
from desktop_cells import AT, render, shows
from desktop_test_case import DesktopTest
from headless import wait_for

SHOWN = "shown as a layer-shell surface in the bottom layer on monitor X11-1"
MODE = "output {} mode 1280x800 position {} 0"


def turned(image):
    """Returns an image rotated clockwise by 90°."""
    result = cairo.ImageSurface(cairo.FORMAT_ARGB32, image.get_height(), image.get_width())
    context = cairo.Context(result)
    context.translate(image.get_height(), 0)
    context.rotate(math.pi / 2)
    context.set_source_surface(image)
    context.get_source().set_filter(cairo.FILTER_NEAREST)
    context.paint()
    return result


class Wayland(DesktopTest):
    def one_output(self):
        """Starts sway with one output. Returns the screen and the process of sway."""
        return self.rig.canvas(1280, 800), self.rig.sway(MODE.format("X11-1", 0))

    def output(self, words):
        self.rig.swaymsg("output " + words)

    def test_cells(self):
        self.assertEqual(cells.sway(self.rig), dict.fromkeys((cells.BELOW, cells.CLICKS, cells.PLACE, cells.CORNERS), True))

    def test_cells_of_plain_window(self):
        self.assertEqual(cells.weston(self.rig), {cells.CORNERS: True, cells.BELOW: "plain: weston has no layer-shell"})

    def test_places(self):
        screen, _ = self.one_output()
        rows = [  # scale, options, options of the picture, position, which is rounded to whole pixels
            (1, ("--anchor", "left", "--margin", "3"), (), 3, 315),
            (1, ("--anchor", "bottom", "--family", "large"), (), 458, 402),
            (1.25, ("--anchor", "bottom-right", "--family", "small"), (), 1280 - 20 - 213, 800 - 20 - 213),
            (1.25, ("--anchor", "bottom-left", "--family", "small", "--margin", "17"), (), 21, 566),
            (1.75, ("--anchor", "right", "--family", "small", "--margin", "5"), (), 973, 251),
            (1.25, ("--anchor", "top-left", "--scale", "2"), ("--scale", "2"), 20, 20)]
        for scale, options, drawn, x, y in rows:
            with self.subTest(scale=scale, options=options):
                self.output(f"X11-1 scale {scale}")
                family = options[options.index("--family"):][:2] if "--family" in options else ()
                image = render(self.rig, *(drawn or ("--scale", str(scale))), *family)
                tile = self.rig.tile(*options, *AT)
                shows(screen, image, x, y)
                self.assertEqual(tile.end(), 0)
                self.says(tile, SHOWN)

    def test_monitors_come_and_go(self):
        screen = self.rig.canvas(2560, 1280)
        self.rig.sway(MODE.format("X11-1", 0), MODE.format("X11-2", 1280), MODE.format("X11-3", 0))
        image = render(self.rig)
        tile = self.rig.tile("--monitor", "X11-2", "--anchor", "top-left", *AT)
        self.says(tile, "waiting for monitor X11-2; the tile will be shown as a layer-shell surface in the bottom layer")
        self.assertTrue(cells.is_covered(screen, image, 16, 16))
        self.rig.swaymsg("create_output")
        windows = screen.spread((0, 0), (1280, 0))
        shows(screen, image, 1296, 16)

        self.output("X11-2 scale 1.5")
        shows(screen, render(self.rig, "--scale", "1.5"), 1304, 24)
        self.output("X11-2 mode 800x1280 transform 90 scale 1.25")
        image = render(self.rig, "--scale", "1.25")
        shows(screen, turned(image), 1280 + 800 - 20 - 213, 20)
        self.assertIn(b"X11-2 1280x800+1280+0 scale 1.25\n", self.rig.run(self.rig.path("tarno-desktop"), "--list-monitors"))
        self.output("X11-2 mode 1280x800 transform normal")
        shows(screen, image, 1300, 20)

        screen.unplug(windows[1])
        image = render(self.rig)
        shows(screen, image, 16, 16)
        screen.unplug(windows[0])
        wait_for(lambda: not [output for output in self.rig.swaymsg("", 3) if output["name"].startswith("X11-")], "no monitor")
        self.rig.swaymsg("create_output")
        shows(screen, image, 16, 16)
        self.assertEqual((tile.end(), len(tile.lines)), (0, 1), tile.lines)

    def test_pictures_of_another_scale(self):
        screen, _ = self.one_output()
        tile, image = self.rig.tile("--anchor", "top-left", "--scale", "2", *AT), render(self.rig, "--scale", "2")
        shows(screen, image, 16, 16)
        self.output("X11-1 scale 1.25")
        shows(screen, image, 20, 20)
        tile.end()
        tile = self.rig.tile("--anchor", "top-left", *AT)
        os.remove(self.rig.path("tarno-widget"))
        self.output("X11-1 scale 2")
        wait_for(lambda: len(tile.lines) == 2, "the failure")
        wait_for(lambda: screen.pixel(700, 200) != 0x336699, "the old picture at its size in points")

    def test_compositor_that_restarts(self):
        screen, compositor = self.one_output()
        tile = self.rig.tile("--anchor", "top-left", *AT)
        shown_at = time.monotonic()
        for reason in range(8):
            self.rig.save('{"status": "locked", "device_name": "Mac", "reason": "%d"}' % reason, "2026-11-16T15:41:35Z")
            image = render(self.rig)
            shows(screen, image, 16, 16)
        held = self.rig.read(f"/proc/{compositor.pid}/maps").count("/memfd:tarno-tile")
        self.assertTrue(1 <= held < 4, f"{held} pictures that the compositor still holds")
        time.sleep(max(0, shown_at + 5.5 - time.monotonic()))  # the tile waits only for a display that it had for 5 s
        tile.popen.send_signal(signal.SIGSTOP)  # it waits for only 5 s, and sway may need longer to start
        compositor.end(9)
        compositor = self.rig.sway(MODE.format("X11-1", 0))
        tile.popen.send_signal(signal.SIGCONT)
        shows(screen, image, 16, 16)
        compositor.end(9)
        self.assertEqual(tile.wait(), 69)
        self.says(tile, SHOWN, SHOWN, "the display disappeared")

    def test_bad_displays(self):
        error = lambda code: struct.pack("=5I4s", 1, 24 << 16, 1, code, 3, b"no")  # wl_display.error of wl_display
        done = lambda number: struct.pack("=3I", number, 12 << 16, 0)  # wl_callback.done of the callback `number`
        refused = "the Wayland compositor refused a request; WAYLAND_DEBUG=1 shows which one"
        self.rig.env["WAYLAND_DISPLAY"] = "display"
        with socket.socket(socket.AF_UNIX) as server:
            server.bind(self.rig.path("display"))
            os.chmod(self.rig.path("display"), 0o777)
            for answers, code, line in (
                    ([], 69, "cannot connect to the Wayland display 'display'"), ([b""], 69, "the display disappeared"),
                    ([error(3)], 76, refused), ([error(0)], 76, refused),
                    ([error(2)], 71, "the connection to the Wayland display broke: Cannot allocate memory"),
                    ([done(3), done(4)], 69, "the Wayland compositor lacks the protocol wl_compositor, which the tile needs")):
                tile = self.rig.start(self.rig.path("tarno-desktop"))
                if answers:
                    with server.accept()[0] as client:
                        for answer in answers:
                            client.recv(4096)  # a socket that is closed with unread input would lose the answer
                            client.send(answer)
                self.assertEqual(tile.wait(), code)
                self.says(tile, line)
                server.listen()
            for number in signal.SIGTERM, signal.SIGINT, signal.SIGHUP:  # while the display does not answer
                tile = self.rig.start("env", "--block-signal", self.rig.path("tarno-desktop"))
                with server.accept()[0] as client:
                    client.recv(4096)
                    self.assertEqual(tile.end(number), 0)

    def test_plain_window(self):
        screen, _ = self.one_output()
        for options in (("--layer", "normal"), ("--plain-window",)):
            with self.subTest(options):
                tile, image = self.rig.tile(*options, *AT), render(self.rig)
                shows(screen, image, 458, 315)
                self.drag(screen, (500, 330), (600, 380), (400, 130))
                shows(screen, image, 358, 115)
                self.rig.swaymsg('[app_id="tarno-desktop" title="^Tarno$"] kill')
                self.assertEqual(tile.wait(), 0)
