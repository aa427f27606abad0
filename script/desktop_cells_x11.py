"""What the tile is wanted to do on X11, each tried with every window manager on a desktop without a screen.

DESKTOPS has one function for each window manager. It takes a rig and returns for each of WANTED that means something there
True, or why not. The functions of the cells are what the tests of the tile on X11 call, too.
"""
import contextlib
import functools
import time

import cairo
from Xlib import X, XK, Xatom, display, error, protocol
from Xlib.ext import xtest

from desktop_cells import AT, BELOW, CLICKS, CORNERS, PLACE, SHOW_DESKTOP, render, results
from headless import WINDOW_MANAGERS, wait_for

GROUND = 0x336699
XWAYLAND = "mutter with Xwayland"
HAS_ROOT_MENU = ("openbox", "fluxbox", "icewm", "awesome")
COMPOSES = {  # how to turn a window manager's own compositor off and on; None where it cannot be had
    "xfwm4": (("--compositor=off",), ("--compositor=on",)),
    "metacity": (("--no-composite",), ("--composite",)),
    "kwin_x11": (("KWIN_COMPOSE=N",), ()),
    "mutter": (None, ()),  # always composes
    XWAYLAND: (None, ()),
}


class X11Screen:
    """What window managers and people see of an X11 screen."""

    def __init__(self, rig, name, *options, monitors=1):
        """Starts a window manager by its name among WINDOW_MANAGERS, or XWAYLAND, on one or two monitors; without a name it
        looks at what the rig has. What is looked at and clicked is `eyes`: the display outside where X11 is inside of
        Wayland, else the same."""
        if name:
            rig.session_bus()
        if name == XWAYLAND:
            self.eyes, self.display = rig.mutter_with_xwayland(monitors)
            self.monitors, self.size = (("XWAYLAND0", 0), ("XWAYLAND1", 1280)), (1280, 800)
        else:
            if name:
                rig.x11() if monitors == 1 else rig.two_monitors()
            self.eyes = self.display = rig.window_manager(name, *options) if name else display.Display(rig.env["DISPLAY"])
            self.monitors, self.size = (("DUMMY0", 0), ("DUMMY1", 1024)), (1024, 768)
        self.root = self.display.screen().root
        self.paint_ground()
        self.point(640, 790)
        time.sleep(0.5)  # desktops fade in

    def paint_ground(self):
        """Where compositors look for it, too."""
        size = self.root.get_geometry()
        pixmap = self.root.create_pixmap(size.width, size.height, self.display.screen().root_depth)
        pixmap.fill_rectangle(pixmap.create_gc(foreground=GROUND), 0, 0, size.width, size.height)
        self.root.change_attributes(background_pixmap=pixmap)
        self.root.clear_area()
        for name in ("_XROOTPMAP_ID", "ESETROOT_PMAP_ID"):
            self.root.change_property(self.atom(name), Xatom.PIXMAP, 32, [pixmap.id])

    def atom(self, name):
        return self.display.intern_atom(name)

    def window(self, identifier):
        return self.display.create_resource_object("window", identifier)

    def property(self, window, name):
        try:
            found = window.get_full_property(self.atom(name), X.AnyPropertyType)
        except error.BadWindow:
            return []
        return list(found.value) if found else []

    def names(self, window, name):
        return {self.display.get_atom_name(atom) for atom in self.property(window, name)}

    def tiles(self):
        """The windows of tiles, managed or not."""
        def below(window, depth):
            try:
                if window.get_wm_class() == ("tarno-desktop", "Tarno-desktop"):
                    return [window]
                inner = window.query_tree().children if depth else []
            except error.BadWindow:
                return []
            return [tile for child in inner for tile in below(child, depth - 1)]
        return below(self.root, 4)

    def tile(self):
        """The window of the only tile, once it is on the screen."""
        shown = lambda: [tile for tile in self.tiles() if self.is_viewable(tile) and self.place(tile)[2] > 1]
        tile = wait_for(shown, message="the tile's window")[0]
        time.sleep(0.2)  # window managers move a window after they show it
        return tile

    def place(self, window):
        try:
            geometry, root = window.get_geometry(), window.translate_coords(self.root, 0, 0)
        except (error.BadDrawable, error.BadWindow):  # another has taken its place
            return None
        return -root.x, -root.y, geometry.width, geometry.height

    def geometry(self, window):
        """Of a window on the root window, with its border."""
        try:
            place = window.get_geometry()
        except error.BadDrawable:
            return None
        return place.x, place.y, place.width + 2 * place.border_width, place.height + 2 * place.border_width

    def height(self, window):
        """In the stack of windows; frames count for what is in them."""
        stack = [child.id for child in self.root.query_tree().children]
        while window.id not in stack:
            window = window.query_tree().parent
        return stack.index(window.id)

    def is_above(self, upper, lower):
        return self.height(upper) > self.height(lower)

    def is_viewable(self, window):
        try:
            return window.get_attributes().map_state == X.IsViewable
        except error.BadWindow:
            return False

    def is_managed(self, window):
        try:
            return not window.get_attributes().override_redirect
        except error.BadWindow:  # another has taken its place
            return None

    def new_window(self, kind="NORMAL", x=0, y=0, width=300, height=200, color=0x00ff00, **properties):
        """A mapped window, such as a program's or a file manager's desktop."""
        window = self.root.create_window(x, y, width, height, 0, X.CopyFromParent, background_pixel=color,
                                         event_mask=X.ButtonPressMask | X.StructureNotifyMask)
        window.change_property(self.atom("_NET_WM_WINDOW_TYPE"), Xatom.ATOM, 32,
                               [self.atom("_NET_WM_WINDOW_TYPE_" + kind)])
        window.set_wm_normal_hints(flags=1)  # the place is the user's
        for name, value in properties.items():
            window.change_property(self.atom(name), Xatom.CARDINAL, 32, value)
        window.map()
        self.display.sync()
        wait_for(lambda: self.is_viewable(window), message=f"a window of the type {kind}")
        return window

    def tell(self, name, *data, window=None):
        event = protocol.event.ClientMessage(window=window or self.root, client_type=self.atom(name),
                                             data=(32, [*data, 0, 0, 0, 0, 0][:5]))
        self.root.send_event(event, X.SubstructureRedirectMask | X.SubstructureNotifyMask)
        self.display.sync()

    def point(self, x, y):
        xtest.fake_input(self.eyes, X.MotionNotify, x=x, y=y)
        self.eyes.sync()

    def click(self, x, y, button=1):
        self.point(x, y)
        for event in (X.ButtonPress, X.ButtonRelease):
            xtest.fake_input(self.eyes, event, button)
        self.eyes.sync()

    def press(self, key):
        code = self.display.keysym_to_keycode(XK.string_to_keysym(key))
        for event in (X.KeyPress, X.KeyRelease):
            xtest.fake_input(self.display, event, code)
        self.display.sync()

    def focus(self):
        """The window that has the keyboard; a number for none."""
        focus = self.display.get_input_focus().focus
        return getattr(focus, "id", focus)

    def pixels(self, x, y, width, height):
        """Of the screen: one row after the other, a tuple (red, green, blue) for each pixel."""
        data = self.eyes.screen().root.get_image(x, y, width, height, X.ZPixmap, 0xffffffff).data
        return [[(data[i + 2], data[i + 1], data[i]) for i in range(4 * width * row, 4 * width * (row + 1), 4)]
                for row in range(height)]


