"""Desktops without a screen, for pictures, measurements and tests.

A Rig starts X servers, window managers, Wayland compositors, D-Bus and the tarno programs, all in a folder of its own, and
ends them by their process ids. Where root makes the rig, the programs run as nobody, because some compositors refuse root; the
caller stays root. A program that is not installed raises unittest.SkipTest, which says its name.
"""
import contextlib
import ctypes
import json
import os
import pathlib
import re
import shutil
import signal
import socket
import struct
import subprocess
import tempfile
import threading
import time
import unittest
from unittest import mock

import cairo
from Xlib import X, display, error, ext, protocol
from Xlib.ext import xtest

from window_managers import WINDOW_MANAGERS

# python-xlib cannot take the numbers that Xwayland gives to the events of RANDR, which nobody here asks for.
ext.__extensions__ = [extension for extension in ext.__extensions__ if extension[0] != "RANDR"]

NOBODY = 65534
PR_SET_CHILD_SUBREAPER = 36
SOFTWARE = {"GSETTINGS_BACKEND": "memory", "LIBGL_ALWAYS_SOFTWARE": "1"}

BUS = """<busconfig><type>session</type><listen>unix:path=%s/bus</listen><standard_session_servicedirs/>
<policy context="default"><allow user="*"/><allow own="*"/><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/>
</policy></busconfig>
"""
XORG = """Section "Device"\n Identifier "device"\n Driver "dummy"\n VideoRam 65536\nEndSection
Section "Screen"\n Identifier "screen"\n Device "device"\n DefaultDepth 24\nEndSection
"""


def wait_for(condition, what="what was waited for", seconds=30):
    """Calls `condition` until it returns something true, and returns that. Until then it may also raise AssertionError, which
    is raised in the end, or an error of X11: a window can go away while it is looked at."""
    end, failure = time.monotonic() + seconds, None
    while not failure or time.monotonic() < end:
        failure = AssertionError(f"{what} did not come within {seconds} s")
        try:
            if result := condition():
                return result
        except AssertionError as raised:
            failure = raised
        except error.XError:
            pass
        time.sleep(0.02)
    raise failure


def installed(name):
    """The path of a program; one with a path of its own stays what it is."""
    if not (path := name if name.startswith("/") else shutil.which(name)):
        raise unittest.SkipTest(f"{name} is not installed")
    return path


def settled(look):
    """Waits until `look` returns the same again and again, and returns that."""
    def later():
        time.sleep(0.1)
        return look()
    return wait_for(lambda: (seen := look()) == later() == later() == later() and [seen], "something that keeps still")[0]


class Process:
    """A running program. `lines` has what it has written to standard error so far."""

    def __init__(self, argv, **options):
        self.popen = subprocess.Popen(argv, stderr=subprocess.PIPE, text=True, errors="replace", **options)
        self.pid, self.lines = self.popen.pid, []
        self.reader = threading.Thread(target=self.read, daemon=True)
        self.reader.start()

    def read(self):
        with self.popen.stderr as lines:
            self.lines.extend(lines)  # one by one, as they come

    def runs(self):
        return self.popen.poll() is None

    def end(self, number=signal.SIGTERM):
        """Sends a signal and returns the exit code. Kills a program that does not end."""
        self.popen.send_signal(number)
        try:
            return self.wait()
        except subprocess.TimeoutExpired:
            return self.end(signal.SIGKILL)

    def wait(self):
        """Waits for the end and returns the exit code."""
        code = self.popen.wait(20)
        self.reader.join(5)  # what it started may still hold its standard error
        return code

    def first_line(self):
        """The first line of its standard output, which is a pipe."""
        with self.popen.stdout as output:
            line = output.readline().strip()
        assert line or self.wait() is None, self.lines
        return line


