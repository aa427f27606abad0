#!/usr/bin/python3
"""What the tile costs on the desktop, next to programs that show a text every 30 seconds.

    /usr/bin/python3 bench/desktop/compare.py build/release/bin [--seconds 90]

Each program is started alone on a desktop without a screen. Printed are, as they are and as a ratio of the tile's to the
peer's: the time from its start to its first frame (the median of several starts), its share of memory (PSS; here nothing else
shares its libraries, on a desktop other programs do), the part of it that nobody can share, and how often it woke up in a
minute (voluntary context switches of its threads, counted after it has settled).
"""
import argparse
import glob
import os
import re
import statistics
import subprocess
import sys
import time

from Xlib import X

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../script"))
from headless import Rig, wait_for  # noqa: E402

STARTS = 7

CONKY = """conky.config = { own_window = true, own_window_type = 'desktop', own_window_argb_visual = true,
                    alignment = 'top_right', gap_x = 16, gap_y = 16, update_interval = 30, double_buffer = true,
                    use_xft = true, font = 'Quicksand:size=12', out_to_x = true, out_to_stderr = false,
                    minimum_width = 364, minimum_height = 170 }
conky.text = [[Kivo's Mac
Locked
Lid closed
${time %H:%M:%S}]]
"""
WAYBAR = """{"layer": "bottom", "position": "top", "height": 40, "modules-right": ["clock"],
             "clock": {"interval": 30, "format": "Kivo's Mac Locked {:%H:%M:%S}"}}"""


def prepare(rig):
    rig.save('{"status": "locked", "device_name": "Kivo\'s Mac", "reason": "Lid closed"}', "2026-11-16T15:41:35Z")
    for name, content in (("conky.conf", CONKY), ("waybar.json", WAYBAR), ("waybar.css", "* { font-family: Quicksand; }")):
        with open(rig.path(name), "w") as file:
            file.write(content)


class OnX11:
    """The first frame is the first change of the screen where both programs draw."""
    peer = ("conky", "-c", "conky.conf")

    def __init__(self, rig):
        rig.x11()
        self.root = rig.openbox().screen().root

    def look(self):
        return self.root.get_image(960, 30, 200, 60, X.ZPixmap, 0xffffffff).data

    def first_frame(self, rig, argv):
        before = self.look()
        started = time.monotonic()
        process = rig.start(*argv)
        while self.look() == before:
            pass
        seconds = time.monotonic() - started
        process.end(9)
        wait_for(lambda: self.look() == before, message="an empty screen")
        return seconds


class OnWayland:
    """The first frame is the first buffer that the program hands to its surface, by its own protocol log."""
    peer = ("waybar", "-c", "waybar.json", "-s", "waybar.css")

    def __init__(self, rig):
        rig.sway()

    def first_frame(self, rig, argv):
        started = time.monotonic()
        process = subprocess.Popen(argv, env=rig.env | {"WAYLAND_DEBUG": "client"}, cwd=rig.home, text=True,
                                   stderr=subprocess.PIPE, stdout=subprocess.DEVNULL)
        next(line for line in process.stderr if re.search(r"attach\(wl_buffer", line))
        seconds = time.monotonic() - started
        process.kill()
        process.communicate()
        return seconds


def threads(pid):
    return glob.glob(f"/proc/{pid}/task/*/status")


def number(path, key):
    """The sum of the numbers behind `key` in a file of /proc."""
    with open(path) as file:
        return sum(int(line.split()[1]) for line in file if line.startswith(key))


def wakeups(pid):
    return sum(number(path, "voluntary_ctxt_switches:") for path in threads(pid))


def measure(make_desktop, programs, seconds):
    results = {}
    with Rig(programs) as rig:
        desktop = make_desktop(rig)
        prepare(rig)
        names = {"tarno-desktop": (rig.path("tarno-desktop"),), desktop.peer[0]: desktop.peer}
        for name, argv in names.items():
            starts = [desktop.first_frame(rig, argv) for _ in range(STARTS)]
            process = rig.start(*argv)
            time.sleep(5)
            pid = process.popen.pid
            before = wakeups(pid)
            share, own = (number(f"/proc/{pid}/smaps_rollup", key) for key in ("Pss:", "Pss_Anon:"))
            time.sleep(seconds)
            results[name] = (1000 * statistics.median(starts), share / 1024, own / 1024,
                             60 * (wakeups(pid) - before) / seconds)
            process.end(9)
    return results


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("programs", help="the folder of tarno-desktop, tarno-widget and tarno-status, built for release")
    parser.add_argument("--seconds", type=float, default=90, help="how long wake-ups are counted for each program")
    options = parser.parse_args()
    print(f"{'':16}{'first frame':>14}{'memory':>12}{'its own':>12}{'wake-ups':>16}")
    for make_desktop in (OnX11, OnWayland):
        child = os.fork()  # a rig gives up root for good
        if child:
            if os.waitpid(child, 0)[1] != 0:
                sys.exit(1)
            continue
        results = measure(make_desktop, options.programs, options.seconds)
        for name, (start, share, own, woken) in results.items():
            print(f"{name:16}{start:11.0f} ms{share:9.1f} MB{own:9.1f} MB{woken:12.1f}/min")
        tile, peer = results.values()
        ratios = [one / other if other else float("inf") for one, other in zip(tile, peer)]
        print(f"{'ratio':16}{ratios[0]:14.2f}{ratios[1]:12.2f}{ratios[2]:12.2f}{ratios[3]:16.2f}\n", flush=True)
        os._exit(0)


main()
