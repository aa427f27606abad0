"""Desktops without a screen, for pictures, measurements and tests: X11, and Wayland compositors with layer-shell or without.

A rig starts what it needs in a home of its own, as an unprivileged user where it is made by root (some compositors refuse
root), and ends every process that it started, by its id. A program that is not installed ends the caller with SKIP.
"""
import contextlib
import os
import shutil
import subprocess
import sys
import tempfile
import threading
import time

import cairo
from Xlib import X, display, ext, protocol
from Xlib.ext import xtest

# python-xlib cannot take the numbers that Xwayland gives to the events of RANDR, which nobody here asks for.
ext.__extensions__ = [extension for extension in ext.__extensions__ if extension[0] != "RANDR"]

SKIP = 77
NOBODY = 65534

WINDOW_MANAGERS = {
    "openbox": ("openbox",),
    "xfwm4": ("xfwm4",),
    "fluxbox": ("fluxbox", "-no-slit"),
    "icewm": ("icewm",),
    "metacity": ("metacity", "--sm-disable"),
    "mutter": ("mutter", "--x11", "--sm-disable"),
    "kwin_x11": ("kwin_x11",),
    "i3": ("i3",),
    "awesome": ("awesome",),
}
CONFIGURATION = {
    "awesome": {".config/awesome/rc.lua": """
        local awful = require("awful")
        require("awful.autofocus")
        require("beautiful").init(require("gears").filesystem.get_themes_dir() .. "default/theme.lua")
        awful.screen.connect_for_each_screen(function(screen)
          awful.tag({"1", "2"}, screen, awful.layout.suit.tile)
          awful.wibar({position = "top", screen = screen})
        end)
        local menu = awful.menu({items = {{"quit", function() awesome.quit() end}}})
        root.buttons(awful.button({}, 3, function() menu:toggle() end))
        awful.rules.rules = {{rule = {}, properties = {focus = awful.client.focus.filter}}}
        """},
    "fluxbox": {".fluxbox/keys": "OnDesktop Mouse3 :RootMenu\nF12 :ShowDesktop\n",
                ".fluxbox/overlay": "background: none\n"},
    "i3": {".config/i3/config": "# i3 config file (v4)\nfont pango:monospace 8\n"},
}


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


class Screen:
    """The canvas of Wayland compositors: an X11 screen with one window for each output."""

    def __init__(self, name):
        self.name = name
        self.display = display.Display(name)
        self.root = self.display.screen().root
        # Made here, because sway does not make them.
        self.protocols, self.delete = (self.display.intern_atom(name) for name in ("WM_PROTOCOLS", "WM_DELETE_WINDOW"))

    def unplug(self, window):
        """Closes an output's window, which takes the output away."""
        window.send_event(protocol.event.ClientMessage(window=window, client_type=self.protocols,
                                                       data=(32, [self.delete, 0, 0, 0, 0])))
        self.display.sync()

    def spread(self, *places):
        """Moves the outputs' windows to these places, in the order in which they were made, and returns them."""
        windows = wait_for(lambda: len(found := self.root.query_tree().children) >= len(places) and found)
        for window, (x, y) in zip(windows, places):
            window.configure(x=x, y=y)
        self.display.sync()
        return windows

    def rows(self, x, y, width, height):
        """Rows of pixels, top to bottom, as cairo has them."""
        data = bytearray(self.root.get_image(x, y, width, height, X.ZPixmap, 0xffffffff).data)
        data[3::4] = b"\xff" * (width * height)
        return [bytes(data[4 * width * row:4 * width * (row + 1)]) for row in range(height)]

    def point(self, x, y):
        xtest.fake_input(self.display, X.MotionNotify, x=x, y=y)
        self.display.sync()

    def button(self, is_pressed, button=1):
        xtest.fake_input(self.display, X.ButtonPress if is_pressed else X.ButtonRelease, button)
        self.display.sync()


