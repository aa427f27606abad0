"""Desktops without a screen, for pictures, measurements and tests: X11, a compositor with layer-shell, one without.

A rig starts what it needs in a home of its own, as an unprivileged user where it is made by root (some compositors refuse
root), and ends every process that it started, by its id. A program that is not installed ends the caller with SKIP.
"""
import os
import shutil
import subprocess
import sys
import tempfile
import threading
import time

from Xlib import X, display

SKIP = 77
NOBODY = 65534


def wait_for(condition, seconds=10, message="what was waited for"):
    """Calls `condition` until it returns something true, and returns that."""
    end = time.monotonic() + seconds
    while not (result := condition()):
        if time.monotonic() > end:
            raise AssertionError(f"{message} did not come within {seconds} s")
        time.sleep(0.02)
    return result


class Process:
    """A program with its standard error, line by line."""

    def __init__(self, argv, env, **options):
        self.popen = subprocess.Popen(argv, env=env, stderr=subprocess.PIPE, text=True, **options)
        self.lines = []
        self.reader = threading.Thread(target=lambda: self.lines.extend(self.popen.stderr), daemon=True)
        self.reader.start()
        # The list grows while the program runs: extend() appends line by line.

    def end(self, signal=15):
        """Ends it and returns its exit code."""
        self.popen.send_signal(signal)
        return self.wait()

    def wait(self, seconds=10):
        code = self.popen.wait(seconds)
        self.reader.join(seconds)
        return code


class Rig:
    def __init__(self, programs, *files):
        """`programs` is the folder of the tarno programs, everything else comes from PATH; `files` are copied beside
        them."""
        self.home = tempfile.mkdtemp(prefix="tarno-desktop-test-")
        self.started = []
        names = ("tarno-desktop", "tarno-widget", "tarno-status")
        for file in (*(os.path.join(programs, name) for name in names), *files):
            shutil.copy(file, self.home)
        if os.geteuid() == 0:
            os.chown(self.home, NOBODY, NOBODY)
            os.setgroups([])
            os.setgid(NOBODY)
            os.setuid(NOBODY)
        self.env = {name: os.environ[name] for name in ("PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS")
                    if name in os.environ}
        self.env |= {"HOME": self.home, "XDG_RUNTIME_DIR": self.home, "XDG_DATA_HOME": self.home + "/data",
                     "LANG": "C.UTF-8", "TZ": "UTC", "NO_AT_BRIDGE": "1"}

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for process in reversed(self.started):
            if process.popen.poll() is None:
                process.popen.kill()
            process.wait()
        shutil.rmtree(self.home, ignore_errors=True)

    def path(self, name):
        return os.path.join(self.home, name)

    def start(self, *argv, env=None, stdout=subprocess.DEVNULL):
        if not shutil.which(argv[0]):
            print(f"skipped: {argv[0]} is not installed")
            sys.exit(SKIP)
        self.started.append(Process(argv, self.env | (env or {}), stdout=stdout, cwd=self.home))
        return self.started[-1]

    def run(self, *argv, **options):
        return subprocess.run(argv, env=self.env, cwd=self.home, capture_output=True, check=True, timeout=20,
                              **options).stdout

    # Desktops

    def x11(self, *server):
        """One screen of 1280 x 800 that is called "screen"; the server is kept when its last client goes."""
        server = server or ("Xvfb", "-screen", "0", "1280x800x24")
        server = self.start(*server, "-displayfd", "1", "-noreset", "-nolisten", "tcp", stdout=subprocess.PIPE)
        self.env["DISPLAY"] = ":" + server.popen.stdout.readline().strip()
        return server

    def monitors(self):
        """X11 with monitors that can be turned on and off, DUMMY0 to DUMMY15; the first is on."""
        with open(self.path("xorg.conf"), "w") as file:
            file.write("""Section "Device"
                            Identifier "device"
                            Driver "dummy"
                            VideoRam 65536
                          EndSection
                          Section "Screen"
                            Identifier "screen"
                            Device "device"
                            DefaultDepth 24
                          EndSection""")
        return self.x11("/usr/lib/xorg/Xorg", "-config", self.path("xorg.conf"), "-logfile", self.path("xorg.log"),
                        "-novtswitch", "-sharevts")

    def openbox(self):
        """Manages the windows of X11; returns the display."""
        self.start("openbox")
        screen = display.Display(self.env["DISPLAY"])
        root = screen.screen().root
        probe = root.create_window(0, 0, 9, 9, 0, X.CopyFromParent)

        def is_managed():
            probe.map()  # what is mapped while openbox starts is left alone for good
            return probe.get_full_property(screen.intern_atom("_NET_FRAME_EXTENTS"), X.AnyPropertyType)

        wait_for(is_managed, message="openbox")
        probe.destroy()
        screen.sync()
        return screen

    def sway(self, **backend):
        """Layer-shell, with one output HEADLESS-1 of 1280 x 720 on a plain ground; or on another backend."""
        with open(self.path("sway.conf"), "w") as file:
            file.write("output * bg #336699 solid_color\nxwayland disable\n")
        backend = {"WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman"} | backend
        compositor = self.start("sway", "-c", self.path("sway.conf"), env=backend)
        socket = wait_for(lambda: [name for name in os.listdir(self.home) if name.startswith("sway-ipc")])[0]
        self.env |= {"WAYLAND_DISPLAY": "wayland-1", "SWAYSOCK": self.path(socket)}
        return compositor

    def weston(self):
        """No layer-shell; one output of 1024 x 640 on a plain ground."""
        with open(self.path("weston.ini"), "w") as file:
            file.write("[shell]\nbackground-color=0xff336699\npanel-position=none\n")
        compositor = self.start("weston", "--backend=headless-backend.so", "--width=1024", "--height=640", "--use-pixman",
                                "--socket=tarno", "--idle-time=0", "--debug", f"--config={self.path('weston.ini')}")
        wait_for(lambda: os.path.exists(self.path("tarno")), message="weston")
        self.env["WAYLAND_DISPLAY"] = "tarno"
        return compositor

    def session_bus(self):
        """D-Bus, through which programs and screen readers meet."""
        bus = self.start("dbus-daemon", "--session", "--nofork", "--print-address", stdout=subprocess.PIPE)
        self.env["DBUS_SESSION_BUS_ADDRESS"] = bus.popen.stdout.readline().strip()
        del self.env["NO_AT_BRIDGE"]

    # The programs

    def tile(self, *options, env=None):
        """Starts tarno-desktop and waits until it says that the tile is shown."""
        tile = self.start(self.path("tarno-desktop"), *options, env=env)
        wait_for(lambda: tile.lines or tile.popen.poll() is not None, message="the tile")
        return tile

    def save(self, record, at):
        self.run(self.path("tarno-status"), "save", "--received-at", at, input=record.encode())
