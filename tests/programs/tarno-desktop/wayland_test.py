"""The tile on Wayland: in the layers of sway, as a plain window, and while monitors and compositors come and go."""
import math
import os
import signal
import socket
import struct
import sys
import time

import cairo

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../../script"))
import desktop_cells_wayland as cells  # noqa: E402
from desktop_cells import AT, render  # noqa: E402
from desktop_cells_wayland import is_covered, shows  # noqa: E402
from headless import Rig, wait_for  # noqa: E402

MODE = "output {} mode 1280x800 position {} 0"


def says(tile, *lines):
    wait_for(lambda: len(tile.lines) >= len(lines), message=str(lines))
    assert tile.lines == [f"tarno-desktop: {line}\n" for line in lines], tile.lines


def turned(image):
    """By 90°, clockwise."""
    result = cairo.ImageSurface(cairo.FORMAT_ARGB32, image.get_height(), image.get_width())
    context = cairo.Context(result)
    context.translate(image.get_height(), 0)
    context.rotate(math.pi / 2)
    context.set_source_surface(image)
    context.get_source().set_filter(cairo.FILTER_NEAREST)
    context.paint()
    return result


def test_cells(rig):
    assert cells.sway(rig) == dict.fromkeys((cells.BELOW, cells.CLICKS, cells.PLACE, cells.CORNERS), True)


def test_cells_of_plain_window(rig):
    assert cells.weston(rig) == {cells.CORNERS: True, cells.BELOW: "plain: weston has no layer-shell"}


def test_places(rig):
    screen = rig.canvas(1280, 800)
    rig.sway(MODE.format("X11-1", 0))
    rows = [  # scale, options, options of the picture, place: both edges of a surface are put on the next pixel
        (1, ("--anchor", "left", "--margin", "3"), (), 3, 315), (1, ("--anchor", "bottom", "--family", "large"), (), 458, 402),
        (1.25, ("--anchor", "bottom-right", "--family", "small"), (), 1280 - 20 - 213, 800 - 20 - 213),
        (1.25, ("--anchor", "bottom-left", "--family", "small", "--margin", "17"), (), 21, 566),
        (1.75, ("--anchor", "right", "--family", "small", "--margin", "5"), (), 973, 251),
        (1.25, ("--anchor", "top-left", "--scale", "2"), ("--scale", "2"), 20, 20)]
    for scale, options, drawn, x, y in rows:
        rig.run("swaymsg", "output X11-1 scale", str(scale))
        family = options[options.index("--family"):][:2] if "--family" in options else ()
        tile = rig.tile(*options, *AT)
        shows(screen, render(rig, *(drawn or ("--scale", str(scale))), *family), x, y)
        says(tile, "shown as a layer-shell surface in the bottom layer on X11-1")
        assert tile.end() == 0


def test_monitors_come_and_go(rig):
    screen = rig.canvas(2560, 1280)
    rig.sway(MODE.format("X11-1", 0), MODE.format("X11-2", 1280), MODE.format("X11-3", 0))
    image = render(rig)
    tile = rig.start(rig.path("tarno-desktop"), "--monitor", "X11-2", "--anchor", "top-left", *AT)
    says(tile, "to be shown as a layer-shell surface in the bottom layer as soon as there is the monitor X11-2")
    assert is_covered(screen, image, 16, 16)
    rig.run("swaymsg", "create_output")
    windows = screen.spread((0, 0), (1280, 0))
    shows(screen, image, 1296, 16)

    rig.run("swaymsg", "output X11-2 scale 1.5")
    shows(screen, render(rig, "--scale", "1.5"), 1304, 24)
    rig.run("swaymsg", "output X11-2 mode 800x1280 transform 90 scale 1.25")
    image = render(rig, "--scale", "1.25")
    shows(screen, turned(image), 1280 + 800 - 20 - 213, 20)
    assert b"X11-2 1280x800+1280+0 scale 1.25\n" in rig.run(rig.path("tarno-desktop"), "--list-monitors")
    rig.run("swaymsg", "output X11-2 mode 1280x800 transform normal")
    shows(screen, image, 1300, 20)

    screen.unplug(windows[1])
    image = render(rig)
    shows(screen, image, 16, 16)
    screen.unplug(windows[0])
    wait_for(lambda: b'"name": "X11-' not in rig.run("swaymsg", "-r", "-t", "get_outputs"), message="no monitor")
    rig.run("swaymsg", "create_output")
    shows(screen, image, 16, 16)
    assert (tile.end(), len(tile.lines)) == (0, 1), tile.lines


