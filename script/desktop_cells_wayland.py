"""What the tile is wanted to do on Wayland desktops, each tried on a desktop without a screen.

DESKTOPS has one function for each desktop. It takes a rig and returns for each of WANTED that means something there True, or
why not.
"""
import os

import cairo

from desktop_cells import (AT, BELOW, BLACK, BLUE, CLICKS, CORNERS, PLACE, SHOW_DESKTOP, is_at, on_ground, render, results, rows,
                           shows)
from headless import wait_for


def place(scale, image, left=0, top=0, points=1280):
    """Where an image at the top right of an output begins, in pixels. The output is `points` wide, and the edges of surfaces
    are put on the next pixel."""
    return left + int((points - 16) * scale + 0.5) - image.get_width(), int((16 + top) * scale + 0.5)


def is_covered(screen, image, x, y):
    """Whether no row of the image is on the screen."""
    return not set(rows(screen.look(x, y, image.get_width(), image.get_height()))) & set(rows(on_ground(image, BLUE, 0)))


def open_window(rig, ground, *options, **output):
    """A window all over the first output, once it is drawn on plain ground."""
    has_ground = lambda: rig.screen.pixel(640, 600) == (0x336699 if ground == BLUE else 0)
    wait_for(has_ground, "plain ground")
    window = rig.start(*options, "weston-eventdemo", "--width=1280", "--height=800", "--no-border", "--log-button", **output)
    wait_for(lambda: not has_ground(), "the window")
    return window


def below_all_windows(rig, ground, windows, next_workspace):
    """Covered by the window that was there before and by one that comes later; `windows` lists the windows as (process,
    has the focus), where the desktop tells."""
    image = render(rig)
    x, y = place(1, image)
    window = open_window(rig, ground)
    rig.tile(*AT)
    for _ in range(2):
        wait_for(lambda: is_covered(rig.screen, image, x, y), "a window above the tile")
        wait_for(lambda: windows() in (None, [(window.pid, True)]), "a window that is the only one and has the focus")
        window.end()
        shows(rig.screen, image, x, y, ground)
        window = open_window(rig, ground)
    next_workspace()
    shows(rig.screen, image, x, y, ground)


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


def clicks_reach_windows(rig, ground):
    """Through a tile that is above them."""
    tile, image = rig.tile("--layer", "above", *AT), render(rig)
    with open(rig.path("log"), "w") as log:
        window = open_window(rig, ground, "stdbuf", "-oL", stdout=log)
    wait_for(lambda: rig.screen.click(1100, 100) or "button" in rig.read("log"), "the click on the window")
    assert not is_covered(rig.screen, image, *place(1, image)), "a window above the tile"
    window.end()
    tile.end()


def clicks_reach_windows_and_desktop(rig):
    """Sway's binding of a button, where there is no window, is its root menu."""
    clicks_reach_windows(rig, BLUE)
    image = render(rig)
    rig.tile(*AT)
    shows(rig.screen, image, *place(1, image))
    rig.screen.click(1100, 100, button=3)
    wait_for(lambda: os.path.exists(rig.path("clicked")), "the click on the desktop")


def sway(rig):
    rig.canvas(2560, 800)
    rig.sway("bindsym --whole-window button3 exec touch clicked", "bar {", "position top", "height 40", "output X11-2", "}",
             *(f"output X11-{n} mode 1280x800 position {1280 * (n - 1)} 0" for n in (1, 2)), outputs=2)
    rig.screen.spread((0, 0), (1280, 0))
    rig.swaymsg("focus output X11-1")
    rig.env["XDG_CONFIG_HOME"] = rig.path("settings")
    rig.write("settings/tarno/desktop.ini", "monitor = X11-1\n")  # newer ones name the second first

    def windows():
        nodes = [rig.swaymsg("", 4)]
        for node in nodes:
            nodes += node["nodes"] + node["floating_nodes"]
        return [(node["pid"], node["focused"]) for node in nodes if "pid" in node]

    return results(rig, {
        BELOW: lambda: below_all_windows(rig, BLUE, windows, lambda: rig.swaymsg("workspace 5")),
        CLICKS: lambda: clicks_reach_windows_and_desktop(rig),
        PLACE: lambda: place_with_panels(rig, ("X11-1", "X11-2"), (0, 40)),
        CORNERS: lambda: clean_corners(rig, lambda scale: rig.swaymsg(f"output X11-1 scale {scale}"))})


def weston(rig):
    """A plain window, which weston puts where it likes."""
    rig.canvas(1280, 800)

    def is_somewhere(image):
        wanted, seen = rows(on_ground(image, BLUE)), rows(rig.screen.look(0, 0, 1280, 800))
        middle = len(wanted) // 2
        for y, row in enumerate(seen):
            if wanted[middle] in row:
                return is_at(rig.screen, image, row.find(wanted[middle]) // 4 + 2, y - middle + 2)

    def clean():
        for scale, options in ((1, ()), (1, ("--scale", "1.5")), (2, ()), (3, ())):
            with rig.session():
                rig.weston(scale)
                image = render(rig, *(options or ("--scale", str(scale))))
                rig.tile(*AT, *options)
                wait_for(lambda: is_somewhere(image), f"the tile at {scale} with {options}")

    return results(rig, {CORNERS: clean}) | {BELOW: "plain: weston has no layer-shell"}


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
        image = render(rig)
        rig.tile(*AT)
        rig.start("weston-eventdemo", "--width=1280", "--height=800", "--no-border")
        wait_for(lambda: is_covered(rig.screen, image, *place(1, image)), "the window")
        tell("/KWin", ".showDesktop", "boolean:true")
        shows(rig.screen, image, *place(1, image), BLACK)

    def set_scale(scale):
        nonlocal compositor
        compositor.end()
        compositor = rig.kwin(scale)

    return results(rig, {
        SHOW_DESKTOP: stays,
        CLICKS: lambda: clicks_reach_windows(rig, BLACK),
        BELOW: lambda: below_all_windows(rig, BLACK, lambda: None, next_workspace),
        PLACE: lambda: place_with_panels(rig, ("X11-0", "X11-1"), (0, 0), BLACK),
        CORNERS: lambda: clean_corners(rig, set_scale, lambda scale: round(1280 / scale), BLACK)})


DESKTOPS = {"sway": sway, "weston": weston, "kwin_wayland": kwin_wayland}
