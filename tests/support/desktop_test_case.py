"""The base class of the tests on desktops. Each test has its own rig, see script/headless.py."""
import os

from headless import Rig, wait_for
from tidy_test_case import TidyTest


class DesktopTest(TidyTest):
    def setUp(self):
        self.rig = self.enterContext(Rig(os.environ["TARNO_BIN"]))

    def says(self, tile, *lines):
        wait_for(lambda: len(tile.lines) >= len(lines), str(lines))
        self.assertEqual(tile.lines, [f"tarno-desktop: {line}\n" for line in lines])

    def drag(self, screen, start, *places):
        """Drags from `start` over `places`. Waits until another pointer shows that the window manager moves the window."""
        screen.display.xfixes_query_version()
        pointer = lambda: screen.display.xfixes_get_cursor_image(screen.root).cursor_serial
        screen.point(*start)
        before = pointer()
        screen.button(True)
        wait_for(lambda: pointer() != before, "the pointer of a window that is moved")
        for place in places:
            screen.point(*place)
        screen.button(False)
