"""Bars with the configuration of docs/companion.md, on desktops without a screen: each shows what was saved.

    bars_test.py {waybar|i3bar|polybar} FOLDER OF THE PROGRAMS
"""

import datetime
import pathlib
import re
import sys
import time

from document import block
from headless import Rig, wait_for
from Xlib import X, display

RECORD = '{"status": "%s", "device_name": "Kivo\'s <Mac>"}'


def save(rig, status, age=0):
    moment = datetime.datetime.now(datetime.timezone.utc) - datetime.timedelta(seconds=age)
    rig.save(RECORD % status, moment.isoformat())


def write(rig, name, text):
    pathlib.Path(rig.path(name)).write_text(text, encoding="utf-8")
    return rig.path(name)


def settled(picture):
    """What `picture` returns once it stays the same for a while."""
    def stays():
        before = picture()
        time.sleep(0.3)
        return picture() == before and before
    return wait_for(stays, message="a bar that keeps still")


def shows_each_status(rig, picture):
    """A bar of text: another for each status, and the same for the same status."""
    empty = settled(picture)
    pictures = []
    for status in ("locked", "unlocked", "locked"):
        before = settled(picture)
        save(rig, status)
        wait_for(lambda: picture() != before, message=f"another picture for {status}")
        pictures.append(settled(picture))
    assert pictures[0] == pictures[2], "two pictures of one status"
    assert empty not in pictures, "a status looks like none"


def x11(rig):
    """The root window of a new screen, and what shows all of the screen."""
    rig.x11()
    root = display.Display(rig.env["DISPLAY"]).screen().root
    return root, lambda: root.get_image(0, 0, 1280, 800, X.ZPixmap, 0xFFFFFFFF).data


def waybar(rig):
    rig.session_bus()  # newer ones do not start without
    rig.sway()
    css = block("css", "waybar")
    colours = dict(re.findall(r"#custom-tarno\.?(\w*) \{.*background: #(\w+);", css))
    config = write(rig, "config", block("json", "waybar"))
    rig.start("waybar", "-c", config, "-s", write(rig, "style.css", css))

    def shown():
        """The words whose colour fills a part of the bar, and only these."""
        header, pixels = rig.run("grim", "-t", "ppm", "-g", "0,0 1280x20", "-").split(b"\n255\n", 1)
        assert header.startswith(b"P6"), header
        count = {word: sum(pixels[i:i + 3] == bytes.fromhex(colour) for i in range(0, len(pixels), 3))
                 for word, colour in colours.items()}
        return [word for word, pixels in count.items() if pixels > 300]

    assert list(colours) == ["", "locked", "unlocked"], colours
    for status, age, word in ((None, 0, ""), ("locked", 0, "locked"), ("unlocked", 0, "unlocked"), ("locked", 151, ""),
                              ("locked", 149, "locked")):
        if status:
            save(rig, status, age)
        wait_for(lambda: shown() == [word], message=f"waybar's colour for {word}")
    wait_for(lambda: shown() == [""], message="waybar's colour for a report that turns stale")


def i3bar(rig):
    root, picture = x11(rig)
    rig.start("i3", "-c", write(rig, "i3.conf", "# i3 config file (v4)\n" + block("conf", "sway and i3")))
    wait_for(lambda: len(root.query_tree().children) > 2, message="i3bar")
    shows_each_status(rig, picture)


def polybar(rig):
    _, picture = x11(rig)
    config = "[bar/test]\nmodules-left = tarno\nbackground = #204060\nforeground = #ffffff\n" + block("ini", "polybar")
    rig.start("polybar", "-q", "-c", write(rig, "polybar.ini", config), "test")
    wait_for(lambda: b"\x60\x40\x20" in picture(), message="polybar")
    shows_each_status(rig, picture)


if __name__ == "__main__":
    bar, folder = sys.argv[1:]
    with Rig(folder) as rig:
        rig.env["PATH"] = rig.home + ":" + rig.env["PATH"]
        {"waybar": waybar, "i3bar": i3bar, "polybar": polybar}[bar](rig)
