"""What the tile is wanted to do on Wayland desktops, each tried on a desktop without a screen.

DESKTOPS has one function for each desktop. It takes a rig and returns for each of WANTED that means something there True, or
why not.
"""
import functools
import json
import os

import cairo

from desktop_cells import AT, BELOW, CLICKS, CORNERS, PLACE, SHOW_DESKTOP, render, results
from headless import wait_for

BLUE, BLACK = (0x33 / 255, 0x66 / 255, 0x99 / 255), (0, 0, 0)


def on_ground(image, ground, edge=2):
    """The rows of an image on plain ground, with an edge of it around."""
    width, height = image.get_width() + 2 * edge, image.get_height() + 2 * edge
    screen = cairo.ImageSurface(cairo.FORMAT_ARGB32, width, height)
    context = cairo.Context(screen)
    context.set_source_rgb(*ground)
    context.paint()
    context.set_source_surface(image, edge, edge)
    context.paint()
    data = screen.get_data()
    return [bytes(data[4 * width * y:4 * width * (y + 1)]) for y in range(height)]


def is_at(screen, image, x, y, ground=BLUE):
    """Whether the image, pixel by pixel, and plain ground around it are on the screen."""
    return screen.rows(x - 2, y - 2, image.get_width() + 4, image.get_height() + 4) == on_ground(image, ground)


def shows(screen, image, x, y, ground=BLUE):
    wait_for(lambda: is_at(screen, image, x, y, ground), message=f"the tile at {x}, {y}")


def alone(rig, cell):
    """Tries a cell and ends what it started."""
    started = len(rig.started)
    try:
        cell()
    finally:
        for process in rig.started[started:]:
            process.popen.kill()


def tried(rig, cells):
    return results({row: functools.partial(alone, rig, cell) for row, cell in cells.items()})


def place(scale, image, left=0, top=0, points=1280):
    """Where an image at the top right of an output begins, in pixels. The output is `points` wide; surfaces are placed in
    whole points, and their edges put on the next pixel."""
    right = int((points - 16) * scale + 0.5)
    return left + right - image.get_width(), int((16 + top) * scale + 0.5)


def is_covered(screen, image, x, y):
    seen = screen.rows(x, y, image.get_width(), image.get_height())
    return not set(seen) & set(on_ground(image, BLUE, 0))


def open_window(rig, ground, *options, **output):
    """A window all over the first output, once it is drawn on plain ground."""
    plain = cairo.ImageSurface(cairo.FORMAT_ARGB32, 9, 9)
    shows(rig.screen, plain, 640, 600, ground)
    window = rig.start(*options, "weston-eventdemo", "--width=1280", "--height=800", "--no-border", "--log-button", **output)
    wait_for(lambda: not is_at(rig.screen, plain, 640, 600, ground), message="the window")
    return window


def below_all_windows(rig, ground, windows, next_workspace):
    """Covered by the window that was there before and by one that comes later; `windows` lists the windows as (process,
    has the focus), where the desktop tells."""
    image = render(rig)
    x, y = place(1, image)
    window = open_window(rig, ground)
    tile = rig.tile(*AT)
    for _ in range(2):
        wait_for(lambda: is_covered(rig.screen, image, x, y), message="a window above the tile")
        listed = windows()
        assert listed in (None, [(window.popen.pid, True)]), f"the windows and whether they have the focus: {listed}"
        window.end()
        shows(rig.screen, image, x, y, ground)
        window = open_window(rig, ground)
    next_workspace()
    shows(rig.screen, image, x, y, ground)
    window.end()
    tile.end()


def place_with_panels(rig, monitors, panels, ground=BLUE):
    """On each of two monitors, at the top right; `panels` says how high the panel at its top is."""
    image = render(rig)
    for number, (monitor, panel) in enumerate(zip(monitors, panels)):
        tile = rig.tile("--monitor", monitor, *AT)
        shows(rig.screen, image, *place(1, image, left=1280 * number, top=panel), ground)
        tile.end()


def clean_corners(rig, set_scale, points=lambda scale: int(1280 / scale), ground=BLUE):
    """`points` says how wide an output is at a scale."""
    for scale in (1, 1.25, 1.5, 1.75, 2, 3):
        set_scale(scale)
        image = render(rig, "--scale", str(scale))
        tile = rig.tile(*AT)
        shows(rig.screen, image, *place(scale, image, points=points(scale)), ground)
        tile.end()


def click(screen, x, y, button=1):
    screen.point(x, y)
    screen.button(True, button)
    screen.button(False, button)


def clicks_reach_windows(rig, ground):
    """Through a tile that is above them."""
    tile, image = rig.tile("--layer", "above", *AT), render(rig)
    with open(rig.path("log"), "w") as log:
        window = open_window(rig, ground, "stdbuf", "-oL", stdout=log)

    def arrives():
        click(rig.screen, 1100, 100)
        with open(rig.path("log")) as log:
            return "button" in log.read()

    wait_for(arrives, message="the click on the window")
    assert not is_covered(rig.screen, image, *place(1, image)), "a window above the tile"
    window.end()
    tile.end()


