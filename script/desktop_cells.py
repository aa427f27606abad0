"""What the cells of the desktop matrix have in common: what is wanted, the pictures they look for, and how they are tried."""
import cairo

BELOW = "below all windows (tiling ones too), in no taskbar, no focus, all workspaces"
CLICKS = "clicks pass to what lies below, root menu included"
SHOW_DESKTOP = 'stays on "show desktop"; still there after clicking a file manager\'s desktop'
PLACE = "right place with panels on either of two monitors"
CORNERS = "clean corners with and without a compositor, at 1x, 1.5x, 2x, 3x"
WANTED = (BELOW, CLICKS, SHOW_DESKTOP, PLACE, CORNERS)

AT = ("--at", "2026-11-16T15:41:36Z")


def render(rig, *options):
    """What tarno-widget draws, as a cairo image."""
    rig.run(rig.path("tarno-widget"), "render", "--output", rig.path("render.png"), *AT, *options)
    return cairo.ImageSurface.create_from_png(rig.path("render.png"))


def results(cells):
    """Tries the cells, {what is wanted: function}: those that raise nothing are fine."""
    def attempt(cell):
        try:
            return cell() or True
        except Exception as error:  # a desktop that breaks is a cell that cannot be had
            return f"{type(error).__name__}: {error}" if not isinstance(error, AssertionError) else str(error)
    return {wanted: attempt(cell) for wanted, cell in cells.items()}
