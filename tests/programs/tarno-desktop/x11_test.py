"""The tile on X11: the cells of the desktop matrix for three window managers, and what comes, goes and changes under it."""
import functools
import os
import struct
import sys
import time

from Xlib import X, Xatom
from Xlib.ext import shape, xtest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../../script"))
import desktop_cells_x11 as cells  # noqa: E402
from desktop_cells import AT, render  # noqa: E402
from desktop_cells_x11 import X11Screen, shows  # noqa: E402
from headless import Rig, wait_for  # noqa: E402

SAVED = "2026-11-16T15:41:35Z"
RECORD = '{"status": "%s", "device_name": "Kivo\'s Mac", "reason": "Lid closed", "face_present": true}'


def test_window_managers(rig):
    for name, tried in (("openbox", (cells.below, cells.clicks, cells.panels)), ("xfwm4", (cells.below, cells.clicks)),
                        ("i3", (cells.below, cells.clicks, cells.panels))):
        for cell in tried:
            cell(rig, name)


def test_picture_and_compositor(rig):
    screen = X11Screen(rig, "xfwm4", "--compositor=off")
    ground = screen.pixels(0, 0, 1280, 800)
    rig.save(RECORD % "locked", SAVED)
    rig.tile(*AT, "--scale", "1.5", "--anchor", "bottom-left")
    x, y, width, height = screen.place(screen.tile())
    assert (x, y, width, height) == (24, 800 - 24 - 255, 546, 255)
    show = functools.partial(shows, screen, ground)
    show(render(rig, "--scale", "1.5"), x, y)
    owner = screen.root.create_window(0, 0, 1, 1, 0, X.CopyFromParent)
    shapes = lambda: len(shape.get_rectangles(screen.tiles()[0], shape.SK.Bounding).rectangles)
    assert shapes() > 10
    owner.set_selection_owner(screen.atom("_NET_WM_CM_S0"), X.CurrentTime)
    screen.display.sync()
    wait_for(lambda: shapes() == 1, message="a whole window for the compositor")
    owner.destroy()
    screen.display.sync()
    show(render(rig, "--scale", "1.5"), x, y)
    rig.save(RECORD % "unlocked", SAVED)
    show(render(rig, "--scale", "1.5"), x, y)


def test_stack(rig):
    screen = X11Screen(rig, "openbox")
    rig.tile(*AT)
    tile = screen.tile()
    files = screen.new_window("DESKTOP", width=1280, height=800)
    normal = screen.new_window(x=600, width=400, height=300)
    small = rig.tile(*AT, "--family", "small")  # a second one in the same place
    for window, mode in ((files, X.Above), (normal, X.Below), (files, X.Above), (files, X.Above)):
        wait_for(lambda: screen.is_above(tile, files) and screen.is_above(normal, tile), message="the tile between them")
        window.configure(stack_mode=mode)
        screen.display.sync()
        time.sleep(0.2)
    wakes = lambda: int(open(f"/proc/{small.popen.pid}/status").read().split("voluntary_ctxt_switches:")[1].split()[0])
    time.sleep(0.5)
    before = wakes()
    time.sleep(0.5)
    assert wakes() - before < 5, "the two tiles fight for their place"
    above = rig.tile(*AT, "--layer", "above", "--anchor", "center")
    upper = wait_for(lambda: [tile for tile in screen.tiles() if screen.place(tile)[:2] == (458, 315)])[0]
    normal.configure(stack_mode=X.Above)
    screen.display.sync()
    wait_for(lambda: screen.is_above(upper, normal), message="the tile above others")
    screen.tell("_NET_WM_STATE", 1, screen.atom("_NET_WM_STATE_FULLSCREEN"), window=normal)
    time.sleep(0.3)  # the window manager puts it there, but does it stay?
    wait_for(lambda: screen.is_above(normal, upper), message="what fills the screen above the tile")
    assert "_NET_WM_STATE_ABOVE" in screen.names(upper, "_NET_WM_STATE")
    assert screen.property(upper, "_NET_WM_DESKTOP") == [0xFFFFFFFF]
    assert bytes(screen.property(upper, "_NET_WM_NAME")) == b"Tarno"
    assert [process.end() for process in (small, above)] == [0, 0]


def test_window_managers_come_and_go(rig):
    rig.x11()
    tile = rig.tile(*AT)
    screen = X11Screen(rig, None)
    place = screen.place(screen.tile())

    def follows(name, is_managed):
        wait_for(lambda: list(map(screen.is_managed, screen.tiles())) == [is_managed], message=f"the kind of window for {name}")
        wait_for(lambda: list(map(screen.place, screen.tiles())) == [place], message=f"the tile's place with {name}")

    follows("none", False)
    check = screen.root.create_window(0, 0, 1, 1, 0, X.CopyFromParent)
    check.change_property(screen.atom("_NET_WM_NAME"), screen.atom("UTF8_STRING"), 8, b"GNOME Shell")
    screen.root.change_property(screen.atom("_NET_SUPPORTING_WM_CHECK"), Xatom.WINDOW, 32, [check.id])
    screen.display.sync()
    follows("GNOME Shell", True)
    rig.window_manager("openbox")
    follows("openbox", False)
    rig.window_manager("xfwm4", "--replace")
    follows("xfwm4", False)
    assert tile.end() == 0


