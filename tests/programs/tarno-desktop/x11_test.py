"""The tile on X11: its window's place, type, state and pixels, its monitors, its schedule, and how it ends."""
import time

import cairo
from Xlib import X, Xatom, error, protocol
from Xlib.ext import shape

from support import AT, GONE, LOCKED, SAVED, UNLOCKED, Clock, render, rows, run_tests, wait_for


class Screen:
    """What a window manager and a person can see of an X11 screen."""

    def __init__(self, rig):
        self.display = rig.openbox()
        self.root = self.display.screen().root

    def atom(self, name):
        return self.display.intern_atom(name)

    def property(self, window, name, kind=Xatom.ATOM):
        found = window.get_full_property(self.atom(name), kind)
        return list(found.value) if found else []

    def names(self, window, name):
        return {self.display.get_atom_name(atom) for atom in self.property(window, name)}

    def stack(self):
        """The managed windows, bottom to top."""
        return self.property(self.root, "_NET_CLIENT_LIST_STACKING", Xatom.WINDOW)

    def tiles(self):
        windows = [self.display.create_resource_object("window", id) for id in self.stack()]
        try:
            return [window for window in windows if window.get_wm_class() == ("tarno-desktop", "Tarno-desktop")]
        except error.BadWindow:  # gone between the two questions
            return self.tiles()

    def tile(self):
        return wait_for(self.tiles, message="the tile's window")[0]

    def place(self, window):
        try:
            geometry, root = window.get_geometry(), window.translate_coords(self.root, 0, 0)
        except (error.BadDrawable, error.BadWindow):  # another has taken its place
            return None, None
        return -root.x, -root.y, geometry.width, geometry.height

    def pixels(self, window):
        geometry = window.get_geometry()
        try:
            image = window.get_image(0, 0, geometry.width, geometry.height, X.ZPixmap, 0xffffffff)
        except error.BadMatch:  # not on the screen yet
            return []
        return rows(cairo.ImageSurface.create_for_data(bytearray(image.data), cairo.FORMAT_ARGB32, geometry.width,
                                                       geometry.height))

    def new_window(self, kind, width, height):
        """A mapped window of a type, such as a file manager's desktop."""
        window = self.root.create_window(0, 0, width, height, 0, X.CopyFromParent, background_pixel=0x336699)
        window.change_property(self.atom("_NET_WM_WINDOW_TYPE"), Xatom.ATOM, 32, [self.atom(kind)])
        window.map()
        self.display.sync()
        wait_for(lambda: window.id in self.stack(), message="a window")
        return window

    def tell(self, name, value):
        event = protocol.event.ClientMessage(window=self.root, client_type=self.atom(name), data=(32, [value, 0, 0, 0, 0]))
        self.root.send_event(event, X.SubstructureRedirectMask | X.SubstructureNotifyMask)
        self.display.sync()

    def compose(self):
        """Takes the place of a compositor; returns the window whose end ends it."""
        owner = self.root.create_window(0, 0, 1, 1, 0, X.CopyFromParent)
        owner.set_selection_owner(self.atom("_NET_WM_CM_S0"), X.CurrentTime)
        self.display.sync()
        return owner


