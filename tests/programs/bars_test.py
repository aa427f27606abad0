"""Bars with the configuration of docs/companion.md, on desktops without a screen: each shows what was saved."""

import datetime
import re

from desktop_test_case import DesktopTest
from document import block
from headless import Screen, settled, wait_for

RECORD = '{"status": "%s", "device_name": "Kivo\'s <Mac>"}'


class Bars(DesktopTest):
    def setUp(self):
        super().setUp()
        self.rig.env["PATH"] = self.rig.home + ":" + self.rig.env["PATH"]

    def save(self, status, age=0):
        moment = datetime.datetime.now(datetime.timezone.utc) - datetime.timedelta(seconds=age)
        self.rig.save(RECORD % status, moment.isoformat())

    def shows_each_status(self, screen):
        """A bar of text: another for each status, and the same for the same status."""
        look = lambda: bytes(screen.look(0, 0, 1280, 800).get_data())
        seen = [settled(look)]
        for status in ("locked", "unlocked"):
            self.save(status)
            wait_for(lambda: look() not in seen, f"another picture for {status}")
            seen.append(settled(look))
        self.save("locked")
        wait_for(lambda: look() == seen[1], "the same picture for the same status")

    def test_waybar(self):
        self.rig.session_bus()  # newer ones do not start without
        self.rig.sway()
        css = block("css", "waybar")
        colours = dict(re.findall(r"#custom-tarno\.?(\w*) \{.*background: #(\w+);", css))
        config = self.rig.write("config", block("json", "waybar"))
        self.rig.start("waybar", "-c", config, "-s", self.rig.write("style.css", css))

        def shown():
            """The words whose colour fills a part of the bar, and only these."""
            header, pixels = self.rig.run("grim", "-t", "ppm", "-g", "0,0 1280x20", "-").split(b"\n255\n", 1)
            self.assertTrue(header.startswith(b"P6"), header)
            count = {word: sum(pixels[i:i + 3] == bytes.fromhex(colour) for i in range(0, len(pixels), 3))
                     for word, colour in colours.items()}
            return [word for word, pixels in count.items() if pixels > 300]

        self.assertEqual(list(colours), ["", "locked", "unlocked"])
        for status, age, word in ((None, 0, ""), ("locked", 0, "locked"), ("unlocked", 0, "unlocked"), ("locked", 151, ""),
                                  ("locked", 140, "locked")):
            if status:
                self.save(status, age)
            wait_for(lambda: shown() == [word], f"waybar's colour for {word}")
        wait_for(lambda: shown() == [""], "waybar's colour for a report that turns stale")

    def test_i3bar(self):
        self.rig.x11()
        screen = Screen(self.rig)
        self.rig.start("i3", "-c", self.rig.write("i3.conf", "# i3 config file (v4)\n" + block("conf", "sway and i3")))
        wait_for(lambda: len(screen.root.query_tree().children) > 2, "i3bar")
        self.shows_each_status(screen)

    def test_polybar(self):
        self.rig.x11()
        screen = Screen(self.rig)
        config = "[bar/test]\nmodules-left = tarno\nbackground = #204060\nforeground = #ffffff\n" + block("ini", "polybar")
        self.rig.start("polybar", "-q", "-c", self.rig.write("polybar.ini", config), "test")
        wait_for(lambda: 0x204060 in {screen.pixel(x, 9) for x in range(0, 1280, 99)}, "polybar")
        self.shows_each_status(screen)