class Screen:
    """What people see and do on the X11 screen of a rig, until the end of its session."""

    def __init__(self, rig):
        self.name = rig.env["DISPLAY"]
        with mock.patch.dict(os.environ, XAUTHORITY=rig.env.get("XAUTHORITY", "")):
            self.display = display.Display(self.name)
        rig.ends.callback(self.close)
        self.root = self.display.screen().root
        self.close_request = [self.atom(name) for name in ("WM_PROTOCOLS", "WM_DELETE_WINDOW")]  # sway does not make them
        self.size = self.root.get_geometry().width, self.root.get_geometry().height

    def close(self):
        with contextlib.suppress(error.ConnectionClosedError):  # its server has ended
            self.display.close()

    def atom(self, name):
        return self.display.intern_atom(name)

    def property(self, window, name):
        found = window.get_full_property(self.atom(name), X.AnyPropertyType)
        return list(found.value) if found else []

    def set(self, window, name, kind, value):
        """Sets a property to bytes or to a list of numbers."""
        window.change_property(self.atom(name), kind, 8 if isinstance(value, bytes) else 32, value)
        self.display.sync()

    def is_viewable(self, window):
        return window.get_attributes().map_state == X.IsViewable

    def tell(self, name, *data, window=None, mask=X.SubstructureRedirectMask | X.SubstructureNotifyMask):
        """Sends the window manager, or the window alone without a mask, a message about a window or all of them."""
        event = protocol.event.ClientMessage(window=window or self.root, client_type=self.atom(name),
                                             data=(32, [*data, 0, 0, 0, 0, 0][:5]))
        (self.root if mask else window).send_event(event, mask)
        self.display.sync()

    def look(self, x, y, width, height):
        """A part of the screen as a picture."""
        data = bytearray(self.root.get_image(x, y, width, height, X.ZPixmap, 0xffffffff).data)
        data[3::4] = b"\xff" * (width * height)  # as cairo has it
        return cairo.ImageSurface.create_for_data(data, cairo.FORMAT_RGB24, width, height)

    def pixel(self, x, y):
        """As 0xRRGGBB."""
        return int.from_bytes(self.root.get_image(x, y, 1, 1, X.ZPixmap, 0xffffff).data[:3], "little")

    def point(self, x, y):
        xtest.fake_input(self.display, X.MotionNotify, x=x, y=y)
        self.display.sync()

    def button(self, is_pressed, button=1):
        xtest.fake_input(self.display, X.ButtonPress if is_pressed else X.ButtonRelease, button)
        self.display.flush()  # an answer waits for window managers that have the server for themselves until the release

    def click(self, x, y, button=1):
        self.point(x, y)
        self.button(True, button)
        self.button(False, button)
        self.display.sync()

    def frame(self, window):
        """The child of the root window that contains a window, or the window itself."""
        while (parent := window.query_tree().parent) != self.root:
            window = parent
        return window

    def spread(self, *places):
        """Moves the windows of a compositor's outputs to these places, in the order in which they were made; returns them."""
        windows = wait_for(lambda: len(found := self.root.query_tree().children) >= len(places) and found, "the outputs")
        for window, (x, y) in zip(windows, places):
            window.configure(x=x, y=y)
        self.display.sync()
        return windows

    def unplug(self, window):
        """Closes an output's window, which takes the output away."""
        self.tell("WM_PROTOCOLS", self.close_request[1], window=window, mask=0)


