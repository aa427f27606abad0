"""What the tests of tarno-desktop share: pictures of tiles and screens, and a clock of their own."""
import datetime
import mmap
import os
import struct
import sys
import time

import cairo

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../../script"))
from headless import Rig, wait_for  # noqa: E402, F401

AT = ("--at", "2026-11-16T15:41:36Z")
RECORD = '{"status": "%s", "device_name": "Kivo\'s Mac", "reason": "Lid closed", "face_present": true}'
LOCKED, UNLOCKED = RECORD % "locked", RECORD % "unlocked"
SAVED = "2026-11-16T15:41:35Z"
GONE = "tarno-desktop: the display went away\n"


def render(rig, *options):
    """What tarno-widget draws, as a cairo image."""
    rig.run(rig.path("tarno-widget"), "render", "--output", rig.path("render.png"), *AT, *options)
    return cairo.ImageSurface.create_from_png(rig.path("render.png"))


def rows(image):
    """Rows of premultiplied pixels, top to bottom."""
    data, stride = image.get_data(), image.get_stride()
    return [bytes(data[y * stride:y * stride + 4 * image.get_width()]) for y in range(image.get_height())]


def picture(path):
    return rows(cairo.ImageSurface.create_from_png(path))


def screen_with(width, height, *tiles):
    """The rows of a screen of plain ground with tiles on it: (image, x, y), bottom to top, in pixels."""
    screen = cairo.ImageSurface(cairo.FORMAT_ARGB32, width, height)
    context = cairo.Context(screen)
    context.set_source_rgb(0x33 / 255, 0x66 / 255, 0x99 / 255)
    context.paint()
    for tile in tiles:
        context.set_source_surface(*tile)
        context.paint()
    return rows(screen)


class Clock:
    """The wall clock of the programs that are started with `env`; see test_clock.cpp."""

    def __init__(self, rig, rate):
        self.start = int(time.time())
        with open(rig.path("clock"), "w+b") as file:
            file.write(struct.pack("4q", self.start, rate, 0, 0))
            file.flush()
            self.control = mmap.mmap(file.fileno(), 0)
        self.env = {"LD_PRELOAD": rig.path(os.path.basename(sys.argv[2])), "TARNO_TEST_CLOCK": rig.path("clock")}

    def now(self, ahead=0):
        """RFC 3339."""
        _, rate, step, _ = struct.unpack("4q", self.control)
        now = self.start + (time.time() - self.start) * rate + step + ahead
        return datetime.datetime.fromtimestamp(now, datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")

    @property
    def requests(self):
        """How many timelines were asked for: each is followed by one sleep."""
        return struct.unpack_from("q", self.control, 24)[0]

    def set(self, process, rate=None, step=0):
        """Sets the clock, as a person or a time server does."""
        _, old_rate, old_step, _ = struct.unpack("4q", self.control)
        struct.pack_into("2q", self.control, 8, rate or old_rate, old_step + step)
        process.popen.send_signal(10)


def run_tests(tests):
    """Runs the functions of a test file, each on a rig of its own; any exception fails it. The arguments are the folder of
    the programs and the library of the test clock."""
    for name, test in tests.items():
        if name.startswith("test_"):
            with Rig(*sys.argv[1:]) as rig:
                test(rig)
            print(f"passed: {name}", flush=True)