def clicks_reach_desktop(rig):
    """Sway's binding of a button, where there is no window, is its root menu."""
    tile, image = rig.tile(*AT), render(rig)
    shows(rig.screen, image, *place(1, image))
    click(rig.screen, 1100, 100, button=3)
    wait_for(lambda: os.path.exists(rig.path("clicked")), message="the click on the desktop")
    tile.end()


# sway

def sway(rig):
    rig.canvas(2560, 800)
    rig.sway("bindsym --whole-window button3 exec touch clicked", "bar {", "position top", "height 40", "output X11-2", "}",
             *(f"output X11-{n} mode 1280x800 position {1280 * (n - 1)} 0" for n in (1, 2)),
             WLR_X11_OUTPUTS="2")
    rig.screen.spread((0, 0), (1280, 0))
    rig.run("swaymsg", "focus output X11-1")
    rig.settings("monitor = X11-1")  # newer ones name the second first

    def windows(node=None):
        node = node or json.loads(rig.run("swaymsg", "-r", "-t", "get_tree"))
        inner = [window for child in node["nodes"] + node["floating_nodes"] for window in windows(child)]
        return inner + ([(node["pid"], node["focused"])] if "pid" in node else [])

    def set_scale(scale):
        rig.run("swaymsg", "output X11-1 scale", str(scale))

    return tried(rig, {
        BELOW: lambda: below_all_windows(rig, BLUE, windows, lambda: rig.run("swaymsg", "workspace 5")),
        CLICKS: lambda: (clicks_reach_windows(rig, BLUE), clicks_reach_desktop(rig)),
        PLACE: lambda: place_with_panels(rig, ("X11-1", "X11-2"), (0, 40)),
        CORNERS: lambda: clean_corners(rig, set_scale)})


# weston

def weston(rig):
    """A plain window, which weston puts where it likes."""
    rig.canvas(1280, 800)
    compositor = None

    def clean():
        nonlocal compositor
        for scale, options in ((1, ()), (1, ("--scale", "1.5")), (2, ()), (3, ())):
            if compositor:
                compositor.end()
            compositor = rig.weston(scale)
            image = render(rig, *(options or ("--scale", str(scale))))
            tile = rig.tile(*AT, *options)
            wait_for(lambda: is_somewhere(rig.screen, image), message=f"the tile at {scale} with {options}")
            tile.end()

    return tried(rig, {CORNERS: clean}) | {BELOW: "plain: weston has no layer-shell"}


def is_somewhere(screen, image):
    expected, seen = on_ground(image, BLUE), screen.rows(0, 0, 1280, 800)
    middle = len(expected) // 2
    left, top = next(((row.find(expected[middle]) // 4, y - middle) for y, row in enumerate(seen) if expected[middle] in row),
                     (-1, -1))
    return left >= 0 and top >= 0 and is_at(screen, image, left + 2, top + 2)


# kwin_wayland

def kwin_wayland(rig):
    rig.canvas(2560, 800)
    rig.session_bus()
    compositor = rig.kwin(outputs=2)
    rig.screen.spread((0, 0), (1280, 0))

    def tell(path, method, *arguments):
        rig.run("dbus-send", "--session", "--print-reply", "--dest=org.kde.KWin", path, "org.kde.KWin" + method, *arguments)

    def next_workspace():
        tell("/VirtualDesktopManager", ".VirtualDesktopManager.createDesktop", "uint32:1", "string:two")
        tell("/KWin", ".setCurrentDesktop", "int32:2")

    def stays():
        image, tile = render(rig), rig.tile(*AT)
        window = rig.start("weston-eventdemo", "--width=1280", "--height=800", "--no-border")
        wait_for(lambda: is_covered(rig.screen, image, *place(1, image)), message="the window")
        tell("/KWin", ".showDesktop", "boolean:true")
        shows(rig.screen, image, *place(1, image), BLACK)
        window.end()
        tile.end()

    def set_scale(scale):
        nonlocal compositor
        compositor.end()
        compositor = rig.kwin(scale)

    return tried(rig, {
        SHOW_DESKTOP: stays,
        CLICKS: lambda: clicks_reach_windows(rig, BLACK),
        BELOW: lambda: below_all_windows(rig, BLACK, lambda: None, next_workspace),
        PLACE: lambda: place_with_panels(rig, ("X11-0", "X11-1"), (0, 0), BLACK),
        CORNERS: lambda: clean_corners(rig, set_scale, lambda scale: round(1280 / scale), BLACK)})


DESKTOPS = {"sway": sway, "weston": weston, "kwin_wayland": kwin_wayland}