class Rig(contextlib.ExitStack):
    def __init__(self, programs):
        """`programs` is the folder of the tarno programs; all others come from PATH."""
        super().__init__()
        # Everybody can enter /tmp, and the paths of sockets may not be long.
        self.home = tempfile.mkdtemp(prefix="tarno-rig-", dir="/tmp")
        self.callback(shutil.rmtree, self.home, ignore_errors=True)
        self.ends, self.screen = None, None  # how the session ends, and the canvas of compositors
        self.user = {"user": NOBODY, "group": NOBODY, "extra_groups": []} if os.geteuid() == 0 else {}
        if self.user:
            os.umask(0o022)  # nobody reads what is written here
            os.chown(self.home, NOBODY, NOBODY)
        for name in ("tarno-desktop", "tarno-widget", "tarno-status"):
            self.copy_program(os.path.join(programs, name))
        if signal.getsignal(signal.SIGTERM) == signal.SIG_DFL:
            signal.signal(signal.SIGTERM, signal.default_int_handler)  # ends like Ctrl+C, with all that was started
        # Programs that lose their parents become children of this process, which can then end them.
        ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
        self.env = {name: value for name, value in os.environ.items() if name == "PATH" or name.endswith("SAN_OPTIONS")}
        for name, value in self.env.items():
            if found := re.search("suppressions=([^:]+)", value):  # nobody cannot read it where it is
                self.env[name] = value.replace(found[1], self.copy_program(found[1]))
        # Where no bus has this address, no library starts one of its own.
        self.env |= {"HOME": self.home, "XDG_RUNTIME_DIR": self.home, "XDG_DATA_HOME": self.path("data"), "TMPDIR": self.home,
                     "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.home}/bus", "LANG": "C.UTF-8", "TZ": "UTC",
                     "NO_AT_BRIDGE": "1"}

    def __enter__(self):
        self.enter_context(self.session())
        return self

    @contextlib.contextmanager
    def session(self):
        """Ends what was started inside it, the last one first, then what this left running; forgets its displays."""
        kept, outer = self.children(), (self.ends, self.env, self.screen)
        self.ends, self.env = contextlib.ExitStack(), dict(self.env)
        try:
            with self.ends:
                yield
        finally:
            while left := self.children() - kept:
                for pid in left:
                    os.kill(pid, signal.SIGKILL)
                    os.waitpid(pid, 0)
            self.ends, self.env, self.screen = outer

    def children(self):
        """The processes that this one started, and those whose parents ended."""
        return set(map(int, self.read(f"/proc/self/task/{os.getpid()}/children").split()))

    # Files

    def path(self, name):
        return os.path.join(self.home, name)

    def read(self, name):
        with open(self.path(name), encoding="utf-8") as file:
            return file.read()

    def write(self, name, text, mode=0o644):
        """Replaces a file at once; returns its path."""
        new = pathlib.Path(self.path(name) + ".new")
        if not new.parent.exists():
            self.run("mkdir", "-p", new.parent)  # its programs may write there, too
        new.write_text(text, encoding="utf-8")
        new.chmod(mode)
        return str(new.rename(self.path(name)))

    def copy_program(self, path):
        copy = shutil.copyfile(path, self.path(os.path.basename(path)))
        os.chmod(copy, 0o755)
        return copy

    # Programs

    def start(self, *argv, env=None, stdout=subprocess.DEVNULL):
        process = Process((installed(argv[0]), *argv[1:]), env=self.env | (env or {}), stdout=stdout, cwd=self.home, **self.user)
        self.ends.callback(process.end)
        return process

    def run(self, *argv, **options):
        """Runs a program to its end and returns its standard output."""
        return subprocess.run(argv, env=self.env, cwd=self.home, capture_output=True, check=True, timeout=60, **self.user,
                              **options).stdout

    def tile(self, *options):
        """Starts tarno-desktop and waits until it says that the tile is shown."""
        tile = self.start(self.path("tarno-desktop"), *options)
        wait_for(lambda: tile.lines or not tile.runs(), "the tile")
        return tile

    def save(self, record, at):
        self.run(self.path("tarno-status"), "save", "--received-at", at, input=record.encode())

    def session_bus(self):
        """D-Bus, through which programs and screen readers meet. Root may use that of nobody."""
        configuration = self.write("bus.conf", BUS % self.home)
        bus = self.start("dbus-daemon", f"--config-file={configuration}", "--nofork", "--print-address", stdout=subprocess.PIPE)
        bus.first_line()
        self.env.pop("NO_AT_BRIDGE", None)
        return bus

    # X11

    def x_server(self, *argv):
        """It is kept when its last client goes."""
        server = self.start(*argv, "-displayfd", "1", "-noreset", "-nolisten", "tcp", stdout=subprocess.PIPE)
        self.env["DISPLAY"] = ":" + server.first_line()
        return server

    def x11(self, width=1280, height=800):
        """One screen, which is called "screen"."""
        return self.x_server("Xvfb", "-screen", "0", f"{width}x{height}x24")

    def two_monitors(self):
        """DUMMY0, the primary one, and DUMMY1 right of it, of 1024 x 768 each."""
        self.x_server("/usr/lib/xorg/Xorg", "-config", self.write("xorg.conf", XORG), "-logfile", self.path("xorg.log"),
                      "-novtswitch", "-sharevts")
        self.run("xrandr", "--addmode", "DUMMY1", "1024x768")
        self.run("xrandr", "--output", "DUMMY1", "--mode", "1024x768", "--right-of", "DUMMY0")

    def window_manager(self, name, *options):
        """Starts one of WINDOW_MANAGERS and waits until it manages windows. NAME=value among the options sets a variable."""
        manager = WINDOW_MANAGERS[name]
        for file, text in manager.files.items():
            self.write(file, text, 0o755)
        screen = Screen(self)
        before = screen.property(screen.root, "_NET_SUPPORTING_WM_CHECK")
        probe = screen.root.create_window(0, 0, 9, 9, 0, X.CopyFromParent)
        variables = [option for option in options if not option.startswith("-")]
        process = self.start(*manager.argv, *(option for option in options if option not in variables),
                             env=SOFTWARE | dict(variable.split("=") for variable in variables))

        def is_managed():
            assert process.runs(), f"{name} ended: {process.lines[-1:]}"
            if (screen.root.get_attributes().all_event_masks & X.SubstructureRedirectMask if not manager.has_name else
                    screen.property(screen.root, "_NET_SUPPORTING_WM_CHECK") not in ([], before)):
                probe.map()  # what is mapped before is left alone for good by some
            return screen.property(probe, "WM_STATE") and screen.is_viewable(probe)

        wait_for(is_managed, name)  # some stumble over a window that goes while they frame it
        frame = screen.frame(probe)
        probe.destroy()
        wait_for(lambda: frame not in screen.root.query_tree().children, f"the end of {name}'s frame")
        return process

    def mutter_with_xwayland(self, monitors=1):
        """X11 inside Wayland, as on GNOME, with monitors of 1280 x 800 beside each other. Returns the screen outside, which
        shows them."""
        secrets = lambda: [self.path(name) for name in os.listdir(self.home) if name.startswith(".mutter-Xwayland")]
        for secret in secrets():
            os.remove(secret)
        self.x11(1280 * monitors)
        outside = Screen(self)
        compositor = self.start("mutter", "--wayland", "--nested", "--sm-disable", env=SOFTWARE | {
            "MUTTER_DEBUG_NUM_DUMMY_MONITORS": str(monitors), "MUTTER_DEBUG_DUMMY_MODE_SPECS": "1280x800"})
        told = wait_for(lambda: [line for line in compositor.lines if "public X11 display" in line], "Xwayland")[0]
        self.env |= {"DISPLAY": told.split("display ")[1].split(",")[0], "XAUTHORITY": wait_for(secrets, "its secret")[0]}
        return outside

    # Wayland

    def canvas(self, width, height):
        """An X11 screen on which the compositors that are started next show their outputs, so that these can be looked at and
        clicked. Other programs do not know of it."""
        self.x11(width, height)
        self.screen = Screen(self)
        del self.env["DISPLAY"]
        return self.screen

    def compositor(self, name, *argv, **env):
        """Starts a Wayland compositor, on the canvas when there is one, and waits for its socket."""
        with contextlib.suppress(FileNotFoundError):
            os.remove(self.path(name))  # of one that was killed
        compositor = self.start(*argv, env=({"DISPLAY": self.screen.name} if self.screen else {}) | env)
        wait_for(lambda: os.path.exists(self.path(name)) or not compositor.runs(), argv[0])
        assert compositor.runs(), f"{argv[0]} ended: {compositor.lines[-3:]}"
        self.env["WAYLAND_DISPLAY"] = name
        if self.screen:
            self.screen.point(9, 795)
            self.screen.point(0, 795)  # out of the way, on the first output
        return compositor

    def sway(self, *lines, outputs=1):
        """Layer-shell, with one output HEADLESS-1 of 1280 x 720 on a plain ground; on a canvas, with outputs X11-1 and so on.
        `lines` are added to its configuration."""
        # Not "solid_color", which newer ones draw as one enlarged pixel that fades towards the edges at fractional scales.
        ground = cairo.ImageSurface.create_for_data(bytearray(b"\x99\x66\x33\xff" * 2560 * 800), cairo.FORMAT_RGB24, 2560, 800)
        ground.write_to_png(self.path("ground.png"))
        self.write("sway.conf", "\n".join((f"output * bg {self.path('ground.png')} tile", "xwayland disable", *lines, "")))
        compositor = self.compositor("wayland-1", "sway", "-c", self.path("sway.conf"), WLR_X11_OUTPUTS=str(outputs),
                                     WLR_BACKENDS="x11" if self.screen else "headless", WLR_LIBINPUT_NO_DEVICES="1",
                                     WLR_RENDERER="pixman")
        self.env["SWAYSOCK"] = self.path(f"sway-ipc.{self.user.get('user', os.getuid())}.{compositor.pid}.sock")
        wait_for(lambda: os.path.exists(self.env["SWAYSOCK"]), "sway")
        return compositor

    def swaymsg(self, command, kind=0):
        """Tells sway a command, or asks for its outputs (3) or its tree (4). The program of this name gives up after 3 s."""
        with socket.socket(socket.AF_UNIX) as sway, sway.makefile("rb") as answer:
            sway.connect(self.env["SWAYSOCK"])
            sway.sendall(struct.pack("=6sII", b"i3-ipc", len(command), kind) + command.encode())
            said = json.loads(answer.read(struct.unpack("=6sII", answer.read(14))[1]))
        assert kind or said[0]["success"], said
        return said

    def weston(self, scale):
        """No layer-shell; on a canvas, one output of 1280 x 800 pixels on a plain ground."""
        self.write("weston.ini", "[shell]\nbackground-color=0xff336699\npanel-position=none\n"
                                 f"[output]\nname=screen0\nmode={1280 // scale}x{800 // scale}\nscale={scale}\n")
        return self.compositor("tarno", "weston", "--backend=x11-backend.so", "--use-pixman", "--socket=tarno", "--idle-time=0",
                               "--debug", f"--config={self.path('weston.ini')}")

    def kwin(self, scale=1, outputs=1):
        """Layer-shell; on a canvas, outputs of 1280 x 800 pixels on black ground, side by side. Needs a session bus."""
        program = self.copy_program(installed("kwin_wayland"))  # without the capability that a container refuses
        return self.compositor("kwin", program, "--socket", "kwin", "--x11-display", self.screen.name,
                               "--width", str(round(1280 / scale)), "--height", str(round(800 / scale)), "--scale", str(scale),
                               "--output-count", str(outputs), "--no-lockscreen", "--no-global-shortcuts", KWIN_COMPOSE="Q")