def test_panels_without_window_manager(rig):
    rig.x11()
    screen = X11Screen(rig, None)
    rig.tile(*AT)
    tile = screen.tile()
    panel = screen.root.create_window(0, 0, 1280, 40, 0, X.CopyFromParent)
    panel.change_property(screen.atom("_NET_WM_WINDOW_TYPE"), Xatom.ATOM, 32, [screen.atom("_NET_WM_WINDOW_TYPE_DOCK")])
    reserve = lambda depth: panel.change_property(screen.atom("_NET_WM_STRUT_PARTIAL"), Xatom.CARDINAL, 32,
                                                  [0, 0, depth, 0, 0, 0, 0, 0, 0, 1279, 0, 0])
    leave = lambda *area: screen.root.change_property(screen.atom("_NET_WORKAREA"), Xatom.CARDINAL, 32, area)
    reserve(40)
    for change, y in ((lambda: leave(0, 0, 1280, 800), 16), (panel.map, 16), (lambda: leave(0, 0, 1280, 800), 56),
                      (lambda: reserve(60), 76), (lambda: leave(0, 90, 1280, 710), 106)):
        change()
        screen.display.sync()
        time.sleep(0.3)
        wait_for(lambda: screen.place(tile)[1] == y, message=f"the tile at {y}")


def test_monitors_and_scale(rig):
    rig.two_monitors()
    rig.session_bus()
    screen = X11Screen(rig, None)
    turn = lambda *words: rig.run("xrandr", "--output", *words)
    beside = ("DUMMY1", "--mode", "1024x768", "--right-of", "DUMMY0")
    turn("DUMMY1", "--off")
    tile = rig.tile(*AT, "--monitor", "DUMMY1", "--anchor", "left")
    assert tile.lines == ["tarno-desktop: to be shown as an X11 window of the desktop as soon as there is the monitor DUMMY1\n"]
    for words, places in ((beside, [1040]), (("DUMMY1", "--off"), [16]), (("DUMMY0", "--off"), []),
                          (("DUMMY0", "--mode", "1024x768"), [16]), (beside, [1040])):
        turn(*words)
        wait_for(lambda: [screen.place(tile)[0] for tile in screen.tiles()] == places, message=f"the tile at {places}")
    size = lambda: screen.place(screen.tiles()[0])[2:]
    sizes = {1: (364, 170), 1.25: (455, 213), 1.5: (546, 255), 2: (728, 340)}

    def sets(owner, name, value, scale):
        owner.change_property(screen.atom(name), Xatom.STRING, 8, value)
        screen.display.sync()
        wait_for(lambda: size() == sizes[scale], message=f"the scale {scale} for {value}")

    for value, scale in ((b"Xft.dpi: 144\n", 1.5), (b"*customization: -color\nXft.dpi:\t120\nXft.hinting: 1\n", 1.25),
                         (b"MyXft.dpi: 192\n", 1), (b"Xft.dpi:192", 2), (b"Xft.dpi: no\n", 1), (b"Xft.dpi: 144\n", 1.5)):
        sets(screen.root, "RESOURCE_MANAGER", value, scale)
    owner = screen.root.create_window(0, 0, 1, 1, 0, X.CopyFromParent)
    owner.set_selection_owner(screen.atom("_XSETTINGS_S0"), X.CurrentTime)
    setting = lambda name, dpi: struct.pack(f"<B3xIIBxH{(len(name) + 3) // 4 * 4}sIi", 0, 1, 1, 0, len(name), name, 1, dpi * 1024)
    for value, scale in ((setting(b"Xft/DPI", 120), 1.25), (setting(b"Xft/DPI", 192), 2), (setting(b"Xft/DPI", -1), 1.5),
                         (setting(b"Xft/DPI", 96), 1), (setting(b"Xft/DPIs", 192), 1.5), (setting(b"Xft/DPI", 96), 1),
                         (setting(b"Xft/DPI", 192)[:-1], 1.5)):
        sets(owner, "_XSETTINGS_SETTINGS", value, scale)


def test_dragging_and_the_end(rig):
    screen = X11Screen(rig, "openbox")
    tile = rig.tile(*AT, "--layer", "normal")
    window = screen.tile()
    assert screen.place(window)[:2] == (900, 16)
    screen.point(1000, 100)
    xtest.fake_input(screen.display, X.ButtonPress, 1)
    screen.display.sync()
    time.sleep(0.3)  # openbox moves it from where the pointer is when it is asked to
    screen.point(800, 150)
    screen.point(700, 200)
    xtest.fake_input(screen.display, X.ButtonRelease, 1)
    screen.display.sync()
    wait_for(lambda: screen.place(window)[:2] == (600, 116), message="the dragged tile")
    screen.new_window("DOCK", width=1280, height=40, _NET_WM_STRUT=[0, 0, 40, 0], _NET_WM_STRUT_PARTIAL=[0, 0, 40])
    time.sleep(0.5)
    rig.save(RECORD % "locked", SAVED)
    time.sleep(0.5)
    assert screen.place(window)[:2] == (600, 116)
    screen.tell("_NET_CLOSE_WINDOW", window=window)
    assert tile.wait() == 0
    for end in ("destroy", "kill_client"):
        tile = rig.tile(*AT)
        getattr(screen.tile(), end)()
        screen.display.sync()
        assert tile.wait() == 0, end
    tile = rig.tile(*AT)
    screen.tile()
    next(process for process in rig.started if process.popen.args[0] == "Xvfb").end(9)
    assert tile.wait(20) == 69 and "cannot connect to the X11 display" in tile.lines[1]


if __name__ == "__main__":
    for name, test in list(globals().items()):
        if name.startswith("test_"):
            with Rig(sys.argv[1]) as rig:
                test(rig)
            print(f"passed: {name}", flush=True)