def picture(image):
    """Rows of premultiplied pixels (alpha, red, green, blue)."""
    data, stride = image.get_data(), image.get_stride()
    return [[(data[i + 3], data[i + 2], data[i + 1], data[i]) for i in range(y * stride, y * stride + 4 * image.get_width(), 4)]
            for y in range(image.get_height())]


def expected(pixel, ground, is_composited):
    """What a pixel of the tile looks like on a ground."""
    alpha, *color = pixel
    if is_composited:
        return tuple(c + g * (255 - alpha) / 255 for c, g in zip(color, ground))
    return tuple(c * 255 / alpha for c in color) if alpha > 127 else ground


def differs(screen, ground, image, x, y, is_composited, edge=24):
    """The first pixel of the screen that is not the tile's on the ground that was seen before, or this ground's."""
    wanted, width, height = picture(image), image.get_width(), image.get_height()
    left, top, right, bottom = (max(0, x - edge), max(0, y - edge), min(len(ground[0]), x + width + edge),
                                min(len(ground), y + height + edge))
    for row, pixels in enumerate(screen.pixels(left, top, right - left, bottom - top), top):
        for column, pixel in enumerate(pixels, left):
            is_inside = x <= column < x + width and y <= row < y + height
            below = ground[row][column]
            should = expected(wanted[row - y][column - x], below, is_composited) if is_inside else below
            if any(abs(a - b) > 2 for a, b in zip(pixel, should)):
                return f"{pixel} for {should} at {column - x}, {row - y} of the tile"
    return None


def shows(screen, ground, image, x, y, is_composited=False):
    """Waits until the tile is on the screen, pixel by pixel, and nothing around it."""
    end = time.monotonic() + 8
    while difference := differs(screen, ground, image, x, y, is_composited):
        assert time.monotonic() < end, difference
        time.sleep(0.2)


