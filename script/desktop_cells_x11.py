"""What the tile is wanted to do on X11, each tried with every window manager on a desktop without a screen.

DESKTOPS has one function for each window manager. It takes a rig and returns for each of WANTED that means something there
True, or why not.
"""
import contextlib
import functools

import cairo
from Xlib import X, XK, Xatom
from Xlib.ext import xtest

from desktop_cells import ABOVE, AT, BELOW, CLICKS, CORNERS, PLACE, SHOW_DESKTOP, is_at, render, results
from headless import Screen, settled, wait_for
from window_managers import WINDOW_MANAGERS, XWAYLAND

GROUND = 0x336699


class X11Screen(Screen):
    """What window managers see of an X11 screen. What is looked at and clicked is `eyes`: the screen outside where X11 is
    inside of Wayland, else the same. Windows can go at any time, so ask about them inside of wait_for()."""

    def __init__(self, rig, eyes=None):
        super().__init__(rig)
        self.eyes = eyes or self
        # A new window with the number of one that went confuses window managers that have not forgotten that one yet.
        self.display.display.free_resource_id = lambda number: None
        pixmap = self.root.create_pixmap(*self.size, self.display.screen().root_depth)
        pixmap.fill_rectangle(pixmap.create_gc(foreground=GROUND), 0, 0, *self.size)
        self.root.change_attributes(background_pixmap=pixmap)
        self.root.clear_area()
        for name in ("_XROOTPMAP_ID", "ESETROOT_PMAP_ID"):  # where compositors look for it
            self.set(self.root, name, Xatom.PIXMAP, [pixmap.id])
        self.eyes.point(640, 790)
        settled(lambda: self.eyes.pixel(640, 600))  # desktops fade in

    def names(self, window, name):
        return {self.display.get_atom_name(atom) for atom in self.property(window, name)}

    def supports(self, name):
        return name in self.names(self.root, "_NET_SUPPORTED")

    def clients(self):
        return [self.display.create_resource_object("window", id) for id in self.property(self.root, "_NET_CLIENT_LIST")]

    def tiles(self):
        """The windows of tiles, managed or not."""
        found = level = [self.root]
        for _ in range(4):  # frames in frames
            level = [child for window in level for child in window.query_tree().children]
            found = found + level
        return [window for window in found if window.get_wm_class() == ("tarno-desktop", "Tarno-desktop")]

    def tile(self):
        """The window of the only tile, once it is on the screen."""
        return wait_for(lambda: [tile for tile in self.tiles() if self.is_viewable(tile) and self.place(tile)[2] > 1],
                        "the tile's window")[0]

    def place(self, window):
        geometry, root = window.get_geometry(), window.translate_coords(self.root, 0, 0)
        return -root.x, -root.y, geometry.width, geometry.height

    def height(self, window):
        """In the stack of windows."""
        return self.root.query_tree().children.index(self.frame(window))

    def is_above(self, upper, lower):
        return self.height(upper) > self.height(lower)

    def is_seen(self, tile):
        """Whether what is in the middle of a tile is on the screen: its ground is almost white."""
        x, y, width, height = self.place(tile)
        return min(self.eyes.pixel(x + width - 12, y + height // 2).to_bytes(3, "little")) > 0xd0

    def focus(self):
        """The window that has the keyboard; a number for none."""
        focus = self.display.get_input_focus().focus
        return getattr(focus, "id", focus)

    def new_window(self, *arguments, **options):
        """A mapped window, such as a program's or a file manager's desktop. Mutter never maps some of the windows that come while
        another one goes, so this tries again."""
        def attempt():
            window = self.map_window(*arguments, **options)
            try:
                return wait_for(lambda: self.is_viewable(window) and window, "the window", seconds=5)
            except AssertionError:
                window.destroy()
                raise

        return wait_for(attempt)

    def map_window(self, kind="NORMAL", x=0, y=0, width=300, height=200, color=0x00ff00, is_ignored=False, **properties):
        window = self.root.create_window(x, y, width, height, 0, X.CopyFromParent, background_pixel=color,
                                         override_redirect=is_ignored,
                                         event_mask=X.ButtonPressMask | X.StructureNotifyMask)
        self.set(window, "_NET_WM_WINDOW_TYPE", Xatom.ATOM, [self.atom("_NET_WM_WINDOW_TYPE_" + kind)])
        window.set_wm_normal_hints(flags=1)  # the place is the user's
        for name, value in properties.items():
            self.set(window, name, Xatom.CARDINAL, value)
        window.map()
        self.display.sync()
        return window

    def catch_up(self):
        """Waits until the window manager has handled all that came before, since it handles one event after the other."""
        self.new_window(width=9, height=9).destroy()
        self.display.sync()

    def press(self, key):
        code = self.display.keysym_to_keycode(XK.string_to_keysym(key))
        for event in (X.KeyPress, X.KeyRelease):
            xtest.fake_input(self.display, event, code)
        self.display.sync()

    def picture(self):
        """The screen once its middle, where no clock ticks, keeps still; as a ground for is_at()."""
        settled(lambda: bytes(self.eyes.look(60, 100, 1160, 600).get_data()))
        return cairo.SurfacePattern(self.eyes.look(0, 0, *self.size))


def cut(image):
    """How an image looks on a screen that knows no transparency."""
    data = bytearray(image.get_data())
    for at in range(0, len(data), 4):
        alpha = data[at + 3]
        if 0 < alpha < 255:
            data[at:at + 4] = [*(min(c * 255 // alpha, 255) for c in data[at:at + 3]), 255] if alpha > 127 else bytes(4)
    return cairo.ImageSurface.create_for_data(data, cairo.FORMAT_ARGB32, image.get_width(), image.get_height())


def is_tile_at(screen, image, x, y, ground, is_composited=False):
    return is_at(screen.eyes, image if is_composited else cut(image), x, y, ground, edge=24, tolerance=2)


@contextlib.contextmanager
def desktop(rig, name, is_composited=False, monitors=1):
    """A screen with a window manager, until the end of the context; some compose in any case, others never by themselves."""
    manager = WINDOW_MANAGERS[name]
    with rig.session():
        rig.session_bus()
        if name == XWAYLAND:
            yield X11Screen(rig, rig.mutter_with_xwayland(monitors))
        else:
            rig.x11() if monitors == 1 else rig.two_monitors()
            composes = manager.plain is None or is_composited and manager.composing is not None
            rig.window_manager(name, *(manager.composing if composes else manager.plain))
            screen = X11Screen(rig)
            if name == "enlightenment":  # it complains about what is missing here
                wait_for(lambda: not [screen.tell("_NET_CLOSE_WINDOW", window=window) for window in screen.clients()
                                      if "WM_DELETE_WINDOW" in screen.names(window, "WM_PROTOCOLS")], "the end of its messages")
            yield screen


# The cells


def below(rig, name):
    with desktop(rig, name) as screen:
        early = screen.new_window(x=500, width=780, height=500)
        rig.tile(*AT)
        tile = screen.tile()
        late = screen.new_window(x=800, y=40, width=400, height=300)
        for window in (early, late):
            wait_for(lambda: screen.is_above(window, tile), "a window above the tile")
        early.configure(stack_mode=X.Below)
        screen.catch_up()
        wait_for(lambda: screen.is_above(early, tile), "a window that is lowered above the tile")
        assert screen.focus() != tile.id, "the tile has the focus"
        wait_for(lambda: tile not in screen.clients() or "_NET_WM_STATE_SKIP_TASKBAR" in screen.names(tile, "_NET_WM_STATE"),
                 "what keeps it out of the taskbar")
        for window in (early, late):
            window.destroy()
        screen.catch_up()
        assert screen.focus() != tile.id, "the tile gets the focus when all windows are gone"
        if name == "i3":
            rig.run("i3-msg", "workspace", "7")
        elif screen.supports("_NET_CURRENT_DESKTOP"):
            screen.tell("_NET_NUMBER_OF_DESKTOPS", 2)
            wait_for(lambda: screen.tell("_NET_CURRENT_DESKTOP", 1) or screen.property(screen.root, "_NET_CURRENT_DESKTOP") == [1],
                     "the second workspace")
        wait_for(lambda: screen.is_viewable(tile) and screen.is_seen(tile), "the tile on every workspace")
        assert screen.focus() != tile.id, "the tile gets the focus on an empty workspace"


def above(rig, name):
    with desktop(rig, name) as screen:
        rig.tile(*AT, "--layer", "above")
        tile, window = screen.tile(), screen.new_window(width=1280, height=800)
        wait_for(lambda: screen.is_above(tile, window), "the tile above a new window")
        window.configure(stack_mode=X.Above)
        screen.catch_up()
        wait_for(lambda: screen.is_above(tile, window), "the tile above a raised window")
        for is_full in (True, False) if screen.supports("_NET_WM_STATE_FULLSCREEN") else ():
            screen.tell("_NET_WM_STATE", is_full, screen.atom("_NET_WM_STATE_FULLSCREEN"), window=window)
            wait_for(lambda: screen.is_above(tile, window) != is_full,
                     f"the tile {'below' if is_full else 'above'} a window that {'fills' if is_full else 'filled'} the screen")


def clicks(rig, name):
    with desktop(rig, name) as screen:
        rig.tile(*AT)
        tile = screen.tile()
        x, y, width, height = screen.place(tile)
        middle = x + width // 2, y + height // 2
        screen.eyes.point(*middle)
        wait_for(lambda: screen.root.query_pointer().child != screen.frame(tile),
                 "something else than the tile under the pointer")
        files = screen.new_window("DESKTOP", width=1280, height=800)
        wait_for(lambda: screen.is_above(tile, files), "the tile above a desktop")

        events = lambda: [screen.display.next_event().type for _ in range(screen.display.pending_events())]
        wait_for(lambda: screen.eyes.click(*middle) or X.ButtonPress in events(), "the click")
        files.destroy()
        screen.catch_up()
        if WINDOW_MANAGERS[name].has_root_menu:
            viewable = lambda: {child.id for child in screen.root.query_tree().children if screen.is_viewable(child)}
            before = wait_for(viewable)
            screen.eyes.click(*middle, button=3)
            wait_for(lambda: viewable() - before, "the root menu")


def show_desktop(rig, name):
    for file_manager in ((), ("pcmanfm", "--desktop"), ("xfdesktop",)):
        if name == "kwin_x11" and not file_manager or name == XWAYLAND and file_manager == ("xfdesktop",):
            continue  # the one shows the desktop by raising a window of that type, in the other xfdesktop shows none
        with desktop(rig, name) as screen:
            rig.tile(*AT)
            tile = screen.tile()
            if file_manager:
                rig.start(*file_manager, env={"GDK_BACKEND": "x11"})
                is_desktop = lambda window: (
                    screen.is_viewable(window) and screen.place(window)[2] > 1000
                    and "_NET_WM_WINDOW_TYPE_DESKTOP" in screen.names(window, "_NET_WM_WINDOW_TYPE"))
                files = wait_for(lambda: list(filter(is_desktop, screen.clients())), f"the desktop of {file_manager[0]}")[0]
                for _ in range(3):
                    wait_for(lambda: screen.is_above(tile, files), f"the tile above {file_manager[0]}")
                    screen.eyes.click(600, 700)
                    screen.catch_up()
            normal = screen.new_window(x=100, y=250, width=500, height=400, color=0xff0000)
            covers = lambda: screen.eyes.pixel(400, 500) == 0xff0000
            wait_for(covers, "a window")
            for is_wanted in (True, False, True):
                screen.press("F12") if name == "fluxbox" else screen.tell("_NET_SHOWING_DESKTOP", is_wanted)
                wait_for(lambda: covers() != is_wanted, '"show desktop"')
                wait_for(lambda: screen.is_seen(tile), 'the tile on "show desktop"')
            wait_for(lambda: not file_manager or screen.is_above(tile, files), "the tile above the file manager's desktop")
            normal.destroy()


def panels(rig, name):
    """A panel of 40 pixels at the top, then at the bottom of either of two monitors; a tile on each of them."""
    outputs, width, height = (("XWAYLAND0", "XWAYLAND1"), 1280, 800) if name == XWAYLAND else (("DUMMY0", "DUMMY1"), 1024, 768)
    with desktop(rig, name, monitors=2) as screen:
        def edges(x):
            """Where the free part of a monitor begins and ends: thin windows are panels, ours and the window manager's."""
            top, bottom = 0, height
            for child in filter(screen.is_viewable, screen.root.query_tree().children):
                place = child.get_geometry()
                deep = place.height + 2 * place.border_width
                if 5 < deep < 100 and place.width > 300 and x <= place.x < x + width:
                    top = max(top, place.y + deep) if place.y < height / 2 else top
                    bottom = min(bottom, place.y) if place.y >= height / 2 else bottom
            return top, bottom

        def tiles_are_in_place():
            wanted = [(x + 16, edges(x)[0] + 16 if is_top else edges(x)[1] - 16 - 170, 364, 170) for x in (0, width)]
            places = sorted(map(screen.place, screen.tiles()))
            assert places == wanted, f"the tiles are at {places} instead of {wanted}"
            return True

        for is_top, anchor in ((True, "top-left"), (False, "bottom-left")):
            tiles = [rig.tile(*AT, "--monitor", output, "--anchor", anchor) for output in outputs]
            wait_for(tiles_are_in_place)
            for x in (0, width):
                panel = screen.new_window(
                    "DOCK", x=x, y=0 if is_top else height - 40, width=width, height=40, color=0x222222,
                    is_ignored=not screen.supports("_NET_WM_WINDOW_TYPE_DOCK"),
                    _NET_WM_STRUT_PARTIAL=[0, 0, 40 * is_top, 40 * (not is_top), 0, 0, 0, 0] + [x, x + width - 1] * 2)
                wait_for(tiles_are_in_place)
                panel.destroy()
                screen.catch_up()
                wait_for(tiles_are_in_place)
            for tile in tiles:
                tile.end()
            wait_for(lambda: not screen.tiles(), "the end of the tiles")


def corners(rig, name):
    manager = WINDOW_MANAGERS[name]
    for is_composited in (True,) if manager.plain is None else (False, True):
        with desktop(rig, name, is_composited) as screen:
            if is_composited:
                if manager.composing is None:
                    rig.start("picom", "--backend", "xrender", "--config", "/dev/null")
                wait_for(lambda: screen.display.get_selection_owner(screen.atom("_NET_WM_CM_S0")), "the compositor")
            ground = screen.picture()
            for scale in ("1", "1.5", "2", "3"):
                tile = rig.tile(*AT, "--scale", scale, "--anchor", "center")
                image = render(rig, "--scale", scale)
                wait_for(lambda: is_tile_at(screen, image, *screen.place(screen.tile())[:2], ground, is_composited))
                tile.end()
                wait_for(lambda: not screen.tiles(), "the end of the tile")


CELLS = {BELOW: below, ABOVE: above, CLICKS: clicks, SHOW_DESKTOP: show_desktop, PLACE: panels, CORNERS: corners}


def cells(name, rig):
    return results(rig, {wanted: functools.partial(cell, rig, name) for wanted, cell in CELLS.items()
                         if wanted != SHOW_DESKTOP or WINDOW_MANAGERS[name].shows_desktop})


DESKTOPS = {name: functools.partial(cells, name) for name in WINDOW_MANAGERS}
