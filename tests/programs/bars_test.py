"""Tests that bars with the configuration of docs/companion.md show what was saved, on desktops without a screen."""
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

    def test_waybar(self):
        self.rig.session_bus()  # newer versions do not start without it
        self.rig.sway()
        css = block("css", "waybar")
        colours = dict(re.findall(r"#custom-tarno\.?(\w*) \{.*background: #(\w+);", css))
        self.assertEqual(list(colours), ["", "locked", "unlocked"])
        config = self.rig.write("config", block("json", "waybar"))
        self.rig.start("waybar", "-c", config, "-s", self.rig.write("style.css", css))

        def shown():
            """Returns the states whose colour fills a part of the bar."""
            header, pixels = self.rig.run("grim", "-t", "ppm", "-g", "0,0 1280x20", "-").split(b"\n255\n", 1)
            self.assertTrue(header.startswith(b"P6"), header)
            filled = [bytes(pixels[i:i + 3]) for i in range(0, len(pixels), 3)]
            return [word for word, colour in colours.items() if filled.count(bytes.fromhex(colour)) > 300]

        for status, age, *words in ((None, 0, ""), ("locked", 0, "locked"), ("unlocked", 0, "unlocked"), ("locked", 151, ""),
                                    ("locked", 140, "locked", "")):  # it turns stale
            if status:
                self.save(status, age)
            for word in words:
                wait_for(lambda: shown() == [word], f"waybar's colour for {word}")

    def test_i3bar(self):
        config = "# i3 config file (v4)\n" + block("conf", "sway and i3")
        self.shows_each_status(("i3", "-c"), config, lambda screen: len(screen.root.query_tree().children) > 2)

    def test_polybar(self):
        config = "[bar/test]\nmodules-left = tarno\nbackground = #204060\nforeground = #ffffff\n" + block("ini", "polybar")
        self.shows_each_status(("polybar", "-q", "test", "-c"), config,
                               lambda screen: 0x204060 in {screen.pixel(x, 9) for x in range(0, 1280, 99)})

    def shows_each_status(self, command, config, is_there):
        """Expects the bar to look different for different statuses, and the same for the same status."""
        self.rig.x11()
        screen = Screen(self.rig)
        self.rig.start(*command, self.rig.write("config", config))
        wait_for(lambda: is_there(screen), "the bar")
        look = lambda: bytes(screen.look(0, 0, 1280, 800).get_data())
        seen = [settled(look)]
        for status in ("locked", "unlocked"):
            self.save(status)
            wait_for(lambda: look() not in seen, f"another picture for {status}")
            seen.append(settled(look))
        self.save("locked")
        wait_for(lambda: look() == seen[1], "the same picture for the same status")
