"""The tile on Wayland: as a layer surface, and as a plain window where there are no layers."""
import glob
import os

from Xlib import display, protocol

from support import AT, GONE, LOCKED, SAVED, picture, render, run_tests, screen_with, wait_for


def shows(rig, output, width, height, *tiles):
    """Waits until the output shows these tiles and nothing else."""
    def looks_right():
        rig.run("grim", "-o", output, rig.path("screen.png"))
        return picture(rig.path("screen.png")) == screen_with(width, height, *tiles)
    wait_for(looks_right, message=f"{[tile[1:] for tile in tiles]} on {output}")


def test_layer_surface(rig):
    compositor = rig.sway()
    rig.save(LOCKED, SAVED)
    places = [((), "medium", 1280 - 364 - 16, 16), (("--anchor", "left", "--margin", "0"), "small", 0, 275),
              (("--anchor", "bottom", "--margin", "7", "--layer", "above"), "large", 458, 720 - 382 - 7)]
    for options, family, x, y in places:
        tile = rig.tile("--family", family, *options, *AT)
        shows(rig, "HEADLESS-1", 1280, 720, (render(rig, "--family", family), x, y))
        assert (tile.end(), len(tile.lines)) == (0, 1), tile.lines

    layers = [("above", "small", 555, "layer-shell's top layer on HEADLESS-1"), ("normal", "medium", 458, "as a plain Wayland"),
              ("desktop", "large", 458, "layer-shell's bottom layer on HEADLESS-1")]  # the last one started lies lowest
    tiles = [rig.tile("--layer", layer, "--family", family, "--anchor", "center", *AT) for layer, family, _, _ in layers]
    for tile, layer in zip(tiles, layers):
        assert layer[3] in tile.lines[0], tile.lines
    images = [render(rig, "--family", layer[1]) for layer in layers]
    shows(rig, "HEADLESS-1", 1280, 720, *reversed([(image, layer[2], (720 - image.get_height()) // 2)
                                                   for image, layer in zip(images, layers)]))
    assert [tile.end() for tile in tiles] == [0, 0, 0]

    tile = rig.tile(*AT)
    rig.run("swaymsg", "output HEADLESS-1 scale 2")
    shows(rig, "HEADLESS-1", 1280, 720, (render(rig, "--scale", "2"), 1280 - 2 * (364 + 16), 2 * 16))
    compositor.end(9)
    assert (tile.wait(), tile.lines[1:]) == (69, [GONE]), tile.lines


def test_layer_surface_outlives_its_monitor(rig):
    rig.x11()
    screen = display.Display(rig.env["DISPLAY"])
    protocols, close = screen.intern_atom("WM_PROTOCOLS"), screen.intern_atom("WM_DELETE_WINDOW")
    rig.sway(WLR_BACKENDS="x11", WLR_X11_OUTPUTS="2")
    rig.save(LOCKED, SAVED)
    tile, image = rig.tile("--monitor", "X11-2", "--anchor", "left", *AT), render(rig)
    windows = wait_for(lambda: screen.screen().root.query_tree().children)  # each is a monitor

    def unplug(monitor):
        monitor.send_event(protocol.event.ClientMessage(window=monitor, client_type=protocols,
                                                        data=(32, [close, 0, 0, 0, 0])))
        screen.sync()

    shows(rig, "X11-2", 1024, 768, (image, 16, 299))
    unplug(windows[1])
    shows(rig, "X11-1", 1024, 768, (image, 16, 299))
    unplug(windows[0])
    wait_for(lambda: b'"name": "X11-' not in rig.run("swaymsg", "-r", "-t", "get_outputs"), message="no monitor")
    rig.run("swaymsg", "create_output")
    shows(rig, "X11-3", 1024, 768, (image, 16, 299))
    assert (tile.end(), len(tile.lines)) == (0, 1), tile.lines


def test_plain_window(rig):
    compositor = rig.weston()
    rig.save(LOCKED, SAVED)
    tile, image = rig.tile(*AT), render(rig)
    assert tile.lines == ["tarno-desktop: shown as a plain Wayland window (there is no layer-shell): "
                          "the compositor places and stacks it\n"], tile.lines

    def is_shown_somewhere():
        for old in glob.glob(rig.path("wayland-screenshot-*")):
            os.remove(old)
        rig.run("weston-screenshooter")
        seen, ground = picture(glob.glob(rig.path("wayland-screenshot-*"))[0]), screen_with(1024, 640)[0]
        top = next((y for y in range(640) if seen[y] != ground), 0)
        left = len(os.path.commonprefix([seen[top + 85], ground])) // 4
        return seen == screen_with(1024, 640, (image, left, top))

    wait_for(is_shown_somewhere, message="the tile")
    compositor.end(9)
    assert (tile.wait(), tile.lines[1:]) == (69, [GONE]), tile.lines


run_tests(globals())