def test_pictures_of_another_scale(rig):
    screen = rig.canvas(1280, 800)
    rig.sway(MODE.format("X11-1", 0))
    tile, image = rig.tile("--anchor", "top-left", "--scale", "2", *AT), render(rig, "--scale", "2")
    shows(screen, image, 16, 16)
    rig.run("swaymsg", "output X11-1 scale 1.25")
    shows(screen, image, 20, 20)
    tile.end()
    tile = rig.tile("--anchor", "top-left", *AT)
    os.remove(rig.path("tarno-widget"))
    rig.run("swaymsg", "output X11-1 scale 2")
    wait_for(lambda: len(tile.lines) == 2, message="the failure")
    nothing = cells.on_ground(cairo.ImageSurface(cairo.FORMAT_ARGB32, 2, 2), cells.BLUE, 0)
    time.sleep(0.5)
    assert screen.rows(700, 200, 2, 2) != nothing, "the old picture is not at its size in points"


def test_compositor_that_restarts(rig):
    screen = rig.canvas(1280, 800)
    compositor = rig.sway(MODE.format("X11-1", 0))
    tile = rig.tile("--anchor", "top-left", *AT)
    shows(screen, render(rig), 16, 16)
    for _ in range(8):
        tile.popen.send_signal(signal.SIGUSR1)
        time.sleep(0.3)
    with open(f"/proc/{compositor.popen.pid}/maps") as maps:
        held = sum("/memfd:tarno-tile" in line for line in maps)
    assert held < 4, f"{held} pictures that the compositor still holds"
    rig.save('{"status": "locked", "device_name": "Mac", "reason": "Lid closed"}', "2026-11-16T15:41:35Z")
    image = render(rig)
    shows(screen, image, 16, 16)
    time.sleep(3)  # one that ends sooner is not waited for
    compositor.end(9)
    compositor = rig.sway(MODE.format("X11-1", 0))
    shows(screen, image, 16, 16)
    compositor.end(9)
    shown = "shown as a layer-shell surface in the bottom layer on X11-1"
    assert tile.wait() == 69
    says(tile, shown, shown, "the display went away")


def test_bad_displays(rig):
    refusal = b"no\0\0"
    error = struct.pack("=5I", 1, (20 + len(refusal)) << 16, 1, 3, 3) + refusal  # wl_display.error of wl_display: code 3
    rows = [(error, 76, "the Wayland compositor refused a request; WAYLAND_DEBUG=1 shows which one"), (b"", 69, "the display went away"),
            (None, 69, "cannot connect to the Wayland display 'display'")]
    rig.env["WAYLAND_DISPLAY"] = "display"
    for answer, code, line in rows:
        with socket.socket(socket.AF_UNIX) as server:
            server.bind(rig.path("display"))
            if answer is not None:
                server.listen()
            tile = rig.start(rig.path("tarno-desktop"))
            if answer is not None:
                with server.accept()[0] as client:
                    client.send(answer)
            assert tile.wait() == code, line
            says(tile, line)
        os.remove(rig.path("display"))


def test_plain_window(rig):
    screen = rig.canvas(1280, 800)
    rig.sway(MODE.format("X11-1", 0))
    for options in (("--layer", "normal"), ("--plain-window",)):
        tile, image = rig.tile(*options, *AT), render(rig)
        shows(screen, image, 458, 315)
        screen.point(500, 330)
        screen.button(True)
        time.sleep(0.3)  # sway moves it from where the pointer is when it is asked to
        screen.point(600, 380)
        screen.point(400, 130)
        screen.button(False)
        shows(screen, image, 358, 115)
        rig.run("swaymsg", '[app_id="tarno-desktop" title="^Tarno$"] kill')
        assert tile.wait() == 0


if __name__ == "__main__":
    for name, test in list(globals().items()):
        if name.startswith("test_"):
            with Rig(sys.argv[1]) as rig:
                test(rig)
            print(f"passed: {name}", flush=True)