class Rig:
    def __init__(self, programs, *files):
        """`programs` is the folder of the tarno programs, everything else comes from PATH; `files` are copied beside
        them."""
        self.home = tempfile.mkdtemp(prefix="tarno-desktop-test-")
        self.started = []
        self.screen = None
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
            process.popen.kill()
            process.wait()
        shutil.rmtree(self.home, ignore_errors=True)

    @contextlib.contextmanager
    def session(self):
        """Ends what was started inside it, and forgets its displays."""
        before, env = len(self.started), dict(self.env)
        try:
            yield
        finally:
            for process in reversed(self.started[before:]):
                process.popen.kill()
                process.wait()
            del self.started[before:]
            self.env = env

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

    def two_monitors(self):
        """X11 with DUMMY0, the primary one, and DUMMY1 right of it, of 1024 x 768 each."""
        self.monitors()
        self.run("xrandr", "--addmode", "DUMMY1", "1024x768")
        self.run("xrandr", "--output", "DUMMY1", "--mode", "1024x768", "--right-of", "DUMMY0")

    def window_manager(self, name, *options):
        """Manages the windows of X11, one of WINDOW_MANAGERS; returns the display. NAME=value sets a variable."""
        for file, text in CONFIGURATION.get(name, {}).items():
            os.makedirs(os.path.dirname(self.path(file)), exist_ok=True)
            with open(self.path(file), "w") as configuration:
                configuration.write(text)
        env = dict(option.split("=") for option in options if not option.startswith("-"))
        process = self.start(*WINDOW_MANAGERS[name], *(option for option in options if option.startswith("-")),
                             env={"GSETTINGS_BACKEND": "memory", "LIBGL_ALWAYS_SOFTWARE": "1"} | env)
        screen = display.Display(self.env["DISPLAY"])
        root = screen.screen().root
        check, state = (screen.intern_atom(name) for name in ("_NET_SUPPORTING_WM_CHECK", "WM_STATE"))
        probe = root.create_window(0, 0, 9, 9, 0, X.CopyFromParent)
        def is_managed():
            if process.popen.poll() is not None:
                raise AssertionError(f"{name} ended: {process.lines[-1:]}")
            if root.get_full_property(check, X.AnyPropertyType):
                probe.map()  # what is mapped before is left alone for good by some
            return probe.get_full_property(state, X.AnyPropertyType)

        wait_for(is_managed, 20, message=name)
        time.sleep(0.3)  # some stumble over a window that goes while they frame it
        screen.close()
        return display.Display(self.env["DISPLAY"])

    def mutter_with_xwayland(self, monitors=1):
        """X11 inside Wayland, as on GNOME, with monitors of 1280 x 800 beside each other; returns the display that shows them
        and that of X11."""
        secrets = lambda: [self.path(name) for name in os.listdir(self.home) if name.startswith(".mutter-Xwayland")]
        for secret in secrets():
            os.remove(secret)  # of one that was killed
        self.x11("Xvfb", "-screen", "0", f"{1280 * monitors}x800x24")
        outside = display.Display(self.env.pop("DISPLAY"))
        compositor = self.start("mutter", "--wayland", "--nested", "--sm-disable", env={
            "DISPLAY": outside.get_display_name(), "GSETTINGS_BACKEND": "memory", "LIBGL_ALWAYS_SOFTWARE": "1",
            "MUTTER_DEBUG_NUM_DUMMY_MONITORS": str(monitors), "MUTTER_DEBUG_DUMMY_MODE_SPECS": "1280x800"})
        told = wait_for(lambda: [line for line in compositor.lines if "public X11 display" in line], message="Xwayland")[0]
        self.env |= {"DISPLAY": told.split("display ")[1].split(",")[0], "XAUTHORITY": wait_for(secrets)[0]}
        os.environ["XAUTHORITY"] = self.env["XAUTHORITY"]
        return outside, display.Display(self.env["DISPLAY"])

    def openbox(self):
        return self.window_manager("openbox")

    def canvas(self, width, height):
        """An X11 screen on which the compositors that are started next show their outputs, so that these can be looked at and
        clicked. Other programs do not know of it."""
        self.x11("Xvfb", "-screen", "0", f"{width}x{height}x24")
        self.screen = Screen(self.env.pop("DISPLAY"))
        return self.screen

    def compositor(self, socket, *argv, env=None):
        """Starts a Wayland compositor, on the canvas when there is one, and waits for its socket."""
        canvas = {"DISPLAY": self.screen.name} if self.screen else {}
        if os.path.exists(self.path(socket)):
            os.remove(self.path(socket))  # of one that was killed
        compositor = self.start(*argv, env=canvas | (env or {}))
        wait_for(lambda: os.path.exists(self.path(socket)), message=argv[0])
        self.env["WAYLAND_DISPLAY"] = socket
        if self.screen:
            self.screen.point(9, 795)
            self.screen.point(0, 795)  # out of the way, on the first output
        return compositor

    def sway(self, *lines, **backend):
        """Layer-shell, with one output HEADLESS-1 of 1280 x 720 on a plain ground; on a canvas, with outputs X11-1 and so on.
        `lines` are added to its configuration."""
        # Not "solid_color", which newer ones draw as one enlarged pixel that fades towards the edges at fractional scales.
        ground = cairo.ImageSurface(cairo.FORMAT_RGB24, 2560, 800)
        context = cairo.Context(ground)
        context.set_source_rgb(0.2, 0.4, 0.6)
        context.paint()
        ground.write_to_png(self.path("ground.png"))
        with open(self.path("sway.conf"), "w") as file:
            file.write("\n".join((f"output * bg {self.path('ground.png')} tile", "xwayland disable", *lines, "")))
        backend = {"WLR_BACKENDS": "x11" if self.screen else "headless", "WLR_LIBINPUT_NO_DEVICES": "1",
                   "WLR_RENDERER": "pixman"} | backend
        compositor = self.compositor("wayland-1", "sway", "-c", self.path("sway.conf"), env=backend)
        socket = self.path(f"sway-ipc.{os.geteuid()}.{compositor.popen.pid}.sock")
        wait_for(lambda: os.path.exists(socket), message="sway")
        self.env["SWAYSOCK"] = socket
        return compositor

    def weston(self, scale=1):
        """No layer-shell; one output on a plain ground, of 1024 x 640 pixels, on a canvas of 1280 x 800."""
        with open(self.path("weston.ini"), "w") as file:
            file.write("[shell]\nbackground-color=0xff336699\npanel-position=none\n"
                       f"[output]\nname=screen0\nmode={1280 // scale}x{800 // scale}\nscale={scale}\n")
        backend = (["--backend=x11-backend.so"] if self.screen else
                   ["--backend=headless-backend.so", "--width=1024", "--height=640", f"--scale={scale}"])
        return self.compositor("tarno", "weston", *backend, "--use-pixman", "--socket=tarno", "--idle-time=0", "--debug",
                               f"--config={self.path('weston.ini')}")

    def kwin(self, scale=1, outputs=1):
        """Layer-shell; on a canvas, outputs of 1280 x 800 pixels on black ground, side by side. Needs a session bus."""
        shutil.copyfile("/usr/bin/kwin_wayland", self.path("kwin_wayland"))  # without the capability that a container refuses
        os.chmod(self.path("kwin_wayland"), 0o755)
        return self.compositor("kwin", self.path("kwin_wayland"), "--socket", "kwin", "--x11-display", self.screen.name,
                               "--width", str(round(1280 / scale)), "--height", str(round(800 / scale)), "--scale", str(scale),
                               "--output-count", str(outputs), "--no-lockscreen", "--no-global-shortcuts",
                               env={"KWIN_COMPOSE": "Q"})

    def session_bus(self):
        """D-Bus, through which programs and screen readers meet."""
        bus = self.start("dbus-daemon", "--session", "--nofork", "--print-address", stdout=subprocess.PIPE)
        self.env["DBUS_SESSION_BUS_ADDRESS"] = bus.popen.stdout.readline().strip()
        self.env.pop("NO_AT_BRIDGE", None)

    # The programs

    def settings(self, text):
        """The tile's settings file, until the end of the session."""
        self.env["XDG_CONFIG_HOME"] = self.path("settings")
        os.makedirs(self.path("settings/tarno"), exist_ok=True)
        with open(self.path("settings/tarno/desktop.ini"), "w") as file:
            file.write(text + "\n")

    def tile(self, *options, env=None):
        """Starts tarno-desktop and waits until it says that the tile is shown."""
        tile = self.start(self.path("tarno-desktop"), *options, env=env)
        wait_for(lambda: tile.lines or tile.popen.poll() is not None, message="the tile")
        return tile

    def save(self, record, at):
        self.run(self.path("tarno-status"), "save", "--received-at", at, input=record.encode())