def test_window_is_part_of_the_desktop(rig):
    rig.x11()
    screen = Screen(rig)
    tile = rig.tile()
    assert tile.lines == ["tarno-desktop: shown as an X11 window of the desktop on screen\n"], tile.lines
    window = screen.tile()
    assert screen.place(window) == (1280 - 364 - 16, 16, 364, 170)
    assert screen.names(window, "_NET_WM_WINDOW_TYPE") == {"_NET_WM_WINDOW_TYPE_DESKTOP"}
    assert screen.names(window, "_NET_WM_STATE") >= {
        "_NET_WM_STATE_BELOW", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"}
    assert screen.property(window, "_NET_WM_DESKTOP", Xatom.CARDINAL) == [0xffffffff]
    assert window.get_wm_hints().input == 0

    normal = screen.new_window("_NET_WM_WINDOW_TYPE_NORMAL", 300, 200)
    assert screen.stack().index(normal.id) > screen.stack().index(window.id)
    screen.tell("_NET_SHOWING_DESKTOP", 1)
    wait_for(lambda: normal.get_attributes().map_state != X.IsViewable, message="showing the desktop")
    assert window.get_attributes().map_state == X.IsViewable

    files = screen.new_window("_NET_WM_WINDOW_TYPE_DESKTOP", 1280, 800)
    for _ in range(2):  # when it appears and when it is clicked
        wait_for(lambda: screen.stack().index(window.id) > screen.stack().index(files.id), message="the tile on top")
        files.configure(stack_mode=X.Above)
        screen.display.sync()

    panel = screen.new_window("_NET_WM_WINDOW_TYPE_DOCK", 1280, 30)
    panel.change_property(screen.atom("_NET_WM_STRUT"), Xatom.CARDINAL, 32, [0, 0, 30, 0])
    wait_for(lambda: screen.place(screen.tile())[1] == 46, message="the tile below a panel")

    small = rig.tile("--family", "small")  # a second one in the same place
    wait_for(lambda: len(screen.tiles()) == 2)
    assert [process.end() for process in (small, tile)] == [0, 0]


def test_each_layer_and_place(rig):
    rig.x11()
    screen = Screen(rig)
    cases = [(("--layer", "normal", "--anchor", "bottom-left", "--margin", "0"), "among others", (0, 630), set()),
             (("--layer", "above", "--anchor", "center"), "above others", (458, 315), {"_NET_WM_STATE_ABOVE"})]
    for options, words, place, states in cases:
        tile = rig.tile(*options)
        assert words in tile.lines[0], tile.lines
        assert screen.place(screen.tile())[:2] == place, (options, screen.place(screen.tile()))
        assert screen.names(screen.tile(), "_NET_WM_STATE") >= states | {"_NET_WM_STATE_SKIP_TASKBAR"}
        assert tile.end() == 0
        wait_for(lambda: not screen.tiles())


def test_pixels_are_those_of_the_image_program(rig):
    rig.x11()
    screen = Screen(rig)
    rig.save(LOCKED, SAVED)
    for family, scale in (("small", 1), ("medium", 1), ("large", 2)):
        tile = rig.tile("--family", family, *AT, env={"GDK_SCALE": str(scale)})
        image = rows(render(rig, "--family", family, "--scale", str(scale)))
        between_corners = slice(22 * scale, -22 * scale)
        window = screen.tile()
        wait_for(lambda: screen.pixels(window)[between_corners] == image[between_corners], message=family)
        assert len(shape.get_rectangles(window, shape.SK.Bounding).rectangles) > 20, "nothing else hides the corners"
        compositor = screen.compose()
        wait_for(lambda: screen.pixels(window) == image, message="transparent corners")
        compositor.destroy()
        assert tile.end() == 0
        wait_for(lambda: not screen.tiles())


def test_follows_its_monitor(rig):
    rig.monitors()
    screen = Screen(rig)
    turn = lambda *state: [rig.run("xrandr", *words) for words in (("--output", "DUMMY1", *state), ())]  # () looks anew
    rig.run("xrandr", "--addmode", "DUMMY1", "1024x768")
    turn("--mode", "1024x768", "--right-of", "DUMMY0")
    rig.tile("--monitor", "DUMMY1", "--anchor", "left")
    for x, then in ((1040, ["--off"]), (16, ["--mode", "1024x768", "--right-of", "DUMMY0"]), (1040, ["--off"])):
        wait_for(lambda: [screen.place(tile)[0] for tile in screen.tiles()] == [x], message=f"the tile at {x}")
        turn(*then)


def test_asks_again_at_the_reload_date_and_when_the_clock_is_set(rig):
    rig.x11()
    screen = Screen(rig)
    clock = Clock(rig, rate=30)
    rig.save(LOCKED, clock.now())
    tile = rig.tile(env=clock.env)
    look = lambda: screen.pixels(screen.tile())
    wait_for(lambda: any(map(any, look())), message="a first frame")

    before = look()
    rig.save(UNLOCKED, clock.now())
    wait_for(lambda: look() != before, 3, "the saved status")
    asked = clock.requests
    time.sleep(3)
    assert 2 <= clock.requests - asked <= 4, clock.requests - asked

    clock.set(tile, rate=1)
    for step in (10, -3600, 86400):
        wait_for(lambda: clock.requests > asked)
        time.sleep(0.3)
        asked, before = clock.requests, look()
        rig.save(LOCKED if step > 0 else UNLOCKED, clock.now(step))
        time.sleep(0.5)
        assert clock.requests == asked and look() == before, "asked without need"
        clock.set(tile, step=step)
        wait_for(lambda: look() != before, 3, f"a request after a step of {step} s")
        assert clock.requests <= asked + 2


def test_ends_cleanly_and_never_in_silence(rig):
    for options, code, words in (((), 69, "no display"), (("--anchor", "middle"), 64, "--anchor")):
        tile = rig.tile(*options)
        assert (tile.wait(), len(tile.lines)) == (code, 1) and words in tile.lines[0], tile.lines
    server = rig.x11()
    for signal in (1, 2, 15):
        tile = rig.tile()
        assert (tile.end(signal), len(tile.lines)) == (0, 1), tile.lines
    tile = rig.tile("--monitor", "NONE-1")
    assert (tile.wait(), len(tile.lines)) == (64, 1) and "NONE-1" in tile.lines[0], tile.lines
    tile = rig.tile()
    server.end(9)
    assert (tile.wait(), tile.lines[1:]) == (69, [GONE]), tile.lines


run_tests(globals())