def is_seen(screen, place):
    """Whether what is in the middle of the tile is on the screen: its ground is almost white."""
    x, y, width, height = place
    return min(screen.pixels(x + width - 12, y + height // 2, 1, 1)[0][0]) > 0xd0


@contextlib.contextmanager
def desktop(rig, name, *options, monitors=1):
    """A screen with a window manager, until the end of the context."""
    with rig.session():
        yield X11Screen(rig, name, *options, monitors=monitors)


def manager_options(name):
    return next((options for options in COMPOSES.get(name, ()) if options is not None), ())


# The cells


def below(rig, name):
    with desktop(rig, name, *manager_options(name)) as screen:
        early = screen.new_window(x=500, width=780, height=500)
        focused = screen.focus()
        rig.tile(*AT)
        tile = screen.tile()
        late = screen.new_window(x=800, y=40, width=400, height=300)
        for window in (early, late):
            wait_for(lambda: screen.is_above(window, tile), message="a window above the tile")
        early.configure(stack_mode=X.Below)
        screen.display.sync()
        time.sleep(0.3)
        assert screen.is_above(early, tile), "a window that is lowered goes below the tile"
        assert screen.focus() in (focused, late.id) or screen.focus() != tile.id, "the tile has the focus"
        in_list = tile.id in screen.property(screen.root, "_NET_CLIENT_LIST")
        assert not in_list or "_NET_WM_STATE_SKIP_TASKBAR" in screen.names(tile, "_NET_WM_STATE"), "it is in the taskbar"
        for window in (early, late):
            window.destroy()
        screen.display.sync()
        time.sleep(0.5)
        assert screen.focus() != tile.id, "the tile gets the focus when all windows are gone"
        screen.tell("_NET_NUMBER_OF_DESKTOPS", 2)
        screen.tell("_NET_CURRENT_DESKTOP", 1)
        if name == "i3":
            rig.run("i3-msg", "workspace", "7")
        wait_for(lambda: name == "i3" or screen.property(screen.root, "_NET_CURRENT_DESKTOP") == [1],
                 message="the second workspace")
        time.sleep(0.3)
        assert screen.is_viewable(tile) and is_seen(screen, screen.place(tile)), "it is not on every workspace"


def clicks(rig, name):
    with desktop(rig, name, *manager_options(name)) as screen:
        rig.tile(*AT)
        tile = screen.tile()
        x, y, width, height = wait_for(lambda: screen.place(tile))
        middle = x + width // 2, y + height // 2
        screen.point(*middle)
        below_pointer = screen.root.query_pointer().child
        assert not below_pointer or screen.height(below_pointer) != screen.height(tile), "the tile is under the pointer"
        if name in HAS_ROOT_MENU:
            viewable = lambda: {child.id for child in screen.root.query_tree().children if screen.is_viewable(child)}
            before = viewable()
            screen.click(*middle, button=3)
            wait_for(lambda: viewable() - before, 3, message="the root menu")
            screen.press("Escape")
        files = screen.new_window("DESKTOP", width=1280, height=800)
        wait_for(lambda: screen.is_above(tile, files), message="the tile above a desktop")
        while screen.display.pending_events():
            screen.display.next_event()
        screen.click(*middle)
        wait_for(lambda: any(screen.display.next_event().type == X.ButtonPress
                             for _ in range(screen.display.pending_events())), 3, message="the click")


def show_desktop(rig, name):
    for file_manager in ((), ("pcmanfm", "--desktop"), ("xfdesktop",)):
        if name == "kwin_x11" and not file_manager or name == XWAYLAND and file_manager == ("xfdesktop",):
            continue  # the one shows the desktop by raising a window of that type, in the other xfdesktop shows none
        with desktop(rig, name, *manager_options(name)) as screen:
            rig.tile(*AT)
            tile = screen.tile()
            if file_manager:
                rig.start(*file_manager, env={"GDK_BACKEND": "x11"})
                files = file_managers_desktop(screen, file_manager[0])
                for _ in range(3):
                    wait_for(lambda: screen.is_above(tile, files), 3, message=f"the tile above {file_manager[0]}")
                    screen.click(600, 700)
                    time.sleep(0.4)
            normal = screen.new_window(x=100, y=250, width=500, height=400, color=0xff0000)
            covers = lambda: screen.pixels(400, 500, 1, 1)[0][0] == (0xff, 0, 0)
            wait_for(covers, message="a window")
            for is_wanted in (True, False, True):
                screen.press("F12") if name == "fluxbox" else screen.tell("_NET_SHOWING_DESKTOP", is_wanted)
                wait_for(lambda: covers() != is_wanted, 5, message='"show desktop"')
                wait_for(lambda: is_seen(screen, screen.place(tile)), 3, message='the tile on "show desktop"')
            assert not file_manager or screen.is_above(tile, files), "the tile is below the file manager's desktop"
            normal.destroy()


def file_managers_desktop(screen, name):
    """The window that is a file manager's desktop."""
    def found():
        windows = [screen.window(id) for id in screen.property(screen.root, "_NET_CLIENT_LIST")]
        return [window for window in windows if screen.is_viewable(window) and screen.place(window)[2] > 1000
                and "_NET_WM_WINDOW_TYPE_DESKTOP" in screen.names(window, "_NET_WM_WINDOW_TYPE")]
    return wait_for(found, 20, message=f"the desktop of {name}")[0]


def panels(rig, name):
    """A panel of 40 pixels at the top, then at the bottom of either of two monitors; a tile on each of them."""
    with desktop(rig, name, *manager_options(name), monitors=2) as screen:
        width, height = screen.size

        def edges(x):
            """Where the free part of a monitor begins and ends: thin windows are panels, ours and the window manager's."""
            top, bottom = 0, height
            for child in screen.root.query_tree().children:
                place = screen.geometry(child)
                if place and screen.is_viewable(child) and 5 < place[3] < 100 and place[2] > 300 and x <= place[0] < x + width:
                    top = max(top, place[1] + place[3]) if place[1] < height / 2 else top
                    bottom = min(bottom, place[1]) if place[1] >= height / 2 else bottom
            return top, bottom

        for is_top, anchor in ((True, "top-left"), (False, "bottom-left")):
            wanted = lambda: [(x + 16, edges(x)[0] + 16 if is_top else edges(x)[1] - 16 - 170, 364, 170)
                              for _, x in screen.monitors]
            places = lambda: sorted(filter(None, map(screen.place, screen.tiles())))
            tiles = [rig.tile(*AT, "--monitor", monitor, "--anchor", anchor) for monitor, _ in screen.monitors]
            for panel_x in (None, *(x for _, x in screen.monitors)):
                panel = panel_x is not None and screen.new_window(
                    "DOCK", x=panel_x, y=0 if is_top else height - 40, width=width, height=40, color=0x222222,
                    _NET_WM_STRUT_PARTIAL=[0, 0, 40 * is_top, 40 * (not is_top), 0, 0, 0, 0]
                    + [panel_x, panel_x + width - 1] * 2)
                try:
                    wait_for(lambda: places() == wanted(), 4)
                except AssertionError:
                    raise AssertionError(f"the tiles are at {places()} instead of {wanted()}") from None
                if panel:
                    panel.destroy()
                    screen.display.sync()
                    wait_for(lambda: places() == wanted(), 4, message="the tiles' places without a panel")
                    time.sleep(0.3)  # openbox puts the next panel elsewhere while it forgets this one
            for tile in tiles:
                tile.end()
            wait_for(lambda: not screen.tiles())


def corners(rig, name):
    without, own = COMPOSES.get(name, ((), None))
    ways = ([("without a compositor", without, False)] if without is not None else [])
    ways += [("with a compositor", own if own is not None else without, True)]
    for words, options, is_composited in ways:
        with desktop(rig, name, *options) as screen:
            if is_composited and own is None:
                rig.start("picom", "--backend", "xrender", "--config", "/dev/null")
            if is_composited:
                wait_for(lambda: screen.display.get_selection_owner(screen.atom("_NET_WM_CM_S0")), message="the compositor")
            ground = screen.pixels(0, 0, 1280, 800)
            for scale in ("1", "1.5", "2", "3"):
                tile = rig.tile(*AT, "--scale", scale, "--anchor", "center")
                x, y, *_ = screen.place(screen.tile())
                try:
                    shows(screen, ground, render(rig, "--scale", scale), x, y, is_composited)
                except AssertionError as different:
                    raise AssertionError(f"{words}, at {scale}x: {different}") from None
                tile.end()
                wait_for(lambda: not screen.tiles())


CELLS = {BELOW: below, CLICKS: clicks, SHOW_DESKTOP: show_desktop, PLACE: panels, CORNERS: corners}
NOT_THERE = {"i3": (SHOW_DESKTOP,), "awesome": (SHOW_DESKTOP,)}  # they neither show the desktop nor have icons on it


def cells(name, rig):
    return results({wanted: functools.partial(cell, rig, name) for wanted, cell in CELLS.items()
                    if wanted not in NOT_THERE.get(name, ())})


DESKTOPS = {name: functools.partial(cells, name) for manager in WINDOW_MANAGERS
            for name in ((manager, XWAYLAND) if manager == "mutter" else (manager,))}
