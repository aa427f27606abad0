"""What the cells of the desktop matrix have in common: what is wanted, the pictures they look for, and how they are tried."""
import unittest

import cairo

from headless import wait_for

BELOW = "below all windows (tiling ones too), in no taskbar, no focus, all workspaces"
CLICKS = "clicks pass to what lies below, root menu included"
ABOVE = "`--layer above` above new windows, below what fills the screen, and back"
SHOW_DESKTOP = 'stays on "show desktop"; still there after clicking a file manager\'s desktop'
PLACE = "right place with panels on either of two monitors"
CORNERS = "clean corners with and without a compositor, at 1x, 1.5x, 2x, 3x"
WANTED = (BELOW, ABOVE, CLICKS, SHOW_DESKTOP, PLACE, CORNERS)

AT = ("--at", "2026-11-16T15:41:36Z")
BLUE, BLACK = cairo.SolidPattern(0x33 / 255, 0x66 / 255, 0x99 / 255), cairo.SolidPattern(0, 0, 0)


def render(rig, *options):
    """What tarno-widget draws, as a picture."""
    rig.run(rig.path("tarno-widget"), "render", "--output", rig.path("render.png"), *AT, *options)
    return cairo.ImageSurface.create_from_png(rig.path("render.png"))


def rows(picture):
    """The bytes of each row, top to bottom."""
    data, stride = bytes(picture.get_data()), picture.get_stride()
    return [data[y * stride:(y + 1) * stride] for y in range(picture.get_height())]


def on_ground(image, ground, edge=2, x=0, y=0):
    """A picture of the image at x, y of the ground, a cairo pattern, and of what surrounds it up to `edge` pixels away."""
    picture = cairo.ImageSurface(cairo.FORMAT_ARGB32, image.get_width() + 2 * edge, image.get_height() + 2 * edge)
    context = cairo.Context(picture)
    context.translate(edge - x, edge - y)
    context.set_source(ground)
    context.paint()
    context.set_source_surface(image, x, y)
    context.paint()
    return picture


def is_at(screen, image, x, y, ground=BLUE, edge=2, tolerance=0):
    """Whether the image, pixel by pixel, and nothing but ground around it are on the screen; raises what differs first."""
    wanted = on_ground(image, ground, edge, x, y)
    width, height = wanted.get_width(), wanted.get_height()
    seen = rows(screen.look(x - edge, y - edge, width, height))
    for row, (these, those) in enumerate(zip(seen, rows(wanted))):
        for at in range(len(those) if these != those else 0):
            assert abs(these[at] - those[at]) <= tolerance or at % 4 == 3, (
                f"{these[at & ~3:][:3].hex()} for {those[at & ~3:][:3].hex()} at {at // 4 - edge}, {row - edge} of the tile")
    return True


def shows(screen, image, x, y, ground=BLUE, **options):
    wait_for(lambda: is_at(screen, image, x, y, ground, **options))


def results(rig, cells):
    """Tries the cells, {what is wanted: function}, each in a session of its own: those that raise nothing are fine."""
    def attempt(cell):
        try:
            with rig.session():
                cell()
            return True
        except unittest.SkipTest:
            raise
        except Exception as error:  # a desktop that breaks is a cell that cannot be had
            return str(error) if isinstance(error, AssertionError) else repr(error)
    return {wanted: attempt(cell) for wanted, cell in cells.items()}
